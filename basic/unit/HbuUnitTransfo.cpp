#include <basic/unit/HbuUnitTransfo.h>

#include <basic/base/HbbGlobal.h>

#include <cmath>

bool HbuUnitTransfo::isValid() const
{
    const double factor = getFactor();
    return std::isfinite(factor) && factor != 0. && !HbbGlobal::isUndefined(factor) &&
           std::isfinite(m_shift) && !HbbGlobal::isUndefined(m_shift);
}

HbuUnitTransfo HbuUnitTransfo::inverted() const
{
    if (!isValid())
        return invalid();
    return {m_denominator, m_numerator, 0. - m_shift * m_denominator / m_numerator};
}

HbuUnitTransfo HbuUnitTransfo::followedBy(const HbuUnitTransfo& next) const
{
    if (!isValid() || !next.isValid())
        return invalid();
    const double shift = m_shift * next.m_numerator / next.m_denominator + next.m_shift;
    // Equal terms are cancelled rather than multiplied: degrees to gons stays 200 / 180, without
    // pi.
    if (m_denominator == next.m_numerator)
        return {m_numerator, next.m_denominator, shift};
    if (m_numerator == next.m_denominator)
        return {next.m_numerator, m_denominator, shift};
    return {m_numerator * next.m_numerator, m_denominator * next.m_denominator, shift};
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
    const double numerator = m_numerator;
    const double denominator = m_denominator;
    const double shift = m_shift;
    for (qint64 i = 0; i < count; ++i) {
        const double value = values[i];
        const double converted = value * numerator / denominator + shift;
        values[i] = HbbGlobal::isUndefined(value) ? value : converted;
    }
}

bool HbuUnitTransfo::operator==(const HbuUnitTransfo& other) const
{
    if (!isValid() || !other.isValid())
        return isValid() == other.isValid();
    return m_numerator * other.m_denominator == other.m_numerator * m_denominator &&
           m_shift == other.m_shift;
}
