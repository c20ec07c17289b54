#include <util/utils/KuuMementoBytes.h>

#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QtGlobal>

#include <zstd.h>

#include <memory>

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "numbers are copied to disk as they are in memory");

namespace
{
constexpr int COMPRESSION_LEVEL = ZSTD_CLEVEL_DEFAULT; // 1 is faster, but a seventh larger

/// Its base64 form, a third longer, must fit into a text of less than 2^31 bytes.
constexpr std::size_t MAX_FRAME_BYTES = 1500 * 1000 * 1000;

QString tr(const char* text)
{
    return QCoreApplication::translate("KuuMementoBytes", text);
}

QByteArray frameOf(const QByteArray& text)
{
    const auto decoded =
        QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        throw HbeUserError(tr("Its values are not valid base64."));
    return *decoded;
}

/// The number of bytes that a frame says it holds; the writer always says it.
quint64 contentSize(const QByteArray& frame)
{
    if (frame.isEmpty())
        return 0;
    const unsigned long long size =
        ZSTD_getFrameContentSize(frame.constData(), static_cast<std::size_t>(frame.size()));
    if (size == ZSTD_CONTENTSIZE_ERROR || size == ZSTD_CONTENTSIZE_UNKNOWN)
        throw HbeUserError(tr("Its values are not compressed as expected."));
    // A block takes three bytes at least. What says more is damaged, and gets no memory.
    if (size / ZSTD_BLOCKSIZE_MAX > static_cast<quint64>(frame.size()) / 3)
        throw HbeUserError(tr("Its compressed values are damaged."));
    return size;
}
} // namespace

QByteArray KuuMementoBytes::pack(const void* bytes, std::size_t size)
{
    if (size == 0)
        return QByteArray();
    const std::size_t bound = ZSTD_compressBound(size);
    const std::unique_ptr<char[]> frame(new char[bound]); // nobody needs it cleared
    const std::size_t length = ZSTD_compress(frame.get(), bound, bytes, size, COMPRESSION_LEVEL);
    if (ZSTD_isError(length))
        throw HbeError(QString::fromUtf8(ZSTD_getErrorName(length)));
    if (length > MAX_FRAME_BYTES)
        throw HbeUserError(tr("The values are too large to be saved."));
    return QByteArray::fromRawData(frame.get(), static_cast<int>(length)).toBase64();
}

KuuMementoBytes::KuuMementoBytes(const QByteArray& text)
    : m_frame(frameOf(text))
    , m_size(contentSize(m_frame))
{
}

void KuuMementoBytes::unpack(void* bytes) const
{
    if (m_size == 0)
        return;
    const std::size_t length = ZSTD_decompress(bytes, m_size, m_frame.constData(),
                                               static_cast<std::size_t>(m_frame.size()));
    if (ZSTD_isError(length) || length != m_size)
        throw HbeUserError(tr("Its compressed values are damaged."));
}
