#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// A selection of samples: 1 is selected, 0 is not.
class KELVANE_BASIC_EXPORT HbdVariableSelection final
    : public HbdTypedVariable<HbdVariableSelection, HbdAVariable, HbdValueTraits::Selection>
{
public:
    explicit HbdVariableSelection(const HbdVariableDetails& details);
    HbdVariableSelection(const HbdVariableSelection&) = default;
    ~HbdVariableSelection() override;
    using HbdTypedVariable::append;
};
