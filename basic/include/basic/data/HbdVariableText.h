#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Texts; the null text is undefined.
class KELVANE_BASIC_EXPORT HbdVariableText final
    : public HbdTypedVariable<HbdVariableText, HbdAVariable, HbdValueTraits::Text>
{
public:
    explicit HbdVariableText(const HbdVariableDetails& details);
    HbdVariableText(const HbdVariableText&) = default;
    ~HbdVariableText() override;
    using HbdTypedVariable::append;
};
