#pragma once

#include <util/dataset/KudDatasetVariable.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

/// One line of a table's notice: a variable and one reason for which it stands there.
struct KudVariableChange {
    KudDatasetVariable variable;
    int reason = 0;                    ///< one KudTableModif::Reason
    HbiIntervalIntSmallDisjoint ranks; ///< the samples, when the reason is a change of values
};
Q_DECLARE_TYPEINFO(KudVariableChange, Q_MOVABLE_TYPE);
