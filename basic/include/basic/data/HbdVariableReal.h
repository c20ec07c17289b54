#pragma once

#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Reals of 64 bits; undefined is HbbGlobal::D_FFFF.
class KELVANE_BASIC_EXPORT HbdVariableReal final
    : public HbdTypedVariable<HbdVariableReal, HbdANumericVariable, HbdValueTraits::Real>
{
public:
    explicit HbdVariableReal(const HbdVariableDetails& details);
    HbdVariableReal(const HbdVariableReal&) = default;
    ~HbdVariableReal() override;
    using HbdTypedVariable::append;

    void readNumbers(int first, int count, double* numbers) const override;
    void writeNumbers(int first, int count, const double* numbers) override;
};
