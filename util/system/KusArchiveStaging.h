#pragma once

#include "KusArchiveDescent.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <memory>

#include <sys/stat.h>

/// The hidden directory inside of the target that takes the members until all are there. Nobody
/// else may enter it. One that goes removes all that it still holds. Paths are those of
/// KusArchiveDescent. One thread uses an object.
///
/// Disk operations answer -1 or false and leave errno, except where an error is named.
class KusArchiveStaging
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveStaging)

public:
    /// Makes the directory; a target that cannot be opened or written is a HbeUserError.
    explicit KusArchiveStaging(const QString& targetPath);
    /// Gives the target the modification time back that it had, unless `setDone` was called.
    ~KusArchiveStaging();
    KusArchiveStaging(const KusArchiveStaging&) = delete;
    KusArchiveStaging& operator=(const KusArchiveStaging&) = delete;

    int getTarget() const { return m_target; }
    /// The directory of the members, and the one that holds it.
    int getMembers() const { return m_members; }
    int getDirectory() const { return m_directory; }

    /// An entry below the target, for messages.
    QString getText(std::string_view path) const;

    /// Opens a new file for writing, with its directories. `permissionBits` as in KusTarRecord.
    int createFile(std::string_view path, int permissionBits);
    /// Makes room for another file of the same path.
    bool removeFile(std::string_view path);
    bool makeDirectory(std::string_view path);
    /// What the directory shall have at the end. The last word on a path holds.
    void setDirectory(std::string_view path, int permissionBits, qint64 modifSeconds);

    /// Gives the directories their permissions and times. One whose parent exists in the target
    /// will be moved on its own: the owner's permissions, which that takes, stay until then.
    void applyDirectories(const std::function<void()>& checkCancelled);
    /// The permissions that a directory shall have at last.
    mode_t getPermissions(std::string_view path) const;

    /// Leaves everything where it is when the object goes.
    void keep() { m_kept = true; }
    /// Says that the target is to stay changed.
    void setDone() { m_done = true; }
    QString getPathText() const;

private:
    struct Directory {
        quint64 hash; // of its path, which may be long
        qint64 modifSeconds;
        qint32 permissionBits;
        quint32 order;
    };

    const Directory* findDirectory(std::string_view path) const;
    bool applyDirectory(int directory, const std::string& path, bool movesAlone) const;
    void sortDirectories();
    bool remove();
    void close();

    QString m_targetPath;
    QByteArray m_name;
    int m_target = -1;
    int m_directory = -1;
    int m_members = -1;
    struct stat m_targetFacts = {};
    mode_t m_umask = 0;
    bool m_isRoot = false;
    bool m_kept = false;
    bool m_done = false;
    std::unique_ptr<KusArchiveDescent> m_descent;
    std::vector<Directory> m_directories; // sorted by `applyDirectories`
};
