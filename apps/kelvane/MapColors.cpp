#include "MapColors.h"

#include <algorithm>

QColor MapColors::getRamp(double share)
{
    static const QVector<QRgb> stops = {0x30123B, 0x3B4C9B, 0x2C7FB8, 0x1D9F9A, 0x35B779,
                                        0x8FD744, 0xE2E12F, 0xFDB32F, 0xF0632B, 0xB8130F};
    const double place = std::clamp(share, 0.0, 1.0) * (stops.size() - 1);
    const int low = std::min(static_cast<int>(place), stops.size() - 2);
    const double part = place - low;
    const auto mixed = [&](int a, int b) { return static_cast<int>(a + (b - a) * part + 0.5); };
    const QColor from(stops.at(low));
    const QColor to(stops.at(low + 1));
    return QColor(mixed(from.red(), to.red()), mixed(from.green(), to.green()),
                  mixed(from.blue(), to.blue()));
}

QColor MapColors::getDistinct(int i)
{
    static const QVector<QRgb> colors = {0x4477AA, 0xEE6677, 0x228833, 0xCCBB44,
                                         0x66CCEE, 0xAA3377, 0x997700, 0x004488,
                                         0xEE8866, 0x44BB99, 0x7B4F9E, 0x555555};
    return QColor(colors.at(i % colors.size()));
}
