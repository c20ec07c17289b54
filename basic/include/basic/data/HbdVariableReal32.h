#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Reals of 32 bits; undefined is NaN, which readNumbers gives as HbbGlobal::D_FFFF.
class KELVANE_BASIC_EXPORT HbdVariableReal32 final
    : public HbdTypedVariable<HbdVariableReal32, HbdANumericVariable, HbdValueTraits::Real32>
{
public:
    explicit HbdVariableReal32(const HbdVariableDetails& details);
    HbdVariableReal32(const HbdVariableReal32&) = default;
    ~HbdVariableReal32() override;
    using HbdTypedVariable::append;

    void readNumbers(int first, int count, double* numbers) const override;
    void writeNumbers(int first, int count, const double* numbers) override;
};
