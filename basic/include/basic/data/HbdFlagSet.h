#pragma once

#include <QtCore/QtGlobal>

/// A set of items of one enumeration with values from 0 to 63, one bit an item. `Flags` is the
/// class that derives from it and names its usual sets (ANY, NONE …).
template <class Enum, class Flags>
class HbdFlagSet
{
public:
    constexpr HbdFlagSet() = default;

    bool contains(const Enum& item) const { return (m_bits & bit(item)) != 0; }
    bool isEmpty() const { return m_bits == 0; }
    bool intersects(const Flags& other) const { return (m_bits & other.m_bits) != 0; }

    friend Flags operator|(const Flags& a, const Flags& b) { return Flags(a.m_bits | b.m_bits); }
    friend Flags operator&(const Flags& a, const Flags& b) { return Flags(a.m_bits & b.m_bits); }
    friend bool operator==(const Flags& a, const Flags& b) { return a.m_bits == b.m_bits; }
    friend bool operator!=(const Flags& a, const Flags& b) { return a.m_bits != b.m_bits; }
    Flags& operator|=(const Flags& other)
    {
        m_bits |= other.m_bits;
        return static_cast<Flags&>(*this);
    }

    /// The bits, for storing: bit v stands for the item of value v.
    quint64 toBits() const { return m_bits; }

protected:
    constexpr explicit HbdFlagSet(quint64 bits)
        : m_bits(bits)
    {
    }
    static constexpr quint64 bit(int value) { return quint64(1) << value; }
    static quint64 bit(const Enum& item) { return bit(item.getValue()); }

    quint64 m_bits = 0;
};

/// What a set of flags adds to its base: construction from items and from stored bits.
#define HBD_FLAG_SET(Flags, Enum)                                                                  \
public:                                                                                            \
    constexpr Flags() = default;                                                                   \
    Flags(const Enum& item)                                                                        \
        : HbdFlagSet(bit(item))                                                                    \
    {                                                                                              \
    }                                                                                              \
    constexpr explicit Flags(quint64 bits)                                                         \
        : HbdFlagSet(bits)                                                                         \
    {                                                                                              \
    }
