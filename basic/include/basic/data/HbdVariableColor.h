#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Colours as 0xFFRRGGBB; 0 is undefined.
class KELVANE_BASIC_EXPORT HbdVariableColor final
    : public HbdTypedVariable<HbdVariableColor, HbdAVariable, HbdValueTraits::Color>
{
public:
    explicit HbdVariableColor(const HbdVariableDetails& details);
    HbdVariableColor(const HbdVariableColor&) = default;
    ~HbdVariableColor() override;
    using HbdTypedVariable::append;
};
