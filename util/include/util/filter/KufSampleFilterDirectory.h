#pragma once

#include <util/KuExport.h>
#include <util/filter/KufSampleFilter.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QStringList>

/// The sample filters that a project directory keeps, by name: one memento file each
/// ("samplefilter_UUID.xml"), beside the datasets and whatever else lies there. Nothing is cached:
/// another program may write to the directory at the same time, and each file is read and replaced
/// as a whole.
///
/// Errors of a file are HbeUserError with its path: it is the user's file that is damaged.
class KELVANE_UTIL_EXPORT KufSampleFilterDirectory
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterDirectory)

public:
    explicit KufSampleFilterDirectory(const QString& path);

    QString getPath() const { return m_directory.path(); }

    /// The filters, by file name; a user error when the directory does not exist.
    QList<KuuId> getIds() const;

    /// The names of all filters. A file whose name cannot be read is warned of and left out, here
    /// and in findName; one that is damaged elsewhere is there, and reading it is an error.
    QStringList getNames() const;

    /// The filter of that name, or an id that is not valid. A user error when there are several.
    KuuId findName(const QString& name) const;

    /// The filter that was saved, with its identity.
    KufSampleFilter read(const KuuId& id) const;

    /// The filter of that name; a user error, which lists the names there are, when there is none.
    KufSampleFilter read(const QString& name) const;

    /// Saves the filter, under the identity `id` instead of its own where that is valid. A user
    /// error when the name is empty, another filter has it, or the directory does not exist.
    void save(const KufSampleFilter& filter, const KuuId& id = KuuId()) const;

    /// Saves the filter in the place of the one that has its name, if there is one.
    void replace(const KufSampleFilter& filter) const;

    /// Deletes the file; false when there is none.
    bool remove(const KuuId& id) const;

private:
    QString readNameOrWarn(const KuuId& id) const;

    QDir m_directory;
};
