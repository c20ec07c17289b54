#include "KusArchiveHoles.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <unistd.h>

qint64 KusArchiveHoles::getSize(qint64 position)
{
    if (position >= m_dataEnd)
        look(position);
    return std::max<qint64>(m_dataBegin - position, 0);
}

void KusArchiveHoles::look(qint64 position)
{
    m_dataBegin = position;
    m_dataEnd = std::numeric_limits<qint64>::max();
#ifdef SEEK_DATA
    const qint64 data = ::lseek(m_descriptor, position, SEEK_DATA);
    if (data >= 0) {
        m_dataBegin = data;
        const qint64 hole = ::lseek(m_descriptor, data, SEEK_HOLE);
        if (hole > data)
            m_dataEnd = hole;
    } else if (errno == ENXIO) { // nothing but a hole, or not even that
        m_dataBegin = std::max<qint64>(::lseek(m_descriptor, 0, SEEK_END), position);
    }
#endif
    m_wereFound = m_wereFound || m_dataBegin > position;
}
