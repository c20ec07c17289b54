#pragma once

#include <basic/data/HbdECompoundType.h>
#include <basic/data/HbdFlagSet.h>

/// A set of compound types.
class KELVANE_BASIC_EXPORT HbdCompoundTypeFlags
    : public HbdFlagSet<HbdECompoundType, HbdCompoundTypeFlags>
{
    HBD_FLAG_SET(HbdCompoundTypeFlags, HbdECompoundType)

    static const HbdCompoundTypeFlags NONE; ///< no type at all, not even plain variables
    static const HbdCompoundTypeFlags ANY;
};
