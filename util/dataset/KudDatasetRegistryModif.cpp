#include <util/dataset/KudDatasetRegistryModif.h>

KudDatasetRegistryModif::KudDatasetRegistryModif(Reason reason, const QString& key,
                                                 KudDatasetModif modif)
{
    m_datasets.insert(key, Change{reason, std::move(modif)});
}

QStringList KudDatasetRegistryModif::datasetKeys() const
{
    QStringList keys;
    for (const auto& entry : m_datasets) {
        keys.append(entry.key);
    }
    return keys;
}

KudDatasetRegistryModif::Reason KudDatasetRegistryModif::reason(const QString& key) const
{
    const Change* change = m_datasets.find(key);
    return change ? change->reason : DatasetModified;
}

KudDatasetModif KudDatasetRegistryModif::datasetModif(const QString& key) const
{
    const Change* change = m_datasets.find(key);
    return change ? change->modif : KudDatasetModif();
}

void KudDatasetRegistryModif::_merge(const KudDatasetRegistryModif& other)
{
    for (const auto& entry : other.m_datasets) {
        if (Change* pending = m_datasets.find(entry.key)) {
            _mergeChange(*pending, entry.value);
        } else {
            m_datasets.insert(entry.key, entry.value);
        }
    }
}

void KudDatasetRegistryModif::_mergeChange(Change& pending, const Change& later)
{
    switch (later.reason) {
    case DatasetRemoved:
        pending = later;
        break;
    case DatasetAdded:
        // Another dataset stands under the key now. Who has not heard of the first one yet hears
        // of an added dataset; for everybody else all of it is new.
        if (pending.reason != DatasetAdded) {
            pending = Change{DatasetModified, KudDatasetModif(KudDatasetModif::Reset)};
        }
        break;
    case DatasetModified:
        if (pending.reason != DatasetRemoved) {
            pending.modif.merge(later.modif);
        }
        break;
    }
}
