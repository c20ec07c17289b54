#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Integers of 64 bits; undefined is HbbGlobal::I_FFFF.
class KELVANE_BASIC_EXPORT HbdVariableInteger final
    : public HbdTypedVariable<HbdVariableInteger, HbdANumericVariable, HbdValueTraits::Integer>
{
public:
    explicit HbdVariableInteger(const HbdVariableDetails& details);
    HbdVariableInteger(const HbdVariableInteger&) = default;
    ~HbdVariableInteger() override;
    using HbdTypedVariable::append;

    void readNumbers(int first, int count, double* numbers) const override;
    void writeNumbers(int first, int count, const double* numbers) override;
};
