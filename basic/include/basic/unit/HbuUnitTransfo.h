#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QtGlobal>

/// The transformation of a value from one unit into another: y = factor * x + shift. A unit holds
/// the transformation towards the reference unit of its class.
///
/// It is kept as y = (numerator * x + offset) / denominator. A published ratio (1200 / 3937 m in a
/// US survey foot) is thus kept as it is published, an inverse is exact, and so is every chain of
/// units whose ratios are made of integers: 1 ft is 12 in, not 12.000000000000002, and 100 degC are
/// 212 degF.
///
/// An immutable value; any thread. The default is the identity.
class KELVANE_BASIC_EXPORT HbuUnitTransfo
{
public:
    constexpr HbuUnitTransfo() = default;

    static constexpr HbuUnitTransfo linear(double factor) { return {factor, 0., 1.}; }
    static constexpr HbuUnitTransfo affine(double factor, double shift)
    {
        return {factor, shift, 1.};
    }
    /// y = numerator * x / denominator
    static constexpr HbuUnitTransfo ratio(double numerator, double denominator)
    {
        return {numerator, 0., denominator};
    }
    /// y = (numerator * x + offset) / denominator
    static constexpr HbuUnitTransfo affineRatio(double numerator, double offset, double denominator)
    {
        return {numerator, offset, denominator};
    }
    static constexpr HbuUnitTransfo invalid() { return {0., 0., 1.}; }

    double getFactor() const { return m_numerator / m_denominator; }
    double getShift() const { return m_offset / m_denominator; }

    /// The factor is finite and not zero, the shift finite (and defined).
    bool isValid() const;
    /// The shift is not zero.
    bool isAffine() const { return m_offset != 0.; }
    bool isIdentity() const { return m_numerator == m_denominator && m_offset == 0. && isValid(); }

    /// The way back; invalid when this is.
    HbuUnitTransfo inverted() const;
    /// First this, then `next`; invalid when one of them is.
    HbuUnitTransfo followedBy(const HbuUnitTransfo& next) const;

    /// An undefined value (NaN too) stays as it is, and so does any value when this is invalid.
    double apply(double value) const;
    /// In place over `count` values, at the speed of memory.
    void apply(double* values, qint64 count) const;

    /// The same mapping (2/1 equals 4/2); two invalid ones are equal.
    bool operator==(const HbuUnitTransfo& other) const;
    bool operator!=(const HbuUnitTransfo& other) const { return !(*this == other); }

private:
    constexpr HbuUnitTransfo(double numerator, double offset, double denominator)
        : m_numerator(numerator)
        , m_offset(offset)
        , m_denominator(denominator)
    {
    }
    HbuUnitTransfo reduced() const;

    double m_numerator = 1.;
    double m_offset = 0.;
    double m_denominator = 1.;
};
