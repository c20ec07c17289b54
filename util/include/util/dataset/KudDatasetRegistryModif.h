#pragma once

#include <util/dataset/KudDatasetModif.h>

class KudDatasetRegistry;
class KudDatasetRegistryModif;

template <>
struct ObservableTraits<KudDatasetRegistryModif> {
    using Observable = KudDatasetRegistry;
};

/// What the dataset registry tells its observers: for each dataset key one reason and, when the
/// dataset was modified, its own notice.
class KELVANE_UTIL_EXPORT KudDatasetRegistryModif
    : public KuoAObservableModif<KudDatasetRegistryModif, ObservableTraits<KudDatasetRegistryModif>>
{
public:
    enum Reason { DatasetAdded = 0, DatasetRemoved = 1, DatasetModified = 2 };

    KudDatasetRegistryModif() = default;
    KudDatasetRegistryModif(Reason reason, const QString& key,
                            KudDatasetModif modif = KudDatasetModif());

    /// The keys, sorted.
    QStringList datasetKeys() const;
    bool hasModif(const QString& key) const { return m_datasets.find(key); }
    /// DatasetModified for a key without modification.
    Reason reason(const QString& key) const;
    /// Empty for a key without modification.
    KudDatasetModif datasetModif(const QString& key) const;

    /// The number of keys.
    int getNumberOfModif() const override { return m_datasets.size(); }
    bool isEmpty() const override { return m_datasets.isEmpty(); }

private:
    struct Change {
        Reason reason;
        KudDatasetModif modif;
    };

    /// Key by key: a removed dataset stays removed, unless it is added again, which makes it a
    /// modified one with a reset; an added dataset stays added whatever changes in it.
    void _merge(const KudDatasetRegistryModif& other) override;
    static void _mergeChange(Change& pending, const Change& later);

    KudInlineMap<QString, Change> m_datasets;
};
