#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Opacities that go with a colour variable, 0 to 255.
class KELVANE_BASIC_EXPORT HbdVariableAlpha final
    : public HbdTypedVariable<HbdVariableAlpha, HbdAVariable, HbdValueTraits::AlphaChannel>
{
public:
    explicit HbdVariableAlpha(const HbdVariableDetails& details);
    HbdVariableAlpha(const HbdVariableAlpha&) = default;
    ~HbdVariableAlpha() override;
    using HbdTypedVariable::append;
};
