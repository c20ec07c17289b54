#pragma once

#include "HbgRectangle.h"

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QVector>

#include <vector>

/// The spatial index behind the picks of a point set, over the points whose X and Y are defined.
/// Never changes once built; any thread.
///
/// A balanced tree: each node halves its points across the longer side of their bounds, down to
/// leaves of 16 to 32 points. Being cut by counts, not by places, it is no deeper and its leaves no
/// fuller for points in one heap, on a line, all equal or with one of them far away. Building costs
/// O(n log n); a pick goes down the tree, and looks at the leaves on the border of what it finds.
/// It takes less than 29 bytes a point, and no more while it is built.
///
/// Distances are compared as squares in double precision, by the same arithmetic for a point and
/// for a box around it, so that no rounding leaves a point out. Picks wait for memory more than for
/// anything else, and after that for branches that cannot be foreseen: hence one array of points in
/// the order of the leaves.
class HbgPointIndex
{
public:
    HbgPointIndex(const QVector<double>& x, const QVector<double>& y);

    /// The lowest rank among the nearest points; -1 when there is none within the tolerance.
    int findNearest(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint findWithin(const QPointF& place, double tolerance) const;
    HbiIntervalIntSmallDisjoint findWithin(const QRectF& rectangle) const;
    HbiIntervalIntSmallDisjoint findWithin(const QVector<QPointF>& polygon) const;

private:
    struct Entry {
        double x;
        double y;
        int rank;
    };
    /// A node of the tree: the children of node i are 2 i and 2 i + 1, the root is 1. Its points
    /// are those of some consecutive leaves.
    struct Node {
        size_t at = 1;
        size_t leaf = 0;
        size_t leafCount = 1;

        Node lower() const { return {2 * at, leaf, leafCount / 2}; }
        Node upper() const { return {2 * at + 1, leaf + leafCount / 2, leafCount / 2}; }
    };
    /// Points that follow one another; all of them are in a region, or some may be.
    struct Part {
        const Entry* begin;
        const Entry* end;
        bool isWhole;
    };
    class Disk;
    class Rectangle;
    class Ring;

    /// The first point of a leaf; the number of all points for the leaf after the last.
    size_t firstPoint(size_t leaf) const { return leaf * m_entries.size() / m_leafCount; }
    template <double Entry::*AXIS>
    static void select(Entry* begin, Entry* middle, Entry* end);
    static HbgRectangle boxOf(const Entry* begin, const Entry* end);
    /// The bounds hold the points, not always closely; along their longer side the node is halved.
    void build(const Node& node, const HbgRectangle& bounds);
    template <class Region>
    HbiIntervalIntSmallDisjoint collect(const Region& region) const;
    template <class Region>
    void findParts(const Region& region, const Node& node, std::vector<Part>& parts) const;
    void findNearest(const Node& node, Disk& disk, int& nearest) const;

    std::vector<Entry> m_entries; // leaf after leaf
    size_t m_leafCount = 1;       // a power of two
    // Of the nodes.
    std::vector<HbgRectangle> m_boxes;
    std::vector<int> m_lowestRanks;
};
