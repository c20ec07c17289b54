#pragma once

#include <basic/base/HbbAEnum.h>

// clang-format off
#define HBD_E_COMPOUND_TYPE(ROW, Class)                                                            \
    ROW(Class, NONE, 0, QT_TRANSLATE_NOOP("HbdECompoundType", "None"))                             \
    ROW(Class, VECTOR, 1, QT_TRANSLATE_NOOP("HbdECompoundType", "Vector"))                         \
    ROW(Class, ORIENTATION, 2, QT_TRANSLATE_NOOP("HbdECompoundType", "Orientation"))               \
    ROW(Class, COLOR, 3, QT_TRANSLATE_NOOP("HbdECompoundType", "Colour"))                          \
    ROW(Class, COMPOSITION, 4, QT_TRANSLATE_NOOP("HbdECompoundType", "Composition"))
// clang-format on

/// What the components of a compound variable make together.
class KELVANE_BASIC_EXPORT HbdECompoundType : public HbbAEnum
{
    HBB_ENUM(HbdECompoundType, HBD_E_COMPOUND_TYPE)
};
