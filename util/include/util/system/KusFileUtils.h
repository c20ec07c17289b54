#pragma once

#include <util/KuExport.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QStringList>

/// File-system operations that the rest of the system relies on. Stateless: any thread may use it.
///
/// An operation that another program may hold up for a moment (removing, renaming) is tried three
/// times, one second apart, in the caller's thread; each failure is printed as a warning. Symbolic
/// links are never followed into another tree: they are removed, listed and left out of sizes as
/// links. Sizes are in bytes.
class KELVANE_UTIL_EXPORT KusFileUtils
{
    Q_DECLARE_TR_FUNCTIONS(KusFileUtils)

public:
    /// One line of a file dialog's filter list. A pattern is "*.csv" or plainly "csv".
    struct Filter {
        QString name;
        QStringList patterns;
    };

    KusFileUtils() = delete;

    /// Removes a file, a link or a directory and answers whether the path is free now, so that a
    /// missing path is a success. A directory that is not empty needs `recursive`; it is moved aside
    /// first, so one that is in use is refused whole. When its removal stops half-way, what is
    /// left gets its old name back. An empty path is a programming error.
    static bool removePath(const QString& path, bool recursive = false);

    /// Renames a file or a directory; an existing target is refused, never replaced.
    static bool renamePath(const QString& from, const QString& to);

    /// Moves a directory aside, under a name beside it that says so, and returns the new path:
    /// empty when the directory cannot be moved and stays what it was.
    static QString aboutToRemoveDir(const QString& path);

    /// Whether `removePath` could take the path away now; tried by moving it aside and back. Raises
    /// a HbeDiskError when it cannot be moved back. A missing path can be removed.
    static bool canBeRemoved(const QString& path);

    /// True for a directory without entries (hidden ones count), and for one that does not exist.
    static bool dirIsEmpty(const QDir& dir);

    /// The size of a file, or of all files below a directory; 0 when there is nothing. Entries of
    /// one of the names `leftOut`, at any depth, are not counted, nor what is below them.
    static qint64 getSize(const QFileInfo& info, const QStringList& leftOut = {});

    /// A size to show, such as "1.50 MiB".
    static QString getStringSize(const QFileInfo& info);
    static QString getStringSize(qint64 bytes);

    /// What the user may still write to the volume that holds the path, or that would hold it when
    /// it does not exist yet; -1 when that is not known.
    static qint64 getDirectoryFreeSpace(const QFileInfo& info);

    /// For an existing file, its permission; for a directory, whether a file can be created in it.
    /// A missing path is not writable.
    static bool isWritable(const QString& path);

    /// False when the name contains one of : * ? " < > |.
    static bool isValidNativePathElementName(const QString& name);

    /// True when an element of the path is no valid name. The colon of a leading drive is allowed.
    static bool pathContainsInvalidCharacters(const QString& path);

    /// The path of a file dialog with "/" as separator and, when the name has no extension, the
    /// first one of the selected filter, which is written as in the dialog: "Text (*.txt *.csv)".
    static QString fixFilePath(const QString& path, const QString& selectedFilter = {});

    /// The path of a directory dialog with "/" as separator, without "." and inner ".." elements;
    /// it ends with a separator when asked to. An empty path stays empty.
    static QString fixDirectoryPath(const QString& path, bool withFinalSeparator = false);

    /// Whether the name ends with one of the extensions ("csv", ".csv" and "*.csv" mean the same),
    /// without regard to case. An empty list, and "*", accept every name.
    static bool validateExtension(const QString& name, const QStringList& extensions);

    /// The filter list of a file dialog: "All compatible files (…);;Name (…);;All files (*)".
    static QString formatFilters(const QList<Filter>& filters, bool withAllCompatible = true,
                                 bool withAllFiles = true);
    static QString getAllCompatibleFilesFilterName();

    /// The absolute paths of the entries of a directory, sorted, so that a directory stands before
    /// its content. Hidden entries are listed. Name filters ("*.xml") choose among the entries, not
    /// among the directories that are descended into.
    static QStringList getPaths(const QDir& dir, bool recursive,
                                const QStringList& nameFilters = {},
                                QDir::Filters kinds = QDir::Files);

    /// True when the volume stores the file compressed, which only NTFS under Windows tells.
    static bool IsFileNtfsCompressed(const QString& path);
};
