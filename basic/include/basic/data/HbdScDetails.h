#pragma once

#include <basic/data/HbdCompoundDetails.h>
#include <basic/data/HbdECompoundType.h>
#include <basic/data/HbdVariableDetails.h>

/// A structured column as a whole: the kind of compound, its details and its components.
struct HbdScDetails {
    HbdECompoundType type;
    HbdVariableDetails details;
    HbdCompoundDetails components;

    bool operator==(const HbdScDetails& other) const
    {
        return type == other.type && details == other.details && components == other.components;
    }
    bool operator!=(const HbdScDetails& other) const { return !(*this == other); }
};
