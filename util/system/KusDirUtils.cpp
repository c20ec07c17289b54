#include <util/system/KusDirUtils.h>

#include "KusFileEntry.h"

#include <util/system/KusFileUtils.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QUuid>

using namespace KusFileEntry;

namespace
{
constexpr std::size_t BLOCK_BYTES = 1 << 20; // between two looks for a cancel

const QFile::Permissions OWNER_ACCESS = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

/// The bits that the entry holds. Qt adds what the present user may do, and would write that as the
/// owner's bits.
QFile::Permissions getStoredPermissions(const QFileInfo& info)
{
    return info.permissions() & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
}

QString withFinalSlash(const QString& path)
{
    return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

/// The number of bytes and entries below a directory, links not followed.
qint64 countUnits(const QString& directory)
{
    qint64 units = 0;
    QDirIterator entries(directory, EVERY_ENTRY, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo info = entries.fileInfo();
        units += 1 + (info.isFile() && !isLink(info) ? info.size() : 0);
    }
    return units;
}
} // namespace

KusDirUtils::KusDirUtils(const QString& directory, QObject* parent)
    : HbcAProgress(tr("Copying directory"), parent)
    , m_directory(directory)
{
}

KusDirUtils::~KusDirUtils() = default;

void KusDirUtils::setOperation(Operation operation, const QString& target)
{
    m_operationSet = operation == Operation::COPY;
    m_target = target;
}

void KusDirUtils::_run()
{
    if (!m_operationSet)
        HBE_PROGRAMMING_ERROR("system/KusDirUtils", tr("There is no operation set."));
    checkDirectories();

    const QString name = QDir(QFileInfo(m_directory).absoluteFilePath()).dirName();
    const QDir target(m_target);
    const QString path = target.filePath(name);
    const QFileInfo info(path);
    if (name.isEmpty() || info.exists() || isLink(info))
        throw HbeDiskError(tr("Cannot create '%1'").arg(path));

    // Short, whatever the name is, so that a name of full length has its place.
    const QString partial =
        target.filePath(QStringLiteral(".copy_") + QUuid::createUuid().toString(QUuid::Id128));
    if (!target.mkdir(partial))
        throw HbeDiskError(tr("Cannot create '%1'").arg(path));
    try {
        copyBeside(partial);
        if (!KusFileUtils::renamePath(partial, path)) {
            throw HbeDiskError(
                tr("Cannot copy directory '%1' into '%2'").arg(m_directory, m_target));
        }
    } catch (...) {
        clean(partial);
        throw;
    }
}

void KusDirUtils::checkDirectories() const
{
    const QFileInfo source(m_directory);
    if (m_directory.isEmpty() || !source.isDir())
        throw HbeDiskError(tr("Directory '%1' does not exist.").arg(m_directory));
    const QFileInfo target(m_target);
    if (m_target.isEmpty() || !target.isDir())
        throw HbeDiskError(tr("'%1' is not a valid directory").arg(m_target));

    // A copy inside its source would never end.
    if (withFinalSlash(target.canonicalFilePath())
            .startsWith(withFinalSlash(source.canonicalFilePath())))
        throw HbeDiskError(tr("Cannot copy directory '%1' into '%2'").arg(m_directory, m_target));
}

void KusDirUtils::copyBeside(const QString& partial)
{
    initCounter(countUnits(m_directory));
    m_block.resize(BLOCK_BYTES);
    // Permissions come last and from the leaves up: a directory may forbid what is still to do.
    std::vector<Step> done;
    std::vector<Step> pending{{QFileInfo(m_directory), partial}};
    while (!pending.empty()) {
        done.push_back(std::move(pending.back()));
        pending.pop_back();
        copyDirectory(done.back(), pending);
    }
    for (auto step = done.rbegin(); step != done.rend(); ++step)
        QFile::setPermissions(step->target, getStoredPermissions(step->source));
    m_block = {};
}

/// Copies the files and links of a directory, and makes its directories, to be filled later.
void KusDirUtils::copyDirectory(const Step& step, std::vector<Step>& pending)
{
    const QDir source(step.source.filePath());
    if (!source.isReadable()) {
        throw HbeDiskError(
            tr("Cannot copy directory '%1' into '%2'").arg(source.path(), step.target));
    }
    setMessage(source.path());
    const QDir target(step.target);
    for (const QFileInfo& entry : source.entryInfoList(EVERY_ENTRY, QDir::Name)) {
        checkCancelled();
        const QString path = target.filePath(entry.fileName());
        if (isLink(entry)) {
            copyLink(entry, path);
        } else if (entry.isDir()) {
            if (!target.mkdir(entry.fileName()))
                throw HbeDiskError(tr("Cannot create '%1'").arg(path));
            pending.push_back({entry, path});
        } else {
            copyFile(entry, path);
        }
        advance();
    }
}

void KusDirUtils::copyLink(const QFileInfo& source, const QString& target)
{
    std::error_code code;
    std::filesystem::copy_symlink(toNative(source.filePath()), toNative(target), code);
    if (code) {
        throw HbeDiskError(
            tr("Cannot copy file '%1' into '%2': %3").arg(source.filePath(), target, toText(code)));
    }
}

void KusDirUtils::copyFile(const QFileInfo& source, const QString& target)
{
    const auto fail = [&](const QString& why) {
        throw HbeDiskError(
            tr("Cannot copy file '%1' into '%2': %3").arg(source.filePath(), target, why));
    };
    if (!source.isFile())
        fail(tr("it is not a regular file")); // opening a pipe would wait for its writer

    QFile from(source.filePath());
    if (!from.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        fail(from.errorString());
    QFile to(target);
    if (!to.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        fail(to.errorString());
    copyContent(from, to);
    if (from.error() != QFile::NoError)
        fail(from.errorString());
    if (to.error() != QFile::NoError)
        fail(to.errorString());
    to.setFileTime(source.lastModified(), QFile::FileModificationTime);
    to.setPermissions(getStoredPermissions(source));
    to.close();
    if (to.error() != QFile::NoError)
        fail(to.errorString());
}

/// Stops at the first error, which the file that failed holds.
void KusDirUtils::copyContent(QFile& from, QFile& to)
{
    for (;;) {
        checkCancelled();
        const qint64 count = from.read(m_block.data(), static_cast<qint64>(m_block.size()));
        if (count <= 0)
            return;
        // A disk that is nearly full takes a part; only the next write tells why.
        for (qint64 done = 0; done < count;) {
            const qint64 written = to.write(m_block.data() + done, count - done);
            if (written <= 0)
                return;
            done += written;
        }
        advance(count);
    }
}

void KusDirUtils::clean(const QString& partial)
{
    setMessage(tr("Cleaning"));
    // Everything below was made by this run; a directory may have got its final permissions.
    QFile::setPermissions(partial, OWNER_ACCESS);
    QDirIterator entries(partial,
                         QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::NoSymLinks,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        QFile::setPermissions(entries.next(), OWNER_ACCESS);
    KusFileUtils::removePath(partial, true);
    m_block = {};
}
