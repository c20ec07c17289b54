#include <basic/base/HbbASerializable.h>
#include <basic/error/HbeError.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <limits>

namespace
{
// The header, big endian: mark, version, length of the payload, checksum of the three and the
// payload; 32 bits each.
constexpr char MARK[4] = {'H', 'b', 'b', 'S'};
constexpr int HEADER_BYTES = 16;
constexpr int CHECKED_HEADER_BYTES = 12;
constexpr int CHUNK_BYTES = 1 << 20;

constexpr std::array<quint32, 256> crcTable()
{
    std::array<quint32, 256> table{};
    for (quint32 i = 0; i < 256; ++i) {
        quint32 crc = i;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
        table[i] = crc;
    }
    return table;
}

// CRC-32 as zip files have it; the parts of a text are summed one after the other.
quint32 crc32(quint32 sum, const char* bytes, int count)
{
    static constexpr std::array<quint32, 256> table = crcTable();
    sum = ~sum;
    for (int i = 0; i < count; ++i)
        sum = sum >> 8 ^ table[(sum ^ static_cast<uchar>(bytes[i])) & 0xFF];
    return ~sum;
}

void useFormat(QDataStream& stream)
{
    stream.setVersion(QDataStream::Qt_5_15);
    stream.setByteOrder(QDataStream::BigEndian);
    stream.setFloatingPointPrecision(QDataStream::DoublePrecision);
}

// A stream of the caller takes our format for as long as this lives.
class FormatScope
{
public:
    explicit FormatScope(QDataStream& stream)
        : m_stream(stream)
        , m_version(stream.version())
        , m_byteOrder(stream.byteOrder())
        , m_precision(stream.floatingPointPrecision())
    {
        useFormat(stream);
    }
    ~FormatScope()
    {
        m_stream.setVersion(m_version);
        m_stream.setByteOrder(m_byteOrder);
        m_stream.setFloatingPointPrecision(m_precision);
    }
    Q_DISABLE_COPY(FormatScope)

private:
    QDataStream& m_stream;
    int m_version;
    QDataStream::ByteOrder m_byteOrder;
    QDataStream::FloatingPointPrecision m_precision;
};

[[noreturn]] void refuse(const char* message)
{
    throw HbeError(QCoreApplication::translate("HbbASerializable", message));
}

[[noreturn]] void refuseTruncated()
{
    refuse(QT_TRANSLATE_NOOP("HbbASerializable", "The stream is truncated."));
}

[[noreturn]] void refuseForeign()
{
    refuse(QT_TRANSLATE_NOOP("HbbASerializable", "The stream holds something else."));
}

[[noreturn]] void refuseDamaged()
{
    refuse(QT_TRANSLATE_NOOP("HbbASerializable", "The stream is damaged."));
}

// In chunks, so that a damaged length costs no more memory than there are bytes.
QByteArray readBytes(QDataStream& stream, quint32 length)
{
    QByteArray bytes;
    while (static_cast<quint32>(bytes.size()) < length) {
        const int at = bytes.size();
        const int chunk =
            static_cast<int>(std::min<quint32>(CHUNK_BYTES, length - static_cast<quint32>(at)));
        bytes.resize(at + chunk);
        if (stream.readRawData(bytes.data() + at, chunk) != chunk)
            refuseTruncated();
    }
    return bytes;
}

bool startsForeign(QDataStream& stream)
{
    const QByteArray start = stream.device()->peek(sizeof MARK);
    return !std::equal(start.begin(), start.end(), MARK) || start.isEmpty();
}
} // namespace

HbbASerializable::~HbbASerializable() = default;

QByteArray HbbASerializable::payload() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    useFormat(stream);
    _serialize(stream);
    if (stream.status() != QDataStream::Ok)
        refuse(QT_TRANSLATE_NOOP("HbbASerializable", "The stream cannot be written."));
    return bytes;
}

void HbbASerializable::serialize(QDataStream& stream) const
{
    const QByteArray bytes = payload();
    char header[HEADER_BYTES];
    std::copy(std::begin(MARK), std::end(MARK), header);
    qToBigEndian<qint32>(_currentSerializedVersion(), header + 4);
    qToBigEndian<quint32>(static_cast<quint32>(bytes.size()), header + 8);
    const quint32 sum = crc32(0, header, CHECKED_HEADER_BYTES);
    qToBigEndian<quint32>(crc32(sum, bytes.constData(), bytes.size()),
                          header + CHECKED_HEADER_BYTES);
    if (stream.writeRawData(header, HEADER_BYTES) != HEADER_BYTES ||
        stream.writeRawData(bytes.constData(), bytes.size()) != bytes.size())
        refuse(QT_TRANSLATE_NOOP("HbbASerializable", "The stream cannot be written."));
}

void HbbASerializable::unserialize(QDataStream& stream)
{
    readRecord(stream, false);
}

void HbbASerializable::readRecord(QDataStream& stream, bool alone)
{
    if (stream.device() == nullptr)
        HBE_PROGRAMMING_ERROR("base/HbbASerializable", QStringLiteral("The stream has no device"));
    if (!_hasValidFirstVersion() && startsForeign(stream)) {
        const FormatScope format(stream);
        readPayload(stream, _serializedVersions().first(), alone);
        return;
    }
    char header[HEADER_BYTES];
    const int headerBytes = stream.readRawData(header, HEADER_BYTES);
    if (!std::equal(header, header + std::clamp<int>(headerBytes, 0, sizeof MARK), MARK))
        refuseForeign();
    if (headerBytes != HEADER_BYTES)
        refuseTruncated();
    const quint32 length = qFromBigEndian<quint32>(header + 8);
    if (length > static_cast<quint32>(std::numeric_limits<int>::max() - HEADER_BYTES))
        refuseDamaged();
    const int version = qFromBigEndian<qint32>(header + 4);
    checkVersion(version);
    const QByteArray bytes = readBytes(stream, length);
    const quint32 sum = crc32(0, header, CHECKED_HEADER_BYTES);
    if (crc32(sum, bytes.constData(), bytes.size()) !=
            qFromBigEndian<quint32>(header + CHECKED_HEADER_BYTES) ||
        (alone && !stream.atEnd()))
        refuseDamaged();

    QDataStream payloadStream(bytes);
    useFormat(payloadStream);
    readPayload(payloadStream, version, true);
}

void HbbASerializable::checkVersion(int version) const
{
    const QList<int> versions = _serializedVersions();
    if (versions.contains(version))
        return;
    const int newest = _currentSerializedVersion();
    if (version > newest) {
        throw HbeError(QCoreApplication::translate(
                           "HbbASerializable",
                           "The stream has version %1, newer than the newest known one, %2.")
                           .arg(version)
                           .arg(newest));
    }
    throw HbeError(
        QCoreApplication::translate("HbbASerializable", "The stream has the unknown version %1.")
            .arg(version));
}

void HbbASerializable::readPayload(QDataStream& stream, int version, bool toTheEnd)
{
    const QByteArray former = payload();
    const auto restore = [this, &former] {
        QDataStream formerStream(former);
        useFormat(formerStream);
        _unserialize(formerStream, _currentSerializedVersion());
    };
    try {
        _unserialize(stream, version);
        if (stream.status() == QDataStream::ReadPastEnd)
            refuseTruncated();
        if (stream.status() != QDataStream::Ok || (toTheEnd && !stream.atEnd()))
            refuseDamaged();
    } catch (const HbeError&) {
        restore();
        throw;
    } catch (const std::exception&) { // a list too long for the memory, say
        restore();
        refuseDamaged();
    }
}

QByteArray HbbASerializable::toByteArray() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    serialize(stream);
    return bytes;
}

void HbbASerializable::fromByteArray(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    readRecord(stream, true);
}

int HbbASerializable::readCount(QDataStream& stream, int minimumItemBytes)
{
    qint32 count = 0;
    stream >> count;
    if (stream.status() != QDataStream::Ok)
        refuseTruncated();
    if (count < 0 || qint64(count) * minimumItemBytes > stream.device()->bytesAvailable())
        refuseDamaged();
    return count;
}
