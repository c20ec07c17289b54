#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <memory>
#include <utility>
#include <vector>

#include <sys/types.h>

struct stat;

/// Goes through what is below a directory, depth first, the entries of a directory in the order of
/// the bytes of their names:
///
///     KusArchiveWalk walk(std::move(directory), "survey", "/projects/");
///     while (walk.next()) … walk.getName() … if (…DIRECTORY) walk.enter(facts);
///
/// Everything is reached from the descriptor of its directory: no path can be too long for the
/// system, and no link is followed, not even one that appears meanwhile. However deep the tree, few
/// descriptors are open. The memory holds the names of the directories that lead to the present
/// entry, and of their entries.
///
/// An entry that cannot be read, or vanishes, is a HbeDiskError. One thread uses an object.
class KusArchiveWalk
{
    Q_DECLARE_TR_FUNCTIONS(KusArchiveWalk)

public:
    enum class Kind { REGULAR, DIRECTORY, LINK, PIPE, SOCKET, DEVICE };

    /// Owns an open file, -1 for none.
    class Descriptor
    {
    public:
        explicit Descriptor(int number = -1)
            : m_number(number)
        {
        }
        Descriptor(Descriptor&& other) noexcept
            : m_number(std::exchange(other.m_number, -1))
        {
        }
        Descriptor& operator=(Descriptor&& other) noexcept
        {
            std::swap(m_number, other.m_number);
            return *this;
        }
        ~Descriptor() { close(); }

        void close();
        bool isOpen() const { return m_number >= 0; }
        int get() const { return m_number; }
        int release() { return std::exchange(m_number, -1); }

    private:
        int m_number;
    };

    /// `name` is what the names of entries begin with; `shownBase` stands before them in messages.
    KusArchiveWalk(Descriptor directory, const QByteArray& name, const QString& shownBase);
    ~KusArchiveWalk();
    KusArchiveWalk(const KusArchiveWalk&) = delete;
    KusArchiveWalk& operator=(const KusArchiveWalk&) = delete;

    /// Goes on to the next entry; false at the end.
    bool next();

    /// Of the present entry: the whole name, "survey/report/a.txt", that of its directory, and what
    /// a message shows. The directories above it, without the first, are `getDepth` in number.
    const QByteArray& getName() const { return m_name; }
    const QByteArray& getDirectory() const { return m_directory; }
    QByteArray getFileName() const;
    QString getShownPath() const;
    int getDepth() const { return static_cast<int>(m_levels.size()) - 1; }
    Kind getKind() const { return m_kind; }

    void lookUp(struct stat& facts) const;
    /// Whether we may read the present file; looks at its permissions only where they suffice.
    bool isReadable(const struct stat& facts) const;
    /// Opens the present file for reading, and says what it is now.
    Descriptor openFile(struct stat& facts) const;
    /// Enters the present directory: its entries come next, and `getDirectory` is its name.
    void enter(struct stat& facts);

    /// The names of the entries of the directory that was entered last.
    int getEntryCount() const { return static_cast<int>(m_levels.back().entries.size()); }
    const char* getEntryName(int index) const
    {
        return m_levels.back().entries[static_cast<std::size_t>(index)] + 1;
    }

    /// Throws what an error of the system means for the present entry, or for one that is named;
    /// -1: there is less of it than there was.
    [[noreturn]] void fail(int error) const { failAt(getShownPath(), error); }
    [[noreturn]] static void failAt(const QString& path, int error);
    [[noreturn]] static void failAsChanged(const QString& path);

private:
    struct Level {
        Descriptor directory; // closed while the walk is far below
        dev_t device = 0;
        ino_t inode = 0;
        int nameSize = 0; // of the directory, in bytes
        // Of each entry: its type, its name, NUL. In blocks, for a wide directory takes megabytes,
        // which one array would take twice as it grows.
        std::vector<std::unique_ptr<char[]>> blocks;
        std::vector<const char*> entries;
        std::size_t blockSize = 0; // of the last block
        std::size_t blockUsed = 0;
        std::size_t next = 0;

        void add(unsigned char type, const char* name);
    };

    void push(Descriptor directory, const struct stat& facts);
    void list(Level& level) const;
    void leave();
    Kind findKind() const;
    const char* fileName() const { return m_entry + 1; }

    QString m_shownBase;
    uid_t m_user;
    QByteArray m_name;
    QByteArray m_directory;
    std::vector<Level> m_levels;
    const char* m_entry = nullptr; // in the blocks of its level
    Kind m_kind = Kind::DIRECTORY;
};
