#include <util/dataset/KudEDatasetType.h>

HBB_ENUM_DEFINE(KudEDatasetType, KUD_E_DATASET_TYPE, NONE, "dataset/KudEDatasetType")
