#pragma once

#include <util/KuExport.h>

#include <basic/base/HbbAEnum.h>

// clang-format off
#define KUD_E_DATASET_TYPE(ROW, Class)                                                             \
    ROW(Class, EXTERN_FILE, 0, QT_TRANSLATE_NOOP("KudEDatasetType", "Extern file"))                \
    ROW(Class, GDAL, 1, QT_TRANSLATE_NOOP("KudEDatasetType", "Gdal"))                              \
    ROW(Class, OGR, 2, QT_TRANSLATE_NOOP("KudEDatasetType", "Ogr"))                                \
    ROW(Class, OGR_LAYER, 3, QT_TRANSLATE_NOOP("KudEDatasetType", "Ogr layer"))                    \
    ROW(Class, GRID, 4, QT_TRANSLATE_NOOP("KudEDatasetType", "Project grid"))                      \
    ROW(Class, LINE, 5, QT_TRANSLATE_NOOP("KudEDatasetType", "Project line"))                      \
    ROW(Class, MESH, 6, QT_TRANSLATE_NOOP("KudEDatasetType", "Project mesh"))                      \
    ROW(Class, POINT, 7, QT_TRANSLATE_NOOP("KudEDatasetType", "Project point"))                    \
    ROW(Class, POLYGON, 8, QT_TRANSLATE_NOOP("KudEDatasetType", "Project polygon"))                \
    ROW(Class, POLYLINE, 9, QT_TRANSLATE_NOOP("KudEDatasetType", "Project polyline"))              \
    ROW(Class, MEMORY, 10, QT_TRANSLATE_NOOP("KudEDatasetType", "Memory"))                         \
    ROW(Class, NONE, 11, QT_TRANSLATE_NOOP("KudEDatasetType", "None"))
// clang-format on

/// The kinds of datasets.
class KELVANE_UTIL_EXPORT KudEDatasetType : public HbbAEnum
{
    HBB_ENUM(KudEDatasetType, KUD_E_DATASET_TYPE)
};
