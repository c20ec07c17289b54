#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

/// Opens directories below a root by their paths, element by element and through no symbolic link,
/// so that nobody leads it out of there. Paths are bytes, with single slashes between the elements;
/// the empty one is the root.
///
/// The way to the last directory stays open, most of its deep part aside: neighbours cost few
/// steps, and a path of 4,000 bytes, the longest that is of use, takes 64 descriptors at most. One
/// thread uses an object.
class KusArchiveDescent
{
public:
    /// SEARCH: to look at what the directories hold by name; they need not be readable. READ: to
    /// list them. CREATE: the same, and what is missing is made, for the owner alone.
    enum class Use { SEARCH, READ, CREATE };

    /// The descriptor of the root is borrowed.
    KusArchiveDescent(int root, Use use)
        : m_root(root)
        , m_use(use)
    {
    }
    ~KusArchiveDescent() { closeFrom(0); }
    KusArchiveDescent(const KusArchiveDescent&) = delete;
    KusArchiveDescent& operator=(const KusArchiveDescent&) = delete;

    /// The directory, which stays the descent's own and open until the next call; -1, and errno,
    /// when there is none. That a directory is missing is remembered.
    int open(std::string_view path);
    /// After a failure: the directory that could not be opened, and the one that holds it.
    const std::string& getFailedPath() const { return m_failedPath; }
    int getFailedParent() const { return m_levels.empty() ? m_root : m_levels.back().descriptor; }

    /// Calls `visit` for every entry of a directory, of which it may take the present one away;
    /// false, and errno, when they cannot be read.
    using Visit = std::function<void(const char* name, bool isDirectory)>;
    static bool list(int directory, const Visit& visit);

    /// Goes over all directories below the root and the root itself. `enter` is called ahead of
    /// what is below and names the directories to go into, a NUL behind each; `leave` after it.
    using Enter = std::function<void(const std::string& path, std::string& names)>;
    using Leave = std::function<void(const std::string& path)>;
    static void traverse(const Enter& enter, const Leave& leave);

    static std::string join(std::string_view directory, std::string_view name);
    static std::string_view getParent(std::string_view path);
    static std::string_view getFileName(std::string_view path);

private:
    struct Level {
        std::size_t end; // of its path
        int descriptor;  // -1: closed, for it is deep
    };

    void closeFrom(std::size_t level);
    int openElement(int parent, const char* name) const;
    bool isKnownMissing(std::string_view path) const;

    int m_root;
    Use m_use;
    std::string m_path;          // of the last level
    std::vector<Level> m_levels; // the last one is open
    std::string m_failedPath;
    bool m_failedIsMissing = false;
};
