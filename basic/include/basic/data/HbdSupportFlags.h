#pragma once

#include <basic/data/HbdESupport.h>
#include <basic/data/HbdFlagSet.h>

/// A set of supports.
class KELVANE_BASIC_EXPORT HbdSupportFlags : public HbdFlagSet<HbdESupport, HbdSupportFlags>
{
    HBD_FLAG_SET(HbdSupportFlags, HbdESupport)

    static const HbdSupportFlags NONE; ///< no support at all
    static const HbdSupportFlags ANY;
};
