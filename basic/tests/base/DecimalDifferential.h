#pragma once

#include <basic/base/HbbStringFormat.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

/// Draws doubles of many kinds: those that are easy to round wrongly come often.
class DoubleSource
{
public:
    explicit DoubleSource(quint64 seed)
        : m_random(seed)
    {
    }

    double next()
    {
        const double value = magnitude();
        return (m_random() & 1) != 0 ? -value : value;
    }
    quint64 bits() { return m_random(); }

private:
    double uniform() { return static_cast<double>(m_random() >> 11) * 0x1p-53; }
    int upTo(int limit) { return static_cast<int>(m_random() % static_cast<quint64>(limit + 1)); }

    double magnitude()
    {
        switch (m_random() % 32) {
        case 0: { // any bits: mostly huge or tiny
            quint64 bits = m_random() & ~(quint64(0x7ff) << 52);
            bits |= (m_random() % 0x7ff) << 52;
            double value;
            std::memcpy(&value, &bits, sizeof value);
            return std::abs(value);
        }
        case 1: // denormal
            return std::ldexp(uniform(), -1022);
        case 2: // at the limit of the fast road, both sides
            return std::ldexp(1 + uniform(), 60 + upTo(6));
        case 3:
            return upTo(1) * 0.0;
        }
        switch (m_random() % 6) {
        case 0: // coordinates, grades
            return uniform() * std::pow(10.0, upTo(9) - 2);
        case 1: // any scale that a file holds
            return std::ldexp(uniform(), upTo(160) - 96);
        case 2: // exact ties for every precision below the exponent
            return std::ldexp(static_cast<double>(m_random() >> (12 + upTo(50))), -upTo(13));
        case 3: { // a neighbour of a tie
            const double tie = static_cast<double>(m_random() % 100000) + 0.5;
            return std::nextafter(tie, upTo(1) != 0 ? 1e9 : 0.0);
        }
        case 4: // decimal input, ties of which look exact and are not
            return static_cast<double>(m_random() % 10000000) / std::pow(10.0, upTo(7));
        default: // nines that carry
            return std::pow(10.0, upTo(6)) - std::pow(10.0, -upTo(13));
        }
    }

    std::mt19937_64 m_random;
};

/// Compares DECIMAL with std::to_chars, precisions 0 to 12 (now and then up to 100); the first
/// difference in words, or nothing.
inline std::string firstDecimalDifference(quint64 seed, int count)
{
    DoubleSource source(seed);
    char ours[HbbStringFormat::CAPACITY];
    char theirs[HbbStringFormat::CAPACITY];
    for (int i = 0; i < count; ++i) {
        const double value = source.next();
        const quint64 bits = source.bits();
        const int precision =
            static_cast<int>(bits % 64 == 0 ? (bits >> 6) % 101 : (bits >> 6) % 13);
        const char* end = HbbStringFormat::write(ours, value, HbbEFormat::E_DECIMAL, precision);
        const char* expected = std::to_chars(theirs, theirs + sizeof theirs, value,
                                             std::chars_format::fixed, precision)
                                   .ptr;
        const std::string text(ours, static_cast<std::size_t>(end - ours));
        const std::string reference(theirs, static_cast<std::size_t>(expected - theirs));
        if (text != reference)
            return text + " instead of " + reference + ", precision " + std::to_string(precision);
    }
    return {};
}
