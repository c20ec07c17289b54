#include <util/system/KusTarRecord.h>

#include "KusTarField.h"
#include "KusTarPax.h"

#include <util/system/KusTarFile.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace KusTarField;

namespace
{
const QByteArray USTAR_MAGIC("ustar\0", 6);
const QByteArray USTAR_VERSION("00");
const QByteArray UNKNOWN("Unknown");
const QByteArray PAX_PATH("path");
constexpr char SOLARIS_EXTENSION_TYPE = 'X';
constexpr int CHECKSUM_DIGITS = 6;
constexpr int MAX_OWNER_NAME = 31;           // a NUL ends it
constexpr qint64 ID_END = 1 << 21;           // 7 octal digits
constexpr qint64 TIME_END = qint64(1) << 36; // 12 octal digits

QByteArray withoutFinalSlash(const QByteArray& path)
{
    return path.endsWith('/') ? path.chopped(1) : path;
}

QByteArray joined(const QByteArray& directory, const QByteArray& name)
{
    return directory.isEmpty() || directory.endsWith('/') ? directory + name
                                                          : directory + '/' + name;
}

QByteArray slashedName(const KusTarFile& file)
{
    return file.isDirectory ? file.name + '/' : file.name;
}

void writeId(char* header, Field field, qint64 id)
{
    writeOctal(header, field, id >= 0 && id < ID_END ? id : 0);
}

void writeOwner(char* header, Field field, const QByteArray& name)
{
    write(header, field, name.isEmpty() ? UNKNOWN : name.left(MAX_OWNER_NAME));
}

void writeMagic(char* header)
{
    write(header, MAGIC, USTAR_MAGIC);
    write(header, VERSION, USTAR_VERSION);
}

/// The nine bits as the decimal number that spells their octal digits.
int spellOctal(int permissionBits)
{
    return (permissionBits >> 6 & 7) * 100 + (permissionBits >> 3 & 7) * 10 + (permissionBits & 7);
}

/// The last thing that a header gets.
void writeChecksum(char* header)
{
    const QByteArray digits =
        QByteArray::number(getSum(header), 8).rightJustified(CHECKSUM_DIGITS, '0');
    write(header, CHECKSUM, digits + QByteArray("\0 ", 2));
}

/// The facts of a source; false when it is no file or directory.
bool inspect(const QString& sourcePath, const QString& name, KusTarFile& file)
{
    struct stat facts = {};
    if (::stat(QFile::encodeName(sourcePath).constData(), &facts) != 0 ||
        !(S_ISREG(facts.st_mode) || S_ISDIR(facts.st_mode)))
        return false;
    const QString ownName = QDir(QFileInfo(sourcePath).absoluteFilePath()).dirName();
    file = KusTarFile::fromSystem((name.isEmpty() ? ownName : name).toUtf8(), facts);
    return true;
}
} // namespace

struct KusTarRecord::Source {
    explicit Source(const QString& sourcePath)
        : path(sourcePath)
    {
    }
    Source(const Source& other)
        : path(other.path)
    {
    }
    Source& operator=(const Source&) = delete;
    ~Source() { close(); }

    void close()
    {
        if (descriptor >= 0)
            ::close(descriptor);
        descriptor = -1;
    }

    QString path;
    int descriptor = -1;
    qint64 remaining = 0;
};

KusTarRecord::KusTarRecord() = default;
KusTarRecord::KusTarRecord(KusTarRecord&& other) noexcept = default;
KusTarRecord& KusTarRecord::operator=(KusTarRecord&& other) noexcept = default;
KusTarRecord::~KusTarRecord() = default;

KusTarRecord::KusTarRecord(const KusTarRecord& other)
    : m_header(other.m_header)
    , m_isExtension(other.m_isExtension)
    , m_source(other.m_source ? std::make_unique<Source>(*other.m_source) : nullptr)
{
}

KusTarRecord& KusTarRecord::operator=(const KusTarRecord& other)
{
    if (this != &other)
        *this = KusTarRecord(other);
    return *this;
}

KusTarRecord::KusTarRecord(const QByteArray& block)
{
    if (block.size() == BLOCK_SIZE)
        *this = KusTarRecord(block.constData());
}

KusTarRecord::KusTarRecord(const char* block)
{
    std::memcpy(m_header.data(), block, BLOCK_SIZE);
    m_isExtension = typeFlag() == EXTENSION_TYPE || typeFlag() == SOLARIS_EXTENSION_TYPE;
}

KusTarRecord::KusTarRecord(const QString& sourcePath, const QString& archiveDirPath,
                           const QString& name)
{
    KusTarFile file;
    if (!inspect(sourcePath, name, file))
        return;
    *this = KusTarRecord(file, archiveDirPath.toUtf8());
    m_source = std::make_unique<Source>(sourcePath);
}

KusTarRecord::KusTarRecord(const KusTarFile& file, const QByteArray& archiveDirPath)
{
    char* const header = m_header.data();
    const QByteArray whole = joined(archiveDirPath, slashedName(file));
    if (whole.size() <= NAME_SIZE) {
        write(header, NAME, whole);
    } else {
        const QByteArray directory = withoutFinalSlash(archiveDirPath);
        const QByteArray name = slashedName(file);
        write(header, PREFIX, directory);
        write(header, NAME, name);
        m_isExtension = directory.size() > PREFIX_SIZE || name.size() > NAME_SIZE;
    }
    const QByteArray mode = QByteArray::number(spellOctal(file.permissionBits));
    write(header, MODE, mode.rightJustified(MODE.size - 1, '0'));
    writeId(header, OWNER_ID, file.ownerId);
    writeId(header, GROUP_ID, file.groupId);
    writeSize(header, file.isDirectory ? 0 : file.size);
    const qint64 time = std::clamp(file.modifSeconds, qint64(0), TIME_END - 1);
    write(header, TIME, QByteArray::number(time, 8));
    header[TYPE_FLAG.offset] = file.isDirectory ? DIRECTORY_TYPE : FILE_TYPE;
    writeMagic(header);
    writeOwner(header, OWNER_NAME, file.ownerName);
    writeOwner(header, GROUP_NAME, file.groupName);
    writeChecksum(header);
}

QByteArray KusTarRecord::header() const
{
    return QByteArray(m_header.data(), BLOCK_SIZE);
}

QString KusTarRecord::name() const
{
    return QString::fromUtf8(nameBytes());
}

QByteArray KusTarRecord::nameBytes() const
{
    const QByteArray prefix = read(m_header.data(), PREFIX);
    const QByteArray name = read(m_header.data(), NAME);
    return prefix.isEmpty() ? name : prefix + '/' + name;
}

char KusTarRecord::typeFlag() const
{
    return m_header[TYPE_FLAG.offset];
}

qint64 KusTarRecord::size() const
{
    qint64 size = -1;
    return readNumber(m_header.data(), SIZE, size) && size >= 0 ? size : -1;
}

QDateTime KusTarRecord::modifTime() const
{
    constexpr qint64 MOST = std::numeric_limits<qint64>::max() / 1000; // QDateTime counts in 1/1000
    qint64 seconds = 0;
    const bool isTime =
        readNumber(m_header.data(), TIME, seconds) && seconds <= MOST && seconds >= -MOST;
    return isTime ? QDateTime::fromSecsSinceEpoch(seconds) : QDateTime();
}

qint64 KusTarRecord::modifSeconds() const
{
    qint64 seconds = 0;
    return readNumber(m_header.data(), TIME, seconds) ? seconds : 0;
}

int KusTarRecord::permissionBits() const
{
    qint64 mode = 0;
    return readNumber(m_header.data(), MODE, mode) ? static_cast<int>(mode & 0777) : -1;
}

bool KusTarRecord::isExtension() const
{
    return m_isExtension;
}

bool KusTarRecord::isValid() const
{
    const char flag = typeFlag();
    const bool isMember = (flag == FILE_TYPE || flag == DIRECTORY_TYPE) &&
                          read(m_header.data(), MAGIC).startsWith("ustar");
    const bool isPax = flag == EXTENSION_TYPE || flag == SOLARIS_EXTENSION_TYPE;
    return (isMember || isPax) && !nameBytes().isEmpty() && size() >= 0;
}

bool KusTarRecord::hasRightChecksum() const
{
    qint64 sum = 0;
    return readNumber(m_header.data(), CHECKSUM, sum) &&
           (sum == getSum(m_header.data()) || sum == getSignedSum(m_header.data()));
}

bool KusTarRecord::isZeroBlock() const
{
    return std::all_of(m_header.begin(), m_header.end(), [](char c) { return c == '\0'; });
}

void KusTarRecord::initFile()
{
    if (!m_source)
        HBE_PROGRAMMING_ERROR("system/KusTarRecord", tr("There is no source file."));
    m_source->close();
    m_source->descriptor =
        ::open(QFile::encodeName(m_source->path).constData(), O_RDONLY | O_CLOEXEC);
    if (m_source->descriptor < 0)
        HBE_PROGRAMMING_ERROR("system/KusTarRecord", qt_error_string(errno));
    m_source->remaining = size();
}

QByteArray KusTarRecord::readNextData()
{
    if (!m_source || m_source->descriptor < 0)
        HBE_PROGRAMMING_ERROR("system/KusTarRecord", tr("The source file is not open."));
    const qint64 count = std::min<qint64>(m_source->remaining, qint64(CHUNK_BLOCKS) * BLOCK_SIZE);
    QByteArray data(static_cast<int>(getPaddedSize(count)), Qt::Uninitialized);
    for (qint64 done = 0; done < count;) {
        const ssize_t got = ::read(m_source->descriptor, data.data() + done,
                                   static_cast<std::size_t>(count - done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            const QString why =
                got < 0 ? qt_error_string(errno) : tr("it became shorter while it was read");
            throw HbeDiskError(tr("Cannot read '%1': %2").arg(m_source->path, why));
        }
        done += got;
    }
    std::fill(data.begin() + static_cast<int>(count), data.end(), '\0');
    m_source->remaining -= count;
    return data;
}

void KusTarRecord::closeFile()
{
    if (m_source)
        m_source->close();
}

bool KusTarRecord::createPaxRecord(const QString& sourcePath, const QString& archiveDirPath,
                                   KusTarRecord& header, QByteArray& data)
{
    KusTarFile file;
    return inspect(sourcePath, QString(), file) &&
           createPaxRecord(file, archiveDirPath.toUtf8(), header, data);
}

bool KusTarRecord::createPaxRecord(const KusTarFile& file, const QByteArray& archiveDirPath,
                                   KusTarRecord& header, QByteArray& data)
{
    if (!KusTarRecord(file, archiveDirPath).isExtension())
        return false;
    data = KusTarPax::encode({PAX_PATH, joined(archiveDirPath, slashedName(file))});

    header = KusTarRecord();
    header.m_isExtension = true;
    char* const bytes = header.m_header.data();
    const QByteArray directory = withoutFinalSlash(archiveDirPath);
    const bool hasPrefix = directory.size() < PREFIX_SIZE;
    const QByteArray start(hasPrefix ? "" : "./");
    if (hasPrefix)
        write(bytes, PREFIX, directory);
    write(bytes, NAME, start + "PaxHeaders." + QByteArray::number(::getpid()) + '/' + file.name);
    writeSize(bytes, data.size());
    bytes[TYPE_FLAG.offset] = EXTENSION_TYPE;
    writeMagic(bytes);
    writeChecksum(bytes);

    const int padding = static_cast<int>(getPaddedSize(data.size())) - data.size();
    data.append(padding, '\0');
    return true;
}

bool KusTarRecord::decodePaxRecord(const QByteArray& data, QString& path)
{
    QByteArray bytes = path.toUtf8();
    const bool isDecoded = decodePaxRecord(data, bytes);
    path = QString::fromUtf8(bytes);
    return isDecoded;
}

bool KusTarRecord::decodePaxRecord(const QByteArray& data, QByteArray& path)
{
    QVector<KusTarPax::Entry> entries;
    if (!KusTarPax::decode(data, entries))
        return false;
    for (const KusTarPax::Entry& entry : qAsConst(entries)) {
        if (entry.key == PAX_PATH)
            path = entry.value;
    }
    return true;
}

qint64 KusTarRecord::getPaddedSize(qint64 size)
{
    constexpr qint64 LARGEST = std::numeric_limits<qint64>::max() / BLOCK_SIZE * BLOCK_SIZE;
    if (size <= 0)
        return 0;
    return size > LARGEST ? LARGEST : (size + BLOCK_SIZE - 1) / BLOCK_SIZE * BLOCK_SIZE;
}
