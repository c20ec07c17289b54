// The memento form of a geometry set: a map of texts.
//
//   every set      kind: key of HbgEGeometrySet
//   POINTS, GRID   dimension: key of HbgEDimension
//   POINTS         x, y, and in 3D z: numbers separated by blanks, one per point
//   GRID           nodes: nx ny nz; origin: x y z; steps: dx dy dz (z parts in 3D only);
//                  rotation: degrees
//
// Numbers are the shortest that read back as the same double.

#include <util/utils/KuuGeometrySet.h>

#include <QtCore/QLocale>
#include <QtCore/QStringList>

#include <cmath>

namespace
{

const QString KIND = QStringLiteral("kind");
const QString DIMENSION = QStringLiteral("dimension");
const QString X = QStringLiteral("x");
const QString Y = QStringLiteral("y");
const QString Z = QStringLiteral("z");
const QString NODES = QStringLiteral("nodes");
const QString ORIGIN = QStringLiteral("origin");
const QString STEPS = QStringLiteral("steps");
const QString ROTATION = QStringLiteral("rotation");

QString encode(const double* values, int count)
{
    QString text;
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            text += QLatin1Char(' ');
        text += QString::number(values[i], 'g', QLocale::FloatingPointShortest);
    }
    return text;
}

/// The numbers of an entry; `ok` becomes false for anything else in it, and stays as it is
/// otherwise.
QVector<double> decode(const QVariantMap& map, const QString& key, bool& ok)
{
    QVector<double> values;
    const QString text = map.value(key).toString();
    for (const QStringRef& part : text.splitRef(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        bool isNumber = false;
        values.append(part.toDouble(&isNumber));
        ok = ok && isNumber && std::isfinite(values.last());
    }
    ok = ok && map.contains(key);
    return values;
}

/// Exactly `count` numbers.
QVector<double> decode(const QVariantMap& map, const QString& key, int count, bool& ok)
{
    QVector<double> values = decode(map, key, ok);
    ok = ok && values.size() == count;
    values.resize(count);
    return values;
}

void encodePoints(const HbgGeomPointSet& points, QVariantMap& map)
{
    map[DIMENSION] = points.getDimension().getKey();
    map[X] = encode(points.getX().constData(), points.getCount());
    map[Y] = encode(points.getY().constData(), points.getCount());
    if (points.getDimension() == HbgEDimension::DIM_3D)
        map[Z] = encode(points.getZ().constData(), points.getCount());
}

HbgGeomPointSet decodePoints(const QVariantMap& map, const HbgEDimension& dimension, bool& ok)
{
    const QVector<double> x = decode(map, X, ok);
    const QVector<double> y = decode(map, Y, x.size(), ok);
    QVector<double> z;
    if (dimension == HbgEDimension::DIM_3D)
        z = decode(map, Z, x.size(), ok);
    HbgGeomPointSet points(dimension);
    points.setCoordinates(x, y, z);
    return points;
}

void encodeGrid(const HbgGeomGrid& grid, QVariantMap& map)
{
    const int count = grid.getDimension().getValue();
    const int nodes[] = {grid.getNx(), grid.getNy(), grid.getNz()};
    const HbgVector3D origin = grid.getOrigin();
    const double origins[] = {origin.x, origin.y, origin.z};
    const double steps[] = {grid.getDx(), grid.getDy(), grid.getDz()};
    const double rotation = grid.getRotation();
    QStringList nodeTexts;
    for (int axis = 0; axis < count; ++axis)
        nodeTexts.append(QString::number(nodes[axis]));
    map[DIMENSION] = grid.getDimension().getKey();
    map[NODES] = nodeTexts.join(QLatin1Char(' '));
    map[ORIGIN] = encode(origins, count);
    map[STEPS] = encode(steps, count);
    map[ROTATION] = encode(&rotation, 1);
}

HbgGeomGrid decodeGrid(const QVariantMap& map, const HbgEDimension& dimension, bool& ok)
{
    const int count = dimension.getValue();
    int nodes[3] = {0, 0, 0};
    const QStringList nodeTexts = map.value(NODES).toString().split(QLatin1Char(' '));
    ok = ok && nodeTexts.size() == count;
    for (int axis = 0; ok && axis < count; ++axis)
        nodes[axis] = nodeTexts[axis].toInt(&ok);
    const QVector<double> origin = decode(map, ORIGIN, count, ok);
    const QVector<double> steps = decode(map, STEPS, count, ok);
    const double rotation = decode(map, ROTATION, 1, ok).first();
    if (dimension == HbgEDimension::DIM_2D)
        return {nodes[0], nodes[1], {origin[0], origin[1]}, steps[0], steps[1], rotation};
    return {nodes[0], nodes[1], nodes[2], {origin[0], origin[1], origin[2]},
            steps[0], steps[1], steps[2], rotation};
}

} // namespace

QVariantMap KuuGeometrySet::toVariantMap() const
{
    QVariantMap map{{KIND, m_kind.getKey()}};
    if (const auto* points = std::get_if<HbgGeomPointSet>(&m_geometry))
        encodePoints(*points, map);
    else if (const auto* grid = std::get_if<HbgGeomGrid>(&m_geometry))
        encodeGrid(*grid, map);
    return map;
}

KuuGeometrySet KuuGeometrySet::fromVariantMap(const QVariantMap& map, bool* ok)
{
    const QString kindKey = map.value(KIND).toString();
    const QString dimensionKey = map.value(DIMENSION).toString();
    const HbgEGeometrySet kind = HbgEGeometrySet::fromKey(kindKey, HbgEGeometrySet::NONE);
    const HbgEDimension dimension = HbgEDimension::fromKey(dimensionKey, HbgEDimension::DIM_2D);
    const bool hasContainer = KuuGeometrySet(kind, dimension).isValid();

    bool isWhole = HbgEGeometrySet::existsKey(kindKey);
    KuuGeometrySet set(kind, dimension);
    if (hasContainer) {
        isWhole = isWhole && HbgEDimension::existsKey(dimensionKey);
        if (kind == HbgEGeometrySet::POINTS)
            set = KuuGeometrySet(decodePoints(map, dimension, isWhole));
        else
            set = KuuGeometrySet(decodeGrid(map, dimension, isWhole));
    } else {
        isWhole = isWhole && map.size() == 1; // whatever else is there cannot be held
    }
    if (ok)
        *ok = isWhole;
    return isWhole ? set : KuuGeometrySet();
}
