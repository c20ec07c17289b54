#include <util/system/KusTarReader.h>

#include "KusTarField.h"
#include "KusTarPax.h"

#include <util/system/KusArchive.h>
#include <util/system/KusArchiveInformation.h>
#include <util/system/KusArchiveInput.h>
#include <util/system/KusFileUtils.h>

#include <basic/error/HbeUserError.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace
{
constexpr int BLOCK = KusTarRecord::BLOCK_SIZE;
constexpr int MAX_INVALID = 2;                 ///< the two blocks that end a stream
constexpr qint64 MAX_EXTENSION_SIZE = 1 << 20; ///< names are far shorter
constexpr int END_PIECE = 1 << 20;

constexpr char OLD_FILE_TYPE = '\0';
constexpr char SOLARIS_EXTENSION_TYPE = 'X';
constexpr char GLOBAL_EXTENSION_TYPE = 'g';
constexpr char LONG_NAME_TYPE = 'L';
constexpr char LONG_LINK_TYPE = 'K';

const QByteArray POSIX_MAGIC("ustar\0", 6);

/// The name for a message: a hostile one must not write to the terminal, or fill it.
QString shown(const QByteArray& name)
{
    constexpr int LONGEST = 1000;
    QString text = QString::fromUtf8(name.left(LONGEST));
    if (name.size() > LONGEST)
        text += QChar(0x2026);
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control)
            c = QChar::ReplacementCharacter;
    }
    return text;
}

QByteArray lastElement(const QByteArray& name)
{
    return name.mid(name.lastIndexOf('/') + 1);
}

bool isNul(HbdSpan<const char> bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == '\0'; });
}
} // namespace

struct KusTarReader::Private {
    Private(KusArchiveInput& stream, const QString& archivePath)
        : input(stream)
        , path(archivePath)
    {
    }

    bool readBlock();
    void readFully(char* data, qint64 count, const QByteArray& what);
    void skip(qint64 count, const QByteArray& what);
    void claim(qint64 count, const QByteArray& what) const;
    void passMember();

    bool takeRecord();
    bool takeStrictly();
    bool takeOfOtherTools();
    void takeZeroBlock();
    void countInvalid();
    void beginMember();
    void finish();

    QByteArray headerName() const;
    QByteArray recordName() const;
    const QByteArray& readExtension();
    void readPath();
    void readPax();
    void readLongName();

    QString describeType() const;
    [[noreturn]] void refuseBlock() const;
    [[noreturn]] void refuse(const QString& fault) const;
    [[noreturn]] void refuseDecoding(const QByteArray& what, const QString& fault) const;
    [[noreturn]] void refuseCut(const QByteArray& what) const;

    KusArchiveInput& input;
    const QString path;
    bool readsOtherTools = false;
    qint64 limit = std::numeric_limits<qint64>::max();
    qint64 position = 0; // in the stream

    QVariantMap information;
    qint64 announced = -1;
    bool isInformationRead = false;
    bool isRecordWaiting = false; // the first one, which turned out to be no information

    KusTarRecord record; // the last one that was read, of whatever kind
    qint64 offset = 0;   // of the record
    bool isEnded = false;
    int zeroBlocks = 0; // one after the other, up to here
    int invalidCount = 0;
    bool hasForeignEnd = false;

    // What the records before a member say of it.
    bool isExtended = false;
    bool hasRightExtensions = true;
    QByteArray extendedName;
    qint64 extendedSize = -1;
    bool isSparse = false;
    QByteArray extension;

    QByteArray name;
    qint64 size = 0;
    bool isDirectory = false;
    bool hasRightChecksum = true;
    qint64 dataLeft = 0;
    qint64 skipLeft = 0; // behind the data, up to the next record
    qint64 memberCount = 0;
    qint64 totalSize = 0;
};

// The stream

/// The next record; false where the stream ends.
bool KusTarReader::Private::readBlock()
{
    offset = position;
    std::array<char, BLOCK> copy;
    HbdSpan<const char> bytes = input.next(BLOCK);
    if (!bytes.isEmpty() && bytes.size() < BLOCK) {
        // The input hands out pieces as it has them.
        const int first = bytes.size();
        std::memcpy(copy.data(), bytes.data(), static_cast<std::size_t>(first));
        const qint64 further = input.read(copy.data() + first, BLOCK - first);
        bytes = HbdSpan<const char>(copy.data(), first + static_cast<int>(further));
    }
    position += bytes.size();
    if (bytes.size() == BLOCK) {
        record = KusTarRecord(bytes.data());
        return true;
    }
    if (offset == 0)
        throw HbeUserError(tr("'%1' is not a valid archive file.").arg(path) + QLatin1Char('\n') +
                           tr("Decompressed, it is shorter than one header."));
    hasForeignEnd = !isNul(bytes);
    return false;
}

void KusTarReader::Private::readFully(char* data, qint64 count, const QByteArray& what)
{
    const qint64 done = input.read(data, count);
    position += done;
    if (done < count)
        refuseCut(what);
}

void KusTarReader::Private::skip(qint64 count, const QByteArray& what)
{
    const qint64 done = count > 0 ? input.skip(count) : 0;
    position += done;
    if (done < count)
        refuseCut(what);
}

/// Refuses what goes beyond the limit, before it is read.
void KusTarReader::Private::claim(qint64 count, const QByteArray& what) const
{
    if (position > limit || count > limit - position)
        throw HbeUserError(
            tr("Archive file '%1' holds more than the %2 that are allowed.")
                .arg(path, KusFileUtils::getStringSize(limit)) +
            QLatin1Char('\n') +
            tr("'%1' at byte %2 goes beyond it with %3.")
                .arg(shown(what), QString::number(offset), KusFileUtils::getStringSize(count)));
}

void KusTarReader::Private::passMember()
{
    skip(dataLeft + skipLeft, name);
    dataLeft = 0;
    skipLeft = 0;
}

// Records

/// Whether the record begins a member.
bool KusTarReader::Private::takeRecord()
{
    if (position > limit)
        claim(0, recordName());
    if (record.isZeroBlock()) {
        takeZeroBlock();
        return false;
    }
    zeroBlocks = 0;
    if (!(readsOtherTools ? takeOfOtherTools() : takeStrictly()))
        return false;
    beginMember();
    return true;
}

bool KusTarReader::Private::takeStrictly()
{
    if (!record.isValid()) {
        countInvalid();
        return false;
    }
    if (!record.isExtension())
        return true;
    readPath();
    return false;
}

bool KusTarReader::Private::takeOfOtherTools()
{
    const char type = record.typeFlag();
    const bool isFile = type == KusTarRecord::FILE_TYPE || type == OLD_FILE_TYPE;
    const bool isMember = isFile || type == KusTarRecord::DIRECTORY_TYPE;
    const bool isOld =
        !KusTarField::read(record.headerData(), KusTarField::MAGIC).startsWith("ustar");
    if (isOld && !(isMember && record.hasRightChecksum()))
        refuseBlock();
    if (isMember && isSparse)
        refuse(tr("it is a sparse file; those are not read"));
    if (!isMember && type != KusTarRecord::EXTENSION_TYPE && type != SOLARIS_EXTENSION_TYPE &&
        type != GLOBAL_EXTENSION_TYPE && type != LONG_NAME_TYPE && type != LONG_LINK_TYPE)
        refuse(describeType());
    if (record.size() < 0)
        refuse(tr("its size is no number, or a negative one"));
    if (isMember && recordName().isEmpty())
        refuse(tr("it has no name"));
    if (type == LONG_NAME_TYPE) {
        readLongName();
    } else if (type == LONG_LINK_TYPE || type == GLOBAL_EXTENSION_TYPE) {
        claim(record.size(), headerName());
        skip(KusTarRecord::getPaddedSize(record.size()), headerName());
    } else if (!isMember) {
        readPax();
    }
    return isMember;
}

void KusTarReader::Private::takeZeroBlock()
{
    ++zeroBlocks;
    if (!readsOtherTools)
        countInvalid();
    else if (zeroBlocks == MAX_INVALID)
        isEnded = true;
}

void KusTarReader::Private::countInvalid()
{
    if (++invalidCount > MAX_INVALID)
        throw HbeUserError(
            tr("Corrupted archive file '%1' (more than 2 invalid records).").arg(path));
}

void KusTarReader::Private::beginMember()
{
    name = recordName();
    const bool isDirectoryType = !record.isFile();
    // Old writers had no type for a directory, and what they wrote behind its header has no use. A
    // real directory has no data, whatever its size field says.
    isDirectory = isDirectoryType || (readsOtherTools && name.endsWith('/'));
    while (isDirectory && name.size() > 1 && name.endsWith('/'))
        name.chop(1);
    qint64 stored = extendedSize >= 0 ? extendedSize : record.size();
    if (isDirectoryType)
        stored = 0;
    claim(stored, name);
    size = isDirectory ? 0 : stored;
    if (announced >= 0 && size > announced - totalSize)
        throw HbeUserError(
            tr("Archive file '%1' holds more than the %2 that it announces.")
                .arg(path, KusFileUtils::getStringSize(announced)) +
            QLatin1Char('\n') +
            tr("'%1' at byte %2 goes beyond it with %3.")
                .arg(shown(name), QString::number(offset), KusFileUtils::getStringSize(size)));
    dataLeft = size;
    skipLeft = KusTarRecord::getPaddedSize(stored) - size;
    hasRightChecksum = hasRightExtensions && record.hasRightChecksum();
    isExtended = false;
    hasRightExtensions = true;
    extendedName.clear();
    extendedSize = -1;
    isSparse = false;
    ++memberCount;
    totalSize += size;
}

void KusTarReader::Private::finish()
{
    isEnded = true;
    if (readsOtherTools && isExtended)
        throw HbeUserError(
            tr("Corrupted archive file '%1' (the extended information of '%2' is its end, at byte "
               "%3).")
                .arg(path, shown(extendedName), QString::number(offset)));
}

// Extended information

/// The name in the header itself.
QByteArray KusTarReader::Private::headerName() const
{
    const char* const header = record.headerData();
    // Headers that are not of POSIX have other fields in the place of the prefix.
    if (readsOtherTools && std::memcmp(header + KusTarField::MAGIC.offset, POSIX_MAGIC.constData(),
                                       std::size_t(POSIX_MAGIC.size())) != 0)
        return KusTarField::read(header, KusTarField::NAME);
    return record.nameBytes();
}

QByteArray KusTarReader::Private::recordName() const
{
    return extendedName.isEmpty() ? headerName() : extendedName;
}

/// The data of the record.
const QByteArray& KusTarReader::Private::readExtension()
{
    const QByteArray what = headerName();
    const qint64 count = record.size();
    if (count > MAX_EXTENSION_SIZE)
        refuseDecoding(what, tr("It has %1; at most %2 are allowed.")
                                 .arg(KusFileUtils::getStringSize(count),
                                      KusFileUtils::getStringSize(MAX_EXTENSION_SIZE)));
    claim(count, what);
    extension.resize(static_cast<int>(count));
    readFully(extension.data(), count, what);
    skip(KusTarRecord::getPaddedSize(count) - count, what);
    isExtended = true;
    hasRightExtensions = hasRightExtensions && record.hasRightChecksum();
    return extension;
}

void KusTarReader::Private::readPath()
{
    if (!KusTarRecord::decodePaxRecord(readExtension(), extendedName))
        refuseDecoding(headerName(), QString());
}

void KusTarReader::Private::readPax()
{
    QVector<KusTarPax::Entry> entries;
    if (!KusTarPax::decode(readExtension(), entries))
        refuseDecoding(headerName(), QString());
    for (const KusTarPax::Entry& entry : qAsConst(entries)) {
        if (entry.key == "path") {
            extendedName = entry.value;
        } else if (entry.key == "size") {
            const bool isNumber =
                !entry.value.isEmpty() && std::all_of(entry.value.begin(), entry.value.end(),
                                                      [](char c) { return c >= '0' && c <= '9'; });
            bool fits = false;
            extendedSize = entry.value.toLongLong(&fits);
            if (!isNumber || !fits)
                refuseDecoding(headerName(), tr("The size that it gives is no number."));
        } else if (entry.key.startsWith("GNU.sparse.")) {
            isSparse = true;
        }
    }
}

void KusTarReader::Private::readLongName()
{
    QByteArray longName = readExtension();
    while (longName.endsWith('\0'))
        longName.chop(1);
    extendedName = longName;
}

// Refusals

QString KusTarReader::Private::describeType() const
{
    switch (record.typeFlag()) {
    case '1':
        return tr("it is a hard link; links are never written");
    case '2':
        return tr("it is a symbolic link; links are never written");
    case '3':
    case '4':
        return tr("it is a device; those are never written");
    case '6':
        return tr("it is a pipe; those are never written");
    case 'S':
        return tr("it is a sparse file; those are not read");
    case 'M':
        return tr("it continues a file of another volume; those are not read");
    case 'V':
        return tr("it is the header of a volume; those are not read");
    default:
        return tr("it is of a kind (0x%1) that is not read")
            .arg(static_cast<unsigned char>(record.typeFlag()), 2, 16, QLatin1Char('0'));
    }
}

/// For a block that is no header at all.
void KusTarReader::Private::refuseBlock() const
{
    if (offset == 0)
        throw HbeUserError(tr("'%1' is not a valid archive file.").arg(path) + QLatin1Char('\n') +
                           tr("Decompressed, it does not begin with the header of a tar archive."));
    throw HbeUserError(tr("Corrupted archive file '%1' (what stands at byte %2, '%3', is no "
                          "header of a tar archive).")
                           .arg(path, QString::number(offset), shown(recordName())));
}

void KusTarReader::Private::refuse(const QString& fault) const
{
    throw HbeUserError(tr("Cannot extract '%1' from archive file '%2': %3 (at byte %4).")
                           .arg(shown(recordName()), path, fault, QString::number(offset)));
}

void KusTarReader::Private::refuseDecoding(const QByteArray& what, const QString& fault) const
{
    QString message =
        tr("Cannot decode extended information '%1' because archive file '%2' is corrupted.")
            .arg(shown(what), path);
    if (!fault.isEmpty())
        message += QLatin1Char('\n') + fault;
    throw HbeUserError(message);
}

void KusTarReader::Private::refuseCut(const QByteArray& what) const
{
    throw HbeUserError(
        tr("Cannot extract '%1' because archive file '%2' is corrupted.").arg(shown(what), path) +
        QLatin1Char('\n') + tr("The archive ends at byte %1, within its data.").arg(position));
}

// The class

KusTarReader::KusTarReader(KusArchiveInput& input, const QString& archivePath)
    : m(std::make_unique<Private>(input, archivePath))
{
}

KusTarReader::~KusTarReader() = default;

void KusTarReader::setReadOtherTools(bool other)
{
    m->readsOtherTools = other;
}

void KusTarReader::setSizeLimit(qint64 bytes)
{
    m->limit = bytes;
}

QVariantMap KusTarReader::readInformation()
{
    if (m->isInformationRead)
        return m->information;
    m->isInformationRead = true;
    m->isEnded = !m->readBlock();
    m->isRecordWaiting = !m->isEnded;
    const KusTarRecord& record = m->record;
    if (m->isEnded || !record.isValid() || record.typeFlag() != KusTarRecord::FILE_TYPE ||
        lastElement(record.nameBytes()) != INFORMATION_NAME)
        return m->information;

    m->isRecordWaiting = false;
    m->name = record.nameBytes();
    m->hasRightChecksum = record.hasRightChecksum();
    const qint64 count = record.size();
    if (count > KusArchiveInformation::MAX_SIZE)
        throw HbeUserError(tr("Cannot extract '%1' because archive file '%2' is corrupted.")
                               .arg(shown(m->name), m->path) +
                           QLatin1Char('\n') +
                           tr("It has %1; at most %2 are allowed.")
                               .arg(KusFileUtils::getStringSize(count),
                                    KusFileUtils::getStringSize(KusArchiveInformation::MAX_SIZE)));
    m->claim(count, m->name);
    QByteArray data(static_cast<int>(count), Qt::Uninitialized);
    m->readFully(data.data(), count, m->name);
    m->skipLeft = KusTarRecord::getPaddedSize(count) - count;
    m->information = KusArchiveInformation::decode(data);
    bool isNumber = false;
    const qint64 size =
        m->information.value(KusArchive::HeaderFieldSize).toString().toLongLong(&isNumber);
    m->announced = isNumber && size >= 0 ? size : -1;
    return m->information;
}

qint64 KusTarReader::getAnnouncedSize() const
{
    return m->announced;
}

bool KusTarReader::nextMember()
{
    readInformation();
    m->passMember();
    while (!m->isEnded) {
        if (!std::exchange(m->isRecordWaiting, false) && !m->readBlock())
            break;
        if (m->takeRecord())
            return true;
    }
    m->finish();
    return false;
}

const QByteArray& KusTarReader::getName() const
{
    return m->name;
}

QString KusTarReader::getNameText() const
{
    return QString::fromUtf8(m->name);
}

qint64 KusTarReader::getSize() const
{
    return m->size;
}

bool KusTarReader::isDirectory() const
{
    return m->isDirectory;
}

const KusTarRecord& KusTarReader::getRecord() const
{
    return m->record;
}

bool KusTarReader::hasRightChecksum() const
{
    return m->hasRightChecksum;
}

qint64 KusTarReader::getOffset() const
{
    return m->offset;
}

HbdSpan<const char> KusTarReader::readData(int most)
{
    const int wanted = static_cast<int>(std::min<qint64>(most, m->dataLeft));
    if (wanted <= 0)
        return HbdSpan<const char>();
    const HbdSpan<const char> bytes = m->input.next(wanted);
    if (bytes.isEmpty())
        m->refuseCut(m->name);
    m->position += bytes.size();
    m->dataLeft -= bytes.size();
    return bytes;
}

void KusTarReader::readToEnd()
{
    m->passMember();
    for (HbdSpan<const char> bytes = m->input.next(END_PIECE); !bytes.isEmpty();
         bytes = m->input.next(END_PIECE)) {
        m->offset = m->position;
        m->position += bytes.size();
        m->claim(0, m->name);
        m->hasForeignEnd = m->hasForeignEnd || !isNul(bytes);
    }
}

qint64 KusTarReader::getMemberCount() const
{
    return m->memberCount;
}

qint64 KusTarReader::getTotalSize() const
{
    return m->totalSize;
}

bool KusTarReader::hasClosingBlocks() const
{
    return m->zeroBlocks >= MAX_INVALID;
}

bool KusTarReader::hasForeignEnd() const
{
    return m->hasForeignEnd;
}
