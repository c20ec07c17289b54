// Any bytes as an archive, read strictly and as of another tool: whatever becomes of it, nothing
// beside the target changes, nothing in it is a link, and a refusal leaves it as it was.
//
// The first byte of the input says what follows: 't' a tar stream, that is put into a frame; else
// the file as it is.
#include "FuzzTarget.h"

#include <util/system/KusArchive.h>

#include <basic/error/HbeError.h>

#include <QtCore/QFile>

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
constexpr int LARGEST_BLOCK = 1 << 17;

/// A Zstandard frame whose blocks hold the bytes as they are.
QByteArray toFrame(const QByteArray& bytes)
{
    QByteArray frame("\x28\xb5\x2f\xfd\x00\x38", 6); // a window of 128 KiB, no checksum
    int begin = 0;
    do {
        const QByteArray block = bytes.mid(begin, LARGEST_BLOCK);
        begin += LARGEST_BLOCK;
        const int header = (block.size() << 3) | (begin >= bytes.size() ? 1 : 0);
        for (const int shift : {0, 8, 16})
            frame.append(static_cast<char>(header >> shift));
        frame.append(block);
    } while (begin < bytes.size());
    return frame;
}

std::ptrdiff_t count(const fs::path& directory)
{
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

/// One directory for the process: a file that nobody may touch, and a target beside it.
class Place
{
public:
    Place()
        : m_root(fs::path(fs::exists("/dev/shm") ? "/dev/shm" : "/tmp") /
                 ("kelvane-fuzz-" + std::to_string(getpid())))
    {
        fs::create_directories(m_root / "sentinel");
        std::ofstream(m_root / "sentinel/secret") << "secret";
    }
    ~Place() { fs::remove_all(m_root); }

    QString archive() const { return QString::fromStdString((m_root / "a.tar.zst").string()); }
    fs::path target() const { return m_root / "target"; }

    void prepare(const QByteArray& file) const
    {
        fs::remove_all(target());
        fs::create_directory(target());
        std::ofstream(target() / "kept") << "kept";
        fs::create_directory_symlink("../sentinel", target() / "out");
        std::ofstream stream(m_root / "a.tar.zst", std::ios::binary);
        stream.write(file.constData(), file.size());
    }

    void check(bool extracted) const
    {
        require(count(m_root) == 3 && count(m_root / "sentinel") == 1);
        require(fs::file_size(m_root / "sentinel/secret") == 6);
        int entries = 0;
        for (const auto& entry : fs::recursive_directory_iterator(target())) {
            ++entries;
            require(entry.is_symlink() ? entry.path() == target() / "out"
                                       : entry.is_regular_file() || entry.is_directory());
        }
        require(fs::is_symlink(target() / "out"));
        require(extracted || (entries == 2 && fs::file_size(target() / "kept") == 4));
    }

private:
    fs::path m_root;
};

void extract(const Place& place, const QByteArray& file, bool readOtherTools)
{
    place.prepare(file);
    KusArchive::ExtractInfo info;
    info.readOtherTools = readOtherTools;
    info.existingFile = KusArchive::ExistingFile::REPLACE;
    info.sizeLimit = 1 << 20;
    KusArchive archive(place.archive());
    archive.setExtractOperation(QString::fromStdString(place.target().string()), info);
    place.check(archive.runInCurrentThread());

    archive.setVerifyOperation(info);
    require(archive.runInCurrentThread());
    try {
        archive.readHeader();
    } catch (const HbeError&) {
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Place place;
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));
    const QByteArray file = data[0] == 't' ? toFrame(bytes) : bytes;
    extract(place, file, false);
    extract(place, file, true);
    return 0;
}
