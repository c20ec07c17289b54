#include "KusArchiveNames.h"

#include <util/system/KusMemberPath.h>

#include <QtCore/QByteArray>

#include <algorithm>
#include <functional>

namespace
{
constexpr quint64 EXACT_MASK = 0xffff;
constexpr std::size_t FIRST_SLOTS = 1024;
} // namespace

KusArchiveNames::Meeting KusArchiveNames::add(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    const std::string_view directory = path.substr(0, slash == path.npos ? 0 : slash);
    if (directory != m_directory) {
        std::size_t known = 0; // the end of the directories that the last one shares
        const std::size_t least = std::min(directory.size(), m_directory.size());
        std::size_t same = 0;
        while (same < least && directory[same] == m_directory[same]) {
            if (directory[same++] == '/')
                known = same;
        }
        for (std::size_t end = known; end < directory.size(); ++end) {
            end = std::min(directory.find('/', end), directory.size());
            if (addSingle(directory.substr(0, end)) == Meeting::COLLISION)
                return Meeting::COLLISION;
        }
        m_directory = directory;
    }
    return addSingle(path);
}

KusArchiveNames::Meeting KusArchiveNames::addSingle(std::string_view path)
{
    if (m_used + m_used / 3 >= m_slots.size())
        grow();
    const quint64 folded =
        KusMemberPath::getFoldedHash(QByteArray::fromRawData(path.data(), int(path.size())));
    // Never 0, which is a free slot.
    const quint64 exact = (std::hash<std::string_view>()(path) & EXACT_MASK) | 1;
    quint64& slot = findSlot(folded);
    if (slot != 0)
        return (slot & EXACT_MASK) == exact ? Meeting::SAME : Meeting::COLLISION;
    slot = (folded & ~EXACT_MASK) | exact;
    ++m_used;
    return Meeting::NONE;
}

quint64& KusArchiveNames::findSlot(quint64 folded)
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = std::size_t((folded >> 16) * Q_UINT64_C(0x9e3779b97f4a7c15) >> 24) & mask;
    while (m_slots[i] != 0 && (m_slots[i] & ~EXACT_MASK) != (folded & ~EXACT_MASK))
        i = (i + 1) & mask;
    return m_slots[i];
}

void KusArchiveNames::grow()
{
    std::vector<quint64> former(std::max(FIRST_SLOTS, 2 * m_slots.size()));
    former.swap(m_slots);
    for (const quint64 slot : former) {
        if (slot != 0)
            findSlot(slot) = slot;
    }
}
