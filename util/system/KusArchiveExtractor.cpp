#include "KusArchiveExtractor.h"

#include "KusArchiveCommit.h"
#include "KusArchiveProgress.h"
#include "KusArchiveStaging.h"
#include "KusArchiveWatchedInput.h"

#include <util/system/KusArchiveReader.h>
#include <util/system/KusFileUtils.h>
#include <util/system/KusMemberPath.h>
#include <util/system/KusTarReader.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QFileInfo>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int BLOCK_BYTES = 1 << 20; // between two looks for a cancel

std::string_view toView(const QByteArray& bytes)
{
    return std::string_view(bytes.constData(), std::size_t(bytes.size()));
}

/// Whether elements of the name have no meaning.
bool isPlain(const QByteArray& name)
{
    return !name.isEmpty() && !name.startsWith('.') && !name.startsWith('/') &&
           !name.endsWith('/') && !name.contains("//") && !name.contains("/.");
}

/// Values of any kind travel as texts, but for byte arrays.
bool isSame(const QVariant& wanted, const QVariant& found)
{
    const bool isBytes = wanted.type() == QVariant::ByteArray;
    return isBytes == (found.type() == QVariant::ByteArray) &&
           (isBytes ? wanted.toByteArray() == found.toByteArray()
                    : wanted.toString() == found.toString());
}
} // namespace

KusArchiveExtractor::KusArchiveExtractor(const QString& archivePath, const QString& targetPath,
                                         const KusArchive::ExtractInfo& info,
                                         KusArchiveProgress& progress)
    : m_archivePath(archivePath)
    , m_targetPath(targetPath)
    , m_info(info)
    , m_progress(progress)
    , m_patterns(info.included)
{
}

KusArchiveExtractor::~KusArchiveExtractor() = default;

void KusArchiveExtractor::run()
{
    checkTarget();
    m_freeSpace = KusFileUtils::getDirectoryFreeSpace(QFileInfo(m_targetPath));
    m_archive = std::make_unique<KusArchiveReader>(m_archivePath, KusArchiveReader::Mode::AHEAD);
    m_input = std::make_unique<KusArchiveWatchedInput>(*m_archive, m_progress);
    m_tar = std::make_unique<KusTarReader>(*m_input, m_archivePath);
    m_progress.start(m_archive->getFileSize());
    m_tar->setReadOtherTools(m_info.readOtherTools);
    checkInformation(m_tar->readInformation());
    checkSpace(m_tar->getAnnouncedSize());
    m_tar->setSizeLimit(m_info.sizeLimit);

    m_progress.setPhase(tr("Extracting"));
    m_staging = std::make_unique<KusArchiveStaging>(m_targetPath);
    const auto check = [this] { m_progress.check(); };
    try {
        readMembers();
        m_staging->applyDirectories(check);
        KusArchiveCommit(*m_staging, m_archivePath,
                         m_info.existingFile == KusArchive::ExistingFile::REPLACE)
            .run(check);
    } catch (...) {
        m_progress.setPhase(tr("Cleaning"));
        m_places.reset();
        m_staging.reset();
        throw;
    }
    m_staging.reset();
}

// What is to be right before anything is written

void KusArchiveExtractor::checkTarget() const
{
    const QFileInfo target(m_targetPath);
    if (m_targetPath.isEmpty() || !target.isDir())
        throw HbeUserError(tr("'%1' is not a valid directory.").arg(m_targetPath));
    if (!target.isWritable() || !target.isExecutable())
        throw HbeUserError(tr("You do not have the right to write into '%1'.").arg(m_targetPath));
}

void KusArchiveExtractor::checkInformation(const QVariantMap& information) const
{
    for (auto entry = m_info.header.begin(); entry != m_info.header.end(); ++entry) {
        const QVariant found = information.value(entry.key());
        if (!information.contains(entry.key()) || !isSame(entry.value(), found)) {
            throw HbeUserError(
                tr("The information of archive file '%1' has '%3' for '%2', not '%4'.")
                    .arg(m_archivePath, entry.key(),
                         KusMemberPath::getShownText(found.toString().toUtf8()),
                         entry.value().toString()));
        }
    }
}

void KusArchiveExtractor::checkSpace(qint64 announced) const
{
    if (m_freeSpace == 0) {
        throw HbeUserError(tr("Directory '%1' does not have available space to extract archive.")
                               .arg(m_targetPath));
    }
    if (m_freeSpace < 0 || announced <= m_freeSpace || !m_patterns.isEmpty())
        return;
    throw HbeUserError(tr("Directory '%1' have only %2 available space.\nThis is not enough to "
                          "extract '%3' (uncompressed size = %4).\nMissing %5 on disk.")
                           .arg(m_targetPath, KusFileUtils::getStringSize(m_freeSpace),
                                m_archivePath, KusFileUtils::getStringSize(announced),
                                KusFileUtils::getStringSize(announced - m_freeSpace)));
}

// Members

void KusArchiveExtractor::readMembers()
{
    m_places =
        std::make_unique<KusArchiveDescent>(m_staging->getTarget(), KusArchiveDescent::Use::SEARCH);
    while (m_tar->nextMember())
        unpackMember();
    // The checksum comes last, and nothing is put in place before it is right.
    m_tar->readToEnd();
    checkPatterns();
    m_places.reset();
    m_names = KusArchiveNames();
}

void KusArchiveExtractor::unpackMember()
{
    if (!takeName())
        return;
    if (m_progress.showsMembers())
        m_progress.setMember(KusMemberPath::getShownText(m_path));
    if (!m_info.caseSensitive && m_names.add(toView(m_path)) == KusArchiveNames::Meeting::COLLISION)
        refuse(tr("Its name differs only in case, or in how letters are composed, from that of an "
                  "earlier member."));
    if (m_tar->isDirectory())
        unpackDirectory();
    else
        unpackFile();
}

/// False for a member that is left out.
bool KusArchiveExtractor::takeName()
{
    m_path = m_tar->getName();
    const QString fault = KusMemberPath::findFault(m_path);
    if (!fault.isEmpty())
        refuse(fault);
    if (!m_patterns.isEmpty() && !m_patterns.matchesAndNotes(m_path))
        return false;
    if (!isPlain(m_path))
        m_path = KusMemberPath::split(m_path).join('/');
    if (m_path.isEmpty() && !m_tar->isDirectory())
        refuse(tr("It is a file with the name of a directory."));
    return !m_path.isEmpty(); // the target itself stays as it is
}

void KusArchiveExtractor::unpackDirectory()
{
    bool exists = false;
    checkPlace(true, exists);
    const KusTarRecord& record = m_tar->getRecord();
    if (!m_staging->makeDirectory(toView(m_path)))
        failToStage(true);
    m_staging->setDirectory(toView(m_path), record.permissionBits(), record.modifSeconds());
    m_progress.countMember(0);
}

void KusArchiveExtractor::unpackFile()
{
    bool exists = false;
    checkPlace(false, exists);
    if (exists && !mayReplace())
        return;
    claimSpace();
    struct File {
        int descriptor;
        ~File() { close(); }
        bool close() { return descriptor < 0 || ::close(std::exchange(descriptor, -1)) == 0; }
    } file{createFile()};
    if (file.descriptor < 0)
        return;
    writeFile(file.descriptor);
    if (!file.close()) // some disks tell only now that they are full
        failToCreate(false);
    m_progress.countMember(m_tar->getSize());
}

/// What the disk must hold is counted as it comes: of some members, and of others than announced.
void KusArchiveExtractor::claimSpace()
{
    m_writtenSize += m_tar->getSize();
    if (m_freeSpace < 0 || m_writtenSize <= m_freeSpace)
        return;
    throw HbeUserError(
        tr("Directory '%1' does not have available space to extract archive.").arg(m_targetPath) +
        '\n' +
        tr("'%1' of archive file '%2' goes beyond the %3 that were available.")
            .arg(KusMemberPath::getShownText(m_tar->getName()), m_archivePath,
                 KusFileUtils::getStringSize(m_freeSpace)));
}

/// Refuses what stands in the target where the member would have to be, or in the way there.
void KusArchiveExtractor::checkPlace(bool isDirectory, bool& exists)
{
    const std::string_view path = toView(m_path);
    const int parent = m_places->open(KusArchiveDescent::getParent(path));
    struct stat facts = {};
    if (parent >= 0) {
        // The path ends where its last element does.
        const char* name = KusArchiveDescent::getFileName(path).data();
        exists = ::fstatat(parent, name, &facts, AT_SYMLINK_NOFOLLOW) == 0;
        if (!exists && errno != ENOENT)
            failToCreate(isDirectory);
        if (exists && S_ISLNK(facts.st_mode))
            refuse(KusArchiveCommit::getLinkText(getText()));
        if (exists && S_ISDIR(facts.st_mode) != isDirectory)
            refuseKind(isDirectory);
        return;
    }
    const int reason = errno;
    if (reason == ENOENT)
        return;
    const std::string obstacle = m_places->getFailedPath();
    const std::string name(KusArchiveDescent::getFileName(obstacle));
    if (::fstatat(m_places->getFailedParent(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISLNK(facts.st_mode))
        refuse(KusArchiveCommit::getLinkText(m_staging->getText(obstacle)));
    m_path = QByteArray::fromStdString(obstacle);
    errno = reason;
    failToCreate(true);
}

/// What the caller wants done with a file that exists.
bool KusArchiveExtractor::mayReplace() const
{
    switch (m_info.existingFile) {
    case KusArchive::ExistingFile::SKIP:
        return false;
    case KusArchive::ExistingFile::REPLACE:
        return true;
    case KusArchive::ExistingFile::ASK:
        break;
    }
    const QString text = tr("File '%1' already exists.").arg(getText());
    if (!m_progress.ask(tr("File already exists"), text,
                        tr("Do you want to skip it and continue extracting?")))
        throw HbeUserError(text);
    return false;
}

/// A new file of the staging; -1 when an earlier member of the path shall stay.
int KusArchiveExtractor::createFile()
{
    const std::string_view path = toView(m_path);
    const int permissionBits = m_tar->getRecord().permissionBits();
    int file = m_staging->createFile(path, permissionBits);
    if (file < 0 && errno == EEXIST) {
        if (m_staging->makeDirectory(path)) { // which it is already, then
            errno = EISDIR;
            failToStage(false);
        }
        if (!mayReplace())
            return -1;
        file = m_staging->removeFile(path) ? m_staging->createFile(path, permissionBits) : -1;
    }
    if (file < 0)
        failToStage(false);
    return file;
}

void KusArchiveExtractor::writeFile(int file)
{
    qint64 left = m_tar->getSize();
    while (left > 0) {
        HbdSpan<const char> bytes = m_tar->readData(BLOCK_BYTES);
        if (bytes.isEmpty()) {
            throw HbeUserError(
                tr("Cannot extract '%1' because archive file '%2' is corrupted.")
                    .arg(KusMemberPath::getShownText(m_tar->getName()), m_archivePath));
        }
        left -= bytes.size();
        while (!bytes.isEmpty()) {
            const ssize_t written = ::write(file, bytes.data(), std::size_t(bytes.size()));
            if (written >= 0)
                bytes = bytes.sub(int(written), bytes.size() - int(written));
            else if (errno != EINTR)
                failToCreate(false);
        }
    }
    const struct timespec times[2] = {{0, UTIME_OMIT}, {m_tar->getRecord().modifSeconds(), 0}};
    if (::futimens(file, times) != 0)
        failToCreate(false);
}

void KusArchiveExtractor::checkPatterns() const
{
    const QStringList unused = m_patterns.getUnused();
    if (!unused.isEmpty()) {
        throw HbeUserError(tr("No member of archive file '%1' matches '%2'.")
                               .arg(m_archivePath, unused.join(QLatin1String("', '"))));
    }
}

void KusArchiveExtractor::refuse(const QString& fault) const
{
    throw HbeUserError(
        tr("Cannot extract '%1' from archive file '%2':\n%3")
            .arg(KusMemberPath::getShownText(m_tar->getName()), m_archivePath, fault));
}

/// A file stands where a directory has to be, or the other way round.
void KusArchiveExtractor::refuseKind(bool isDirectory) const
{
    const QString path = getText();
    throw HbeUserError(isDirectory ? tr("Cannot create directory '%1'.").arg(path) + '\n' +
                                         tr("There is a file in its place.")
                                   : tr("Cannot create file '%1'.").arg(path) + '\n' +
                                         tr("There is a directory in its place."));
}

/// With the system's reason.
void KusArchiveExtractor::failToCreate(bool isDirectory) const
{
    const int error = errno;
    const QString reason = qt_error_string(error);
    const QString text =
        (isDirectory ? tr("Cannot create directory '%1'.") : tr("Cannot create file '%1'."))
            .arg(getText());
    if (error == ENOTDIR)
        throw HbeUserError(text + '\n' + tr("There is a file in the place of a directory."));
    throw HbeDiskError(text + '\n' + reason);
}

/// The same where only earlier members can be in the way.
void KusArchiveExtractor::failToStage(bool isDirectory) const
{
    if (errno != ENOTDIR && errno != EISDIR)
        failToCreate(isDirectory);
    const bool isFileInTheWay = errno == ENOTDIR;
    const QString reason =
        isFileInTheWay
            ? tr("An earlier member of archive file '%1' is a file in the place of a directory.")
            : tr("An earlier member of archive file '%1' is a directory of its name.");
    throw HbeUserError(
        (isDirectory ? tr("Cannot create directory '%1'.") : tr("Cannot create file '%1'."))
            .arg(getText()) +
        '\n' + reason.arg(m_archivePath));
}

QString KusArchiveExtractor::getText() const
{
    return m_staging->getText(toView(m_path));
}
