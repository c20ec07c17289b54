#pragma once

#include <QtCore/QtGlobal>

#include <string>
#include <string_view>
#include <vector>

/// Notes the names of members and finds those that stood there before, or that differ from an
/// earlier one only in a way that a disk may not tell apart. A name costs 11 to 21 bytes, whatever
/// its length: hashes stand for the names, so that one in some 10^13 comparisons of different names
/// takes them for colliding.
class KusArchiveNames
{
public:
    enum class Meeting { NONE, SAME, COLLISION };

    /// Notes the name and the directories above it. A collision is one of any of them.
    Meeting add(std::string_view path);

private:
    Meeting addSingle(std::string_view path);
    quint64& findSlot(quint64 folded);
    void grow();

    std::vector<quint64> m_slots; // 48 bits of the folded hash, 16 of the exact one; 0: free
    std::size_t m_used = 0;
    std::string m_directory; // of the last name: noted
};
