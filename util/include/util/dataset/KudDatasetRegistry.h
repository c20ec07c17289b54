#pragma once

#include <util/dataset/KudDatasetPointer.h>
#include <util/dataset/KudDatasetRegistryModif.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QStringList>

class KudGenericDatasetFactory;
class KuuMemento;

/// The one owner of the datasets that the application works with. Each is known by its key, the
/// identifier that it had when it was added; parties borrow it (KudDatasetPointer) under a name of
/// their own, and it is destroyed when the last borrowing is returned. One that nobody has borrowed
/// yet stays.
///
/// The registry observes its datasets and passes on what they tell: who is interested in all of
/// them observes the registry. Its observers hear of a new dataset when it can be looked up and
/// borrowed, and of a removed one when it cannot any more, but is still alive (unless the registry
/// is locked, or somebody else destroyed the dataset). Inside any notice they may borrow, return,
/// add and clear; as with every observable, who comes later in the list hears of that before he
/// hears the notice that led to it: `hasDataset` tells what holds now.
///
/// Main thread only. It is never destroyed, so that a borrowing can be returned at any time;
/// `clearRemainingDatasets` is for the end of the application. Nothing here costs more with more
/// datasets, but for what lists them, and adding and removing (its logarithm).
class KELVANE_UTIL_EXPORT KudDatasetRegistry : public KuoAObservable<KudDatasetRegistryModif>,
                                               public KuoIObserver<KudDatasetModif>
{
    Q_DECLARE_TR_FUNCTIONS(KudDatasetRegistry)

public:
    static KudDatasetRegistry& getInstance();

    /// What `create` makes datasets with; borrowed, null for none.
    static void setDatasetFactory(const KudGenericDatasetFactory* factory);

    /// Adds the dataset that was saved, with its identity. A programming error without a factory,
    /// and as for `add`; otherwise the factory's errors.
    static KudDatasetPointer<KudADataset>
    create(const KuuMemento& memento, const QString& borrower = QStringLiteral("create"));

    /// Takes ownership and lends the dataset to the borrower, before anybody hears of it. A null
    /// dataset, a borrower without a name, and a second dataset under a held key are programming
    /// errors. The answer is null when an observer cleared the registry.
    template <class T>
    static KudDatasetPointer<T> add(std::unique_ptr<T> dataset, const QString& borrower)
    {
        return _add(std::move(dataset), borrower).template dynamicCast<T>();
    }

    /// Null for an unknown key.
    static KudADataset* getDataset(const QString& key);
    static bool hasDataset(const QString& key);
    /// Sorted.
    static QStringList getKeys();
    /// Empty for a dataset that the registry does not hold.
    static QString getKey(const KudADataset* dataset);
    /// One item a borrowing; empty for an unknown key.
    static QStringList getBorrowers(const QString& key);
    /// The first key of a dataset that is marked as shared and has that source identifier, or an
    /// empty text. Asks one dataset after the other.
    static QString getSharedDatasetKeyFromSourceId(const QString& sourceId);

    /// Removes all datasets that there are at the call, borrowed or not; their pointers become
    /// null. Prints them and their borrowers, as a warning in HTML.
    static void clearRemainingDatasets();

    /// A dataset changed, or is being destroyed by somebody else.
    void update(const KudDatasetModif& notice) override;
    void destroyed(const KuoAObservable<KudDatasetModif>* dataset) override;

private:
    friend class KudDatasetBorrowing;
    using Entry = std::shared_ptr<KudDatasetRegistryEntry>;

    KudDatasetRegistry();
    ~KudDatasetRegistry() override = default;

    static KudDatasetPointer<KudADataset> _add(std::unique_ptr<KudADataset> dataset,
                                               const QString& borrower);
    static QString _addDataset(std::unique_ptr<KudADataset> dataset);
    /// Null, and nothing happens, for an unknown key.
    static Entry _ref(const QString& key, const QString& borrower);
    static void _unref(const QString& key, const QString& borrower);

    void _forget(const Entry& entry);
    void _remove(const Entry& entry);
    QString _remainingReport() const;

    const KudGenericDatasetFactory* m_factory = nullptr;
    QMap<QString, Entry> m_entries;
    /// The same entries, found in constant time.
    QHash<QString, Entry> m_entryOfKey;
    QHash<const KuoAObservable<KudDatasetModif>*, Entry> m_entryOfDataset;
};
