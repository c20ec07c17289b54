#include "HbbDecimalWriter.h"

#include <QtCore/QtEndian>

#include <cstring>

namespace
{
__extension__ typedef unsigned __int128 UInt128;

constexpr int MAX_DIGITS = 19; // 10^19 < 2^64

constexpr quint64 EIGHT_DIGITS = 100000000;

struct PowersOfTen {
    quint64 values[MAX_DIGITS + 1] = {};

    constexpr PowersOfTen()
    {
        values[0] = 1;
        for (int i = 1; i <= MAX_DIGITS; ++i)
            values[i] = values[i - 1] * 10;
    }
};
constexpr PowersOfTen POWERS;

/// The eight digits of a value below 10^8, one a byte, the first one lowest. All of them are made
/// at once: halves of four digits are split into pairs, and the pairs into digits, by multiplying
/// with a rounded-up reciprocal that is exact over the range.
inline quint64 eightDigits(quint32 value)
{
    const quint64 halves = value / 10000 | static_cast<quint64>(value % 10000) << 32;
    const quint64 hundreds = (halves * 10486 >> 20) & 0x0000007F0000007Fu;
    const quint64 pairs = hundreds | (halves - hundreds * 100) << 16;
    const quint64 tens = (pairs * 103 >> 10) & 0x000F000F000F000Fu;
    return tens | (pairs - tens * 10) << 8;
}

/// Writes the digits from the one at `from` on; eight bytes at `out` are overwritten.
inline char* putDigits(char* out, quint64 digits, int from)
{
    qToLittleEndian<quint64>((digits | 0x3030303030303030u) >> (8 * from), out);
    return out + 8 - from;
}

/// Exactly `count` digits, 1 to 19.
inline char* putPadded(char* out, quint64 value, int count)
{
    if (count > 16) {
        out =
            putDigits(out, eightDigits(static_cast<quint32>(value / (EIGHT_DIGITS * EIGHT_DIGITS))),
                      24 - count);
        value %= EIGHT_DIGITS * EIGHT_DIGITS;
        count = 16;
    }
    if (count > 8) {
        out = putDigits(out, eightDigits(static_cast<quint32>(value / EIGHT_DIGITS)), 16 - count);
        value %= EIGHT_DIGITS;
        count = 8;
    }
    return putDigits(out, eightDigits(static_cast<quint32>(value)), 8 - count);
}

struct Parts {
    quint64 integer;
    quint64 decimals;
};

/// mantissa / 2^shift, rounded to `precision` decimals; shift is 1 to 1074.
inline Parts split(quint64 mantissa, int shift, int precision)
{
    const quint64 integer = shift < 64 ? mantissa >> shift : 0;
    const quint64 fraction = mantissa - (shift < 64 ? integer << shift : 0);
    const UInt128 scaled = static_cast<UInt128>(fraction) * POWERS.values[precision];
    // scaled < 2^117: beyond that shift it is less than one half, and rounds to zero.
    if (shift >= 118)
        return {integer, 0};
    // The bit below the last digit and what lies beneath it decide; whether it is set is a toss-up
    // that no branch should depend on.
    const UInt128 twice = scaled >> (shift - 1);
    const quint64 below = scaled != twice << (shift - 1);
    quint64 decimals = static_cast<quint64>(twice >> 1);
    // With decimals the last digit's parity is theirs: 10^precision is even.
    const quint64 odd = precision == 0 ? integer : decimals;
    decimals += static_cast<quint64>(twice) & (below | odd) & 1;
    if (decimals == POWERS.values[precision])
        return {integer + 1, 0};
    return {integer, decimals};
}
} // namespace

char* HbbDecimalWriter::writeInteger(char* out, quint64 value)
{
    if (value >= EIGHT_DIGITS) {
        out = writeInteger(out, value / EIGHT_DIGITS);
        return putPadded(out, value % EIGHT_DIGITS, 8);
    }
    // Leading zero bytes are leading zeros; the last digit stays.
    const quint64 digits = eightDigits(static_cast<quint32>(value));
    return putDigits(out, digits, __builtin_ctzll(digits | quint64(1) << 56) / 8);
}

char* HbbDecimalWriter::write(char* out, double value, int precision)
{
    quint64 bits;
    std::memcpy(&bits, &value, sizeof bits);
    const int biased = static_cast<int>(bits >> 52 & 0x7ff);
    const quint64 hidden = biased == 0 ? 0 : quint64(1) << 52;
    const quint64 mantissa = (bits & ((quint64(1) << 52) - 1)) | hidden;
    const int exponent = (biased == 0 ? 1 : biased) - 1075;
    if (exponent > 11 || precision > MAX_DIGITS)
        return nullptr;

    const Parts parts =
        exponent >= 0 ? Parts{mantissa << exponent, 0} : split(mantissa, -exponent, precision);
    if (bits >> 63 != 0)
        *out++ = '-';
    out = writeInteger(out, parts.integer);
    if (precision == 0)
        return out;
    *out = '.';
    return putPadded(out + 1, parts.decimals, precision);
}
