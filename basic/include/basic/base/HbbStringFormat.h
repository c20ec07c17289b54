#pragma once

#include <basic/base/HbbEFormat.h>
#include <basic/base/HbbExport.h>

#include <QtCore/QByteArray>

#include <algorithm>

/// Numbers to text: the hot path of every export. No locale, no allocation in the `write` forms,
/// every result rounded exactly (half to even on the exact value of the double) and the same bytes
/// as std::to_chars. Any thread may use it.
///
/// Undefined values are the caller's to replace: D_FFFF is written as the number it is. An infinity
/// is "inf" or "-inf"; NaN is "nan", whatever its sign bit. A negative value that rounds to zero
/// keeps its sign ("-0.00").
class KELVANE_BASIC_EXPORT HbbStringFormat
{
public:
    /// A precision is brought into 0..MAX_PRECISION.
    static constexpr int MAX_PRECISION = 100;

    static constexpr int getPrecision(int precision)
    {
        return std::clamp(precision, 0, MAX_PRECISION);
    }

    /// The bytes that one value may need at most in any format: sign, 309 digits, point, decimals.
    static constexpr int getCapacity(int precision) { return 311 + getPrecision(precision); }

    /// Enough for every format and precision.
    static constexpr int CAPACITY = 311 + MAX_PRECISION;

    /// Writes the value and returns the end of what it wrote; no zero byte follows. `out` has room
    /// for getCapacity(precision) bytes.
    static char* write(char* out, double value, HbbEFormat::EValue format, int precision);

    /// The same for an integer, in base 10; `out` has room for 20 bytes.
    static char* write(char* out, qint64 value);

    static QByteArray simpleValueToByteArray(double value, const HbbEFormat& format, int precision);
    static QByteArray simpleValueToByteArray(qint64 value);
};
