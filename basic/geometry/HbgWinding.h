#pragma once

#include "HbgSegment.h"

/// How often a ring winds around a place: the edges are added in their direction, all of them or at
/// least all that reach the height of the place.
class HbgWinding
{
public:
    explicit HbgWinding(const HbgVector2D& place)
        : m_place(place)
    {
    }

    void add(const HbgVector2D& a, const HbgVector2D& b)
    {
        const double y = m_place.y;
        if (y < a.y ? y < b.y : y > a.y && y > b.y)
            return;
        if (m_place.x > a.x && m_place.x > b.x)
            return;
        // What is counted are the edges on the right of the place.
        if (m_place.x >= a.x || m_place.x >= b.x) {
            const int side = a.y == b.y ? 0 : HbgSegment{a, b}.side(m_place);
            if (side == 0)
                m_isOnBorder = true;
            if ((side > 0) != (a.y < b.y))
                return;
        }
        // Each edge owns its lower end, so that a corner is counted once.
        if (a.y <= y && y < b.y)
            ++m_turns;
        else if (b.y <= y && y < a.y)
            --m_turns;
    }
    /// The edges of a ring that is closed implicitly.
    void addRing(const HbgVector2D* corners, int count)
    {
        for (int i = 0; i < count; ++i)
            add(corners[i ? i - 1 : count - 1], corners[i]);
    }

    /// The border is in.
    bool isIn() const { return m_isOnBorder || m_turns != 0; }
    bool isStrictlyIn() const { return !m_isOnBorder && m_turns != 0; }

private:
    HbgVector2D m_place;
    int m_turns = 0;
    bool m_isOnBorder = false;
};
