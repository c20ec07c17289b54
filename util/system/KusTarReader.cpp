#include <util/system/KusTarReader.h>

#include "KusTarExtension.h"
#include "KusTarField.h"
#include "KusTarRefusal.h"

#include <util/system/KusArchive.h>
#include <util/system/KusArchiveInformation.h>
#include <util/system/KusArchiveInput.h>

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
        , refusal(archivePath)
    {
    }

    bool readBlock();
    void readFully(char* data, qint64 count, const QByteArray& what);
    void skip(qint64 count, const QByteArray& what);
    void claim(qint64 count, const QByteArray& what) const;
    void claimEnd() const;
    void passMember();

    bool takeRecord();
    bool takeStrictly();
    bool takeOfOtherTools();
    void readExtensionOfOtherTools();
    void refuseBadSize() const;
    void takeZeroBlock();
    void countInvalid();
    void beginMember();
    void finish();

    [[noreturn]] void refuseNoHeader() const;
    [[noreturn]] void refuseMember(const QString& fault) const
    {
        refusal.refuseMember(recordName(), offset, fault);
    }

    QByteArray headerName() const;
    QByteArray recordName() const;
    const QByteArray& readExtension();

    KusArchiveInput& input;
    const KusTarRefusal refusal;
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
    bool hasForeignRecord = false; // an invalid one that is not of NUL
    bool hasForeignEnd = false;

    // What the records before a member say of it.
    KusTarExtension extension;
    QByteArray extensionData;

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
        refusal.refuseStream(tr("Decompressed, it is shorter than one header."));
    hasForeignEnd = !isNul(bytes);
    if (hasForeignEnd && readsOtherTools)
        refusal.refuseCutHeader(position);
    return false;
}

void KusTarReader::Private::readFully(char* data, qint64 count, const QByteArray& what)
{
    const qint64 done = input.read(data, count);
    position += done;
    if (done < count)
        refusal.refuseCut(what, position);
}

void KusTarReader::Private::skip(qint64 count, const QByteArray& what)
{
    const qint64 done = count > 0 ? input.skip(count) : 0;
    position += done;
    if (done < count)
        refusal.refuseCut(what, position);
}

/// Refuses what goes beyond the limit, before it is read.
void KusTarReader::Private::claim(qint64 count, const QByteArray& what) const
{
    if (position > limit || count > limit - position)
        refusal.refuseLimit(limit, what, offset, count);
}

void KusTarReader::Private::claimEnd() const
{
    if (position > limit)
        refusal.refuseEndLimit(limit, offset);
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
    if (record.isZeroBlock()) {
        claimEnd();
        takeZeroBlock();
        return false;
    }
    if (position > limit)
        claim(0, recordName());
    zeroBlocks = 0;
    if (!(readsOtherTools ? takeOfOtherTools() : takeStrictly()))
        return false;
    beginMember();
    return true;
}

bool KusTarReader::Private::takeStrictly()
{
    if (!record.isValid()) {
        hasForeignRecord = true;
        countInvalid();
        return false;
    }
    if (!record.isExtension())
        return true;
    if (!extension.takePath(readExtension()))
        refusal.refuseDecoding(headerName(), QString());
    return false;
}

bool KusTarReader::Private::takeOfOtherTools()
{
    const char type = record.typeFlag();
    const bool isMember = type == KusTarRecord::FILE_TYPE || type == OLD_FILE_TYPE ||
                          type == KusTarRecord::DIRECTORY_TYPE;
    const bool isOld =
        !KusTarField::read(record.headerData(), KusTarField::MAGIC).startsWith("ustar");
    if (isOld && !record.hasRightChecksum())
        refuseNoHeader();
    if (!isMember) {
        readExtensionOfOtherTools();
        return false;
    }
    if (extension.isSparse)
        refuseMember(tr("it is a sparse file; sparse files are not read"));
    refuseBadSize();
    if (recordName().isEmpty())
        refuseMember(tr("it has no name"));
    return true;
}

void KusTarReader::Private::readExtensionOfOtherTools()
{
    switch (record.typeFlag()) {
    case KusTarRecord::EXTENSION_TYPE:
    case SOLARIS_EXTENSION_TYPE:
        refuseBadSize();
        if (!extension.takePax(readExtension()))
            refusal.refuseDecoding(headerName(), QString());
        break;
    case LONG_NAME_TYPE:
        refuseBadSize();
        extension.takeLongName(readExtension());
        break;
    case LONG_LINK_TYPE:
    case GLOBAL_EXTENSION_TYPE:
        refuseBadSize();
        claim(record.size(), headerName());
        skip(KusTarRecord::getPaddedSize(record.size()), headerName());
        break;
    default:
        refusal.refuseKind(recordName(), offset, record.typeFlag());
    }
}

void KusTarReader::Private::refuseBadSize() const
{
    if (record.size() < 0)
        refuseMember(tr("its size is no number, or a negative one"));
}

void KusTarReader::Private::refuseNoHeader() const
{
    if (offset == 0)
        refusal.refuseStream(
            tr("Decompressed, it does not begin with the header of a tar archive."));
    refusal.refuseBlock(recordName(), offset);
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
        refusal.refuseManyInvalid();
}

void KusTarReader::Private::beginMember()
{
    name = recordName();
    // Old writers had no type for a directory. No directory has data, whatever its size field says.
    isDirectory = !record.isFile() || (readsOtherTools && name.endsWith('/'));
    while (isDirectory && name.size() > 1 && name.endsWith('/'))
        name.chop(1);
    if (isDirectory)
        size = 0;
    else
        size = extension.size >= 0 ? extension.size : record.size();
    claim(size, name);
    if (announced >= 0 && size > announced - totalSize)
        refusal.refuseAnnounced(announced, name, offset, size);
    dataLeft = size;
    skipLeft = KusTarRecord::getPaddedSize(size) - size;
    hasRightChecksum = extension.hasRightChecksums && record.hasRightChecksum();
    extension = KusTarExtension();
    ++memberCount;
    totalSize += size;
}

void KusTarReader::Private::finish()
{
    isEnded = true;
    const bool hasAny = memberCount > 0 || !name.isEmpty(); // the information has a name
    if (!hasAny && hasForeignRecord)
        refusal.refuseStream(tr("Decompressed, it holds no member of a tar archive."));
    if (readsOtherTools && extension.isPresent)
        refusal.refuseLoneExtension(extension.name, offset);
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
    return extension.name.isEmpty() ? headerName() : extension.name;
}

/// The data of the record.
const QByteArray& KusTarReader::Private::readExtension()
{
    const QByteArray what = headerName();
    const qint64 count = record.size();
    if (count > MAX_EXTENSION_SIZE)
        refusal.refuseDecoding(what, KusTarRefusal::describeSize(count, MAX_EXTENSION_SIZE));
    claim(count, what);
    extensionData.resize(static_cast<int>(count));
    readFully(extensionData.data(), count, what);
    skip(KusTarRecord::getPaddedSize(count) - count, what);
    extension.isPresent = true;
    extension.hasRightChecksums = extension.hasRightChecksums && record.hasRightChecksum();
    return extensionData;
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
        m->refusal.refuseData(m->name,
                              KusTarRefusal::describeSize(count, KusArchiveInformation::MAX_SIZE));
    m->claim(count, m->name);
    QByteArray data(static_cast<int>(count), Qt::Uninitialized);
    m->readFully(data.data(), count, m->name);
    m->skipLeft = KusTarRecord::getPaddedSize(count) - count;
    if (data.count('\n') > KusArchiveInformation::MAX_LINES)
        m->refusal.refuseData(
            m->name, tr("It has more than %1 lines.").arg(KusArchiveInformation::MAX_LINES));
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
        m->refusal.refuseCut(m->name, m->position);
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
        m->claimEnd();
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
