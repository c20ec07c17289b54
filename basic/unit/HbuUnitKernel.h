#pragma once

#include <QtCore/QtGlobal>

/// The loops of HbuUnitTransfo over columns, at the speed of memory. Results are those of the
/// expression to the last bit (but for numbers below 1e-290), whichever instructions the processor
/// has; an undefined value (NaN too) stays as it is.
namespace HbuUnitKernel
{
void multiply(double* values, qint64 count, double factor);
/// value * factor + shift
void multiplyAdd(double* values, qint64 count, double factor, double shift);
/// value * numerator / denominator
void scale(double* values, qint64 count, double numerator, double denominator);
/// (value * numerator + offset) / denominator
void scaleAdd(double* values, qint64 count, double numerator, double offset, double denominator);
} // namespace HbuUnitKernel
