#include "KusArchiveDescent.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// What stays open of the way: its first levels, and of the deep ones every so many.
constexpr std::size_t OPEN_LEVELS = 32;
constexpr std::size_t OPEN_STEP = 64;

constexpr int DIRECTORY_FLAGS = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
#ifdef O_PATH
constexpr int SEARCH_FLAGS = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
#else
constexpr int SEARCH_FLAGS = DIRECTORY_FLAGS;
#endif

/// Whether the path is `directory` or below it.
bool isWithin(std::string_view path, std::string_view directory)
{
    return path.substr(0, directory.size()) == directory &&
           (path.size() == directory.size() || directory.empty() || path[directory.size()] == '/');
}
} // namespace

int KusArchiveDescent::open(std::string_view path)
{
    if (path == m_path)
        return getFailedParent();
    if (isKnownMissing(path)) {
        errno = ENOENT;
        return -1;
    }
    std::size_t kept = m_levels.size();
    while (kept > 0 &&
           (m_levels[kept - 1].descriptor < 0 ||
            !isWithin(path, std::string_view(m_path).substr(0, m_levels[kept - 1].end))))
        --kept;
    closeFrom(kept);

    char name[NAME_MAX + 1];
    while (m_path.size() < path.size()) {
        const std::size_t start = m_path.empty() ? 0 : m_path.size() + 1;
        const std::size_t end = std::min(path.find('/', start), path.size());
        int descriptor = -1;
        if (end - start > NAME_MAX) {
            errno = ENAMETOOLONG;
        } else {
            std::memcpy(name, path.data() + start, end - start);
            name[end - start] = '\0';
            descriptor = openElement(getFailedParent(), name);
        }
        if (descriptor < 0) {
            m_failedIsMissing = errno == ENOENT;
            m_failedPath = path.substr(0, end);
            return -1;
        }
        if (m_levels.size() > OPEN_LEVELS && m_levels.size() % OPEN_STEP != 0) {
            ::close(m_levels.back().descriptor);
            m_levels.back().descriptor = -1;
        }
        m_levels.push_back({end, descriptor});
        m_path = path.substr(0, end);
    }
    return getFailedParent();
}

void KusArchiveDescent::closeFrom(std::size_t level)
{
    for (std::size_t i = level; i < m_levels.size(); ++i) {
        if (m_levels[i].descriptor >= 0)
            ::close(m_levels[i].descriptor);
    }
    m_levels.resize(level);
    m_path.resize(level == 0 ? 0 : m_levels.back().end);
}

int KusArchiveDescent::openElement(int parent, const char* name) const
{
    if (m_use == Use::SEARCH)
        return ::openat(parent, name, SEARCH_FLAGS);
    const int descriptor = ::openat(parent, name, DIRECTORY_FLAGS);
    if (descriptor >= 0 || errno != ENOENT || m_use != Use::CREATE)
        return descriptor;
    return ::mkdirat(parent, name, S_IRWXU) == 0 ? ::openat(parent, name, DIRECTORY_FLAGS) : -1;
}

bool KusArchiveDescent::isKnownMissing(std::string_view path) const
{
    return m_failedIsMissing && m_use == Use::SEARCH && isWithin(path, m_failedPath);
}

bool KusArchiveDescent::list(int directory, const Visit& visit)
{
    const int own = ::openat(directory, ".", DIRECTORY_FLAGS);
    DIR* stream = own < 0 ? nullptr : ::fdopendir(own);
    if (!stream) {
        if (own >= 0)
            ::close(own);
        return false;
    }
    const struct Closer {
        DIR* stream;
        ~Closer() { ::closedir(stream); }
    } closer{stream};
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(stream);
        if (!entry)
            return errno == 0;
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        bool isDirectory = entry->d_type == DT_DIR;
        struct stat facts = {};
        if (entry->d_type == DT_UNKNOWN &&
            ::fstatat(directory, name, &facts, AT_SYMLINK_NOFOLLOW) == 0)
            isDirectory = S_ISDIR(facts.st_mode);
        visit(name, isDirectory);
    }
}

void KusArchiveDescent::traverse(const Enter& enter, const Leave& leave)
{
    struct Step {
        std::size_t end; // of its path
        std::string names;
        std::size_t next; // of the names
    };
    std::string path;
    std::vector<Step> steps(1);
    enter(path, steps.back().names);
    while (!steps.empty()) {
        Step& step = steps.back();
        path.resize(step.end);
        if (step.next == step.names.size()) {
            leave(path);
            steps.pop_back();
            continue;
        }
        const char* const name = step.names.c_str() + step.next;
        step.next += std::strlen(name) + 1;
        path = join(path, name);
        steps.push_back({path.size(), std::string(), 0});
        enter(path, steps.back().names);
    }
}

std::string KusArchiveDescent::join(std::string_view directory, std::string_view name)
{
    std::string path(directory);
    if (!path.empty())
        path += '/';
    return path.append(name);
}

std::string_view KusArchiveDescent::getParent(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    return path.substr(0, slash == std::string_view::npos ? 0 : slash);
}

std::string_view KusArchiveDescent::getFileName(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}
