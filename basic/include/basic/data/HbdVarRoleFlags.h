#pragma once

#include <basic/data/HbdEVarRole.h>
#include <basic/data/HbdFlagSet.h>

/// A set of variable roles.
class KELVANE_BASIC_EXPORT HbdVarRoleFlags : public HbdFlagSet<HbdEVarRole, HbdVarRoleFlags>
{
    HBD_FLAG_SET(HbdVarRoleFlags, HbdEVarRole)

    static const HbdVarRoleFlags NONE; ///< no role at all, not even the plain one
    static const HbdVarRoleFlags ANY;
    static const HbdVarRoleFlags COORDINATES;
    static const HbdVarRoleFlags IDENTIFIERS; ///< sample and object identifiers
    static const HbdVarRoleFlags INDICES;     ///< cell, X, Y and Z indices
};
