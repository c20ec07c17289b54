#include <basic/data/HbdColumnSummary.h>

#include <basic/data/HbdValueTraits.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr double INF = std::numeric_limits<double>::infinity();

/// Sums of several lanes side by side, each compensated for what its additions round away. Lanes
/// of no branch let the compiler use vector instructions.
class Accumulator
{
public:
    /// `scale` is a power of two that keeps the sum of large values within a double.
    explicit Accumulator(double scale)
        : m_scale(scale)
    {
    }

    template <class T, class IsUndefined>
    void add(HbdSpan<const T> values, IsUndefined isUndefined)
    {
        int i = 0;
        for (; i + LANES <= values.size(); i += LANES) {
            for (int lane = 0; lane < LANES; ++lane)
                add(lane, static_cast<double>(values[i + lane]), !isUndefined(values[i + lane]));
        }
        for (; i < values.size(); ++i)
            add(0, static_cast<double>(values[i]), !isUndefined(values[i]));
    }

    double getMinimum() const { return *std::min_element(m_minimum, m_minimum + LANES); }
    double getMaximum() const { return *std::max_element(m_maximum, m_maximum + LANES); }

    qint64 getDefined() const { return sumOf(m_defined); }

    /// Of the finite values, which are `count`; not finite when it overflowed.
    double getMean(qint64 count) const
    {
        double sum = 0;
        double lost = 0;
        for (int lane = 0; lane < LANES; ++lane) {
            addTo(sum, lost, m_sum[lane]);
            lost += m_lost[lane];
        }
        return (sum + lost) / static_cast<double>(count) / m_scale;
    }

private:
    static constexpr int LANES = 8;

    static qint64 sumOf(const qint64 (&counts)[LANES])
    {
        qint64 sum = 0;
        for (const qint64 count : counts)
            sum += count;
        return sum;
    }

    /// What the addition rounds away is found exactly (Knuth) and summed up in `lost`.
    static void addTo(double& sum, double& lost, double value)
    {
        const double next = sum + value;
        const double added = next - sum;
        lost += (sum - (next - added)) + (value - added);
        sum = next;
    }

    void add(int lane, double value, bool defined)
    {
        const bool finite = defined & (std::fabs(value) < INF);
        m_defined[lane] += defined ? 1 : 0;
        m_minimum[lane] = std::min(m_minimum[lane], defined ? value : INF);
        m_maximum[lane] = std::max(m_maximum[lane], defined ? value : -INF);
        addTo(m_sum[lane], m_lost[lane], (finite ? value : 0.0) * m_scale);
    }

    double m_scale;
    double m_sum[LANES] = {};
    double m_lost[LANES] = {};
    double m_minimum[LANES] = {INF, INF, INF, INF, INF, INF, INF, INF};
    double m_maximum[LANES] = {-INF, -INF, -INF, -INF, -INF, -INF, -INF, -INF};
    qint64 m_defined[LANES] = {};
};

/// The mean where infinities are among the values.
double meanOfInfinities(double minimum, double maximum)
{
    if (minimum == -INF && maximum == INF)
        return HbbGlobal::D_FFFF;
    return maximum == INF ? INF : -INF;
}

template <class T, class Traits>
HbdColumnSummary summaryOfReals(HbdSpan<const T> values)
{
    Accumulator sums(1.0);
    sums.add(values, &Traits::isUndefined);

    HbdColumnSummary summary;
    summary.defined = sums.getDefined();
    summary.undefined = values.size() - summary.defined;
    if (summary.defined == 0)
        return summary;

    const double minimum = sums.getMinimum();
    const double maximum = sums.getMaximum();
    summary.minimum = minimum;
    summary.maximum = maximum;
    if (minimum == -INF || maximum == INF) {
        summary.mean = meanOfInfinities(minimum, maximum);
        return summary;
    }
    summary.mean = sums.getMean(summary.defined);
    if (!std::isfinite(summary.mean)) {
        // Values near the end of the range: once more, small enough for 2^31 of them.
        Accumulator scaled(0x1p-40);
        scaled.add(values, &Traits::isUndefined);
        summary.mean = scaled.getMean(summary.defined);
    }
    return summary;
}
} // namespace

HbdColumnSummary HbdColumnSummary::of(HbdSpan<const double> values)
{
    return summaryOfReals<double, HbdValueTraits::Real>(values);
}

HbdColumnSummary HbdColumnSummary::of(HbdSpan<const float> values)
{
    return summaryOfReals<float, HbdValueTraits::Real32>(values);
}

HbdColumnSummary HbdColumnSummary::of(HbdSpan<const qint64> values)
{
    // The upper and the lower halves of the numbers add up exactly for as many as a column holds.
    qint64 upper = 0;
    qint64 lower = 0;
    qint64 minimum = std::numeric_limits<qint64>::max();
    qint64 maximum = std::numeric_limits<qint64>::min();
    HbdColumnSummary summary;
    for (const qint64 value : values) {
        const bool defined = !HbdValueTraits::Integer::isUndefined(value);
        const qint64 counted = defined ? value : 0;
        summary.defined += defined ? 1 : 0;
        upper += counted >> 32;
        lower += counted & 0xFFFFFFFF;
        minimum = std::min(minimum, defined ? value : minimum);
        maximum = std::max(maximum, defined ? value : maximum);
    }
    summary.undefined = values.size() - summary.defined;
    if (summary.defined == 0)
        return summary;

    upper += lower >> 32;
    lower &= 0xFFFFFFFF;
    const double sum = static_cast<double>(upper) * 0x1p32 + static_cast<double>(lower);
    summary.minimum = minimum;
    summary.maximum = maximum;
    summary.mean = sum / static_cast<double>(summary.defined);
    return summary;
}

HbdColumnSummary HbdColumnSummary::of(const HbdAVariable& column)
{
    switch (column.getType().toEnum()) {
    case HbdEVarType::E_REAL:
        return of(static_cast<const HbdVariableReal&>(column).getValues());
    case HbdEVarType::E_REAL_32:
        return of(static_cast<const HbdVariableReal32&>(column).getValues());
    case HbdEVarType::E_INTEGER:
        return of(static_cast<const HbdVariableInteger&>(column).getValues());
    default:
        break;
    }
    HbdColumnSummary summary;
    summary.undefined = column.getUndefinedCount();
    summary.defined = column.getCount() - summary.undefined;
    return summary;
}
