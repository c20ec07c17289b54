#include "KueTableLabels.h"

int KueTableLabels::add(const char* text, std::size_t size, quint32 hash, int maxCount)
{
    if (getCount() >= maxCount)
        return NONE;
    if (m_ends.size() * 2 >= m_slots.size())
        grow();
    std::size_t slot = hash & m_mask;
    while (m_slots[slot].code >= 0)
        slot = (slot + 1) & m_mask;
    m_slots[slot] = {hash, getCount()};
    m_bytes.insert(m_bytes.end(), text, text + size);
    m_ends.push_back(m_bytes.size());
    return getCount() - 1;
}

void KueTableLabels::grow()
{
    const std::vector<Slot> old = std::move(m_slots);
    m_slots.assign(old.empty() ? 64 : old.size() * 2, Slot());
    m_mask = m_slots.size() - 1;
    for (const Slot& entry : old) {
        if (entry.code < 0)
            continue;
        std::size_t slot = entry.hash & m_mask;
        while (m_slots[slot].code >= 0)
            slot = (slot + 1) & m_mask;
        m_slots[slot] = entry;
    }
}
