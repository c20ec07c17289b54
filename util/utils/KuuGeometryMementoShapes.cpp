// Points, polylines, polygons and meshes as fields of a map: each level of the structure is an
// array of how many elements of the level below its elements have, and all vertices are one array.

#include "KuuGeometryMemento.h"

#include <basic/base/HbbGlobal.h>
#include <basic/geometry/HbgGeomPointSet.h>
#include <basic/geometry/HbgGeomPolygonSet.h>
#include <basic/geometry/HbgGeomPolylineSet.h>
#include <basic/geometry/HbgMeshSet.h>

#include <algorithm>
#include <cmath>
#include <limits>

using KuuGeometryMemento::Counts;
using KuuGeometryMemento::PackedArray;
using KuuGeometryMemento::readArray;
using KuuGeometryMemento::require;

namespace
{
const QString COUNT = QStringLiteral("count");
const QString COORDINATES = QStringLiteral("coordinates");
const QString POINTS = QStringLiteral("points");
const QString CLOSED = QStringLiteral("closed");
const QString CONTOURS = QStringLiteral("contours");
const QString HOLES = QStringLiteral("holes");
const QString VERTICES = QStringLiteral("vertices");
const QString CELLS = QStringLiteral("cells");
const QString CORNERS = QStringLiteral("corners");
// Points as older versions wrote them: texts of numbers.
const QString X = QStringLiteral("x");
const QString Y = QStringLiteral("y");
const QString Z = QStringLiteral("z");

/// The coordinates of all vertices: X of all, then Y of all, then Z of all if there are elevations.
class Vertices
{
public:
    Vertices(quint64 count, int axisCount)
        : m_values(count * quint64(axisCount))
        , m_count(count)
        , m_is3D(axisCount == 3)
    {
    }
    Vertices(const PackedArray<double>& array, quint64 count, int axisCount)
        : m_count(count)
        , m_is3D(axisCount == 3)
    {
        require(array.getLength() == count * quint64(axisCount));
        m_values = array.unpack();
    }
    void write(QVariantMap& map) const
    {
        KuuGeometryMemento::writeArray(map, COORDINATES, m_values);
    }

    double* axis(int number) { return m_values.data() + quint64(number) * m_count; }

    /// The next vertex; its elevation is undefined, or passed over, in 2D.
    HbgVector3D take()
    {
        const quint64 at = m_next++;
        const double z = m_is3D ? m_values[at + 2 * m_count] : HbbGlobal::D_FFFF;
        return {m_values[at], m_values[at + m_count], z};
    }
    void put(const HbgVector3D& vertex)
    {
        const quint64 at = m_next++;
        m_values[at] = vertex.x;
        m_values[at + m_count] = vertex.y;
        if (m_is3D)
            m_values[at + 2 * m_count] = vertex.z;
    }

private:
    std::vector<double> m_values;
    quint64 m_count;
    bool m_is3D;
    quint64 m_next = 0;
};

QVector<double> column(const double* values, quint64 count)
{
    require(std::all_of(values, values + count, [](double value) { return std::isfinite(value); }));
    QVector<double> copy(static_cast<int>(count));
    std::copy_n(values, count, copy.data());
    return copy;
}

HbgGeomPolygon::Ring takeRing(Vertices& vertices, qint32 count)
{
    HbgGeomPolygon::Ring ring(count);
    for (HbgVector2D& corner : ring)
        corner = vertices.take().toVector2D();
    return ring;
}

void decodeTexts(const QVariantMap& map, HbgGeomPointSet& points)
{
    const auto read = [&map](const QString& key) {
        const std::vector<double> numbers = KuuGeometryMemento::readNumbers(map, key);
        return column(numbers.data(), numbers.size());
    };
    const bool is3D = points.getDimension() == HbgEDimension::DIM_3D;
    const QVector<double> x = read(X);
    const QVector<double> y = read(Y);
    const QVector<double> z = is3D ? read(Z) : QVector<double>();
    require(x.size() == y.size() && (!is3D || z.size() == x.size()));
    points.setCoordinates(x, y, z);
}
} // namespace

Counts KuuGeometryMemento::readCounts(const QVariantMap& map, const QString& key, quint64 length)
{
    Counts result{readArray<qint32>(map, key, length), 0};
    for (const qint32 count : result.counts) {
        require(count >= 0);
        result.sum += quint64(count);
    }
    return result;
}

void KuuGeometryMemento::writeCount(QVariantMap& map, qint64 count)
{
    map[COUNT] = QString::number(count);
}

quint64 KuuGeometryMemento::readCount(const QVariantMap& map, qint64 most)
{
    bool isNumber = false;
    const qint64 count = map.value(COUNT).toString().toLongLong(&isNumber);
    require(isNumber && count >= 0 && count <= most);
    return quint64(count);
}

void KuuGeometryMemento::encode(const HbgGeomPointSet& points, QVariantMap& map)
{
    const quint64 count = quint64(points.getCount());
    Vertices vertices(count, points.getDimension().getValue());
    std::copy_n(points.getX().constData(), count, vertices.axis(0));
    std::copy_n(points.getY().constData(), count, vertices.axis(1));
    if (!points.getZ().isEmpty())
        std::copy_n(points.getZ().constData(), count, vertices.axis(2));
    writeCount(map, points.getCount());
    vertices.write(map);
}

void KuuGeometryMemento::decode(const QVariantMap& map, HbgGeomPointSet& points)
{
    if (!map.contains(COORDINATES)) {
        decodeTexts(map, points);
        return;
    }
    const int axisCount = points.getDimension().getValue();
    const quint64 count = readCount(map);
    Vertices vertices({map, COORDINATES}, count, axisCount);
    points.setCoordinates(column(vertices.axis(0), count), column(vertices.axis(1), count),
                          axisCount == 3 ? column(vertices.axis(2), count) : QVector<double>());
}

void KuuGeometryMemento::encode(const HbgGeomPolylineSet& polylines, QVariantMap& map)
{
    std::vector<qint32> counts;
    std::vector<quint8> closed;
    quint64 sum = 0;
    for (const HbgGeomPolyline& polyline : polylines.getPolylines()) {
        counts.push_back(polyline.getPointCount());
        closed.push_back(polyline.getType() == HbgEPolylineType::CLOSED);
        sum += quint64(polyline.getPointCount());
    }
    Vertices vertices(sum, polylines.getDimension().getValue());
    for (const HbgGeomPolyline& polyline : polylines.getPolylines()) {
        for (const HbgVector3D& point : polyline.getPoints())
            vertices.put(point);
    }
    writeCount(map, polylines.getCount());
    writeArray(map, POINTS, counts);
    writeArray(map, CLOSED, closed);
    vertices.write(map);
}

void KuuGeometryMemento::decode(const QVariantMap& map, HbgGeomPolylineSet& polylines)
{
    const HbgEDimension dimension = polylines.getDimension();
    const Counts points = readCounts(map, POINTS, readCount(map));
    const auto closed = readArray<quint8>(map, CLOSED, points.counts.size());
    require(std::all_of(closed.begin(), closed.end(), [](quint8 flag) { return flag <= 1; }));
    Vertices vertices({map, COORDINATES}, points.sum, dimension.getValue());

    polylines.reserve(static_cast<int>(points.counts.size()));
    for (std::size_t i = 0; i < points.counts.size(); ++i) {
        HbgGeomPolyline polyline(dimension,
                                 closed[i] ? HbgEPolylineType::CLOSED : HbgEPolylineType::OPEN);
        QVector<HbgVector3D> line(points.counts[i]);
        for (HbgVector3D& point : line)
            point = vertices.take();
        require(polyline.setPoints(line));
        polylines.append(polyline);
    }
}

void KuuGeometryMemento::encode(const HbgGeomPolygonSet& polygons, QVariantMap& map)
{
    std::vector<qint32> contours, holes, corners;
    quint64 sum = 0;
    for (const HbgGeomPolygon& polygon : polygons.getPolygons()) {
        contours.push_back(polygon.getContourCount());
        sum += quint64(polygon.getPointCount());
    }
    Vertices vertices(sum, 2);
    const auto putRing = [&](const HbgGeomPolygon::Ring& ring) {
        corners.push_back(ring.size());
        for (const HbgVector2D& corner : ring)
            vertices.put({corner.x, corner.y, 0.});
    };
    for (const HbgGeomPolygon& polygon : polygons.getPolygons()) {
        for (int contour = 0; contour < polygon.getContourCount(); ++contour) {
            holes.push_back(polygon.getHoleCount(contour));
            putRing(polygon.getContour(contour));
            for (int hole = 0; hole < polygon.getHoleCount(contour); ++hole)
                putRing(polygon.getHole(contour, hole));
        }
    }
    writeCount(map, polygons.getCount());
    writeArray(map, CONTOURS, contours);
    writeArray(map, HOLES, holes);
    writeArray(map, CORNERS, corners);
    vertices.write(map);
}

void KuuGeometryMemento::decode(const QVariantMap& map, HbgGeomPolygonSet& polygons)
{
    const Counts contours = readCounts(map, CONTOURS, readCount(map));
    const Counts holes = readCounts(map, HOLES, contours.sum);
    const Counts corners = readCounts(map, CORNERS, contours.sum + holes.sum);
    Vertices vertices({map, COORDINATES}, corners.sum, 2);

    auto nextHoles = holes.counts.begin();
    auto nextRing = corners.counts.begin();
    polygons.reserve(static_cast<int>(contours.counts.size()));
    for (const qint32 contourCount : contours.counts) {
        HbgGeomPolygon polygon;
        for (int contour = 0; contour < contourCount; ++contour) {
            require(polygon.addContour(takeRing(vertices, *nextRing++)));
            for (int hole = *nextHoles++; hole > 0; --hole)
                require(polygon.addHole(contour, takeRing(vertices, *nextRing++)));
        }
        polygons.append(polygon);
    }
}

void KuuGeometryMemento::encode(const HbgMeshSet& meshes, QVariantMap& map)
{
    std::vector<qint32> vertexCounts, cells, corners;
    quint64 sum = 0;
    for (const HbgMesh& mesh : meshes.getMeshes()) {
        vertexCounts.push_back(mesh.getVertexCount());
        cells.push_back(mesh.getCellCount());
        corners.insert(corners.end(), mesh.getCorners().begin(), mesh.getCorners().end());
        sum += quint64(mesh.getVertexCount());
    }
    Vertices vertices(sum, 3);
    for (const HbgMesh& mesh : meshes.getMeshes()) {
        for (const HbgVector3D& vertex : mesh.getVertices())
            vertices.put(vertex);
    }
    writeCount(map, meshes.getCount());
    writeArray(map, VERTICES, vertexCounts);
    writeArray(map, CELLS, cells);
    writeArray(map, CORNERS, corners);
    vertices.write(map);
}

void KuuGeometryMemento::decode(const QVariantMap& map, HbgMeshSet& meshes)
{
    HbgMesh mesh(meshes.getType());
    const int cornerCount = mesh.getCornerCount();
    const Counts vertexCounts = readCounts(map, VERTICES, readCount(map));
    const Counts cells = readCounts(map, CELLS, vertexCounts.counts.size());
    const auto corners = readArray<qint32>(map, CORNERS, cells.sum * quint64(cornerCount));
    Vertices vertices({map, COORDINATES}, vertexCounts.sum, 3);

    auto nextCorner = corners.begin();
    for (std::size_t i = 0; i < cells.counts.size(); ++i) {
        require(cells.counts[i] <= std::numeric_limits<int>::max() / cornerCount);
        QVector<int> meshCorners(cells.counts[i] * cornerCount);
        std::copy_n(nextCorner, meshCorners.size(), meshCorners.begin());
        nextCorner += meshCorners.size();
        QVector<HbgVector3D> meshVertices(vertexCounts.counts[i]);
        for (HbgVector3D& vertex : meshVertices)
            vertex = vertices.take();
        require(mesh.setCells(meshVertices, meshCorners));
        meshes.append(mesh);
    }
}
