#pragma once

#include <QtCore/QtGlobal>

/// What kinds of geometry set have in common: GRID covers full and sparse grids, MESHES both kinds
/// of mesh, LINES both kinds of line. `HbgEGeometrySet::getFlags` gives the flags of a kind.
class HbgGeometrySetFlags
{
public:
    enum Flag : quint32 { NONE = 0, POINTS = 1, LINES = 2, POLYGONS = 4, GRID = 8, MESHES = 16 };

    constexpr HbgGeometrySetFlags(Flag flag = NONE) // implicit: a flag is a set of one
        : m_bits(flag)
    {
    }

    constexpr bool testFlag(Flag flag) const { return flag != NONE && (m_bits & flag) == flag; }
    constexpr bool intersects(HbgGeometrySetFlags other) const
    {
        return (m_bits & other.m_bits) != 0;
    }

    friend constexpr HbgGeometrySetFlags operator|(HbgGeometrySetFlags a, HbgGeometrySetFlags b)
    {
        a.m_bits |= b.m_bits;
        return a;
    }
    friend constexpr bool operator==(HbgGeometrySetFlags a, HbgGeometrySetFlags b)
    {
        return a.m_bits == b.m_bits;
    }
    friend constexpr bool operator!=(HbgGeometrySetFlags a, HbgGeometrySetFlags b)
    {
        return a.m_bits != b.m_bits;
    }

private:
    quint32 m_bits;
};
