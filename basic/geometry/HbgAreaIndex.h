#pragma once

#include <basic/geometry/HbgGeomPolygon.h>

#include <memory>
#include <vector>

/// The spatial index behind the question which polygons hold a place: a packed R-tree over the
/// boxes of the contours, and for every large ring a locator, so that a place does not look at all
/// its corners. Never changes once built; any thread.
class HbgAreaIndex
{
public:
    explicit HbgAreaIndex(const QVector<HbgGeomPolygon>& polygons);
    ~HbgAreaIndex();
    HbgAreaIndex(const HbgAreaIndex&) = delete;
    HbgAreaIndex& operator=(const HbgAreaIndex&) = delete;

    /// The lowest rank of the polygons that hold a place (of numbers); -1 when there is none.
    int findFirst(const HbgVector2D& place) const;
    /// Adds the ranks of all of them, in no order; a rank may come more than once.
    void findAll(const HbgVector2D& place, std::vector<int>& ranks) const;

private:
    struct Private; // keeps Boost's headers out
    const std::unique_ptr<Private> d;
};
