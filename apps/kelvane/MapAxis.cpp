#include "MapAxis.h"

#include <basic/base/HbbStringFormat.h>

#include <algorithm>
#include <cmath>

namespace
{
double roundStep(double step)
{
    const double magnitude = std::pow(10.0, std::floor(std::log10(step)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (step <= factor * magnitude * 1.0001)
            return factor * magnitude;
    }
    return 10.0 * magnitude;
}
} // namespace

MapAxis::MapAxis(double minimum, double maximum, int tickCount)
{
    const double step = roundStep((maximum - minimum) / std::max(tickCount, 1));
    if (!(step > 0) || !std::isfinite(step))
        return;
    m_decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step) + 0.0001)), 0, 12);
    // Counted in steps: adding them up would drift, and hang where a step is lost in rounding.
    const double first = std::ceil(minimum / step - 1e-9);
    for (int i = 0; i <= 2 * tickCount + 2; ++i) {
        const double tick = (first + i) * step;
        if (tick > maximum + step * 1e-9)
            break;
        m_ticks.append(tick == 0.0 ? 0.0 : tick);
    }
}

QString MapAxis::getLabel(double tick) const
{
    const bool plain = std::fabs(tick) < 1e12;
    return QString::fromLatin1(HbbStringFormat::simpleValueToByteArray(
        tick, plain ? HbbEFormat::DECIMAL : HbbEFormat::GENERAL, plain ? m_decimals : 6));
}
