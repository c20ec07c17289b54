#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/dataset/KudDatasetVariableFilter.h>
#include <util/dataset/KudSelector.h>
#include <util/observable/KuoOneNotice.h>
#include <util/utils/KuuMementoFields.h>

#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableText.h>

namespace
{
constexpr int MEMENTO_VERSION = 100;
} // namespace

/// The fields that every dataset saves.
struct KudADataset::Fields {
    static const KuuMementoFields<KudADataset>& rows()
    {
        using Field = KuuMementoField<KudADataset>;
        static const KuuMementoFields<KudADataset> fields = {
            Field::computed<int>(
                "flags", [](const KudADataset& d) { return int(d.m_flags); },
                [](KudADataset& d, const int& flags) {
                    d.m_flags = Ku::DatasetFlags(flags);
                    return true;
                }),
            {"shared", &KudADataset::m_isShared},
            {"defaultObjectName", &KudADataset::m_defaultObjectName},
            Field::computed<QVariantMap>(
                "tagFlags", [](const KudADataset& d) { return tagFlags(d); },
                [](KudADataset& d, const QVariantMap& map) { return setTagFlags(d, map); }),
            Field::computed<QString>(
                "interval", [](const KudADataset& d) { return intervalText(d); },
                [](KudADataset& d, const QString& text) { return setIntervalText(d, text); }),
            Field::computed<QVariantMap>(
                "hiddenRoles", [](const KudADataset& d) { return hiddenRoles(d); },
                [](KudADataset& d, const QVariantMap& map) { return setHiddenRoles(d, map); }),
        };
        return fields;
    }

    /// "all", or the ranges of the samples: "0..99 200..299".
    static QString intervalText(const KudADataset& dataset)
    {
        if (dataset.m_interval == nullptr)
            return QStringLiteral("all");
        QStringList ranges;
        for (const HbiIntervalIntSmallO64& range : dataset.m_interval->intervals())
            ranges << QString::number(range.getMin()) + QLatin1String("..") +
                          QString::number(range.getMax());
        return ranges.join(QLatin1Char(' '));
    }

    static bool setIntervalText(KudADataset& dataset, const QString& text)
    {
        if (text == QLatin1String("all")) {
            dataset.removeInterval();
            return true;
        }
        HbiIntervalIntSmallO64Disjoint interval;
        for (const QString& range : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const QStringList ends = range.split(QLatin1String(".."));
            bool isFirst = false;
            bool isLast = false;
            const qint64 first = ends.first().toLongLong(&isFirst);
            const qint64 last = ends.last().toLongLong(&isLast);
            if (ends.size() != 2 || !isFirst || !isLast || first > last)
                return false;
            interval.add(HbiIntervalIntSmallO64(first, last));
        }
        dataset.setInterval(interval);
        return true;
    }

    static QVariantMap hiddenRoles(const KudADataset& dataset)
    {
        QVariantMap map;
        for (auto entry = dataset.m_hiddenRoles.begin(); entry != dataset.m_hiddenRoles.end();
             ++entry) {
            QStringList keys;
            for (const HbdEVarRole& role : HbdEVarRole::createIterator()) {
                if (entry.value().contains(role))
                    keys << role.getKey();
            }
            map.insert(entry.key().getKey(), keys);
        }
        return map;
    }

    static bool setHiddenRoles(KudADataset& dataset, const QVariantMap& map)
    {
        QMap<HbdESupport, HbdVarRoleFlags> roles;
        for (const HbdESupport& support : dataset.m_hiddenRoles.keys())
            roles.insert(support, HbdVarRoleFlags()); // what the memento does not name is shown
        for (auto entry = map.begin(); entry != map.end(); ++entry) {
            QStringList keys;
            if (!HbdESupport::existsKey(entry.key()) ||
                !KuuMementoCodec<QStringList>::decode(entry.value(), keys) ||
                !std::all_of(keys.begin(), keys.end(), &HbdEVarRole::existsKey))
                return false;
            HbdVarRoleFlags& hidden = roles[HbdESupport::fromKey(entry.key())];
            hidden = HbdVarRoleFlags();
            for (const QString& key : keys)
                hidden |= HbdEVarRole::fromKey(key);
        }
        dataset.hideStructuralRoles(roles);
        return true;
    }

    static QVariantMap tagFlags(const KudADataset& dataset)
    {
        QVariantMap map;
        for (auto tag = dataset.m_tagFlags.begin(); tag != dataset.m_tagFlags.end(); ++tag)
            map.insert(tag.key(), int(tag.value()));
        return map;
    }

    static bool setTagFlags(KudADataset& dataset, const QVariantMap& map)
    {
        QMap<QString, VarFlags> flags;
        for (auto tag = map.begin(); tag != map.end(); ++tag) {
            int bits = 0;
            if (!KuuMementoCodec<int>::decode(tag.value(), bits))
                return false;
            flags.insert(tag.key(), VarFlags(bits));
        }
        dataset.m_tagFlags = flags;
        return true;
    }
};

KudADataset::KudADataset(Ku::DatasetFlags flags)
    : KuoAObservable<KudDatasetModif>(QStringLiteral("KudADataset"))
    , KuuAMementoOriginator(getMementoRelation())
    , m_flags(flags)
{
}

KudADataset::~KudADataset()
{
    for (const auto* table : m_observedTables)
        table->removeObserver(this);
}

const KudADataset* KudDatasetModif::dataset() const
{
    return _getObservable();
}

QString KudADataset::getMementoRelation()
{
    return QStringLiteral("Dataset");
}

QString KudADataset::getId() const
{
    return KuuAMementoOriginator::getId().getUuid();
}

bool KudADataset::isMultiLayer() const
{
    return false;
}

KudADataset* KudADataset::getSubDataset(const QString&)
{
    return this;
}

void KudADataset::_clearGeometryCache() const {}

KudADataTable* KudADataset::tableOf(const KudDatasetVariable& variable) const
{
    for (int i = 0; i < getTableCount(); ++i) {
        if (getTableAt(i)->containsVariable(variable))
            return getTableAt(i);
    }
    return KudADataTable::staticEmptyDataTable();
}

bool KudADataset::containsVariable(const KudDatasetVariable& variable) const
{
    return tableOf(variable)->containsVariable(variable);
}

KudDatasetVariable KudADataset::createVariable(const HbdVariableDetails& details,
                                               const HbdESupport& support)
{
    KudADataTable* table = getTable(support);
    return table == nullptr ? KudDatasetVariable() : table->createVariable(details);
}

bool KudADataset::deleteVariable(const KudDatasetVariable& variable)
{
    return testFlag(Ku::CanDeleteVariables) && tableOf(variable)->deleteVariable(variable);
}

bool KudADataset::renameVariable(const KudDatasetVariable& variable, const QString& name)
{
    return tableOf(variable)->renameVariable(variable, name);
}

KudDatasetVariableList KudADataset::getVariables(const HbdVarTypeFlags& types,
                                                 const HbdESupport& support) const
{
    const KudADataTable* table = getTable(support);
    return table == nullptr ? KudDatasetVariableList() : table->getVariables(types);
}

KudDatasetVariableList KudADataset::getVariables(const KudDatasetVariableFilter& filter) const
{
    KudDatasetVariableList variables;
    for (int i = 0; i < getTableCount(); ++i)
        variables.append(getTableAt(i)->getVariables(filter));
    return variables;
}

KudDatasetVariableList KudADataset::getVariables(const QString& name,
                                                 const HbdESupport& support) const
{
    const KudDatasetVariableList all = getVariables(HbdVarTypeFlags::ANY, support);
    KudDatasetVariableList variables;
    for (int i = 0; i < all.count(); ++i) {
        if (all.at(i).variable() == name)
            variables.append(all.at(i));
    }
    return variables;
}

HbdVariableDetails KudADataset::getVariableDetails(const KudDatasetVariable& variable) const
{
    return tableOf(variable)->getDetails(variable);
}

bool KudADataset::setVariableDetails(const KudDatasetVariable& variable,
                                     const HbdVariableDetails& details)
{
    return tableOf(variable)->setDetails(variable, details);
}

HbdEnumCatalog KudADataset::getVariableCatalog(const KudDatasetVariable& variable) const
{
    return tableOf(variable)->getVariableCatalog(variable);
}

bool KudADataset::isVariableValid(const KudDatasetVariable& variable,
                                  const KudDatasetVariableFilter& filter) const
{
    return tableOf(variable)->isVariableValid(variable, filter);
}

const HbdAVariable* KudADataset::readValues(const KudDatasetVariable& variable) const
{
    return tableOf(variable)->readValues(variable);
}

const HbdANumericVariable* KudADataset::readNumericValues(const KudDatasetVariable& variable) const
{
    return tableOf(variable)->readNumericValues(variable);
}

const HbdVariableText* KudADataset::readStringValues(const KudDatasetVariable& variable) const
{
    return tableOf(variable)->readStringValues(variable);
}

const HbdVariableEnum* KudADataset::readEnumValues(const KudDatasetVariable& variable) const
{
    return dynamic_cast<const HbdVariableEnum*>(readValues(variable));
}

const HbdAVariable* KudADataset::readComponentValues(const KudDatasetVariable& variable,
                                                     const HbdEComponentRole& role) const
{
    return tableOf(variable)->readComponentValues(variable, role);
}

const HbdVariableText*
KudADataset::readNameValuesForColorVariable(const KudDatasetVariable& variable) const
{
    return tableOf(variable)->readStringValues(HbdEVarRole::NAME);
}

bool KudADataset::mask(const HbiIntervalIntSmallDisjoint& ranks, Ku::SelectionFlag flag)
{
    KudADataTable* table = getObjectTable();
    return table != nullptr && table->getMask()->select(ranks, flag);
}

bool KudADataset::mask(int rank, Ku::SelectionFlag flag)
{
    return mask(HbiIntervalIntSmallDisjoint(rank), flag);
}

bool KudADataset::unmaskAll()
{
    KudADataTable* table = getObjectTable();
    return table != nullptr && table->getMask()->deselectAll();
}

QBitArray KudADataset::getMask() const
{
    const KudADataTable* table = getObjectTable();
    return table == nullptr ? QBitArray() : table->getMaskConst()->getBitArray();
}

QBitArray KudADataset::getHighlight() const
{
    const KudADataTable* table = getObjectTable();
    return table == nullptr ? QBitArray() : table->getHighlightConst()->getBitArray();
}

int KudADataset::readObjectRankFromId(qint64 id) const
{
    const KudADataTable* table = getObjectTable();
    if (table == nullptr)
        return -1;
    const KudDatasetVariable variable = table->getStructuralVariable(HbdEVarRole::OBJECT_ID);
    const HbdAVariable* ids = table->readValues(variable);
    if (ids == nullptr)
        return id >= 0 && id < table->getSampleCount() ? static_cast<int>(id) : -1;
    for (int rank = 0; rank < ids->getCount(); ++rank) {
        if (!ids->isUndefined(rank) && ids->getVariant(rank).toLongLong() == id)
            return rank;
    }
    return -1;
}

KudADataset::VarFlags KudADataset::getTagFlags(const QString& tag) const
{
    return m_tagFlags.value(tag);
}

void KudADataset::setTagFlags(const QString& tag, VarFlags flags)
{
    m_tagFlags.insert(tag, flags);
}

void KudADataset::setTagFlag(const QString& tag, VarFlag flag, bool on)
{
    m_tagFlags[tag].setFlag(flag, on);
}

bool KudADataset::testTagFlag(const QString& tag, VarFlag flag) const
{
    return getTagFlags(tag).testFlag(flag);
}

QStringList KudADataset::getTags(VarFlags flags) const
{
    QStringList tags;
    for (auto tag = m_tagFlags.begin(); tag != m_tagFlags.end(); ++tag) {
        if ((tag.value() & flags) == flags)
            tags << tag.key();
    }
    return tags;
}

void KudADataset::setInterval(const HbiIntervalIntSmallO64Disjoint& interval)
{
    m_interval = std::make_unique<HbiIntervalIntSmallO64Disjoint>(interval);
}

void KudADataset::removeInterval()
{
    m_interval.reset();
}

void KudADataset::hideStructuralRoles(const QMap<HbdESupport, HbdVarRoleFlags>& roles)
{
    for (auto entry = roles.begin(); entry != roles.end(); ++entry) {
        m_hiddenRoles.insert(entry.key(), entry.value());
        if (KudADataTable* table = getTable(entry.key()))
            table->hideStructuralRoles(entry.value());
    }
}

void KudADataset::notifyReset() const
{
    notify(KudDatasetModif(KudDatasetModif::Reset));
}

void KudADataset::update(const KudDataTableModif& notice)
{
    _clearGeometryCache();
    KudADataTable* objectTable = getObjectTable();
    const bool objectsMayBeGone = notice.data().testReason(KudTableModif::Reset) &&
                                  objectTable != nullptr && objectTable != notice.dataTable();
    if (!objectsMayBeGone) {
        notify(KudDatasetModif(notice.dataTable(), notice.data()));
        return;
    }
    KuoOneNotice<KudDatasetModif> one(*this);
    objectTable->clearCache();
    notify(KudDatasetModif(notice.dataTable(), notice.data()));
    notify(KudDatasetModif(objectTable, KudTableModif(KudTableModif::Reset)));
    one.send();
}

void KudADataset::destroyed(const KuoAObservable<KudDataTableModif>* table)
{
    m_observedTables.removeAll(table);
}

void KudADataset::_observeTable(const KudADataTable* table)
{
    table->addObserver(this);
    m_observedTables.append(table);
}

int KudADataset::_getMementoVersion() const
{
    return MEMENTO_VERSION;
}

void KudADataset::_buildMemento(KuuMemento& memento) const
{
    memento.setField(QStringLiteral("type"), getType());
    Fields::rows().build(*this, memento);
    _updateMemento(memento);
}

void KudADataset::_setMemento(const KuuMemento& memento, bool)
{
    KuoOneNotice<KudDatasetModif> one(*this); // whatever the restoring touches
    _setFromMemento(memento);
    Fields::rows().restore(*this, memento);
    notifyReset();
    one.send();
}
