#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

#include <memory>

class KudADataset;
struct KudDatasetRegistryEntry;

/// One borrowing of a dataset of the registry, or none: the part of KudDatasetPointer that does not
/// depend on the type. It knows its very dataset, not only the key: once that dataset has left the
/// registry there is nothing to return, whatever stands under the key by then.
class KELVANE_UTIL_EXPORT KudDatasetBorrowing
{
public:
    KudDatasetBorrowing() noexcept = default;
    /// Empty when the registry does not know the key, or the dataset is not of the kind. (That is
    /// asked first: to borrow and return again would end a dataset that nobody else has borrowed.)
    KudDatasetBorrowing(const QString& key, const QString& borrower,
                        bool (*isOfKind)(KudADataset*));
    /// A second borrowing of the same dataset.
    KudDatasetBorrowing(const KudDatasetBorrowing& other);
    KudDatasetBorrowing(const KudDatasetBorrowing& other, const QString& borrower);
    KudDatasetBorrowing(KudDatasetBorrowing&& other) noexcept = default;
    /// By value: right for a copy, a move, and an assignment of the object to itself.
    KudDatasetBorrowing& operator=(KudDatasetBorrowing other) noexcept;
    /// Returns the borrowing. What an observer throws from the notice ends here, as a warning.
    ~KudDatasetBorrowing();

    void swap(KudDatasetBorrowing& other) noexcept;

    /// Null when there is none (any more).
    KudADataset* dataset() const noexcept;
    QString key() const;
    const QString& borrower() const noexcept { return m_borrower; }

private:
    std::shared_ptr<KudDatasetRegistryEntry> m_entry; // null after a move, too
    QString m_borrower;
};
