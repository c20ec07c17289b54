#include <basic/unit/HbuUnitTransfo.h>

#include "HbuUnitKernel.h"

#include <basic/base/HbbGlobal.h>

#include <cmath>
#include <numeric>

namespace
{
bool isInteger(double value)
{
    constexpr double LARGEST = 4611686018427387904.; // 2^62, which a qint64 can hold
    return std::abs(value) <= LARGEST && value == std::trunc(value);
}

/// Takes what they have in common out of two factors, if that can be done exactly.
void cancel(double& a, double& b)
{
    if (a == b) { // pi, say
        a = b = 1.;
    } else if (isInteger(a) && isInteger(b)) {
        const double common =
            static_cast<double>(std::gcd(static_cast<qint64>(a), static_cast<qint64>(b)));
        a /= common;
        b /= common;
    }
}

/// The quotient, exactly.
bool divides(double dividend, double divisor, double& quotient)
{
    quotient = dividend / divisor;
    return std::fma(quotient, divisor, -dividend) == 0.;
}
} // namespace

bool HbuUnitTransfo::isValid() const
{
    const double factor = getFactor();
    const double shift = getShift();
    return std::isfinite(factor) && factor != 0. && !HbbGlobal::isUndefined(factor) &&
           std::isfinite(shift) && !HbbGlobal::isUndefined(shift);
}

HbuUnitTransfo HbuUnitTransfo::inverted() const
{
    if (!isValid())
        return invalid();
    return {m_denominator, 0. - m_offset, m_numerator};
}

HbuUnitTransfo HbuUnitTransfo::followedBy(const HbuUnitTransfo& next) const
{
    if (!isValid() || !next.isValid())
        return invalid();
    HbuUnitTransfo first = *this;
    HbuUnitTransfo second = next;
    // Cancelled before they are multiplied, the products of the table's integers stay exact.
    cancel(first.m_denominator, second.m_numerator);
    if (!isAffine() && !next.isAffine())
        cancel(first.m_numerator, second.m_denominator);
    const double offset =
        first.m_offset * second.m_numerator + second.m_offset * first.m_denominator;
    return HbuUnitTransfo(first.m_numerator * second.m_numerator, offset,
                          first.m_denominator * second.m_denominator)
        .reduced();
}

HbuUnitTransfo HbuUnitTransfo::reduced() const
{
    if (m_numerator == 0. || !isInteger(m_numerator) || !isInteger(m_offset) ||
        !isInteger(m_denominator))
        return *this;
    const qint64 factors =
        std::gcd(static_cast<qint64>(m_numerator), static_cast<qint64>(m_denominator));
    const double common = static_cast<double>(std::gcd(factors, static_cast<qint64>(m_offset)));
    return {m_numerator / common, m_offset / common, m_denominator / common};
}

double HbuUnitTransfo::apply(double value) const
{
    apply(&value, 1);
    return value;
}

void HbuUnitTransfo::apply(double* values, qint64 count) const
{
    if (!isValid() || isIdentity())
        return;
    double factor = 0.;
    double shift = 0.;
    const bool needsDivision =
        !divides(m_numerator, m_denominator, factor) || !divides(m_offset, m_denominator, shift);
    // Without an offset none is added: it would take the sign of a negative zero.
    if (!needsDivision && !isAffine())
        HbuUnitKernel::multiply(values, count, factor);
    else if (!needsDivision)
        HbuUnitKernel::multiplyAdd(values, count, factor, shift);
    else if (!isAffine())
        HbuUnitKernel::scale(values, count, m_numerator, m_denominator);
    else
        HbuUnitKernel::scaleAdd(values, count, m_numerator, m_offset, m_denominator);
}

bool HbuUnitTransfo::operator==(const HbuUnitTransfo& other) const
{
    if (!isValid() || !other.isValid())
        return isValid() == other.isValid();
    return m_numerator * other.m_denominator == other.m_numerator * m_denominator &&
           m_offset * other.m_denominator == other.m_offset * m_denominator;
}
