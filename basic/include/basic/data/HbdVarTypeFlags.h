#pragma once

#include <basic/data/HbdEVarType.h>
#include <basic/data/HbdFlagSet.h>

/// A set of variable types.
class KELVANE_BASIC_EXPORT HbdVarTypeFlags : public HbdFlagSet<HbdEVarType, HbdVarTypeFlags>
{
    HBD_FLAG_SET(HbdVarTypeFlags, HbdEVarType)

    static const HbdVarTypeFlags NONE;
    static const HbdVarTypeFlags ANY;
    static const HbdVarTypeFlags NUMERIC;      ///< reals and integers
    static const HbdVarTypeFlags NUMERIC_ENUM; ///< reals, integers and categories
};
