#include <basic/geometry/HbgGeomGrid.h>

#include "HbgCoordinate.h"

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>

#include <algorithm>
#include <cmath>

static const char* const SOURCE = "geometry/HbgGeomGrid";

using HbgCoordinate::isCoordinate;

HbgGeomGrid::HbgGeomGrid(const HbgEDimension& dimension)
    : m_is3D(dimension == HbgEDimension::DIM_3D)
    , m_nz(m_is3D ? 0 : 1)
    , m_origin(0., 0., m_is3D ? 0. : HbbGlobal::D_FFFF)
{
}

HbgGeomGrid::HbgGeomGrid(int nx, int ny, const HbgVector2D& origin, double dx, double dy,
                         double rotation)
    : m_nx(nx)
    , m_ny(ny)
    , m_nz(1)
    , m_origin(origin.x, origin.y, HbbGlobal::D_FFFF)
    , m_step(dx, dy, 1.)
{
    setRotation(rotation);
}

HbgGeomGrid::HbgGeomGrid(int nx, int ny, int nz, const HbgVector3D& origin, double dx, double dy,
                         double dz, double rotation)
    : m_is3D(true)
    , m_nx(nx)
    , m_ny(ny)
    , m_nz(nz)
    , m_origin(origin)
    , m_step(dx, dy, dz)
{
    setRotation(rotation);
}

void HbgGeomGrid::setRotation(double degrees)
{
    m_rotation = degrees;
    // What is left of whole quarter turns, without rounding: quarter turns are exact, with no stray
    // 1e-17 parts, and any number of whole turns changes nothing.
    int quarters = 0;
    const double radians = std::remquo(degrees, 90., &quarters) * (3.14159265358979323846 / 180.);
    const double cosine = std::cos(radians);
    const double sine = std::sin(radians);
    const double turned[] = {cosine, -sine, -cosine, sine};
    m_cos = turned[quarters & 3];
    m_sin = turned[(quarters + 3) & 3];
}

bool HbgGeomGrid::isValid() const
{
    const auto isAxisValid = [](int count, double step) {
        return count >= 1 && isCoordinate(step) && (count == 1 || step != 0.);
    };
    return isAxisValid(m_nx, m_step.x) && isAxisValid(m_ny, m_step.y) &&
           isAxisValid(m_nz, m_step.z) && isCoordinate(m_origin.x) && isCoordinate(m_origin.y) &&
           (!m_is3D || isCoordinate(m_origin.z)) && isCoordinate(m_rotation);
}

HbgEDimension HbgGeomGrid::getDimension() const
{
    return m_is3D ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D;
}

qint64 HbgGeomGrid::getNodeCount() const
{
    if (m_nx < 1 || m_ny < 1 || m_nz < 1)
        return 0;
    const qint64 layer = static_cast<qint64>(m_nx) * m_ny;
    qint64 count = 0;
    return __builtin_mul_overflow(layer, static_cast<qint64>(m_nz), &count) ? HbbGlobal::I_FFFF
                                                                            : count;
}

bool HbgGeomGrid::containsIndices(const Indices& at) const
{
    return at.x >= 0 && at.x < m_nx && at.y >= 0 && at.y < m_ny && at.z >= 0 && at.z < m_nz;
}

qint64 HbgGeomGrid::getRank(const Indices& at) const
{
    if (!containsIndices(at) || getNodeCount() == HbbGlobal::I_FFFF)
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Node indices out of the grid."));
    return at.x + m_nx * (at.y + static_cast<qint64>(m_ny) * at.z);
}

HbgGeomGrid::Indices HbgGeomGrid::getIndices(qint64 rank) const
{
    if (!containsRank(rank))
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Node rank out of the grid."));
    const qint64 row = rank / m_nx;
    return {static_cast<int>(rank % m_nx), static_cast<int>(row % m_ny),
            static_cast<int>(row / m_ny)};
}

HbgVector3D HbgGeomGrid::position(const Indices& at) const
{
    const double u = at.x * m_step.x;
    const double v = at.y * m_step.y;
    return {m_origin.x + (u * m_cos - v * m_sin), m_origin.y + (u * m_sin + v * m_cos),
            m_is3D ? m_origin.z + at.z * m_step.z : HbbGlobal::D_FFFF};
}

HbgVector3D HbgGeomGrid::getPosition(qint64 rank) const
{
    return position(getIndices(rank));
}

HbgVector3D HbgGeomGrid::getPosition(const Indices& at) const
{
    if (!containsIndices(at))
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Node indices out of the grid."));
    return position(at);
}

void HbgGeomGrid::getPositions(qint64 first, qint64 count, double* x, double* y, double* z) const
{
    if (count <= 0)
        return;
    if (!containsRank(first) || count > getNodeCount() - first)
        HBE_PROGRAMMING_ERROR(SOURCE, QStringLiteral("Node ranks out of the grid."));
    Indices at = getIndices(first);
    for (qint64 done = 0; done < count;) {
        // One row of nodes, or what is wanted of it.
        const qint64 length = std::min<qint64>(m_nx - at.x, count - done);
        for (qint64 i = 0; i < length; ++i, ++at.x) {
            const HbgVector3D node = position(at);
            x[done + i] = node.x;
            y[done + i] = node.y;
            if (z)
                z[done + i] = node.z;
        }
        done += length;
        at.x = 0;
        if (++at.y == m_ny) {
            at.y = 0;
            ++at.z;
        }
    }
}

HbgBox HbgGeomGrid::getBoundingBox() const
{
    HbgBox box;
    if (!isValid())
        return box;
    for (const int x : {0, m_nx - 1}) {
        for (const int y : {0, m_ny - 1}) {
            for (const int z : {0, m_nz - 1})
                box.unite(position({x, y, z}));
        }
    }
    return box;
}

bool HbgGeomGrid::operator==(const HbgGeomGrid& other) const
{
    return m_is3D == other.m_is3D && m_nx == other.m_nx && m_ny == other.m_ny &&
           m_nz == other.m_nz && m_origin == other.m_origin && m_step == other.m_step &&
           m_rotation == other.m_rotation;
}
