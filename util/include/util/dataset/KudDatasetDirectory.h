#pragma once

#include <util/xml/KuxMementoDirectory.h>

#include <memory>
#include <vector>

class KudADataset;
class KudGenericDatasetFactory;

/// The datasets of a directory ("dataset_UUID.xml"): what a project keeps on disk. Names are read
/// without the values.
class KELVANE_UTIL_EXPORT KudDatasetDirectory : public KuxMementoDirectory
{
    Q_DECLARE_TR_FUNCTIONS(KudDatasetDirectory)

public:
    /// What is to be said of one file of the directory.
    struct FileCheck {
        QString fileName;
        bool isMemento = false; ///< named as a memento file; any other is not ours to judge
        KuuId id;               ///< of a memento that could be read
        QString name;           ///< of a dataset that could be read
        QStringList errors;
        QStringList warnings;
    };

    /// Told before each file; false cancels.
    using Progress = std::function<bool(int filesDone, int fileCount)>;

    /// `factory` makes the datasets; it is borrowed, and null stands for the library's own.
    explicit KudDatasetDirectory(const QString& path,
                                 const KudGenericDatasetFactory* factory = nullptr);

    /// The dataset that was saved, with its identity.
    std::unique_ptr<KudADataset> read(const KuuId& id) const;

    /// The coordinate system of a dataset, as KuuCoordSystem::serialize writes it; empty where
    /// there is none. Nothing else of the file is read.
    QString readCoordSystem(const KuuId& id) const;

    /// Saves the dataset, under the identity `id` instead of its own where that is valid. Creates
    /// the directory; it does not stay behind when the dataset cannot be saved.
    void save(const KudADataset& dataset, const KuuId& id = KuuId()) const;

    /// Reads every memento file and says what is wrong with which, by file name; changes nothing.
    /// Warnings that reading gives are collected instead of printed.
    std::vector<FileCheck> check(const Progress& progress = Progress()) const;

private:
    QString _readNameOf(const KuuId& id) const override;
    void checkMemento(FileCheck& file) const;

    const KudGenericDatasetFactory* m_factory;
};
