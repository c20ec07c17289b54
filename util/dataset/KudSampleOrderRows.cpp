#include "KudSampleOrderRows.h"

#include <algorithm>
#include <numeric>
#include <utility>

int KudSampleOrderRows::getRank(int row) const
{
    if (row < 0 || row >= getCount())
        return -1;
    return m_areRanks ? row : m_ranks[static_cast<std::size_t>(row)];
}

int KudSampleOrderRows::getRow(int rank) const
{
    if (rank < 0 || rank >= m_sampleCount)
        return -1;
    if (m_areRanks)
        return rank;
    if (m_rows.empty()) {
        m_rows.assign(static_cast<std::size_t>(m_sampleCount), -1);
        for (std::size_t row = 0; row < m_ranks.size(); ++row)
            m_rows[static_cast<std::size_t>(m_ranks[row])] = static_cast<int>(row);
    }
    return m_rows[static_cast<std::size_t>(rank)];
}

std::vector<int> KudSampleOrderRows::getRanks() const
{
    if (!m_areRanks)
        return m_ranks;
    std::vector<int> ranks(static_cast<std::size_t>(m_sampleCount));
    std::iota(ranks.begin(), ranks.end(), 0);
    return ranks;
}

bool KudSampleOrderRows::haveRanks(const std::vector<int>& ranks) const
{
    return m_areRanks ? ranks == getRanks() : ranks == m_ranks;
}

void KudSampleOrderRows::setRanks(std::vector<int> ranks)
{
    m_areRanks = false;
    m_ranks = std::move(ranks);
    m_rows.clear();
}

void KudSampleOrderRows::showLast(const QBitArray& samples)
{
    for (int rank = 0; rank < samples.size(); ++rank) {
        if (samples.testBit(rank))
            m_ranks.push_back(rank);
    }
    m_rows.clear();
}

std::vector<HbiIntervalIntSmall> KudSampleOrderRows::getRows(HbiIntervalIntSmall ranks) const
{
    if (m_areRanks)
        return {ranks};
    std::vector<HbiIntervalIntSmall> runs;
    int first = -1;
    const int count = getCount();
    for (int row = 0; row <= count; ++row) {
        const bool isOne = row < count && ranks.contains(m_ranks[static_cast<std::size_t>(row)]);
        if (isOne && first < 0)
            first = row;
        if (!isOne && first >= 0)
            runs.emplace_back(std::exchange(first, -1), row - 1);
    }
    return runs;
}

HbiIntervalIntSmall KudSampleOrderRows::getRowsAround(HbiIntervalIntSmall ranks) const
{
    if (m_areRanks)
        return ranks;
    if (ranks.getMin() == ranks.getMax()) {
        const int row = getRow(ranks.getMin());
        return row < 0 ? HbiIntervalIntSmall() : HbiIntervalIntSmall(row, row);
    }
    const auto isOne = [ranks](int rank) { return ranks.contains(rank); };
    const auto first = std::find_if(m_ranks.begin(), m_ranks.end(), isOne);
    const auto last = std::find_if(m_ranks.rbegin(), m_ranks.rend(), isOne);
    if (first == m_ranks.end())
        return HbiIntervalIntSmall();
    return HbiIntervalIntSmall(static_cast<int>(first - m_ranks.begin()),
                               static_cast<int>(m_ranks.rend() - last) - 1);
}

HbiIntervalIntSmall KudSampleOrderRows::getNewRows(HbiIntervalIntSmall ranks) const
{
    const int first = m_areRanks ? ranks.getMin() : getCount();
    return HbiIntervalIntSmall(first, first + ranks.getMax() - ranks.getMin());
}

void KudSampleOrderRows::insertSamples(HbiIntervalIntSmall ranks)
{
    const int count = static_cast<int>(ranks.getLength());
    m_sampleCount += count;
    if (m_areRanks)
        return;
    if (ranks.getMax() < m_sampleCount - 1) {
        for (int& rank : m_ranks)
            rank += rank >= ranks.getMin() ? count : 0;
        m_rows.clear();
    }
    for (int rank = ranks.getMin(); rank <= ranks.getMax(); ++rank) {
        if (!m_rows.empty())
            m_rows.push_back(static_cast<int>(m_ranks.size()));
        m_ranks.push_back(rank);
    }
}

void KudSampleOrderRows::hideRows(HbiIntervalIntSmall rows)
{
    if (m_areRanks)
        setRanks(getRanks());
    m_ranks.erase(m_ranks.begin() + rows.getMin(), m_ranks.begin() + rows.getMax() + 1);
    m_rows.clear();
}

void KudSampleOrderRows::removeSamples(const HbiIntervalIntSmallDisjoint& ranks)
{
    const auto sampleCount = static_cast<std::size_t>(m_sampleCount);
    m_sampleCount -= static_cast<int>(ranks.getCount());
    m_rows.clear();
    if (m_areRanks)
        return;
    const auto end = std::remove_if(m_ranks.begin(), m_ranks.end(),
                                    [&](int rank) { return ranks.contains(rank); });
    m_ranks.erase(end, m_ranks.end());
    if (ranks.getIntervalCount() == 1) {
        const int count = static_cast<int>(ranks.getCount());
        for (int& rank : m_ranks)
            rank -= rank > ranks.getMax() ? count : 0;
        return;
    }
    std::vector<int> isRemoved(sampleCount);
    ranks.forEachRank([&](int rank) { isRemoved[static_cast<std::size_t>(rank)] = 1; });
    std::partial_sum(isRemoved.begin(), isRemoved.end(), isRemoved.begin());
    for (int& rank : m_ranks)
        rank -= isRemoved[static_cast<std::size_t>(rank)];
}
