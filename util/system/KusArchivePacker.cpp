#include "KusArchivePacker.h"

#include "KusArchiveOutput.h"
#include "KusArchiveProgress.h"

#include <util/system/ArchiveZstdWriter.h>
#include <util/system/KusArchiveInformation.h>
#include <util/system/KusMemberPath.h>
#include <util/system/KusTarFile.h>
#include <util/system/KusTarReader.h>

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
using Kind = KusArchiveWalk::Kind;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(KusArchivePacker)
};

/// What cannot be packed; empty for what can.
QString describe(Kind kind)
{
    switch (kind) {
    case Kind::LINK:
        return Texts::tr("a symbolic link");
    case Kind::PIPE:
        return Texts::tr("a pipe");
    case Kind::SOCKET:
        return Texts::tr("a socket");
    case Kind::DEVICE:
        return Texts::tr("a device");
    default:
        return QString();
    }
}
} // namespace

struct KusArchivePacker::Pending {
    KusTarFile file;
    int directorySize = 0; // of the name of the directory above, in bytes
    int depth = 0;
};

KusArchivePacker::KusArchivePacker(const QString& archivePath, const QString& sourcePath,
                                   const KusArchive::ArchiveInfo& info,
                                   KusArchiveProgress& progress)
    : m_archivePath(archivePath)
    , m_sourcePath(sourcePath)
    , m_info(info)
    , m_progress(progress)
    , m_own(archivePath)
{
}

KusArchivePacker::~KusArchivePacker() = default;

void KusArchivePacker::run(const QVariantMap& header)
{
    m_progress.setPhase(tr("Archiving"));
    if (!m_own.getFault().isEmpty()) {
        throw HbeDiskError(tr("Cannot remove existing '%1'\nbefore archiving '%2'.")
                               .arg(m_archivePath, m_sourcePath) +
                           '\n' + m_own.getFault());
    }
    m_excluded = KusMemberPatterns(m_info.excluded);
    m_included = KusMemberPatterns(m_info.included);
    inspectSource();
    scan();
    m_progress.start(m_announcedSize + 1);
    write(header);
    m_progress.advance(1);
}

void KusArchivePacker::inspectSource()
{
    struct stat facts = {};
    if (::stat(QFile::encodeName(m_sourcePath).constData(), &facts) != 0) {
        throw HbeUserError(tr("Cannot archive '%1'.").arg(m_sourcePath) + '\n' +
                           qt_error_string(errno));
    }
    m_isDirectory = S_ISDIR(facts.st_mode);
    if (!m_isDirectory && !S_ISREG(facts.st_mode))
        throw HbeUserError(tr("'%1' is neither a file nor a directory.").arg(m_sourcePath));
    nameSource();
    const QString fault = findNameFault(m_sourceName);
    if (!fault.isEmpty())
        refuseName(getShownSource(), fault);
    if (!m_isDirectory && m_own.holds(m_sourceName, facts))
        throw HbeUserError(tr("'%1' cannot be archived into itself.").arg(getShownSource()));
    openSource(m_isDirectory);
    if (!m_isDirectory)
        m_announcedSize = facts.st_size;
}

void KusArchivePacker::nameSource()
{
    QString path = m_sourcePath;
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    QString name = path.mid(path.lastIndexOf('/') + 1);
    if (name == QLatin1String(".") || name == QLatin1String("..")) {
        path = QFileInfo(path).canonicalFilePath();
        name = path.mid(path.lastIndexOf('/') + 1);
    }
    if (name.isEmpty())
        throw HbeUserError(tr("'%1' has no name for the archive to hold.").arg(m_sourcePath));
    m_sourceName = QFile::encodeName(name);
    m_shownBase = path.chopped(name.size());
}

void KusArchivePacker::openSource(bool isDirectory)
{
    const int flags = O_RDONLY | O_CLOEXEC | (isDirectory ? O_DIRECTORY : O_NONBLOCK);
    m_source =
        KusArchiveWalk::Descriptor(::open(QFile::encodeName(getShownSource()).constData(), flags));
    const bool isOpen = m_source.isOpen();
    if (isOpen && (!isDirectory || ::faccessat(m_source.get(), ".", X_OK, AT_EACCESS) == 0))
        return;
    const int error = errno;
    if (!isDirectory)
        KusArchiveWalk::failAt(getShownSource(), error);
    const QString parent = m_shownBase.isEmpty() ? QStringLiteral(".") : m_shownBase;
    throw HbeDiskError(
        tr("Directory '%1' cannot cd '%2'.").arg(parent, QFile::decodeName(m_sourceName)) + '\n' +
        qt_error_string(error));
}

/// With a place of its own in the list of entries, which a copy would share.
KusArchiveWalk::Descriptor KusArchivePacker::reopenDirectory() const
{
    KusArchiveWalk::Descriptor directory(
        ::openat(m_source.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory.isOpen())
        KusArchiveWalk::failAt(getShownSource(), errno);
    return directory;
}

QString KusArchivePacker::getShownSource() const
{
    return m_shownBase + QFile::decodeName(m_sourceName);
}

KusArchivePacker::Choice KusArchivePacker::choose(const QByteArray& name, bool isDirectory)
{
    if (!m_excluded.isEmpty() && m_excluded.matches(name))
        return Choice::NONE;
    if (m_included.isEmpty() || m_included.matchesAndNotes(name))
        return Choice::TAKE;
    return isDirectory ? Choice::ENTER : Choice::NONE;
}

void KusArchivePacker::scan()
{
    const Choice choice = choose(m_sourceName, m_isDirectory);
    if (choice != Choice::NONE && m_isDirectory) {
        KusArchiveWalk walk(reopenDirectory(), m_sourceName, m_shownBase);
        scanDirectory(walk);
    }
    const QStringList unused = m_included.getUnused();
    if (!unused.isEmpty()) {
        throw HbeUserError(
            tr("'%1' matches nothing in '%2'.").arg(unused.first(), getShownSource()));
    }
    if (choice == Choice::NONE)
        throw HbeUserError(tr("The patterns leave nothing of '%1'.").arg(getShownSource()));
}

void KusArchivePacker::scanDirectory(KusArchiveWalk& walk)
{
    warnOfCase(walk);
    while (walk.next()) {
        m_progress.check();
        const bool isDirectory = walk.getKind() == Kind::DIRECTORY;
        if (choose(walk.getName(), isDirectory) == Choice::NONE)
            continue;
        const QString fault = findNameFault(walk.getName());
        if (!fault.isEmpty())
            refuseName(walk.getShownPath(), fault);
        if (isDirectory) {
            struct stat facts = {};
            walk.enter(facts);
            warnOfCase(walk);
        } else {
            scanFile(walk);
        }
    }
}

void KusArchivePacker::scanFile(const KusArchiveWalk& walk)
{
    const QString kind = describe(walk.getKind());
    if (!kind.isEmpty()) {
        throw HbeUserError(
            tr("'%1' is %2, which an archive cannot hold.").arg(walk.getShownPath(), kind) + '\n' +
            tr("Leave it out, or put a file in its place."));
    }
    struct stat facts = {};
    walk.lookUp(facts);
    if (m_own.holds(walk.getFileName(), facts))
        return;
    if (!walk.isReadable(facts))
        walk.fail(EACCES);
    if (facts.st_size > std::numeric_limits<qint64>::max() - m_announcedSize)
        walk.fail(EFBIG);
    m_announcedSize += facts.st_size;
}

/// Why nothing of this name can be packed; empty when it can.
QString KusArchivePacker::findNameFault(const QByteArray& name) const
{
    const bool isTop = name.size() == m_sourceName.size();
    const char* const local = name.constData() + (isTop ? 0 : m_sourceName.size() + 1);
    if (std::strcmp(local, KusTarReader::INFORMATION_NAME) == 0)
        return tr("The archive's own information has this name.");
    return KusMemberPath::findFault(name);
}

void KusArchivePacker::refuseName(const QString& shownPath, const QString& fault) const
{
    throw HbeUserError(tr("'%1' cannot be archived under its name.").arg(shownPath) + '\n' + fault);
}

/// Of the names that differ only in case, the first ones on their way down.
void KusArchivePacker::warnOfCase(const KusArchiveWalk& walk)
{
    struct Folded {
        quint64 hash;
        int index;
    };
    std::vector<Folded> names;
    names.reserve(static_cast<std::size_t>(walk.getEntryCount()));
    for (int i = 0; i < walk.getEntryCount(); ++i)
        names.push_back({KusMemberPath::getFoldedHash(QByteArray(walk.getEntryName(i))), i});
    std::sort(names.begin(), names.end(), [](const Folded& a, const Folded& b) {
        return a.hash != b.hash ? a.hash < b.hash : a.index < b.index;
    });
    for (std::size_t i = 1; i < names.size(); ++i) {
        if (names[i].hash != names[i - 1].hash)
            continue;
        const QByteArray above = walk.getDirectory() + '/';
        const QByteArray first = above + walk.getEntryName(names[i - 1].index);
        const QByteArray second = above + walk.getEntryName(names[i].index);
        if (choose(first, true) == Choice::NONE || choose(second, true) == Choice::NONE)
            continue;
        HbbDebug::printWarning(tr("'%1' and '%2' differ only in case, or in how letters are "
                                  "composed: unpacking refuses them unless told otherwise.")
                                   .arg(QFile::decodeName(first), QFile::decodeName(second)));
    }
}

void KusArchivePacker::write(const QVariantMap& header)
{
    QVariantMap information = header;
    information.insert(QLatin1String(KusArchive::HeaderFieldSize), m_announcedSize);
    const QByteArray lines =
        m_isDirectory ? KusArchiveInformation::encode(information) : QByteArray();

    ArchiveZstdWriter writer(m_archivePath);
    writer.open("wb", m_info.level, m_info.threadCount);
    m_own.setNewFile(writer.getTemporaryPath());
    try {
        KusArchiveOutput output(writer, m_archivePath, m_progress);
        if (m_isDirectory) {
            writeInformation(output, lines);
            writeDirectory(output);
        } else {
            writeSingleFile(output);
        }
        if (m_writtenSize != m_announcedSize)
            KusArchiveWalk::failAsChanged(getShownSource());
        output.close();
    } catch (...) {
        m_progress.setPhase(tr("Cleaning"));
        writer.discard();
        throw;
    }
}

void KusArchivePacker::writeInformation(KusArchiveOutput& output,
                                        const QByteArray& information) const
{
    struct stat facts = {};
    if (::fstat(m_source.get(), &facts) != 0)
        KusArchiveWalk::failAt(getShownSource(), errno);
    facts.st_mode = S_IFREG | 0644;
    facts.st_uid = ::geteuid();
    facts.st_gid = ::getegid();
    facts.st_size = information.size();
    output.addHeader(KusTarFile::fromSystem(KusTarReader::INFORMATION_NAME, facts), QByteArray());
    output.addData(information);
}

void KusArchivePacker::addMember(KusArchiveOutput& output, const KusTarFile& file,
                                 const QByteArray& above)
{
    if (m_progress.showsMembers()) {
        const QByteArray name = above.isEmpty() ? file.name : above + '/' + file.name;
        m_progress.setMember(QFile::decodeName(name));
    }
    output.addHeader(file, above);
    m_progress.countMember(file.size);
}

void KusArchivePacker::writeSingleFile(KusArchiveOutput& output)
{
    struct stat facts = {};
    if (::fstat(m_source.get(), &facts) != 0 || !S_ISREG(facts.st_mode))
        KusArchiveWalk::failAsChanged(getShownSource());
    addMember(output, KusTarFile::fromSystem(m_sourceName, facts), QByteArray());
    const int error = output.addData(m_source.get(), facts.st_size);
    if (error != 0)
        KusArchiveWalk::failAt(getShownSource(), error);
    m_writtenSize = facts.st_size;
}

void KusArchivePacker::writeDirectory(KusArchiveOutput& output)
{
    struct stat facts = {};
    KusArchiveWalk::Descriptor directory = reopenDirectory();
    if (::fstat(directory.get(), &facts) != 0)
        KusArchiveWalk::failAsChanged(getShownSource());
    addMember(output, KusTarFile::fromSystem(m_sourceName, facts), QByteArray());

    std::vector<Pending> pending;
    KusArchiveWalk walk(std::move(directory), m_sourceName, m_shownBase);
    while (walk.next()) {
        m_progress.check();
        while (!pending.empty() && pending.back().depth >= walk.getDepth())
            pending.pop_back();
        const bool isDirectory = walk.getKind() == Kind::DIRECTORY;
        const Choice choice = choose(walk.getName(), isDirectory);
        if (choice == Choice::NONE)
            continue;
        if (!isDirectory) {
            writeFile(output, walk, pending);
            continue;
        }
        Pending entry;
        entry.directorySize = walk.getDirectory().size();
        entry.depth = walk.getDepth();
        walk.enter(facts);
        entry.file = KusTarFile::fromSystem(walk.getFileName(), facts);
        pending.push_back(std::move(entry));
        if (choice == Choice::TAKE)
            writePending(output, walk.getName(), pending);
    }
}

void KusArchivePacker::writePending(KusArchiveOutput& output, const QByteArray& name,
                                    std::vector<Pending>& pending)
{
    for (const Pending& directory : pending)
        addMember(output, directory.file, name.left(directory.directorySize));
    pending.clear();
}

void KusArchivePacker::writeFile(KusArchiveOutput& output, const KusArchiveWalk& walk,
                                 std::vector<Pending>& pending)
{
    if (walk.getKind() != Kind::REGULAR)
        KusArchiveWalk::failAsChanged(walk.getShownPath());
    struct stat facts = {};
    const KusArchiveWalk::Descriptor file = walk.openFile(facts);
    const QByteArray name = walk.getFileName();
    if (m_own.holds(name, facts))
        return;
    writePending(output, walk.getName(), pending);
    addMember(output, KusTarFile::fromSystem(name, facts), walk.getDirectory());
    const int error = output.addData(file.get(), facts.st_size);
    if (error != 0)
        walk.fail(error);
    m_writtenSize += facts.st_size;
}
