#pragma once

#include "KusArchiveDescent.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <functional>

#include <sys/stat.h>

class KusArchiveStaging;

/// Puts the staged members into their places in the target, all or none. What the target does not
/// have is moved as a whole; a directory that it has takes the content and keeps its permissions
/// and its time; a file that it has is exchanged for the member's where that is wanted. Whatever
/// fails, what was moved is moved back. One thread uses an object.
class KusArchiveCommit
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveCommit)

public:
    /// The staging is borrowed, its directories have their permissions. `replaces` files.
    KusArchiveCommit(KusArchiveStaging& staging, const QString& archivePath, bool replaces);

    /// `checkCancelled` may throw.
    void run(const std::function<void()>& checkCancelled);

    /// A link stands where a member would go through it or replace it.
    static QString getLinkText(const QString& link);

private:
    enum State : char { PENDING = '?', MOVED = 'm', MOVED_DIRECTORY = 'd', EXCHANGED = 'x' };

    /// A directory that both sides have.
    struct Merge {
        std::string path;
        struct timespec modified;
        std::string entries; // of the staged side: state, kind, name and NUL, one after the other
    };

    void merge(const std::string& path, const std::function<void()>& checkCancelled);
    State place(const std::string& path, const char* name, bool isDirectory);
    State placeDirectory(const std::string& path, const char* name);
    State placeFile(const std::string& path, const char* name);
    bool exchange(const char* name);
    bool undo();
    bool undoEntry(State state, const char* name);
    void openBoth(const std::string& path);

    KusArchiveStaging& m_staging;
    QString m_archivePath;
    bool m_replaces;
    KusArchiveDescent m_sources;
    KusArchiveDescent m_places;
    int m_source = -1; // the directories at work, borrowed from the walks
    int m_place = -1;
    std::vector<std::string> m_pending;
    std::vector<Merge> m_merges;
    bool m_leavesAside = false; // a file of the target, in the staging
};
