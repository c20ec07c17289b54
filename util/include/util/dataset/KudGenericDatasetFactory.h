#pragma once

#include <util/KuExport.h>

#include <QtCore/QString>

#include <memory>

class KudADataset;
class KuuMemento;

/// Makes datasets of their mementos. An application that has dataset classes of its own derives
/// from it. Whoever calls `create` owns the result.
class KELVANE_UTIL_EXPORT KudGenericDatasetFactory
{
public:
    KudGenericDatasetFactory();
    KudGenericDatasetFactory(const KudGenericDatasetFactory&) = delete;
    KudGenericDatasetFactory& operator=(const KudGenericDatasetFactory&) = delete;
    virtual ~KudGenericDatasetFactory();

    /// The dataset that was saved: with `adoptId` it is that very one, else a new one of the same
    /// content. An unknown type is a programming error, an unusable memento a user error.
    std::unique_ptr<KudADataset> create(const KuuMemento& memento, bool adoptId) const;

private:
    /// A new dataset for the type tag, or null; the caller owns it.
    virtual KudADataset* _createFromType(const QString& type) const;
};
