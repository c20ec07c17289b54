#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/utils/KuuGeometrySample.h>
#include <util/utils/KuuGeometrySet.h>

#include <basic/base/HbbGlobal.h>
#include <basic/data/HbdANumericVariable.h>
#include <basic/geometry/HbgGeomPointSet.h>
#include <basic/geometry/HbgVector2D.h>
#include <basic/geometry/HbgVector3D.h>

namespace
{
QVector<double> readAll(const HbdANumericVariable* column)
{
    QVector<double> numbers(column == nullptr ? 0 : column->getCount());
    if (column != nullptr)
        column->readNumbers(0, column->getCount(), numbers.data());
    return numbers;
}
} // namespace

KudMemoryDatasetPoint::KudMemoryDatasetPoint(const QString& name)
    : KudAMemoryDataset(name, QStringLiteral("Points"), HbdESupport::POINT)
{
}

KudMemoryDatasetPoint::~KudMemoryDatasetPoint() = default;

QByteArray KudMemoryDatasetPoint::getClassType()
{
    return QByteArrayLiteral("LuMemoryDatasetPoint");
}

KudMemoryDatasetPoint* KudMemoryDatasetPoint::convert(KudADataset* dataset)
{
    const bool matches = dataset != nullptr && dataset->getType() == getClassType();
    return matches ? static_cast<KudMemoryDatasetPoint*>(dataset) : nullptr;
}

const KudMemoryDatasetPoint* KudMemoryDatasetPoint::convert(const KudADataset* dataset)
{
    return convert(const_cast<KudADataset*>(dataset));
}

void KudMemoryDatasetPoint::setTable(const KudMemoryDataTable& table)
{
    _table().setDataTable(table.getDataTable());
}

void KudMemoryDatasetPoint::setDataTable(HbdDataTable table)
{
    _table().setDataTable(std::move(table));
}

void KudMemoryDatasetPoint::initHeaderFrom(const KudADataTable& other)
{
    _table().initHeaderFrom(other);
}

void KudMemoryDatasetPoint::mergePoints(const KudMemoryDatasetPoint& other)
{
    _table().appendTable(other.getPointTable()->getDataTable(), true);
}

QByteArray KudMemoryDatasetPoint::getType() const
{
    return getClassType();
}

KudEDatasetType KudMemoryDatasetPoint::getDatasetType() const
{
    return KudEDatasetType::POINT;
}

bool KudMemoryDatasetPoint::is3D() const
{
    return _table().hasStructuralVariable(HbdEVarRole::Z_COORDINATE);
}

HbgBox KudMemoryDatasetPoint::getBoundingBox() const
{
    const KuuGeometrySet geometry = readGeometrySet();
    return geometry.getBoundingBox();
}

KudADataTable::SampleValues
KudMemoryDatasetPoint::coordinatesOf(const KuuGeometrySample& geometry) const
{
    const KudDatasetVariable x = _table().getStructuralVariable(HbdEVarRole::X_COORDINATE);
    const KudDatasetVariable y = _table().getStructuralVariable(HbdEVarRole::Y_COORDINATE);
    const KudDatasetVariable z = _table().getStructuralVariable(HbdEVarRole::Z_COORDINATE);
    if (!geometry.isPoint() || !x.isValid() || !y.isValid())
        return KudADataTable::SampleValues();

    KuuGeometrySample point = geometry;
    point.convertGeometry(HbgEPrimitive::POINT_3D);
    const HbgVector3D position = point.toPoint3D();
    KudADataTable::SampleValues values{{x, position.x}, {y, position.y}};
    if (z.isValid())
        values.insert(z, position.z);
    return values;
}

int KudMemoryDatasetPoint::createObject(const KuuGeometrySample& geometry)
{
    const KudADataTable::SampleValues values = coordinatesOf(geometry);
    return values.isEmpty() ? -1 : _table().createSample(values);
}

KuuGeometrySample KudMemoryDatasetPoint::getObject(int rank) const
{
    const HbdANumericVariable* x = _table().readXCoordinate();
    const HbdANumericVariable* y = _table().readYCoordinate();
    const HbdANumericVariable* z = _table().readZCoordinate();
    if (x == nullptr || y == nullptr || rank < 0 || rank >= getObjectCount())
        return KuuGeometrySample();
    if (z == nullptr)
        return HbgVector2D{x->getNumber(rank), y->getNumber(rank)};
    return HbgVector3D{x->getNumber(rank), y->getNumber(rank), z->getNumber(rank)};
}

void KudMemoryDatasetPoint::updateObject(int rank, const KuuGeometrySample& geometry)
{
    const KudADataTable::SampleValues values = coordinatesOf(geometry);
    if (!values.isEmpty())
        _table().updateValues(rank, values);
}

void KudMemoryDatasetPoint::deleteObject(int rank)
{
    _table().deleteSample(rank);
}

void KudMemoryDatasetPoint::deleteObjects(const HbiIntervalIntSmallDisjoint& ranks)
{
    _table().deleteSamples(ranks);
}

void KudMemoryDatasetPoint::deleteAllObjects()
{
    _table().deleteAllSamples();
}

HbgEGeometrySet KudMemoryDatasetPoint::getGeometry() const
{
    return HbgEGeometrySet::POINTS;
}

KuuGeometrySet KudMemoryDatasetPoint::readGeometrySet() const
{
    const HbdANumericVariable* x = _table().readXCoordinate();
    const HbdANumericVariable* y = _table().readYCoordinate();
    if (x == nullptr || y == nullptr)
        return KuuGeometrySet();
    HbgGeomPointSet points(is3D() ? HbgEDimension::DIM_3D : HbgEDimension::DIM_2D);
    points.setCoordinates(readAll(x), readAll(y), readAll(_table().readZCoordinate()));
    return KuuGeometrySet(points);
}
