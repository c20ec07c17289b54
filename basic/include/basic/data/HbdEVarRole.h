#pragma once

#include <basic/base/HbbAEnum.h>

// clang-format off
#define HBD_E_VAR_ROLE(ROW, Class)                                                                 \
    ROW(Class, NONE, 0, QT_TRANSLATE_NOOP("HbdEVarRole", "None"))                                  \
    ROW(Class, X_COORDINATE, 1, QT_TRANSLATE_NOOP("HbdEVarRole", "X coordinate"))                  \
    ROW(Class, Y_COORDINATE, 2, QT_TRANSLATE_NOOP("HbdEVarRole", "Y coordinate"))                  \
    ROW(Class, Z_COORDINATE, 3, QT_TRANSLATE_NOOP("HbdEVarRole", "Z coordinate"))                  \
    ROW(Class, NAME, 4, QT_TRANSLATE_NOOP("HbdEVarRole", "Name"))                                  \
    ROW(Class, SAMPLE_ID, 5, QT_TRANSLATE_NOOP("HbdEVarRole", "Sample identifier"))                \
    ROW(Class, OBJECT_ID, 6, QT_TRANSLATE_NOOP("HbdEVarRole", "Object identifier"))                \
    ROW(Class, CELL_INDEX, 7, QT_TRANSLATE_NOOP("HbdEVarRole", "Cell index"))                      \
    ROW(Class, X_INDEX, 8, QT_TRANSLATE_NOOP("HbdEVarRole", "X index"))                            \
    ROW(Class, Y_INDEX, 9, QT_TRANSLATE_NOOP("HbdEVarRole", "Y index"))                            \
    ROW(Class, Z_INDEX, 10, QT_TRANSLATE_NOOP("HbdEVarRole", "Z index"))                           \
    ROW(Class, FILE_LINE_NUMBER, 11, QT_TRANSLATE_NOOP("HbdEVarRole", "Line number in file"))      \
    ROW(Class, COLOR, 12, QT_TRANSLATE_NOOP("HbdEVarRole", "Colour"))
// clang-format on

/// What a variable is for in its table. NONE is plain data; every other role is structural.
class KELVANE_BASIC_EXPORT HbdEVarRole : public HbbAEnum
{
    HBB_ENUM(HbdEVarRole, HBD_E_VAR_ROLE)
};
