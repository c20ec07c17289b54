#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuId.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <functional>
#include <memory>
#include <vector>

class KudADataset;
class KudGenericDatasetFactory;

/// A directory of datasets, one memento file each ("dataset_UUID.xml"): what a project keeps on
/// disk. Other files may lie beside them. Nothing is cached: another program may write to the
/// directory at the same time, and each file is read and replaced as a whole.
///
/// Errors of a file are HbeUserError with its path: it is the user's file that is damaged.
class KELVANE_UTIL_EXPORT KudDatasetDirectory
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

    bool exists() const { return m_directory.exists(); }
    QString getPath() const { return m_directory.path(); }

    /// The datasets, by file name; a user error when the directory does not exist.
    QList<KuuId> getIds() const;

    /// The name of a dataset, without reading its values.
    QString readName(const KuuId& id) const;

    /// The names of all datasets. A damaged file is warned of and left out, here and in findName:
    /// it must not shut the way to the others.
    QStringList getNames() const;

    /// The dataset of that name, or an id that is not valid. A user error when there are several.
    KuuId findName(const QString& name) const;

    /// The dataset that was saved, with its identity.
    std::unique_ptr<KudADataset> read(const KuuId& id) const;

    /// Saves the dataset, under the identity `id` instead of its own where that is valid. Creates
    /// the directory; it does not stay behind when the dataset cannot be saved.
    void save(const KudADataset& dataset, const KuuId& id = KuuId()) const;

    /// Reads every memento file and says what is wrong with which, by file name; changes nothing.
    /// Warnings that reading gives are collected instead of printed.
    std::vector<FileCheck> check(const Progress& progress = Progress()) const;

private:
    void requireExists() const;
    QString readNameOrWarn(const KuuId& id) const;
    void checkMemento(FileCheck& file) const;

    QDir m_directory;
    const KudGenericDatasetFactory* m_factory;
};
