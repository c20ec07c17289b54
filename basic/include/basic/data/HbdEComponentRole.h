#pragma once

#include <basic/base/HbbAEnum.h>

// clang-format off
#define HBD_E_COMPONENT_ROLE(ROW, Class)                                                           \
    ROW(Class, NONE, 0, QT_TRANSLATE_NOOP("HbdEComponentRole", "None"))                            \
    ROW(Class, X, 1, QT_TRANSLATE_NOOP("HbdEComponentRole", "X"))                                  \
    ROW(Class, Y, 2, QT_TRANSLATE_NOOP("HbdEComponentRole", "Y"))                                  \
    ROW(Class, Z, 3, QT_TRANSLATE_NOOP("HbdEComponentRole", "Z"))                                  \
    ROW(Class, AZIMUTH, 4, QT_TRANSLATE_NOOP("HbdEComponentRole", "Azimuth"))                      \
    ROW(Class, DIP, 5, QT_TRANSLATE_NOOP("HbdEComponentRole", "Dip"))                              \
    ROW(Class, RED, 6, QT_TRANSLATE_NOOP("HbdEComponentRole", "Red"))                              \
    ROW(Class, GREEN, 7, QT_TRANSLATE_NOOP("HbdEComponentRole", "Green"))                          \
    ROW(Class, BLUE, 8, QT_TRANSLATE_NOOP("HbdEComponentRole", "Blue"))                            \
    ROW(Class, ALPHA, 9, QT_TRANSLATE_NOOP("HbdEComponentRole", "Alpha"))                          \
    ROW(Class, PART, 10, QT_TRANSLATE_NOOP("HbdEComponentRole", "Part"))
// clang-format on

/// What one component is in its compound.
class KELVANE_BASIC_EXPORT HbdEComponentRole : public HbbAEnum
{
    HBB_ENUM(HbdEComponentRole, HBD_E_COMPONENT_ROLE)
};
