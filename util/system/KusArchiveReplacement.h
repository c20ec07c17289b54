#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <sys/types.h>

struct stat;

/// The files of the archive's own that the source may hold: the older archive that is going to be
/// replaced, and the new one on its way.
class KusArchiveReplacement
{
public:
    /// Looks for it; where the path is a link, at the file itself.
    explicit KusArchiveReplacement(const QString& archivePath);

    /// Why it cannot be replaced; empty when it can, or when there is none.
    const QString& getFault() const { return m_fault; }
    /// The new file; nothing when the path is empty.
    void setNewFile(const QString& path);
    /// Whether the entry is one of these files. Another name of the same file is not.
    bool holds(const QByteArray& fileName, const struct stat& facts) const;

private:
    struct File {
        QByteArray name; // empty: none
        dev_t device = 0;
        ino_t inode = 0;
    };
    static File identify(const QByteArray& path, const struct stat& facts);

    File m_older;
    File m_new;
    QString m_fault;
};
