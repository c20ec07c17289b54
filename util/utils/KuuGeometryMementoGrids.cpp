// Full and sparse grids as fields of a map.

#include "KuuGeometryMemento.h"

#include <basic/base/HbbGlobal.h>
#include <basic/geometry/HbgSparseGrid.h>

#include <QtCore/QLocale>
#include <QtCore/QStringList>

#include <cmath>

namespace
{
const QString NODES = QStringLiteral("nodes");
const QString ORIGIN = QStringLiteral("origin");
const QString STEPS = QStringLiteral("steps");
const QString ROTATION = QStringLiteral("rotation");
const QString CELLS = QStringLiteral("cells");

/// The shortest texts that read back as the same doubles.
QString numbersText(const double* values, int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(QString::number(values[i], 'g', QLocale::FloatingPointShortest));
    return texts.join(QLatin1Char(' '));
}

/// Exactly `count` numbers.
std::vector<double> readNumbers(const QVariantMap& map, const QString& key, std::size_t count)
{
    std::vector<double> values = KuuGeometryMemento::readNumbers(map, key);
    KuuGeometryMemento::require(values.size() == count);
    return values;
}

std::vector<int> readNodeCounts(const QVariantMap& map, int axisCount)
{
    const QStringList texts = map.value(NODES).toString().split(QLatin1Char(' '));
    KuuGeometryMemento::require(texts.size() == axisCount);
    std::vector<int> counts;
    for (const QString& text : texts) {
        bool isNumber = false;
        counts.push_back(text.toInt(&isNumber));
        KuuGeometryMemento::require(isNumber && counts.back() >= 0);
    }
    return counts;
}

HbgGeomGrid makeGrid(const QVariantMap& map, const HbgEDimension& dimension)
{
    const int axisCount = dimension.getValue();
    const auto n = readNodeCounts(map, axisCount);
    const auto origin = readNumbers(map, ORIGIN, std::size_t(axisCount));
    const auto steps = readNumbers(map, STEPS, std::size_t(axisCount));
    const double rotation = readNumbers(map, ROTATION, 1).front();
    if (dimension == HbgEDimension::DIM_2D)
        return {n[0], n[1], {origin[0], origin[1]}, steps[0], steps[1], rotation};
    return {n[0],     n[1],     n[2],     {origin[0], origin[1], origin[2]},
            steps[0], steps[1], steps[2], rotation};
}
} // namespace

std::vector<double> KuuGeometryMemento::readNumbers(const QVariantMap& map, const QString& key)
{
    require(map.contains(key));
    const QString text = map.value(key).toString();
    std::vector<double> values;
    for (const QStringRef& part : text.splitRef(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        bool isNumber = false;
        values.push_back(part.toDouble(&isNumber));
        require(isNumber && std::isfinite(values.back()));
    }
    return values;
}

void KuuGeometryMemento::encode(const HbgGeomGrid& any, QVariantMap& map)
{
    const HbgGeomGrid grid = any.isValid() ? any : HbgGeomGrid(any.getDimension());
    const int axisCount = grid.getDimension().getValue();
    const int nodes[] = {grid.getNx(), grid.getNy(), grid.getNz()};
    const HbgVector3D origin = grid.getOrigin();
    const double origins[] = {origin.x, origin.y, origin.z};
    const double steps[] = {grid.getDx(), grid.getDy(), grid.getDz()};
    const double rotation = grid.getRotation();
    QStringList nodeTexts;
    for (int axis = 0; axis < axisCount; ++axis)
        nodeTexts.append(QString::number(nodes[axis]));
    map[NODES] = nodeTexts.join(QLatin1Char(' '));
    map[ORIGIN] = numbersText(origins, axisCount);
    map[STEPS] = numbersText(steps, axisCount);
    map[ROTATION] = numbersText(&rotation, 1);
}

void KuuGeometryMemento::decode(const QVariantMap& map, HbgGeomGrid& grid)
{
    const HbgGeomGrid made = makeGrid(map, grid.getDimension());
    require(made.isValid() || made.getNodeCount() == 0);
    if (made.isValid())
        grid = made; // else there are no nodes in it, as it came
}

void KuuGeometryMemento::encode(const HbgSparseGrid& grid, QVariantMap& map)
{
    encode(grid.getGrid(), map);
    // How many nodes are left out and how many are there, in turns: regular patterns become
    // repeated small numbers, which compress well.
    std::vector<qint64> runs;
    qint64 next = 0;
    if (grid.isValid()) {
        for (const HbiIntervalIntSmallO64& interval : grid.getNodes().intervals()) {
            runs.push_back(interval.getMin() - next);
            runs.push_back(interval.getLength());
            next = interval.getMax() + 1;
        }
    }
    writeCount(map, grid.isValid() ? grid.getCellCount() : 0);
    writeArray(map, CELLS, runs);
}

void KuuGeometryMemento::decode(const QVariantMap& map, HbgSparseGrid& grid)
{
    HbgGeomGrid whole(grid.getDimension());
    decode(map, whole);
    const qint64 nodeCount = std::max<qint64>(whole.getNodeCount(), 0); // undefined is negative
    const quint64 count = readCount(map, nodeCount);
    const PackedArray<qint64> array(map, CELLS);
    require(array.getLength() % 2 == 0 && array.getLength() / 2 <= count);

    HbiIntervalIntSmallO64Disjoint nodes;
    qint64 next = 0;
    const std::vector<qint64> runs = array.unpack();
    for (std::size_t i = 0; i < runs.size(); i += 2) {
        const qint64 gap = runs[i];
        const qint64 length = runs[i + 1];
        require(gap >= (i == 0 ? 0 : 1) && gap <= nodeCount - next);
        next += gap;
        require(length >= 1 && length <= nodeCount - next);
        nodes.add(HbiIntervalIntSmallO64(next, next + length - 1));
        next += length;
    }
    require(quint64(nodes.getCount()) == count);
    grid = HbgSparseGrid(whole, nodes);
}
