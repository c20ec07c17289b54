#pragma once

#include <QtCore/QVector>
#include <QtGui/QColor>

/// The colours of maps until colour scales stand: a ramp for numbers, distinct ones for categories.
namespace MapColors
{
/// From dark blue over green to yellow, as light as the value is high; `share` is brought into 0 to
/// 1.
QColor getRamp(double share);

/// The i-th of a dozen distinct colours, which then repeat.
QColor getDistinct(int i);
} // namespace MapColors
