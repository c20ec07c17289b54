#include <util/dataset/KudAMemoryDataset.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableMemento.h>
#include <util/observable/KuoOneNotice.h>

#include "KudUnitCodec.h"

#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdVariableText.h>

namespace
{
// The single text of a coordinate system says neither that it is local nor how it was named.
void saveCoordSystem(const KuuCoordSystem& coordSystem, KuuMemento& memento)
{
    memento.setField(QStringLiteral("coordSystem"), coordSystem.serialize());
    memento.setField(QStringLiteral("coordSystemName"), coordSystem.getName());
    if (coordSystem.hasIgnfCode() && coordSystem.hasEpsgCode())
        memento.setField(QStringLiteral("coordSystemEpsg"), coordSystem.getEpsgCode());
    if (coordSystem.isLocal()) {
        memento.setField(QStringLiteral("coordSystemLocalUnit"),
                         KuuMementoCodec<HbuUnit>::encode(coordSystem.getUnit()));
    }
}

KuuCoordSystem readCoordSystem(const KuuMemento& memento)
{
    const auto field = [&memento](const char* key) { return memento.getField(QLatin1String(key)); };
    KuuCoordSystem coordSystem = KuuCoordSystem::unserialize(field("coordSystem").toString());
    HbuUnit localUnit;
    if (field("coordSystemLocalUnit").isValid() &&
        KuuMementoCodec<HbuUnit>::decode(field("coordSystemLocalUnit"), localUnit))
        coordSystem = KuuCoordSystem::createLocal(localUnit);
    if (field("coordSystemEpsg").isValid()) {
        coordSystem = KuuCoordSystem::createFromFields(
            coordSystem.getName(), field("coordSystemEpsg").toString(), coordSystem.getIgnfCode(),
            coordSystem.getProj4());
    }
    if (field("coordSystemName").isValid())
        coordSystem.changeName(field("coordSystemName").toString());
    return coordSystem;
}
} // namespace

KudAMemoryDataset::KudAMemoryDataset(const QString& name, const QString& tableName,
                                     const HbdESupport& support)
    : KudADataset(Ku::DatasetFlags(Ku::MEMORY_DATASET_FLAGS))
    , m_name(name)
    , m_support(support)
    , m_table(std::make_unique<KudMemoryDataTable>(tableName, support))
{
    _observeTable(m_table.get());
}

KudAMemoryDataset::~KudAMemoryDataset() = default;

QString KudAMemoryDataset::getName() const
{
    return m_name;
}

void KudAMemoryDataset::setName(const QString& name)
{
    m_name = name;
}

QIcon KudAMemoryDataset::getIcon() const
{
    return QIcon();
}

QString KudAMemoryDataset::getSourcePath() const
{
    return QStringLiteral("Memory");
}

bool KudAMemoryDataset::isValid() const
{
    return true;
}

QString KudAMemoryDataset::getSourceId() const
{
    return getId();
}

bool KudAMemoryDataset::is2D() const
{
    return !is3D();
}

bool KudAMemoryDataset::hasObject() const
{
    return getObjectCount() > 0;
}

int KudAMemoryDataset::getObjectCount() const
{
    return m_table->getSampleCount();
}

KuuCoordSystem KudAMemoryDataset::getCoordSystem() const
{
    return m_table->getCoordSystem();
}

void KudAMemoryDataset::setCoordSystem(const KuuCoordSystem& coordSystem)
{
    m_table->setCoordSystem(coordSystem);
}

HbuUnit KudAMemoryDataset::getCoordinateUnit() const
{
    return m_table->getCoordinateUnit();
}

HbuUnit KudAMemoryDataset::getElevationUnit() const
{
    return m_table->getElevationUnit();
}

KudDatasetVariable KudAMemoryDataset::getNameVariable() const
{
    return m_table->getStructuralVariable(HbdEVarRole::NAME);
}

void KudAMemoryDataset::setObjectName(int rank, const QString& name)
{
    m_table->updateValue(getNameVariable(), rank, name);
}

int KudAMemoryDataset::getTableCount() const
{
    return 1;
}

KudADataTable* KudAMemoryDataset::getTableAt(int i) const
{
    return i == 0 ? m_table.get() : nullptr;
}

KudADataTable* KudAMemoryDataset::getObjectTable() const
{
    return m_table.get();
}

HbdESupport KudAMemoryDataset::getTableRole(const KudADataTable* table) const
{
    return table == m_table.get() ? m_support : HbdESupport::NONE;
}

KudADataTable* KudAMemoryDataset::getTable(const QString& name) const
{
    return name == m_table->getName() ? m_table.get() : nullptr;
}

KudADataTable* KudAMemoryDataset::getTable(const HbdESupport& support) const
{
    return support == m_support ? m_table.get() : nullptr;
}

QString KudAMemoryDataset::getTableName(const KudADataTable* table) const
{
    return table == m_table.get() ? m_table->getName() : QString();
}

QStringList KudAMemoryDataset::_getTableList() const
{
    return {m_table->getName()};
}

QMap<qint64, QString> KudAMemoryDataset::readObjectIdsAndNames() const
{
    const HbdAVariable* ids =
        m_table->readValues(m_table->getStructuralVariable(HbdEVarRole::OBJECT_ID));
    const HbdAVariable* names = m_table->readValues(getNameVariable());
    QMap<qint64, QString> objects;
    for (int rank = 0; rank < getObjectCount(); ++rank) {
        if (ids != nullptr && ids->isUndefined(rank))
            continue; // has no identifier, and must not take that of another
        const qint64 id = ids == nullptr ? rank : ids->getVariant(rank).toLongLong();
        objects.insert(id, names == nullptr ? QString() : names->getVariant(rank).toString());
    }
    return objects;
}

void KudAMemoryDataset::clearAll()
{
    m_table->clearDataTable();
}

void KudAMemoryDataset::_updateMemento(KuuMemento& memento) const
{
    memento.setField(QStringLiteral("name"), m_name);
    saveCoordSystem(getCoordSystem(), memento);
    QVariantMap table = KudTableMemento::toMap(m_table->getDataTable());
    table.insert(QStringLiteral("flags"), int(m_table->getFlags()));
    KudTableMemento::addMask(*m_table->getMask(), table);
    memento.setField(QStringLiteral("table"), table);
    _saveGeometry(memento);
}

void KudAMemoryDataset::_setFromMemento(const KuuMemento& memento)
{
    const QVariantMap saved = memento.getField(QStringLiteral("table")).toMap();
    HbdDataTable table = KudTableMemento::fromMap(saved);
    const QBitArray mask = KudTableMemento::getMask(saved, table.getSampleCount());
    const KuuCoordSystem coordSystem = readCoordSystem(memento);
    int flags = int(m_table->getFlags());
    KuuMementoCodec<int>::decode(saved.value(QStringLiteral("flags")), flags);
    _restoreGeometry(memento, table); // nothing is refused any more

    m_name = memento.getField(QStringLiteral("name")).toString();
    m_table->setCoordSystem(coordSystem);
    m_table->setFlags(Ku::DatasetFlags(flags));
    KuoOneNotice<KudDataTableModif> one(*m_table);
    m_table->setDataTable(std::move(table));
    if (!mask.isEmpty())
        m_table->getMask()->setBitArray(mask);
    one.send();
}

void KudAMemoryDataset::_saveGeometry(KuuMemento&) const {}

void KudAMemoryDataset::_restoreGeometry(const KuuMemento&, const HbdDataTable&) {}
