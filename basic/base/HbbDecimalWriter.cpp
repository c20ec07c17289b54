#include "HbbDecimalWriter.h"

#include <cstring>

namespace
{
__extension__ typedef unsigned __int128 UInt128;

constexpr int MAX_DIGITS = 19; // 10^19 < 2^64

struct Tables {
    char pairs[200] = {}; // "00" to "99"
    quint64 powers[MAX_DIGITS + 1] = {};

    constexpr Tables()
    {
        for (int i = 0; i < 100; ++i) {
            pairs[2 * i] = static_cast<char>('0' + i / 10);
            pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
        powers[0] = 1;
        for (int i = 1; i <= MAX_DIGITS; ++i)
            powers[i] = powers[i - 1] * 10;
    }
};
constexpr Tables TABLES;

inline void putPair(char* out, quint32 pair)
{
    std::memcpy(out, TABLES.pairs + 2 * pair, 2);
}

/// Exactly `count` digits that end at `end`; 32-bit division is the faster one.
inline void putDigits32(char* end, quint32 value, int count)
{
    for (; count >= 2; count -= 2) {
        end -= 2;
        putPair(end, value % 100);
        value /= 100;
    }
    if (count == 1)
        *--end = static_cast<char>('0' + value);
}

inline void putDigits(char* end, quint64 value, int count)
{
    for (; count > 8; count -= 8) {
        putDigits32(end, static_cast<quint32>(value % 100000000), 8);
        value /= 100000000;
        end -= 8;
    }
    putDigits32(end, static_cast<quint32>(value), count);
}

inline int digitCount(quint64 value)
{
    // 1233 / 4096 is log10(2); the estimate is too low by one at most.
    const int bits = 64 - __builtin_clzll(value | 1);
    const int estimate = bits * 1233 >> 12;
    return estimate + (value >= TABLES.powers[estimate] || estimate == 0 ? 1 : 0);
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
    const UInt128 scaled = static_cast<UInt128>(fraction) * TABLES.powers[precision];
    // scaled < 2^117: beyond that shift it is less than one half, and rounds to zero.
    if (shift >= 118)
        return {integer, 0};
    quint64 decimals = static_cast<quint64>(scaled >> shift);
    const UInt128 remainder = scaled - (static_cast<UInt128>(decimals) << shift);
    const UInt128 half = static_cast<UInt128>(1) << (shift - 1);
    // With decimals the last digit's parity is theirs: 10^precision is even.
    const quint64 odd = (precision == 0 ? integer : decimals) & 1;
    if (remainder > half || (remainder == half && odd != 0))
        ++decimals;
    if (decimals == TABLES.powers[precision])
        return {integer + 1, 0};
    return {integer, decimals};
}
} // namespace

char* HbbDecimalWriter::writeInteger(char* out, quint64 value)
{
    char* const end = out + digitCount(value);
    putDigits(end, value, static_cast<int>(end - out));
    return end;
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
    out += 1 + precision;
    putDigits(out, parts.decimals, precision);
    return out;
}
