#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/observable/KuoOneNotice.h>
#include <util/utils/KuuGeometrySample.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>

namespace
{
constexpr char SOURCE_PATH[] = "dataset/KudMemoryDatasetGrid";

QString tr(const char* text)
{
    return QCoreApplication::translate("KudMemoryDatasetGrid", text);
}

/// The table numbers its samples with 32 bits.
bool fitsTable(qint64 nodeCount)
{
    return !HbbGlobal::isUndefined(nodeCount) && nodeCount > std::numeric_limits<int>::min() &&
           nodeCount < std::numeric_limits<int>::max();
}

/// A grid of either kind that has no nodes, or whose nodes have places: of no other a memento could
/// be read back.
bool isUsable(const KuuGeometrySet& geometrySet)
{
    if (!geometrySet.isGrid())
        return false;
    const HbgGeomGrid& grid =
        geometrySet.isSparseGrid() ? geometrySet.toSparseGrid().getGrid() : geometrySet.toGrid();
    return grid.isValid() || geometrySet.getSampleCount() == 0;
}
} // namespace

KudMemoryDatasetGrid::KudMemoryDatasetGrid(const QString& name)
    : KudAMemoryDataset(name, QStringLiteral("Grid"), HbdESupport::GRID)
{
    // The grid says how many samples there are.
    _table().setFlag(Ku::CanCreateSamples, false);
    _table().setFlag(Ku::CanDeleteSamples, false);
}

KudMemoryDatasetGrid::~KudMemoryDatasetGrid() = default;

QByteArray KudMemoryDatasetGrid::getClassType()
{
    return QByteArrayLiteral("LuMemoryDatasetGrid");
}

KudMemoryDatasetGrid* KudMemoryDatasetGrid::convert(KudADataset* dataset)
{
    const bool matches = dataset != nullptr && dataset->getType() == getClassType();
    return matches ? static_cast<KudMemoryDatasetGrid*>(dataset) : nullptr;
}

const KudMemoryDatasetGrid* KudMemoryDatasetGrid::convert(const KudADataset* dataset)
{
    return convert(const_cast<KudADataset*>(dataset));
}

void KudMemoryDatasetGrid::setGeometrySet(const KuuGeometrySet& geometrySet)
{
    if (!isUsable(geometrySet))
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("Invalid geometry set."));
    const qint64 nodeCount = geometrySet.getSampleCount();
    if (!fitsTable(nodeCount))
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("Too many samples for a Grid Memory dataset."));

    // At once, so that who observes the table never meets it without its samples.
    HbdDataTable samples;
    samples.setSampleCount(static_cast<int>(nodeCount));
    KuoOneNotice<KudDatasetModif> one(*this);
    m_geometrySet = geometrySet;
    _table().setDataTable(std::move(samples));
    notifyReset();
    one.send();
}

QByteArray KudMemoryDatasetGrid::getType() const
{
    return getClassType();
}

KudEDatasetType KudMemoryDatasetGrid::getDatasetType() const
{
    return KudEDatasetType::GRID;
}

bool KudMemoryDatasetGrid::is3D() const
{
    return m_geometrySet.getDimension() == HbgEDimension::DIM_3D;
}

HbgBox KudMemoryDatasetGrid::getBoundingBox() const
{
    return m_geometrySet.getBoundingBox();
}

int KudMemoryDatasetGrid::createObject(const KuuGeometrySample&)
{
    return -1;
}

KuuGeometrySample KudMemoryDatasetGrid::getObject(int) const
{
    HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("Not Yet Implemented."));
}

void KudMemoryDatasetGrid::updateObject(int, const KuuGeometrySample&) {}

void KudMemoryDatasetGrid::deleteObject(int) {}

void KudMemoryDatasetGrid::deleteObjects(const HbiIntervalIntSmallDisjoint&) {}

void KudMemoryDatasetGrid::deleteAllObjects() {}

HbgEGeometrySet KudMemoryDatasetGrid::getGeometry() const
{
    return m_geometrySet.isSparseGrid() ? HbgEGeometrySet::GRID_SPARSE : HbgEGeometrySet::GRID;
}

KuuGeometrySet KudMemoryDatasetGrid::readGeometrySet() const
{
    return m_geometrySet;
}

void KudMemoryDatasetGrid::clearAll()
{
    m_geometrySet = KuuGeometrySet();
    KudAMemoryDataset::clearAll();
}

void KudMemoryDatasetGrid::_saveGeometry(KuuMemento& memento) const
{
    if (m_geometrySet.isValid())
        memento.setField(QStringLiteral("geometry"), m_geometrySet.toVariantMap());
}

void KudMemoryDatasetGrid::_restoreGeometry(const KuuMemento& memento, const HbdDataTable& table)
{
    KuuGeometrySet geometrySet;
    const QVariant saved = memento.getField(QStringLiteral("geometry"));
    if (saved.isValid()) {
        bool ok = false;
        geometrySet = KuuGeometrySet::fromVariantMap(saved.toMap(), &ok);
        if (!ok || !geometrySet.isGrid())
            throw HbeUserError(tr("The geometry of the saved grid is not valid."));
    }
    if (geometrySet.getSampleCount() != table.getSampleCount()) {
        throw HbeUserError(tr("The saved grid has %1 nodes, but its table has %2 samples.")
                               .arg(geometrySet.getSampleCount())
                               .arg(table.getSampleCount()));
    }
    m_geometrySet = geometrySet;
}
