#pragma once

#include <util/KuExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

/// Replaces a file as a whole: whatever happens (a crash, a kill, a full disk, a power cut), a
/// reader finds either the old content or the new, never a part.
///
/// The content goes into a new file beside the target, is flushed to the disk, and is renamed over
/// the target by `commit`. That file may do without a name until then, so that not even a kill
/// leaves it behind. A symbolic link is followed: its target is replaced, the link stays. A
/// file that exists keeps its permissions (and its owner, where the system lets us); a new one gets
/// those that the umask leaves. Without `commit` nothing changes.
///
/// The steps are apart so that many files can share the cost of the disk: write all, start the
/// flush of all, then commit all.
///
/// Operations answer false on failure; `getErrorString` says why, in the system's words. One object
/// is used by one thread; two writers of one target do not disturb each other, the later commit
/// wins.
class KELVANE_UTIL_EXPORT KusSafeFile
{
public:
    /// When the new file gets a name. AT_COMMIT is where the file system has files without one;
    /// else it is AT_OPEN.
    enum class Naming { AT_OPEN, AT_COMMIT };

    explicit KusSafeFile(const QString& path);
    KusSafeFile(KusSafeFile&& other) noexcept;
    KusSafeFile& operator=(KusSafeFile&&) = delete;
    /// Discards what was not committed.
    ~KusSafeFile();

    /// Creates the file beside the target. Fails when the directory is missing or may not be
    /// written, and when the target is a directory or a file that may not be written.
    bool open(Naming naming = Naming::AT_OPEN);
    bool write(const char* data, qint64 size);
    bool write(const QByteArray& bytes) { return write(bytes.constData(), bytes.size()); }
    /// Asks the system to start writing to the disk, without waiting.
    bool startFlush();
    /// Waits until the content is on the disk.
    bool flush();
    /// Closes the new file; for many files at once, so that few descriptors are open. It must be
    /// flushed by then, or by `flushFileSystem`.
    bool close();
    /// Flushes if that is still to be done, and puts the file in place.
    bool commit();
    void discard();

    /// Waits until everything written so far to the file system that holds `path` is on the disk,
    /// for all of the given files, which then count as flushed.
    static bool flushFileSystem(const QString& path);
    void markFlushed() { m_flushed = true; }

    /// The file beside the target while it is open, for whoever writes files by path: it may be
    /// opened and written there, and closed before the commit. Empty while it has no name.
    QString getTemporaryPath() const { return QFile::decodeName(m_temporary); }

    const QString& getErrorString() const { return m_error; }

private:
    bool create(Naming naming, unsigned mode);
    bool giveName();
    bool fail();

    QString m_path;
    QByteArray m_target;    // with links resolved, in the file system's encoding
    QByteArray m_temporary; // empty when there is none, or it has no name
    QString m_error;
    int m_descriptor = -1;
    bool m_flushed = false;
};
