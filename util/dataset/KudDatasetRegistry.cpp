#include <util/dataset/KudDatasetRegistry.h>
#include <util/dataset/KudGenericDatasetFactory.h>
#include <util/observable/KuoOneNotice.h>
#include <util/utils/KuuMemento.h>

#include "KudDatasetRegistryEntry.h"

#include <basic/base/HbbDebug.h>
#include <basic/base/HbbHtml.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QScopeGuard>

namespace
{
const char SOURCE_PATH[] = "dataset/KudDatasetRegistry";

/// Null for an unknown key.
template <class Key>
KudDatasetRegistryEntry* find(const QHash<Key, std::shared_ptr<KudDatasetRegistryEntry>>& entries,
                              const Key& key)
{
    const auto found = entries.constFind(key);
    return found == entries.constEnd() ? nullptr : found->get();
}
} // namespace

KudDatasetRegistry::KudDatasetRegistry()
    : KuoAObservable<KudDatasetRegistryModif>(QStringLiteral("KudDatasetRegistry"))
{
}

KudDatasetRegistry& KudDatasetRegistry::getInstance()
{
    // Left to the end of the process on purpose: static objects may hold borrowings, and observe.
    static KudDatasetRegistry* const registry = new KudDatasetRegistry;
    return *registry;
}

void KudDatasetRegistry::setDatasetFactory(const KudGenericDatasetFactory* factory)
{
    getInstance().m_factory = factory;
}

KudDatasetPointer<KudADataset> KudDatasetRegistry::create(const KuuMemento& memento,
                                                          const QString& borrower)
{
    const KudGenericDatasetFactory* factory = getInstance().m_factory;
    if (factory == nullptr)
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("There is no dataset factory."));
    return _add(factory->create(memento, true), borrower);
}

KudDatasetPointer<KudADataset> KudDatasetRegistry::_add(std::unique_ptr<KudADataset> dataset,
                                                        const QString& borrower)
{
    if (borrower.isEmpty())
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("A borrower needs a name."));
    // Borrowed before it is told: an observer that borrows and returns would end it otherwise.
    KuoOneNotice<KudDatasetRegistryModif> one(getInstance());
    const QString key = _addDataset(std::move(dataset));
    KudDatasetPointer<KudADataset> pointer(key, borrower);
    one.send();
    return pointer;
}

QString KudDatasetRegistry::_addDataset(std::unique_ptr<KudADataset> dataset)
{
    if (dataset == nullptr)
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("There is no dataset to add."));
    const QString key = dataset->getId();
    if (hasDataset(key)) {
        HBE_PROGRAMMING_ERROR(SOURCE_PATH,
                              tr("There is a dataset of the key '%1' already.").arg(key));
    }
    KudDatasetRegistry& registry = getInstance();
    dataset->addObserver(&registry);
    const auto entry = std::make_shared<KudDatasetRegistryEntry>();
    entry->key = key;
    entry->dataset = std::move(dataset);
    registry.m_entries.insert(key, entry);
    registry.m_entryOfKey.insert(key, entry);
    registry.m_entryOfDataset.insert(entry->dataset.get(), entry);
    registry.notify(KudDatasetRegistryModif(KudDatasetRegistryModif::DatasetAdded, key));
    return key;
}

KudDatasetRegistry::Entry KudDatasetRegistry::_ref(const QString& key, const QString& borrower)
{
    if (borrower.isEmpty())
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("A borrower needs a name."));
    const Entry entry = getInstance().m_entryOfKey.value(key);
    if (entry)
        entry->borrowers.append(borrower);
    return entry;
}

void KudDatasetRegistry::_unref(const QString& key, const QString& borrower)
{
    KudDatasetRegistry& registry = getInstance();
    const Entry entry = registry.m_entryOfKey.value(key);
    if (borrower.isEmpty() || !entry)
        return;
    const int i =
        entry->borrowers.lastIndexOf(borrower); // the last one most often is the first to go
    if (i < 0) {
        HbbDebug::printWarning(
            tr("KudDatasetRegistry::unref: dataset '%1' not referenced by borrower '%2'.")
                .arg(key, borrower));
        return;
    }
    entry->borrowers.removeAt(i);
    if (entry->borrowers.isEmpty())
        registry._remove(entry);
}

void KudDatasetRegistry::_forget(const Entry& entry)
{
    m_entries.remove(entry->key);
    m_entryOfKey.remove(entry->key);
    m_entryOfDataset.remove(entry->dataset.get());
    entry->isHeld = false;
}

void KudDatasetRegistry::_remove(const Entry& entry)
{
    const auto end = qScopeGuard([&entry] { entry->dataset.reset(); });
    _forget(entry);
    entry->dataset->removeObserver(this);
    notify(KudDatasetRegistryModif(KudDatasetRegistryModif::DatasetRemoved, entry->key));
}

KudADataset* KudDatasetRegistry::getDataset(const QString& key)
{
    const KudDatasetRegistryEntry* entry = find(getInstance().m_entryOfKey, key);
    return entry != nullptr ? entry->dataset.get() : nullptr;
}

bool KudDatasetRegistry::hasDataset(const QString& key)
{
    return getInstance().m_entryOfKey.contains(key);
}

QStringList KudDatasetRegistry::getKeys()
{
    return getInstance().m_entries.keys();
}

QString KudDatasetRegistry::getKey(const KudADataset* dataset)
{
    const KudDatasetRegistryEntry* entry = find(getInstance().m_entryOfDataset, {dataset});
    return entry != nullptr ? entry->key : QString();
}

QStringList KudDatasetRegistry::getBorrowers(const QString& key)
{
    const KudDatasetRegistryEntry* entry = find(getInstance().m_entryOfKey, key);
    return entry != nullptr ? entry->borrowers : QStringList();
}

QString KudDatasetRegistry::getSharedDatasetKeyFromSourceId(const QString& sourceId)
{
    const auto& entries = getInstance().m_entries;
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entry->dataset->isDatasetShared() && entry->dataset->getSourceId() == sourceId;
    });
    return found == entries.end() ? QString() : found.key();
}

void KudDatasetRegistry::clearRemainingDatasets()
{
    KudDatasetRegistry& registry = getInstance();
    if (registry.m_entries.isEmpty())
        return;
    HbbDebug::printWarning(registry._remainingReport());
    const QList<Entry> remaining = registry.m_entries.values();
    for (const Entry& entry : remaining) {
        if (entry->isHeld) // an observer may have returned it meanwhile
            registry._remove(entry);
    }
}

QString KudDatasetRegistry::_remainingReport() const
{
    QStringList lines = {tr("Clear datasets: there are still registered datasets:")};
    for (const Entry& entry : m_entries) {
        const QString borrowers = entry->borrowers.join(QLatin1String(", "));
        lines << HbbHtml::bold(HbbHtml::escape(entry->key))
              << tr("ref count = ") + QString::number(entry->borrowers.size())
              << tr("borrowers = ") + HbbHtml::escape(borrowers);
    }
    return HbbHtml::lines(lines);
}

void KudDatasetRegistry::update(const KudDatasetModif& notice)
{
    if (const KudDatasetRegistryEntry* entry = find(m_entryOfDataset, {notice.dataset()}))
        notify(
            KudDatasetRegistryModif(KudDatasetRegistryModif::DatasetModified, entry->key, notice));
}

void KudDatasetRegistry::destroyed(const KuoAObservable<KudDatasetModif>* dataset)
{
    const Entry entry = m_entryOfDataset.value(dataset);
    if (!entry)
        return;
    _forget(entry);
    static_cast<void>(entry->dataset.release()); // whoever destroys it is about it
    notify(KudDatasetRegistryModif(KudDatasetRegistryModif::DatasetRemoved, entry->key));
}
