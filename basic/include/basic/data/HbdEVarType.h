#pragma once

#include <basic/base/HbbAEnum.h>

// clang-format off
#define HBD_E_VAR_TYPE(ROW, Class)                                                                 \
    ROW(Class, REAL, 0, QT_TRANSLATE_NOOP("HbdEVarType", "Real"))                                  \
    ROW(Class, REAL_32, 1, QT_TRANSLATE_NOOP("HbdEVarType", "Real (32 bits)"))                     \
    ROW(Class, INTEGER, 2, QT_TRANSLATE_NOOP("HbdEVarType", "Integer"))                            \
    ROW(Class, TEXT, 3, QT_TRANSLATE_NOOP("HbdEVarType", "Text"))                                  \
    ROW(Class, CATEGORY, 4, QT_TRANSLATE_NOOP("HbdEVarType", "Category"))                          \
    ROW(Class, COLOR, 5, QT_TRANSLATE_NOOP("HbdEVarType", "Colour"))                               \
    ROW(Class, ALPHA_CHANNEL, 6, QT_TRANSLATE_NOOP("HbdEVarType", "Alpha channel"))                \
    ROW(Class, SELECTION, 7, QT_TRANSLATE_NOOP("HbdEVarType", "Selection"))                        \
    ROW(Class, DATE, 8, QT_TRANSLATE_NOOP("HbdEVarType", "Date"))
// clang-format on

/// What a column stores in each cell.
class KELVANE_BASIC_EXPORT HbdEVarType : public HbbAEnum
{
    HBB_ENUM(HbdEVarType, HBD_E_VAR_TYPE)
};
