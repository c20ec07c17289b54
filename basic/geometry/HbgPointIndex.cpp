#include "HbgPointIndex.h"
#include "HbgCoordinate.h"
#include "HbgRankSorter.h"
#include "HbgRingLocator.h"

#include <basic/base/HbbGlobal.h>

#include <algorithm>
#include <cmath>
#include <limits>

static constexpr size_t LEAF_SIZE = 32;

/// How a region lies to a box.
enum class Relation { OUTSIDE, ACROSS, AROUND };

using HbgCoordinate::isPlace;

/// The points at a distance from a place, or nearer.
class HbgPointIndex::Disk
{
public:
    Disk(const QPointF& place, double distance)
        // The square of a longer distance may not fit into a double.
        : m_scale(distance <= LONG ? 1. : std::ldexp(1., -520))
        , m_x(place.x() * m_scale)
        , m_y(place.y() * m_scale)
        , m_limit((distance * m_scale) * (distance * m_scale))
    {
    }

    static constexpr double LONG = 1e150;

    double getLimit() const { return m_limit; }
    void setLimit(double limit) { m_limit = limit; }

    double distanceTo(double x, double y) const
    {
        const double dx = x * m_scale - m_x;
        const double dy = y * m_scale - m_y;
        return dx * dx + dy * dy;
    }
    double distanceTo(const HbgRectangle& box) const
    {
        const double dx = std::max({box.low.x * m_scale - m_x, m_x - box.high.x * m_scale, 0.});
        const double dy = std::max({box.low.y * m_scale - m_y, m_y - box.high.y * m_scale, 0.});
        return dx * dx + dy * dy;
    }
    Relation relationTo(const HbgRectangle& box) const
    {
        if (distanceTo(box) > m_limit)
            return Relation::OUTSIDE;
        const double dx = std::max(m_x - box.low.x * m_scale, box.high.x * m_scale - m_x);
        const double dy = std::max(m_y - box.low.y * m_scale, box.high.y * m_scale - m_y);
        return dx * dx + dy * dy <= m_limit ? Relation::AROUND : Relation::ACROSS;
    }
    bool contains(double x, double y) const { return distanceTo(x, y) <= m_limit; }

private:
    double m_scale;
    double m_x;
    double m_y;
    double m_limit; // a squared distance, scaled
};

class HbgPointIndex::Rectangle
{
public:
    explicit Rectangle(const HbgRectangle& area)
        : m_area(area)
    {
    }

    Relation relationTo(const HbgRectangle& box) const
    {
        if (!m_area.intersects(box))
            return Relation::OUTSIDE;
        return m_area.contains(box) ? Relation::AROUND : Relation::ACROSS;
    }
    bool contains(double x, double y) const
    {
        // Without branches: whether a point is in cannot be foreseen.
        return (x >= m_area.low.x) & (x <= m_area.high.x) & (y >= m_area.low.y) &
               (y <= m_area.high.y);
    }

private:
    HbgRectangle m_area;
};

class HbgPointIndex::Ring
{
public:
    explicit Ring(const QVector<QPointF>& corners)
        : m_ring(corners)
    {
    }

    Relation relationTo(const HbgRectangle& box) const
    {
        if (!m_ring.getBox().intersects(box))
            return Relation::OUTSIDE;
        if (m_ring.hasEdge(box, [](const HbgSegment&) { return true; }))
            return Relation::ACROSS;
        return contains(box.low.x, box.low.y) ? Relation::AROUND : Relation::OUTSIDE;
    }
    bool contains(double x, double y) const { return m_ring.contains(x, y); }

private:
    HbgRingLocator m_ring;
};

HbgPointIndex::HbgPointIndex(const QVector<double>& x, const QVector<double>& y)
{
    m_entries.reserve(static_cast<size_t>(x.size()));
    for (int rank = 0; rank < x.size(); ++rank) {
        if (!HbbGlobal::isUndefined(x[rank]) && !HbbGlobal::isUndefined(y[rank]))
            m_entries.push_back({x[rank], y[rank], rank});
    }
    while (m_entries.size() > LEAF_SIZE * m_leafCount)
        m_leafCount *= 2;
    m_boxes.resize(2 * m_leafCount);
    m_lowestRanks.resize(2 * m_leafCount);
    build({1, 0, m_leafCount}, boxOf(m_entries.data(), m_entries.data() + m_entries.size()));
}

HbgRectangle HbgPointIndex::boxOf(const Entry* begin, const Entry* end)
{
    if (begin == end)
        return {}; // of no use to anybody
    HbgRectangle box = HbgRectangle::of({begin->x, begin->y}, {begin->x, begin->y});
    for (const Entry* entry = begin + 1; entry != end; ++entry)
        box.unite({entry->x, entry->y});
    return box;
}

/// Like std::nth_element, but several times faster on many points, as no branch of it depends on
/// them.
template <double HbgPointIndex::Entry::*AXIS>
void HbgPointIndex::select(Entry* begin, Entry* middle, Entry* end)
{
    constexpr std::ptrdiff_t SAMPLE = 32;
    double sample[SAMPLE];
    while (end - begin > 4 * SAMPLE) {
        const std::ptrdiff_t count = end - begin;
        for (std::ptrdiff_t i = 0; i < SAMPLE; ++i)
            sample[i] = begin[i * count / SAMPLE].*AXIS;
        // Somewhat beyond the middle, seen from the nearer end: then the small part stays.
        const std::ptrdiff_t wanted = (middle - begin) * SAMPLE / count;
        const std::ptrdiff_t at = wanted < SAMPLE / 2 ? wanted + 2 : wanted - 2;
        std::nth_element(sample, sample + at, sample + SAMPLE);
        const double pivot = sample[at];

        Entry* split = begin; // of the points below the pivot and the others
        for (Entry* entry = begin; entry != end; ++entry) {
            const Entry moved = *entry;
            *entry = *split;
            *split = moved;
            split += moved.*AXIS < pivot ? 1 : 0;
        }
        (split <= middle ? begin : end) = split;
        if (end - begin > count - count / 8)
            break; // most are equal, or the sample was a bad one
    }
    std::nth_element(begin, middle, end,
                     [](const Entry& a, const Entry& b) { return a.*AXIS < b.*AXIS; });
}

void HbgPointIndex::build(const Node& node, const HbgRectangle& bounds)
{
    Entry* const begin = m_entries.data() + firstPoint(node.leaf);
    Entry* const end = m_entries.data() + firstPoint(node.leaf + node.leafCount);
    if (node.leafCount == 1) {
        m_boxes[node.at] = boxOf(begin, end);
        std::sort(begin, end, [](const Entry& a, const Entry& b) { return a.rank < b.rank; });
        m_lowestRanks[node.at] = begin == end ? std::numeric_limits<int>::max() : begin->rank;
        return;
    }
    Entry* const middle = m_entries.data() + firstPoint(node.upper().leaf);
    HbgRectangle lowerBounds = bounds;
    HbgRectangle upperBounds = bounds;
    if (bounds.high.x - bounds.low.x > bounds.high.y - bounds.low.y) {
        select<&Entry::x>(begin, middle, end);
        lowerBounds.high.x = upperBounds.low.x = middle->x;
    } else {
        select<&Entry::y>(begin, middle, end);
        lowerBounds.high.y = upperBounds.low.y = middle->y;
    }
    build(node.lower(), lowerBounds);
    build(node.upper(), upperBounds);
    m_boxes[node.at] = m_boxes[node.lower().at];
    m_boxes[node.at].unite(m_boxes[node.upper().at].low);
    m_boxes[node.at].unite(m_boxes[node.upper().at].high);
    m_lowestRanks[node.at] =
        std::min(m_lowestRanks[node.lower().at], m_lowestRanks[node.upper().at]);
}

template <class Region>
HbiIntervalIntSmallDisjoint HbgPointIndex::collect(const Region& region) const
{
    std::vector<Part> parts;
    parts.reserve(32);
    findParts(region, {1, 0, m_leafCount}, parts);
    size_t most = 0;
    for (const Part& part : parts)
        most += static_cast<size_t>(part.end - part.begin);
    std::vector<int> ranks(most);
    size_t count = 0;
    for (const Part& part : parts) {
        // Every rank is written, and kept by counting it: no branch depends on the points.
        for (const Entry* entry = part.begin; entry != part.end; ++entry) {
            ranks[count] = entry->rank;
            count += part.isWhole || region.contains(entry->x, entry->y) ? 1 : 0;
        }
    }
    ranks.resize(count);
    HbgRankSorter::sort(ranks);
    HbiIntervalIntSmallDisjoint set;
    set.addSorted(ranks.data(), ranks.size());
    return set;
}

template <class Region>
void HbgPointIndex::findParts(const Region& region, const Node& node,
                              std::vector<Part>& parts) const
{
    const Relation relation = region.relationTo(m_boxes[node.at]);
    if (relation == Relation::OUTSIDE)
        return;
    if (relation == Relation::ACROSS && node.leafCount > 1) {
        findParts(region, node.lower(), parts);
        findParts(region, node.upper(), parts);
        return;
    }
    const Entry* const begin = m_entries.data() + firstPoint(node.leaf);
    const Entry* const end = m_entries.data() + firstPoint(node.leaf + node.leafCount);
    // The points are on their way from memory while the rest of the tree is looked at.
    const size_t count = std::min(static_cast<size_t>(end - begin), LEAF_SIZE);
    for (size_t i = 0; i < count; i += 4)
        __builtin_prefetch(begin + i);
    parts.push_back({begin, end, relation == Relation::AROUND});
}

int HbgPointIndex::findNearest(const QPointF& place, double tolerance) const
{
    if (!isPlace(place) || !(tolerance >= 0.))
        return -1;
    const int none = std::numeric_limits<int>::max();
    int nearest = none;
    // In the scale of long distances the short ones are nothing: those are compared first.
    Disk disk(place, std::min(tolerance, Disk::LONG));
    findNearest({1, 0, m_leafCount}, disk, nearest);
    if (nearest == none && tolerance > Disk::LONG) {
        disk = Disk(place, tolerance);
        findNearest({1, 0, m_leafCount}, disk, nearest);
    }
    return nearest == none ? -1 : nearest;
}

void HbgPointIndex::findNearest(const Node& node, Disk& disk, int& nearest) const
{
    if (node.leafCount == 1) {
        const Entry* const end = m_entries.data() + firstPoint(node.leaf + 1);
        for (const Entry* entry = m_entries.data() + firstPoint(node.leaf); entry != end; ++entry) {
            const double distance = disk.distanceTo(entry->x, entry->y);
            if (distance < disk.getLimit() ||
                (distance == disk.getLimit() && entry->rank < nearest)) {
                disk.setLimit(distance);
                nearest = entry->rank;
            }
        }
        return;
    }
    Node first = node.lower();
    Node second = node.upper();
    double near = disk.distanceTo(m_boxes[first.at]);
    double far = disk.distanceTo(m_boxes[second.at]);
    const auto isSecondFirst =
        far < near || (far == near && m_lowestRanks[second.at] < m_lowestRanks[first.at]);
    if (isSecondFirst) {
        std::swap(first, second);
        std::swap(near, far);
    }
    // Among many points at one place, only those that can still give a lower rank are visited.
    const auto isWorthwhile = [&](const Node& child, double distance) {
        return distance < disk.getLimit() ||
               (distance == disk.getLimit() && m_lowestRanks[child.at] < nearest);
    };
    if (isWorthwhile(first, near))
        findNearest(first, disk, nearest);
    if (isWorthwhile(second, far))
        findNearest(second, disk, nearest);
}

HbiIntervalIntSmallDisjoint HbgPointIndex::findWithin(const QPointF& place, double tolerance) const
{
    if (!isPlace(place) || !(tolerance >= 0.))
        return {};
    return collect(Disk(place, tolerance));
}

HbiIntervalIntSmallDisjoint HbgPointIndex::findWithin(const QRectF& rectangle) const
{
    if (!isPlace(rectangle.topLeft()) || !isPlace(rectangle.bottomRight()))
        return {};
    return collect(Rectangle(HbgRectangle::of({rectangle.left(), rectangle.top()},
                                              {rectangle.right(), rectangle.bottom()})));
}

HbiIntervalIntSmallDisjoint HbgPointIndex::findWithin(const QVector<QPointF>& polygon) const
{
    if (polygon.size() < 3 || !std::all_of(polygon.begin(), polygon.end(), isPlace))
        return {};
    return collect(Ring(polygon));
}
