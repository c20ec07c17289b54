#pragma once

#include <basic/base/HbbAEnum.h>
#include <basic/base/HbbExport.h>

/// How a number is written; the precision counts digits after the point for DECIMAL and SCIENTIFIC
/// and significant digits for GENERAL. SHORTEST is the shortest text that reads back as the same
/// double. INTEGER and SHORTEST take no precision.
#define HBB_E_FORMAT(ROW, Class)                                                                   \
    ROW(Class, DECIMAL, 0, QT_TRANSLATE_NOOP("HbbEFormat", "Decimal"))                             \
    ROW(Class, SCIENTIFIC, 1, QT_TRANSLATE_NOOP("HbbEFormat", "Scientific"))                       \
    ROW(Class, GENERAL, 2, QT_TRANSLATE_NOOP("HbbEFormat", "General"))                             \
    ROW(Class, INTEGER, 3, QT_TRANSLATE_NOOP("HbbEFormat", "Integer"))                             \
    ROW(Class, SHORTEST, 4, QT_TRANSLATE_NOOP("HbbEFormat", "Shortest"))

/// The default is DECIMAL.
class KELVANE_BASIC_EXPORT HbbEFormat : public HbbAEnum
{
    HBB_ENUM(HbbEFormat, HBB_E_FORMAT)
};
