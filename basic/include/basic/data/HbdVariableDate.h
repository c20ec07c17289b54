#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Moments, in milliseconds since 1970-01-01 UTC; undefined is HbbGlobal::I_FFFF.
class KELVANE_BASIC_EXPORT HbdVariableDate final
    : public HbdTypedVariable<HbdVariableDate, HbdAVariable, HbdValueTraits::Date>
{
public:
    explicit HbdVariableDate(const HbdVariableDetails& details);
    HbdVariableDate(const HbdVariableDate&) = default;
    ~HbdVariableDate() override;
    using HbdTypedVariable::append;
};
