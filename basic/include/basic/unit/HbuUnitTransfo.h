#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QtGlobal>

/// The transformation of a value from one unit into another: y = factor * x + shift. A unit holds
/// the transformation towards the reference unit of its class.
///
/// The factor is kept as the ratio of two numbers. A published ratio (1200 / 3937 m in a US survey
/// foot) is thus kept as it is published, an inverse is exact, and so are conversions between units
/// whose ratios are made of small integers (1 ft is 12 in, not 12.000000000000002).
///
/// An immutable value; any thread. The default is the identity.
class KELVANE_BASIC_EXPORT HbuUnitTransfo
{
public:
    constexpr HbuUnitTransfo() = default;

    static constexpr HbuUnitTransfo linear(double factor) { return {factor, 1., 0.}; }
    static constexpr HbuUnitTransfo ratio(double numerator, double denominator, double shift = 0.)
    {
        return {numerator, denominator, shift};
    }
    static constexpr HbuUnitTransfo affine(double factor, double shift)
    {
        return {factor, 1., shift};
    }
    static constexpr HbuUnitTransfo invalid() { return {0., 1., 0.}; }

    double getFactor() const { return m_numerator / m_denominator; }
    double getShift() const { return m_shift; }

    /// The factor is finite and not zero, the shift finite (and defined).
    bool isValid() const;
    /// The shift is not zero.
    bool isAffine() const { return m_shift != 0.; }
    bool isIdentity() const { return m_numerator == m_denominator && m_shift == 0. && isValid(); }

    /// The way back; invalid when this is.
    HbuUnitTransfo inverted() const;
    /// First this, then `next`; invalid when one of them is.
    HbuUnitTransfo followedBy(const HbuUnitTransfo& next) const;

    /// An undefined value (NaN too) stays as it is, and so does any value when this is invalid.
    double apply(double value) const;
    /// In place over `count` values.
    void apply(double* values, qint64 count) const;

    /// The same mapping (2/1 equals 4/2); two invalid ones are equal.
    bool operator==(const HbuUnitTransfo& other) const;
    bool operator!=(const HbuUnitTransfo& other) const { return !(*this == other); }

private:
    constexpr HbuUnitTransfo(double numerator, double denominator, double shift)
        : m_numerator(numerator)
        , m_denominator(denominator)
        , m_shift(shift)
    {
    }

    double m_numerator = 1.;
    double m_denominator = 1.;
    double m_shift = 0.;
};
