#pragma once

#include <QtCore/QtGlobal>

#include <cstring>
#include <string_view>
#include <vector>

/// The different texts of a column, numbered from 0 in the order of their first appearance. Looking
/// one up takes a hash of its bytes and no allocation.
class KueTableLabels
{
public:
    static constexpr int MAX_COUNT = 65535; ///< codes 0 to 65534
    static constexpr int NONE = -1;

    /// The code of a text, which is added when it is new; NONE when it is new and there are
    /// `maxCount` texts already.
    int findOrAdd(const char* text, std::size_t size, int maxCount)
    {
        if (m_last >= 0 && isEqual(m_last, text, size))
            return m_last;
        const quint32 hash = hashOf(text, size);
        if (!m_slots.empty()) {
            for (std::size_t slot = hash & m_mask; m_slots[slot].code >= 0;
                 slot = (slot + 1) & m_mask) {
                if (m_slots[slot].hash == hash && isEqual(m_slots[slot].code, text, size))
                    return m_last = m_slots[slot].code;
            }
        }
        return m_last = add(text, size, hash, maxCount);
    }

    int getCount() const { return static_cast<int>(m_ends.size()); }
    std::string_view getLabel(int code) const
    {
        const std::size_t begin = beginOf(code);
        return {m_bytes.data() + begin, m_ends[static_cast<std::size_t>(code)] - begin};
    }

private:
    struct Slot {
        quint32 hash = 0;
        qint32 code = NONE;
    };

    static quint32 hashOf(const char* text, std::size_t size)
    {
        constexpr quint64 FACTOR = 0x9E3779B97F4A7C15u;
        quint64 hash = size * FACTOR;
        for (; size >= 8; size -= 8, text += 8) {
            quint64 word;
            std::memcpy(&word, text, 8);
            hash = (hash ^ word) * FACTOR;
            hash ^= hash >> 32;
        }
        quint64 rest = 0;
        for (std::size_t i = 0; i < size; ++i)
            rest = rest << 8 | static_cast<unsigned char>(text[i]);
        hash = (hash ^ rest) * FACTOR;
        return static_cast<quint32>(hash >> 32);
    }

    std::size_t beginOf(int code) const
    {
        return code == 0 ? 0 : m_ends[static_cast<std::size_t>(code) - 1];
    }
    bool isEqual(int code, const char* text, std::size_t size) const
    {
        const std::string_view label = getLabel(code);
        return label.size() == size && std::memcmp(label.data(), text, size) == 0;
    }

    int add(const char* text, std::size_t size, quint32 hash, int maxCount);
    void grow();

    std::vector<char> m_bytes;       ///< the texts, one after the other
    std::vector<std::size_t> m_ends; ///< where each of them ends
    std::vector<Slot> m_slots;       ///< open addressing, at most half full
    std::size_t m_mask = 0;
    int m_last = NONE;
};
