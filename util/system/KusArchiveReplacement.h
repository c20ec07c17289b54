#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <sys/types.h>

struct stat;

/// The older archive that is going to be replaced, if there is one.
class KusArchiveReplacement
{
public:
    /// Looks for it; where the path is a link, at the file itself.
    explicit KusArchiveReplacement(const QString& archivePath);

    /// Why it cannot be replaced; empty when it can, or when there is none.
    const QString& getFault() const { return m_fault; }
    /// Whether this entry is that file. Another name of the same file is not.
    bool is(const QByteArray& fileName, const struct stat& facts) const;

private:
    int findError(const QByteArray& path, const struct stat& facts) const;

    QByteArray m_name; // empty: none
    dev_t m_device = 0;
    ino_t m_inode = 0;
    QString m_fault;
};
