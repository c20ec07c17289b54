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
    if (z)
        m_task.heightOut.apply(m_z, m_count); // first, as it may take elevations out of range
    Counts counts;
    finish(counts);
    write(x, y, z, stride);
    return counts;
}

/// Copies between an array of the caller and one of ours.
static void copy(const double* from, qint64 fromStride, double* to, qint64 toStride, int count)
{
    if (fromStride == 1 && toStride == 1) {
        std::copy_n(from, count, to);
        return;
    }
    for (int i = 0; i < count; ++i)
        to[i * toStride] = from[i * fromStride];
}

void KuuCoordSystemBlock::read(const double* x, const double* y, const double* z, qint64 stride)
{
    copy(x, stride, m_x, 1, m_count);
    copy(y, stride, m_y, 1, m_count);
    const Scan given = scan(m_x, m_y);
    m_isClean =
        given.isFinite && given.box.xMax < HbbGlobal::D_FFFF && given.box.yMax < HbbGlobal::D_FFFF;
    if (!m_isClean) {
        for (int i = 0; i < m_count; ++i)
            m_isUndefined[i] = HbbGlobal::isUndefined(m_x[i]) || HbbGlobal::isUndefined(m_y[i]);
    }
    m_oldBox = given.box;
    if (!m_task.planeIn.isIdentity()) {
        m_task.planeIn.apply(m_x, m_count);
        m_task.planeIn.apply(m_y, m_count);
        m_oldBox = scan(m_x, m_y).box;
    }
    if (!z)
        return;
    for (int i = 0; i < m_count; ++i) {
        const double height = z[i * stride];
        m_z[i] = HbbGlobal::isUndefined(height) ? 0. : height; // any will do; see write()
    }
    m_task.heightIn.apply(m_z, m_count);
}

/// One pass, in two halves that the processor works on at once.
KuuCoordSystemBlock::Scan KuuCoordSystemBlock::scan(const double* x, const double* y) const
{
    struct Half {
        double xMin = HUGE_VAL;
        double yMin = HUGE_VAL;
        double xMax = -HUGE_VAL;
        double yMax = -HUGE_VAL;
        double zero = 0.; // NaN as soon as a value is not finite

        void add(double px, double py)
        {
            xMin = px < xMin ? px : xMin;
            yMin = py < yMin ? py : yMin;
            xMax = px > xMax ? px : xMax;
            yMax = py > yMax ? py : yMax;
            zero += 0. * px + 0. * py;
        }
    };
    Half first;
    Half second;
    int i = 0;
    for (; i + 1 < m_count; i += 2) {
        first.add(x[i], y[i]);
        second.add(x[i + 1], y[i + 1]);
    }
    if (i < m_count)
        first.add(x[i], y[i]);
    return {{std::min(first.xMin, second.xMin), std::min(first.yMin, second.yMin),
             std::max(first.xMax, second.xMax), std::max(first.yMax, second.yMax)},
            first.zero + second.zero == 0.};
}

void KuuCoordSystemBlock::reproject()
{
    for (int i = 0; !m_isClean && i < m_count; ++i) {
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
        if (!isUndefined(i) && !isConverted(i))
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
    const KuuCoordSystemBox& box = m_oldBox;
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
    const auto runAgain = [this, i](int candidate) {
        m_x[i] = m_oldX[i];
        m_y[i] = m_oldY[i];
        if (m_hasHeights)
            m_z[i] = m_oldZ[i];
        run(i, i + 1, candidate);
    };
    int tried[MAX_TRIES] = {m_choices[i]};
    for (int tries = 1; tries < MAX_TRIES && !isConverted(i); ++tries) {
        const int candidate = m_operations->choose(m_oldX[i], m_oldY[i], [&](int other) {
            return std::find(tried, tried + tries, other) != tried + tries;
        });
        if (candidate < 0)
            break;
        tried[tries] = candidate;
        runAgain(candidate);
    }
    if (!isConverted(i) && m_operations->getFallback() >= 0)
        runAgain(m_operations->getFallback());
}

/// Converts the points from `first` to `end`.
void KuuCoordSystemBlock::run(int first, int end, int candidate)
{
    const auto count = static_cast<std::size_t>(end - first);
    if (!m_isOneChoice)
        std::fill(m_choices + first, m_choices + end, candidate);
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
    const Scan after = scan(m_x, m_y);
    m_isAllConverted = m_isClean && after.isFinite && !m_hasHeights;
    if (m_isAllConverted) {
        counts.converted = m_count;
    } else {
        for (int i = 0; i < m_count; ++i) {
            if (isUndefined(i))
                ++counts.undefined;
            else if (isConverted(i))
                ++counts.converted;
            else
                ++counts.failed;
        }
    }
    if (!m_operations || counts.converted == 0)
        return;
    countUse(counts);
    const KuuCoordSystemOperations::Side& from = m_operations->getFrom();
    const KuuCoordSystemOperations::Side& to = m_operations->getTo();
    if (from.ownArea.contains(m_oldBox) && from.otherArea.contains(m_oldBox) &&
        to.ownArea.contains(after.box) && to.otherArea.contains(after.box))
        return;
    for (int i = 0; i < m_count; ++i)
        counts.outside += !isUndefined(i) && isConverted(i) && !isInside(i);
}

/// What the operations that were used are worth.
void KuuCoordSystemBlock::countUse(Counts& counts) const
{
    const auto& candidates = m_operations->getCandidates();
    for (int i = 0; i < m_count; ++i) {
        if (isUndefined(i) || !isConverted(i))
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

/// What leaves us is a number or D_FFFF, also next to a coordinate that is undefined.
static double settled(double value, bool isLost)
{
    return isLost || !std::isfinite(value) ? HbbGlobal::D_FFFF : value;
}

void KuuCoordSystemBlock::write(double* x, double* y, double* z, qint64 stride)
{
    m_task.planeOut.apply(m_x, m_count);
    m_task.planeOut.apply(m_y, m_count);
    if (m_isAllConverted) {
        copy(m_x, 1, x, stride, m_count);
        copy(m_y, 1, y, stride, m_count);
        return;
    }
    for (int i = 0; i < m_count; ++i) {
        // A place of which a coordinate is missing has no image. Units change one by one.
        const bool isLost = isUndefined(i) ? m_operations != nullptr : !isConverted(i);
        x[i * stride] = settled(m_x[i], isLost);
        y[i * stride] = settled(m_y[i], isLost);
        if (z)
            z[i * stride] = settled(m_z[i], isLost || HbbGlobal::isUndefined(z[i * stride]));
    }
}
