#include "KuuCoordSystemBlock.h"

#include <basic/base/HbbGlobal.h>

#include <algorithm>
#include <cmath>

using Counts = KuuCoordSystemConverter::Counts;

/// How often PROJ itself tries another operation for a point that the first one refuses.
static constexpr int MAX_TRIES = 3;

Counts KuuCoordSystemBlock::convert(double* x, double* y, double* z, int count, qint64 stride)
{
    m_count = count;
    m_hasHeights = z != nullptr;
    read(x, y, z, stride);
    if (m_operations)
        reproject();
    Counts counts;
    finish(counts);
    write(x, y, z, stride);
    return counts;
}

void KuuCoordSystemBlock::read(const double* x, const double* y, const double* z, qint64 stride)
{
    for (int i = 0; i < m_count; ++i) {
        m_x[i] = x[i * stride];
        m_y[i] = y[i * stride];
        m_isUndefined[i] = HbbGlobal::isUndefined(m_x[i]) || HbbGlobal::isUndefined(m_y[i]);
    }
    m_task.planeIn.apply(m_x, m_count);
    m_task.planeIn.apply(m_y, m_count);
    if (!z)
        return;
    for (int i = 0; i < m_count; ++i) {
        const double height = z[i * stride];
        m_z[i] = HbbGlobal::isUndefined(height) ? 0. : height; // any will do; see write()
    }
    m_task.heightIn.apply(m_z, m_count);
}

/// The box around the points that have a place.
KuuCoordSystemBox KuuCoordSystemBlock::boxOf(const double* x, const double* y) const
{
    KuuCoordSystemBox box;
    std::swap(box.xMin, box.xMax);
    std::swap(box.yMin, box.yMax);
    for (int i = 0; i < m_count; ++i) {
        const bool counts = !m_isUndefined[i] && std::isfinite(x[i]) && std::isfinite(y[i]);
        const double px = counts ? x[i] : box.xMin;
        const double py = counts ? y[i] : box.yMin;
        if (!counts)
            continue;
        box.xMin = std::min(box.xMin, px);
        box.xMax = std::max(box.xMax, px);
        box.yMin = std::min(box.yMin, py);
        box.yMax = std::max(box.yMax, py);
    }
    return box;
}

void KuuCoordSystemBlock::reproject()
{
    for (int i = 0; i < m_count; ++i) {
        if (m_isUndefined[i])
            m_x[i] = HUGE_VAL; // PROJ passes over it
    }
    std::copy_n(m_x, m_count, m_oldX);
    std::copy_n(m_y, m_count, m_oldY);
    if (m_hasHeights)
        std::copy_n(m_z, m_count, m_oldZ);
    choose();
    for (int first = 0; first < m_count;) {
        int end = first + 1;
        while (end < m_count && (m_isOneChoice || m_choices[end] == m_choices[first]))
            ++end;
        run(first, end, m_choices[first]);
        first = end;
    }
    if (m_operations->getCandidates().size() == 1)
        return;
    for (int i = 0; i < m_count; ++i) {
        if (!m_isUndefined[i] && !isConverted(i))
            retry(i);
    }
}

/// Finds the operation of each point.
void KuuCoordSystemBlock::choose()
{
    const auto& candidates = m_operations->getCandidates();
    m_choices[0] = 0;
    m_isOneChoice = candidates.size() == 1;
    if (m_isOneChoice)
        return;
    // Points that stand together in an array mostly lie together.
    const KuuCoordSystemBox box = boxOf(m_x, m_y);
    m_isOneChoice =
        std::all_of(candidates.begin(), candidates.end(), [&box](const auto& candidate) {
            return candidate.area.contains(box) || !candidate.area.intersects(box);
        });
    const int count = m_isOneChoice ? 1 : m_count;
    for (int i = 0; i < count; ++i) {
        const double x = m_isOneChoice ? box.xMin : m_x[i];
        const double y = m_isOneChoice ? box.yMin : m_y[i];
        const int choice = m_operations->choose(x, y, [](int) { return false; });
        m_choices[i] = choice < 0 ? m_operations->getFallback() : choice;
    }
}

/// A point may lie in the box of an operation's area and still not be covered by its files; the
/// next best operation takes it then.
void KuuCoordSystemBlock::retry(int i)
{
    if (m_isOneChoice) {
        std::fill_n(m_choices, m_count, m_choices[0]);
        m_isOneChoice = false;
    }
    int tried[MAX_TRIES] = {m_choices[i]};
    for (int tries = 1; tries < MAX_TRIES && !isConverted(i); ++tries) {
        const int candidate = m_operations->choose(m_oldX[i], m_oldY[i], [&](int other) {
            return std::find(tried, tried + tries, other) != tried + tries;
        });
        if (candidate < 0)
            break;
        tried[tries] = candidate;
        run(i, i + 1, candidate);
    }
    if (!isConverted(i) && m_operations->getFallback() >= 0)
        run(i, i + 1, m_operations->getFallback());
}

/// Converts the points from `first` to `end` from what they were.
void KuuCoordSystemBlock::run(int first, int end, int candidate)
{
    const auto count = static_cast<std::size_t>(end - first);
    if (!m_isOneChoice)
        std::fill(m_choices + first, m_choices + end, candidate);
    std::copy(m_oldX + first, m_oldX + end, m_x + first);
    std::copy(m_oldY + first, m_oldY + end, m_y + first);
    if (m_hasHeights)
        std::copy(m_oldZ + first, m_oldZ + end, m_z + first);
    PJ* pipeline = candidate < 0 ? nullptr : m_operations->getPipeline(candidate);
    if (!pipeline) {
        std::fill(m_x + first, m_x + end, HUGE_VAL);
        return;
    }
    constexpr std::size_t STEP = sizeof(double);
    proj_trans_generic(pipeline, PJ_FWD, m_x + first, STEP, count, m_y + first, STEP, count,
                       m_hasHeights ? m_z + first : nullptr, STEP, m_hasHeights ? count : 0,
                       nullptr, 0, 0);
}

bool KuuCoordSystemBlock::isConverted(int i) const
{
    return std::isfinite(m_x[i]) && std::isfinite(m_y[i]) &&
           (!m_hasHeights || std::isfinite(m_z[i]));
}

bool KuuCoordSystemBlock::isInside(int i) const
{
    const KuuCoordSystemOperations::Side& from = m_operations->getFrom();
    const KuuCoordSystemOperations::Side& to = m_operations->getTo();
    return from.ownArea.contains(m_oldX[i], m_oldY[i]) &&
           from.otherArea.contains(m_oldX[i], m_oldY[i]) && to.ownArea.contains(m_x[i], m_y[i]) &&
           to.otherArea.contains(m_x[i], m_y[i]);
}

void KuuCoordSystemBlock::finish(Counts& counts)
{
    for (int i = 0; i < m_count; ++i) {
        if (m_isUndefined[i])
            ++counts.undefined;
        else if (isConverted(i))
            ++counts.converted;
        else
            ++counts.failed;
    }
    if (!m_operations || counts.converted == 0)
        return;
    countUse(counts);
    const KuuCoordSystemOperations::Side& from = m_operations->getFrom();
    const KuuCoordSystemOperations::Side& to = m_operations->getTo();
    const KuuCoordSystemBox before = boxOf(m_oldX, m_oldY);
    const KuuCoordSystemBox after = boxOf(m_x, m_y);
    if (from.ownArea.contains(before) && from.otherArea.contains(before) &&
        to.ownArea.contains(after) && to.otherArea.contains(after))
        return;
    for (int i = 0; i < m_count; ++i)
        counts.outside += !m_isUndefined[i] && isConverted(i) && !isInside(i);
}

/// What the operations that were used are worth.
void KuuCoordSystemBlock::countUse(Counts& counts) const
{
    const auto& candidates = m_operations->getCandidates();
    for (int i = 0; i < m_count; ++i) {
        if (m_isUndefined[i] || !isConverted(i))
            continue;
        const auto& used = candidates[static_cast<std::size_t>(m_choices[m_isOneChoice ? 0 : i])];
        const qint64 points = m_isOneChoice ? counts.converted : 1;
        counts.ballpark += used.isBallpark ? points : 0;
        if (m_uses)
            m_uses[used.operation] += points;
        counts.worstAccuracy = std::max(counts.worstAccuracy, used.accuracy); // D_FFFF is greatest
        if (m_isOneChoice)
            return;
    }
}

void KuuCoordSystemBlock::write(double* x, double* y, double* z, qint64 stride)
{
    m_task.planeOut.apply(m_x, m_count);
    m_task.planeOut.apply(m_y, m_count);
    if (z)
        m_task.heightOut.apply(m_z, m_count);
    for (int i = 0; i < m_count; ++i) {
        // A place of which a coordinate is missing has no image. Units change one by one.
        const bool isLost =
            (m_isUndefined[i] && m_operations) || (!m_isUndefined[i] && !isConverted(i));
        x[i * stride] = isLost ? HbbGlobal::D_FFFF : m_x[i];
        y[i * stride] = isLost ? HbbGlobal::D_FFFF : m_y[i];
        if (z && !HbbGlobal::isUndefined(z[i * stride]))
            z[i * stride] = isLost ? HbbGlobal::D_FFFF : m_z[i];
    }
}
