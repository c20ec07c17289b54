#pragma once

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QBitArray>

#include <vector>

/// Which sample each row of a view shows: all samples in the order of their ranks, which takes no
/// memory, or some of them in any order. A value.
class KudSampleOrderRows
{
public:
    /// All of `sampleCount` samples by rank.
    explicit KudSampleOrderRows(int sampleCount = 0)
        : m_sampleCount(sampleCount)
    {
    }

    /// Whether rows are ranks.
    bool areRanks() const { return m_areRanks; }
    int getCount() const { return m_areRanks ? m_sampleCount : static_cast<int>(m_ranks.size()); }
    int getSampleCount() const { return m_sampleCount; }

    int getRank(int row) const; ///< -1 outside of the rows
    int getRow(int rank) const; ///< -1 where the sample is not shown

    /// The ranks, row by row.
    std::vector<int> getRanks() const;

    bool haveRanks(const std::vector<int>& ranks) const;

    /// Each a rank of a sample, none twice.
    void setRanks(std::vector<int> ranks);

    /// Shows these samples too, none of which is shown, after the others. Rows are no ranks.
    void showLast(const QBitArray& samples);

    /// The rows that show samples of these ranks, in ascending order.
    std::vector<HbiIntervalIntSmall> getRows(HbiIntervalIntSmall ranks) const;

    /// The rows from the first to the last that shows any of them, found faster; empty for none.
    HbiIntervalIntSmall getRowsAround(HbiIntervalIntSmall ranks) const;

    /// Where `ranks` of samples that are being inserted will be shown: at their ranks, or last.
    HbiIntervalIntSmall getNewRows(HbiIntervalIntSmall ranks) const;
    void insertSamples(HbiIntervalIntSmall ranks);

    /// Shows the samples of these rows no more.
    void hideRows(HbiIntervalIntSmall rows);

    /// Follows the deletion of samples.
    void removeSamples(const HbiIntervalIntSmallDisjoint& ranks);

private:
    bool m_areRanks = true;
    int m_sampleCount = 0;
    std::vector<int> m_ranks;
    mutable std::vector<int> m_rows; // by rank; made when it is asked for, empty until then
};
