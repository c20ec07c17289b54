#include <basic/interval/HbiIntervalIterator.h>

#include "HbiIntervalStore.h"

#include <basic/interval/HbiIntervalIntSmall.h>
#include <basic/interval/HbiIntervalIntSmallO64.h>

template <class Interval>
void HbiIntervalIterator<Interval>::_begin()
{
    m_next = m_store->takePiece(m_block, m_position);
    _advance();
}

template <class Interval>
void HbiIntervalIterator<Interval>::_advance()
{
    m_current = m_next;
    if (m_current.isEmpty())
        return;
    m_next = m_store->takePiece(m_block, m_position);
    while (!m_next.isEmpty() && m_next.getMin() - 1 == m_current.getMax()) {
        m_current = Interval(m_current.getMin(), m_next.getMax());
        m_next = m_store->takePiece(m_block, m_position);
    }
}

template <class Interval>
void HbiIntervalIterator<Interval>::seek(typename Interval::RankType rank)
{
    if (isEnd() || rank <= m_current.getMin())
        return;
    if (m_current.getMax() < rank && m_store) {
        if (m_next.getMax() < rank && !m_next.isEmpty()) {
            m_store->seek(rank, m_block, m_position);
            m_next = m_store->takePiece(m_block, m_position);
        }
        _advance();
    }
    if (isEnd() || m_current.getMin() >= rank)
        return;
    m_current = m_current.getMax() < rank ? Interval() : Interval(rank, m_current.getMax());
}

template class HbiIntervalIterator<HbiIntervalIntSmall>;
template class HbiIntervalIterator<HbiIntervalIntSmallO64>;
