#include <util/utils/KuuGeometrySet.h>

#include "KuuGeometryOverloads.h"

#include <basic/error/HbeProgrammingError.h>

static const char* const SOURCE = "utils/KuuGeometrySet";

namespace
{
/// The container of a kind as a program asks for it.
template <class Container, class Geometry>
const Container& containerOf(const Geometry& geometry, const QString& complaint)
{
    const auto* container = std::get_if<Container>(&geometry);
    if (!container)
        HBE_PROGRAMMING_ERROR(SOURCE, complaint);
    return *container;
}
} // namespace

KuuGeometrySet::KuuGeometrySet(const HbgEGeometrySet& kind, const HbgEDimension& dimension)
    : m_kind(kind)
{
    switch (kind.toEnum()) {
    case HbgEGeometrySet::E_NONE:
        break;
    case HbgEGeometrySet::E_POINTS:
        m_geometry = HbgGeomPointSet(dimension);
        break;
    case HbgEGeometrySet::E_LINES:
    case HbgEGeometrySet::E_POLYLINES:
        m_geometry = HbgGeomPolylineSet(dimension);
        break;
    case HbgEGeometrySet::E_GRID:
        m_geometry = HbgGeomGrid(dimension);
        break;
    case HbgEGeometrySet::E_GRID_SPARSE:
        m_geometry = HbgSparseGrid(dimension);
        break;
    case HbgEGeometrySet::E_POLYGONS:
        m_geometry = HbgGeomPolygonSet();
        break;
    case HbgEGeometrySet::E_MESH_SURFACE:
        m_geometry = HbgMeshSet(HbgEMeshType::SURFACE);
        break;
    case HbgEGeometrySet::E_MESH_VOLUME:
        m_geometry = HbgMeshSet(HbgEMeshType::VOLUME);
        break;
    }
}

KuuGeometrySet::KuuGeometrySet(const HbgGeomPointSet& points)
    : m_kind(HbgEGeometrySet::POINTS)
    , m_geometry(points)
{
}

KuuGeometrySet::KuuGeometrySet(const HbgGeomPolylineSet& polylines, bool isLineSet)
    : m_kind(isLineSet ? HbgEGeometrySet::LINES : HbgEGeometrySet::POLYLINES)
    , m_geometry(polylines)
{
}

KuuGeometrySet::KuuGeometrySet(const HbgGeomGrid& grid)
    : m_kind(HbgEGeometrySet::GRID)
    , m_geometry(grid)
{
}

KuuGeometrySet::KuuGeometrySet(const HbgSparseGrid& grid)
    : m_kind(HbgEGeometrySet::GRID_SPARSE)
    , m_geometry(grid)
{
}

KuuGeometrySet::KuuGeometrySet(const HbgGeomPolygonSet& polygons)
    : m_kind(HbgEGeometrySet::POLYGONS)
    , m_geometry(polygons)
{
}

KuuGeometrySet::KuuGeometrySet(const HbgMeshSet& meshes)
    : m_kind(meshes.getType() == HbgEMeshType::VOLUME ? HbgEGeometrySet::MESH_VOLUME
                                                      : HbgEGeometrySet::MESH_SURFACE)
    , m_geometry(meshes)
{
}

HbgEDimension KuuGeometrySet::getDimension() const
{
    return std::visit(KuuGeometryOverloads{
                          [](const std::monostate&) { return HbgEDimension::DIM_2D; },
                          [](const HbgGeomPolygonSet&) { return HbgEDimension::DIM_2D; },
                          [](const HbgMeshSet&) { return HbgEDimension::DIM_3D; },
                          [](const auto& container) { return container.getDimension(); },
                      },
                      m_geometry);
}

qint64 KuuGeometrySet::getSampleCount() const
{
    return std::visit(KuuGeometryOverloads{
                          [](const std::monostate&) { return qint64(0); },
                          [](const HbgGeomGrid& grid) { return grid.getNodeCount(); },
                          [](const HbgSparseGrid& grid) { return grid.getCellCount(); },
                          [](const auto& elements) { return qint64(elements.getCount()); },
                      },
                      m_geometry);
}

bool KuuGeometrySet::isEmpty() const
{
    return std::visit(KuuGeometryOverloads{
                          [](const std::monostate&) { return true; },
                          [](const HbgGeomGrid&) { return false; },
                          [](const HbgSparseGrid& grid) { return grid.hasCells(); }, // on purpose
                          [](const auto& elements) { return elements.isEmpty(); },
                      },
                      m_geometry);
}

HbgBox KuuGeometrySet::getBoundingBox() const
{
    return std::visit(KuuGeometryOverloads{
                          [](const std::monostate&) { return HbgBox(); },
                          [](const auto& container) { return container.getBoundingBox(); },
                      },
                      m_geometry);
}

const HbgGeomPointSet& KuuGeometrySet::toPointSet() const
{
    return containerOf<HbgGeomPointSet>(m_geometry,
                                        QStringLiteral("The geometry set holds no points."));
}

const HbgGeomPolylineSet& KuuGeometrySet::toPolylineSet() const
{
    return containerOf<HbgGeomPolylineSet>(m_geometry,
                                           QStringLiteral("The geometry set holds no polylines."));
}

const HbgGeomPolygonSet& KuuGeometrySet::toPolygonSet() const
{
    return containerOf<HbgGeomPolygonSet>(m_geometry,
                                          QStringLiteral("The geometry set holds no polygons."));
}

const HbgGeomGrid& KuuGeometrySet::toGrid() const
{
    return containerOf<HbgGeomGrid>(m_geometry, QStringLiteral("The geometry set holds no grid."));
}

const HbgSparseGrid& KuuGeometrySet::toSparseGrid() const
{
    return containerOf<HbgSparseGrid>(m_geometry,
                                      QStringLiteral("The geometry set holds no sparse grid."));
}

const HbgMeshSet& KuuGeometrySet::toMeshSet() const
{
    return containerOf<HbgMeshSet>(m_geometry, QStringLiteral("The geometry set holds no meshes."));
}

bool KuuGeometrySet::operator==(const KuuGeometrySet& other) const
{
    return m_kind == other.m_kind && m_geometry == other.m_geometry;
}
