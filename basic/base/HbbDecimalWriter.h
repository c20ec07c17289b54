#pragma once

#include <QtCore/QtGlobal>

/// Writes doubles with a fixed number of decimals by integer arithmetic.
///
/// A double is m * 2^e with m < 2^53. Its integer part and its fraction f / 2^s are split exactly;
/// f * 10^precision fits into 128 bits, and a shift by s leaves the decimals and an exact remainder
/// that decides the rounding, half to even. So the text is that of the exact value, without any
/// table of powers of two or arithmetic of many words.
class HbbDecimalWriter
{
public:
    /// The end of what was written, or null, with nothing written, when the value is 2^64 or more
    /// or the precision above 19. The value is finite.
    static char* write(char* out, double value, int precision);

    static char* writeInteger(char* out, quint64 value);
};
