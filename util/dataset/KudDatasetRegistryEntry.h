#pragma once

#include <util/dataset/KudADataset.h>

#include <QtCore/QStringList>

#include <memory>

/// One dataset of the registry with its borrowers; the registry and each borrowing hold it.
struct KudDatasetRegistryEntry {
    QString key;
    std::unique_ptr<KudADataset> dataset; // null once it is destroyed
    QStringList borrowers;                // one item a borrowing
    bool isHeld = true;                   // by the registry; never again once it is false
};
