#include "KusArchiveVerifier.h"

#include "KusArchiveProgress.h"

#include <util/system/KusArchiveReader.h>
#include <util/system/KusMemberPath.h>
#include <util/system/KusTarReader.h>

#include <basic/error/HbeUserError.h>

#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace
{
constexpr int PIECE = 1 << 20;
constexpr int MOST_FAULTS = 1000; // whoever reads them has seen enough

/// The archive's stream; every piece of it moves the progress, and looks for a cancel.
class WatchedInput : public KusArchiveInput
{
public:
    WatchedInput(KusArchiveReader& archive, KusArchiveProgress& progress)
        : m_archive(archive)
        , m_progress(progress)
    {
    }

protected:
    HbdSpan<const char> _next(int most) override
    {
        m_progress.check();
        const HbdSpan<const char> bytes = m_archive.next(most);
        const qint64 readSize = m_archive.getReadSize();
        m_progress.advance(readSize - std::exchange(m_readSize, readSize));
        return bytes;
    }

private:
    KusArchiveReader& m_archive;
    KusArchiveProgress& m_progress;
    qint64 m_readSize = 0;
};

/// The names so far, as hashes.
class Names
{
public:
    enum class Meeting { NONE, SAME, FOLDED };

    /// Whether the name meets one before it. A directory may stand in an archive twice.
    Meeting add(const QByteArray& name, bool isDirectory)
    {
        const QByteArray whole = KusMemberPath::split(name).join('/');
        const std::size_t hash = std::hash<std::string_view>()(
            std::string_view(whole.constData(), std::size_t(whole.size())));
        const Entry entry{hash, isDirectory};
        const auto [found, isNew] = m_names.emplace(KusMemberPath::getFoldedHash(name), entry);
        if (isNew)
            return Meeting::NONE;
        if (found->second.hash != hash)
            return Meeting::FOLDED;
        return isDirectory && found->second.isDirectory ? Meeting::NONE : Meeting::SAME;
    }

private:
    struct Entry {
        std::size_t hash;
        bool isDirectory;
    };
    std::unordered_map<quint64, Entry> m_names;
};
} // namespace

/// One verification.
struct KusArchiveVerifier::Run {
    Run(const QString& path, const KusArchive::ExtractInfo& info, KusArchiveProgress& watched)
        : archive(path, KusArchiveReader::Mode::AHEAD)
        , input(archive, watched)
        , tar(input, path)
        , caseSensitive(info.caseSensitive)
        , progress(watched)
    {
        tar.setReadOtherTools(info.readOtherTools);
        tar.setSizeLimit(info.sizeLimit);
    }

    void read();
    void verifyMember();
    void verifyEnd();
    void note(const QString& fault);
    void noteMember(const QString& fault);

    KusArchiveReader archive;
    WatchedInput input;
    KusTarReader tar;
    bool caseSensitive;
    KusArchiveProgress& progress;
    Names names;
    KusArchive::Verification found;
};

void KusArchiveVerifier::Run::read()
{
    progress.start(archive.getFileSize());
    tar.readInformation();
    if (!tar.hasRightChecksum())
        noteMember(tr("the checksum of its header is wrong."));
    while (tar.nextMember()) {
        if (progress.showsMembers())
            progress.setMember(KusMemberPath::getShownText(tar.getName()));
        verifyMember();
        while (!tar.readData(PIECE).isEmpty()) {
        }
        found.memberCount = tar.getMemberCount();
        found.fileSize = tar.getTotalSize();
    }
    verifyEnd();
}

void KusArchiveVerifier::Run::verifyMember()
{
    if (!tar.hasRightChecksum())
        noteMember(tr("the checksum of its header is wrong."));
    const QString fault = KusMemberPath::findFault(tar.getName());
    if (!fault.isEmpty())
        noteMember(fault);
    switch (names.add(tar.getName(), tar.isDirectory())) {
    case Names::Meeting::NONE:
        break;
    case Names::Meeting::SAME:
        noteMember(tr("there is an earlier member of its name."));
        break;
    case Names::Meeting::FOLDED:
        if (!caseSensitive)
            noteMember(tr("its name differs only in case from that of an earlier member."));
        break;
    }
}

void KusArchiveVerifier::Run::verifyEnd()
{
    if (tar.getAnnouncedSize() >= 0 && tar.getAnnouncedSize() != tar.getTotalSize())
        note(tr("The files have %1 bytes; the archive announces %2.")
                 .arg(tar.getTotalSize())
                 .arg(tar.getAnnouncedSize()));
    if (!tar.hasClosingBlocks())
        note(tr("The two blocks that close an archive are missing."));
    tar.readToEnd();
    if (tar.hasForeignEnd())
        note(tr("Something that is no part of the archive stands behind its end."));
    found.hasChecksum = archive.hasChecksum();
}

void KusArchiveVerifier::Run::note(const QString& fault)
{
    if (found.faults.size() < MOST_FAULTS)
        found.faults.append(fault);
    else if (found.faults.size() == MOST_FAULTS)
        found.faults.append(tr("There are more faults."));
}

void KusArchiveVerifier::Run::noteMember(const QString& fault)
{
    note(tr("'%1' at byte %2: %3")
             .arg(KusMemberPath::getShownText(tar.getName()), QString::number(tar.getOffset()),
                  fault));
}

KusArchiveVerifier::KusArchiveVerifier(const QString& archivePath,
                                       const KusArchive::ExtractInfo& info,
                                       KusArchiveProgress& progress)
    : m_archivePath(archivePath)
    , m_info(info)
    , m_progress(progress)
{
}

KusArchive::Verification KusArchiveVerifier::run()
{
    m_progress.setPhase(tr("Verifying"));
    Run run(m_archivePath, m_info, m_progress);
    try {
        run.read();
    } catch (const HbeUserError& error) {
        run.note(error.getMessage());
    }
    return run.found;
}
