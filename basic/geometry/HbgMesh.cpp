#include <basic/geometry/HbgMesh.h>

#include "HbgCoordinate.h"

#include <basic/base/HbbGlobal.h>

#include <algorithm>
#include <cmath>

static bool isVertex(const HbgVector3D& vertex)
{
    return HbgCoordinate::isVertex(vertex.toVector2D()) && HbgCoordinate::isCoordinate(vertex.z);
}

HbgMesh::HbgMesh(const HbgEMeshType& type)
    : m_isVolume(type == HbgEMeshType::VOLUME)
{
}

HbgEMeshType HbgMesh::getType() const
{
    return m_isVolume ? HbgEMeshType::VOLUME : HbgEMeshType::SURFACE;
}

bool HbgMesh::setCells(const QVector<HbgVector3D>& vertices, const QVector<int>& corners)
{
    const auto isCorner = [count = vertices.size()](int corner) {
        return corner >= 0 && corner < count;
    };
    if (corners.size() % getCornerCount() != 0 ||
        !std::all_of(corners.begin(), corners.end(), isCorner) ||
        !std::all_of(vertices.begin(), vertices.end(), isVertex))
        return false;
    m_vertices = vertices;
    m_corners = corners;
    return true;
}

bool HbgMesh::setVertices(const QVector<HbgVector3D>& vertices)
{
    if (vertices.size() != m_vertices.size() ||
        !std::all_of(vertices.begin(), vertices.end(), isVertex))
        return false;
    m_vertices = vertices;
    return true;
}

void HbgMesh::clear()
{
    m_vertices.clear();
    m_corners.clear();
}

// Cells are measured from one of their own corners: far from the origin, products of the whole
// coordinates would cancel to nothing but rounding.

double HbgMesh::getArea() const
{
    if (m_isVolume)
        return 0.;
    double twice = 0.;
    for (auto corner = m_corners.begin(); corner != m_corners.end(); corner += 3) {
        const HbgVector3D& a = m_vertices[corner[0]];
        twice += crossProduct(m_vertices[corner[1]] - a, m_vertices[corner[2]] - a).length();
    }
    return twice / 2.;
}

double HbgMesh::getVolume() const
{
    if (!m_isVolume)
        return 0.;
    double sixfold = 0.;
    for (auto corner = m_corners.begin(); corner != m_corners.end(); corner += 4) {
        const HbgVector3D& a = m_vertices[corner[0]];
        sixfold += std::abs(
            dotProduct(m_vertices[corner[1]] - a,
                       crossProduct(m_vertices[corner[2]] - a, m_vertices[corner[3]] - a)));
    }
    return sixfold / 6.;
}

HbgBox HbgMesh::getBoundingBox() const
{
    HbgBox box;
    for (const HbgVector3D& vertex : m_vertices)
        box.unite(vertex);
    return box;
}

bool HbgMesh::operator==(const HbgMesh& other) const
{
    return m_isVolume == other.m_isVolume && m_vertices == other.m_vertices &&
           m_corners == other.m_corners;
}
