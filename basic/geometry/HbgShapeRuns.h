#pragma once

#include "HbgSegment.h"

#include <QtCore/QVector>

#include <vector>

class HbgGeomPolygon;
class HbgGeomPolyline;

/// The lines and borders of shapes, cut into runs of a few segments in a row: what is tested as one
/// when a pick looks for shapes.
class HbgShapeRuns
{
public:
    struct Run {
        HbgRectangle box;
        size_t first; // rank of the first of its points
        int last;     // from the first to the last point; 0 for a place alone
        int shape;    // rank of the shape
    };

    explicit HbgShapeRuns(const QVector<HbgGeomPolyline>& polylines);
    explicit HbgShapeRuns(const QVector<HbgGeomPolygon>& polygons);

    const std::vector<Run>& getRuns() const { return m_runs; }
    /// Once an index has its own.
    void dropRuns() { std::vector<Run>().swap(m_runs); }

    const HbgVector2D& getFirstPoint(const Run& run) const { return m_points[run.first]; }
    /// Whether a segment passes the test.
    template <class Test>
    bool hasSegment(const Run& run, const Test& test) const
    {
        const HbgVector2D* const points = m_points.data() + run.first;
        if (run.last == 0)
            return test(HbgSegment{points[0], points[0]});
        for (int i = 0; i < run.last; ++i) {
            if (test(HbgSegment{points[i], points[i + 1]}))
                return true;
        }
        return false;
    }

private:
    /// Points in a row.
    struct Chain {
        size_t end; // behind its last point
        int shape;
    };
    void addChain(std::vector<Chain>& chains, int shape) const;
    void fillRuns(const std::vector<Chain>& chains);
    void cut(size_t first, size_t last, int shape, const HbgVector2D& reach);

    std::vector<HbgVector2D>
        m_points; // chain after chain, closed ones with their first point again
    std::vector<Run> m_runs;
};
