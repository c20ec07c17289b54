#include "KusArchiveVerifier.h"

#include "KusArchiveNames.h"
#include "KusArchiveProgress.h"
#include "KusArchiveWatchedInput.h"

#include <util/system/KusArchiveReader.h>
#include <util/system/KusMemberPath.h>
#include <util/system/KusTarReader.h>

#include <basic/error/HbeUserError.h>

#include <string_view>

namespace
{
constexpr int PIECE = 1 << 20;
constexpr int MOST_FAULTS = 1000; // whoever reads them has seen enough
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
    KusArchiveWatchedInput input;
    KusTarReader tar;
    bool caseSensitive;
    KusArchiveProgress& progress;
    KusArchiveNames names;
    KusArchive::Verification found;
};

void KusArchiveVerifier::Run::read()
{
    progress.start(archive.getFileSize());
    tar.readInformation();
    if (!tar.hasRightChecksum())
        noteMember(tr("The checksum of its header is wrong."));
    while (tar.nextMember()) {
        if (progress.showsMembers())
            progress.setMember(KusMemberPath::getShownText(tar.getName()));
        verifyMember();
        while (!tar.readData(PIECE).isEmpty())
            continue;
        progress.countMember(tar.getSize());
        found.memberCount = tar.getMemberCount();
        found.fileSize = tar.getTotalSize();
    }
    verifyEnd();
}

void KusArchiveVerifier::Run::verifyMember()
{
    if (!tar.hasRightChecksum())
        noteMember(tr("The checksum of its header is wrong."));
    const QString fault = KusMemberPath::findFault(tar.getName());
    if (!fault.isEmpty())
        noteMember(fault);
    const QByteArray path = KusMemberPath::split(tar.getName()).join('/');
    if (path.isEmpty()) {
        if (!tar.isDirectory())
            noteMember(tr("It is a file with the name of a directory."));
        return;
    }
    const KusArchiveNames::Meeting meeting =
        names.add(std::string_view(path.constData(), std::size_t(path.size())));
    if (meeting == KusArchiveNames::Meeting::SAME && !tar.isDirectory())
        noteMember(tr("An earlier member has its name."));
    else if (meeting == KusArchiveNames::Meeting::COLLISION && !caseSensitive)
        noteMember(tr("Its name differs only in case, or in how letters are composed, from that of "
                      "an earlier member."));
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
