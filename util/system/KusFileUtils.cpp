#include <util/system/KusFileUtils.h>

#include "KusFileEntry.h"

#include <basic/base/HbbDebug.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QDateTime>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryFile>
#include <QtCore/QThread>

#include <filesystem>
#include <system_error>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

using namespace KusFileEntry;

namespace
{
constexpr int MAX_TRIES = 3;
constexpr unsigned long RETRY_DELAY_MS = 1000;
constexpr int MAX_NAME_BYTES = 255; // of one path element, on every usual file system

/// `attempt` returns whether it succeeded and sets its error text; `describe` makes the warning.
template <class Attempt, class Describe>
bool tryRepeatedly(Attempt attempt, Describe describe)
{
    for (int count = 1;; ++count) {
        QString error;
        if (attempt(error))
            return true;
        HbbDebug::printWarning(describe(QString::number(count), error));
        if (count == MAX_TRIES)
            return false;
        QThread::msleep(RETRY_DELAY_MS);
    }
}

QString toPlainAbsolute(const QString& path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

/// A file, a link, or an empty directory.
bool removeEntry(const QString& path, QString& error)
{
    std::error_code code;
    std::filesystem::remove(toNative(path), code);
    if (code)
        error = toText(code);
    return !code;
}
} // namespace

bool KusFileUtils::removePath(const QString& path, bool recursive)
{
    if (path.isEmpty())
        HBE_PROGRAMMING_ERROR("system/KusFileUtils", tr("Path to remove is empty."));

    const QString plain = toPlainAbsolute(path);
    const QFileInfo info(plain);
    if (!recursive || isLink(info) || !info.isDir() || dirIsEmpty(QDir(plain)))
        return removeSingle(plain);

    const QString aside = aboutToRemoveDir(plain);
    if (aside.isEmpty())
        return false;
    if (removeTree(aside))
        return true;
    renamePath(aside, plain); // whoever looks for the rest looks under the name it had
    return false;
}

bool KusFileUtils::removeSingle(const QString& path)
{
    return tryRepeatedly(
        [&](QString& error) { return removeEntry(path, error); },
        [&](const QString& count, const QString& error) {
            return tr("Failed to remove '%1' (try %2). Error was %3.").arg(path, count, error);
        });
}

/// Stops at the first entry that stays, so that a lock costs its few seconds once.
bool KusFileUtils::removeTree(const QString& path)
{
    const QFileInfoList entries = QDir(path).entryInfoList(EVERY_ENTRY, QDir::Unsorted);
    for (const QFileInfo& entry : entries) {
        const bool descend = entry.isDir() && !isLink(entry);
        const QString entryPath = entry.absoluteFilePath();
        if (!(descend ? removeTree(entryPath) : removeSingle(entryPath)))
            return false;
    }
    return removeSingle(path);
}

bool KusFileUtils::renamePath(const QString& from, const QString& to)
{
    const auto rename = [&](QString& error) {
        QFile file(from); // refuses an existing target; a directory is renamed like a file
        const bool renamed = file.rename(to);
        error = file.errorString();
        return renamed;
    };
    return tryRepeatedly(rename, [&](const QString& count, const QString& error) {
        return tr("Failed to rename '%1' to '%2' (try %3). Error was %4.")
            .arg(from, to, count, error);
    });
}

QString KusFileUtils::aboutToRemoveDir(const QString& path)
{
    if (path.isEmpty())
        return QString();
    const QFileInfo info(toPlainAbsolute(path));
    QString name = info.fileName();
    if (name.isEmpty())
        return QString(); // a root

    const QString date =
        QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("(MM-dd-yy__hh-mm)"));
    QString suffix = QStringLiteral("_remove_") + date;
    const QString parent = info.absolutePath();
    const auto getAside = [&] {
        QString start = name;
        while (QFile::encodeName(start + suffix).size() > MAX_NAME_BYTES && !start.isEmpty())
            start.chop(1);
        return QDir(parent).filePath(start + suffix);
    };
    // The date has no seconds: what an earlier removal left behind may hold the name.
    for (int rank = 2; existsOrIsLink(QFileInfo(getAside())); ++rank)
        suffix = QStringLiteral("_remove_%1_%2").arg(date).arg(rank);

    const QString aside = getAside();
    return renamePath(info.absoluteFilePath(), aside) ? aside : QString();
}

bool KusFileUtils::canBeRemoved(const QString& path)
{
    if (!path.isEmpty() && !existsOrIsLink(QFileInfo(path)))
        return true;
    const QString aside = aboutToRemoveDir(path);
    if (aside.isEmpty())
        return false;
    if (!renamePath(aside, toPlainAbsolute(path))) {
        throw HbeDiskError(
            tr("Failed to revert to old name when testing if a dir could be deleted."));
    }
    return true;
}

bool KusFileUtils::dirIsEmpty(const QDir& dir)
{
    return dir.isEmpty(EVERY_ENTRY);
}

qint64 KusFileUtils::getSize(const QFileInfo& info, const QStringList& leftOut)
{
    if (!info.isDir())
        return info.isFile() ? info.size() : 0;

    qint64 size = 0;
    QStringList pending{info.absoluteFilePath()};
    while (!pending.isEmpty()) {
        QDirIterator entries(pending.takeLast(), EVERY_ENTRY);
        while (entries.hasNext()) {
            entries.next();
            const QFileInfo entry = entries.fileInfo();
            if (isLink(entry) || leftOut.contains(entry.fileName()))
                continue;
            if (entry.isDir())
                pending.append(entry.absoluteFilePath());
            else if (entry.isFile())
                size += entry.size();
        }
    }
    return size;
}

QString KusFileUtils::getStringSize(const QFileInfo& info)
{
    return getStringSize(getSize(info));
}

QString KusFileUtils::getStringSize(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes);
}

qint64 KusFileUtils::getDirectoryFreeSpace(const QFileInfo& info)
{
    QFileInfo nearest(toPlainAbsolute(info.absoluteFilePath()));
    while (!nearest.exists() && !nearest.isRoot())
        nearest.setFile(nearest.absolutePath());
    // Asked of the path, not of the list of mounts: inside of a container that names other places.
    std::error_code error;
    const auto space = std::filesystem::space(nearest.absoluteFilePath().toStdU16String(), error);
    return error ? -1 : static_cast<qint64>(space.available);
}

bool KusFileUtils::isWritable(const QString& path)
{
    const QFileInfo info(path);
    if (info.isFile())
        return info.isWritable();
    // The permission bits of a directory do not tell of read-only volumes and shares.
    QTemporaryFile file(QDir(path).filePath(QStringLiteral("tmp")));
    return !path.isEmpty() && file.open();
}

bool KusFileUtils::isValidNativePathElementName(const QString& name)
{
    static const QRegularExpression invalid(QStringLiteral("[:*?\"<>|]"));
    return !name.contains(invalid);
}

bool KusFileUtils::pathContainsInvalidCharacters(const QString& path)
{
    static const QRegularExpression drive(QStringLiteral("^[A-Za-z]:(?=/|$)"));
    const QStringList elements =
        QString(path).remove(drive).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    return !std::all_of(elements.begin(), elements.end(), &isValidNativePathElementName);
}

QStringList KusFileUtils::getPaths(const QDir& dir, bool recursive, const QStringList& nameFilters,
                                   QDir::Filters kinds)
{
    QStringList paths;
    if (!dir.exists())
        return paths;
    QDirIterator entries(dir.absolutePath(), nameFilters,
                         kinds | QDir::NoDotAndDotDot | QDir::Hidden,
                         recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    while (entries.hasNext())
        paths.append(entries.next());
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool KusFileUtils::IsFileNtfsCompressed(const QString& path)
{
#ifdef Q_OS_WIN
    const QString native = QDir::toNativeSeparators(path);
    const DWORD attributes = GetFileAttributesW(reinterpret_cast<const wchar_t*>(native.utf16()));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_COMPRESSED) != 0;
#else
    Q_UNUSED(path)
    return false;
#endif
}
