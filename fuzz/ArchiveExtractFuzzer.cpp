// Any bytes as an archive, read strictly and as of another tool: whatever becomes of it, nothing
// beside the target changes, nothing in it is a link, and a refusal leaves it as it was.
//
// Bytes that do not begin as those of a compressed file are a tar stream.
#include "FuzzTarget.h"

#include "../testing/TarBuilder.h"

#include <util/system/KusArchive.h>

#include <basic/error/HbeError.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
bool isCompressed(const QByteArray& bytes)
{
    return bytes.startsWith("\x28\xb5\x2f\xfd") || bytes.startsWith("\x1f\x8b");
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
        std::ofstream(target() / "kept.txt") << "kept";
        fs::create_directory_symlink("../sentinel", target() / "linkdir");
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
            if (entry.is_directory() && !entry.is_symlink()) // or it could not be entered
                fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add);
            require(entry.is_symlink() ? entry.path() == target() / "linkdir"
                                       : entry.is_regular_file() || entry.is_directory());
        }
        require(fs::is_symlink(target() / "linkdir"));
        require(extracted || (entries == 2 && fs::file_size(target() / "kept.txt") == 4));
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
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QByteArray file = isCompressed(bytes) ? bytes : TarBuilder::toFrame(bytes);
    extract(place, file, false);
    extract(place, file, true);
    return 0;
}
