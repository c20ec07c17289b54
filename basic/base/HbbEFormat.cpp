#include <basic/base/HbbEFormat.h>

HBB_ENUM_DEFINE(HbbEFormat, HBB_E_FORMAT, DECIMAL, "base/HbbEFormat")
