#pragma once

#include <basic/data/HbdAVariable.h>

/// A column whose values are numbers: reals of both sizes and integers.
class KELVANE_BASIC_EXPORT HbdANumericVariable : public HbdAVariable
{
public:
    ~HbdANumericVariable() override;

    /// Copies `count` values from `first` on as reals; undefined ones become D_FFFF. An integer
    /// beyond 2^53 is rounded.
    virtual void readNumbers(int first, int count, double* numbers) const = 0;

    /// Writes `count` values from `first` on. What the kind cannot hold becomes its undefined
    /// value.
    virtual void writeNumbers(int first, int count, const double* numbers) = 0;

    /// One value as a real, for edges.
    double getNumber(int rank) const;

protected:
    using HbdAVariable::HbdAVariable;
};
