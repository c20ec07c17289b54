#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

/// Round numbers along an axis: steps of 1, 2 or 5 times a power of ten.
class MapAxis
{
public:
    /// About `tickCount` ticks between two numbers, of which the second is the larger.
    MapAxis(double minimum, double maximum, int tickCount);

    /// Those that lie within the range.
    const QVector<double>& getTicks() const { return m_ticks; }

    /// As many decimals as the step needs.
    QString getLabel(double tick) const;

private:
    QVector<double> m_ticks;
    int m_decimals = 0;
};
