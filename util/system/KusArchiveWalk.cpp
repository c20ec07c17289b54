#include "KusArchiveWalk.h"

#include <basic/error/HbeDiskError.h>

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr std::size_t MAX_OPEN_LEVELS = 32;
constexpr int NAME_RESERVE = 4096;
constexpr std::size_t FIRST_BLOCK = 1 << 10; // bytes
constexpr std::size_t LAST_BLOCK = 64 << 10;
constexpr int DIRECTORY_FLAGS = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
// Without waiting: a pipe could have taken the place of the file.
constexpr int FILE_FLAGS = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

bool isDots(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}
} // namespace

void KusArchiveWalk::Descriptor::close()
{
    if (m_number >= 0)
        ::close(std::exchange(m_number, -1));
}

KusArchiveWalk::KusArchiveWalk(Descriptor directory, const QByteArray& name,
                               const QString& shownBase)
    : m_shownBase(shownBase)
    , m_user(::geteuid())
{
    m_name.reserve(NAME_RESERVE);
    m_directory.reserve(NAME_RESERVE);
    m_name.append(name);
    struct stat facts = {};
    if (::fstat(directory.get(), &facts) != 0)
        fail(errno);
    push(std::move(directory), facts);
}

KusArchiveWalk::~KusArchiveWalk() = default;

bool KusArchiveWalk::next()
{
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (level.next == level.entries.size()) {
            leave();
            continue;
        }
        m_entry = level.entries[level.next++];
        m_name.resize(level.nameSize);
        m_name.append('/').append(fileName());
        m_kind = findKind();
        return true;
    }
    return false;
}

QByteArray KusArchiveWalk::getFileName() const
{
    return QByteArray(fileName());
}

QString KusArchiveWalk::getShownPath() const
{
    return m_shownBase + QFile::decodeName(m_name);
}

KusArchiveWalk::Kind KusArchiveWalk::findKind() const
{
    int type = static_cast<unsigned char>(*m_entry);
    if (type == DT_UNKNOWN) { // some file systems do not tell in their lists
        struct stat facts = {};
        lookUp(facts);
        type = IFTODT(facts.st_mode);
    }
    switch (type) {
    case DT_REG:
        return Kind::REGULAR;
    case DT_DIR:
        return Kind::DIRECTORY;
    case DT_LNK:
        return Kind::LINK;
    case DT_FIFO:
        return Kind::PIPE;
    case DT_SOCK:
        return Kind::SOCKET;
    default:
        return Kind::DEVICE;
    }
}

void KusArchiveWalk::lookUp(struct stat& facts) const
{
    if (::fstatat(m_levels.back().directory.get(), fileName(), &facts, AT_SYMLINK_NOFOLLOW) != 0)
        fail(errno);
}

bool KusArchiveWalk::isReadable(const struct stat& facts) const
{
    const mode_t needed = facts.st_uid == m_user ? S_IRUSR : S_IRGRP | S_IROTH;
    return (facts.st_mode & needed) == needed ||
           ::faccessat(m_levels.back().directory.get(), fileName(), R_OK, AT_EACCESS) == 0;
}

KusArchiveWalk::Descriptor KusArchiveWalk::openFile(struct stat& facts) const
{
    Descriptor file(::openat(m_levels.back().directory.get(), fileName(), FILE_FLAGS));
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
        fail(errno);
    if (!S_ISREG(facts.st_mode))
        failAsChanged(getShownPath());
    return file;
}

void KusArchiveWalk::enter(struct stat& facts)
{
    Descriptor directory(::openat(m_levels.back().directory.get(), fileName(), DIRECTORY_FLAGS));
    if (!directory.isOpen() || ::fstat(directory.get(), &facts) != 0)
        fail(errno);
    push(std::move(directory), facts);
}

void KusArchiveWalk::failAt(const QString& path, int error)
{
    if (error < 0 || error == ENOENT || error == ELOOP || error == ENOTDIR)
        failAsChanged(path);
    throw HbeDiskError(tr("Cannot read '%1'.").arg(path) + '\n' + qt_error_string(error));
}

void KusArchiveWalk::failAsChanged(const QString& path)
{
    throw HbeDiskError(tr("'%1' changed while it was archived.").arg(path));
}

void KusArchiveWalk::push(Descriptor directory, const struct stat& facts)
{
    Level level;
    level.directory = std::move(directory);
    level.device = facts.st_dev;
    level.inode = facts.st_ino;
    level.nameSize = m_name.size();
    list(level);
    m_directory.resize(0);
    m_directory.append(m_name);
    m_levels.push_back(std::move(level));
    if (m_levels.size() > MAX_OPEN_LEVELS)
        m_levels[m_levels.size() - 1 - MAX_OPEN_LEVELS].directory.close();
}

void KusArchiveWalk::Level::add(unsigned char type, const char* name)
{
    const std::size_t nameEnd = std::strlen(name) + 1;
    if (blockUsed + 1 + nameEnd > blockSize) {
        blockSize = std::max(std::clamp(2 * blockSize, FIRST_BLOCK, LAST_BLOCK), 1 + nameEnd);
        blocks.emplace_back(new char[blockSize]);
        blockUsed = 0;
    }
    char* const place = blocks.back().get() + blockUsed;
    *place = static_cast<char>(type);
    std::memcpy(place + 1, name, nameEnd);
    entries.push_back(place);
    blockUsed += 1 + nameEnd;
}

void KusArchiveWalk::list(Level& level) const
{
    // The stream owns a descriptor of its own, for it closes it.
    Descriptor copy(::fcntl(level.directory.get(), F_DUPFD_CLOEXEC, 0));
    const std::unique_ptr<DIR, DirectoryCloser> entries(copy.isOpen() ? ::fdopendir(copy.get())
                                                                      : nullptr);
    if (!entries)
        fail(errno);
    copy.release();
    for (;;) {
        errno = 0;
        const dirent* const entry = ::readdir(entries.get());
        if (entry == nullptr)
            break;
        if (!isDots(entry->d_name))
            level.add(entry->d_type, entry->d_name);
    }
    if (errno != 0)
        fail(errno);
    std::sort(level.entries.begin(), level.entries.end(),
              [](const char* a, const char* b) { return std::strcmp(a + 1, b + 1) < 0; });
}

void KusArchiveWalk::leave()
{
    if (m_levels.size() > 1) {
        const Level& level = m_levels.back();
        Level& parent = m_levels[m_levels.size() - 2];
        m_directory.resize(parent.nameSize);
        if (!parent.directory.isOpen()) {
            m_name.resize(parent.nameSize); // what a message names
            parent.directory = Descriptor(::openat(level.directory.get(), "..", DIRECTORY_FLAGS));
            struct stat facts = {};
            if (!parent.directory.isOpen() || ::fstat(parent.directory.get(), &facts) != 0)
                fail(errno);
            if (facts.st_dev != parent.device || facts.st_ino != parent.inode)
                failAsChanged(getShownPath());
        }
    }
    m_levels.pop_back();
}
