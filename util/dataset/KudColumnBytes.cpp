#include "KudColumnBytes.h"

#include <basic/data/HbdVariableAlpha.h>
#include <basic/data/HbdVariableColor.h>
#include <basic/data/HbdVariableDate.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableSelection.h>
#include <basic/data/HbdVariableText.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QtEndian>

#include <zstd.h>

#include <memory>

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "columns are copied to disk as they are in memory");

namespace
{
constexpr int COMPRESSION_LEVEL = ZSTD_CLEVEL_DEFAULT; // 1 is faster, but a seventh larger

/// Its base64 form, a third longer, must fit into a text of less than 2^31 bytes.
constexpr std::size_t MAX_FRAME_BYTES = 1500 * 1000 * 1000;

QString tr(const char* text)
{
    return QCoreApplication::translate("KudColumnBytes", text);
}

QByteArray compressed(const char* bytes, std::size_t size)
{
    if (size == 0)
        return QByteArray();
    const std::size_t bound = ZSTD_compressBound(size);
    const std::unique_ptr<char[]> frame(new char[bound]); // nobody needs it cleared
    const std::size_t length = ZSTD_compress(frame.get(), bound, bytes, size, COMPRESSION_LEVEL);
    if (ZSTD_isError(length))
        throw HbeError(QString::fromUtf8(ZSTD_getErrorName(length)));
    if (length > MAX_FRAME_BYTES)
        throw HbeUserError(tr("The values of a variable are too large to be saved."));
    return QByteArray::fromRawData(frame.get(), static_cast<int>(length)).toBase64();
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

void decompress(const QByteArray& frame, char* bytes, std::size_t size)
{
    if (size == 0)
        return;
    const std::size_t length =
        ZSTD_decompress(bytes, size, frame.constData(), static_cast<std::size_t>(frame.size()));
    if (ZSTD_isError(length) || length != size)
        throw HbeUserError(tr("Its compressed values are damaged."));
}

[[noreturn]] void raiseWrongSize(quint64 found, quint64 expected)
{
    throw HbeUserError(tr("Its values take %1 bytes instead of %2.").arg(found).arg(expected));
}

template <class Variable>
QByteArray encodeNumbers(const HbdAVariable& variable)
{
    const auto values = static_cast<const Variable&>(variable).getValues();
    return compressed(reinterpret_cast<const char*>(values.data()),
                      static_cast<std::size_t>(values.size()) * sizeof(typename Variable::Value));
}

template <class Variable>
void decodeNumbers(const QByteArray& text, int count, HbdAVariable& variable)
{
    using Value = typename Variable::Value;
    const QByteArray frame = frameOf(text);
    const quint64 expected = static_cast<quint64>(count) * sizeof(Value);
    const quint64 found = contentSize(frame);
    if (found != expected)
        raiseWrongSize(found, expected); // before any memory is taken for it
    std::vector<Value> values(static_cast<std::size_t>(count));
    decompress(frame, reinterpret_cast<char*>(values.data()), expected);
    static_cast<Variable&>(variable).setValues(std::move(values));
}

QByteArray encodeTexts(const HbdAVariable& variable)
{
    const auto texts = static_cast<const HbdVariableText&>(variable).getValues();
    std::vector<char> bytes(static_cast<std::size_t>(texts.size()) * sizeof(qint32));
    auto* lengths = bytes.data();
    for (const QString& text : texts) {
        qToLittleEndian<qint32>(text.isNull() ? -1 : text.size(), lengths);
        lengths += sizeof(qint32);
    }
    for (const QString& text : texts) {
        const auto* units = reinterpret_cast<const char*>(text.constData());
        bytes.insert(bytes.end(), units, units + 2 * text.size());
    }
    return compressed(bytes.data(), bytes.size());
}

void decodeTexts(const QByteArray& text, int count, HbdAVariable& variable)
{
    const QByteArray frame = frameOf(text);
    const quint64 lengthBytes = static_cast<quint64>(count) * sizeof(qint32);
    const quint64 size = contentSize(frame);
    if (size < lengthBytes)
        raiseWrongSize(size, lengthBytes);
    std::vector<char> bytes(size);
    decompress(frame, bytes.data(), bytes.size());

    std::vector<QString> texts(static_cast<std::size_t>(count));
    quint64 at = lengthBytes;
    for (int rank = 0; rank < count; ++rank) {
        const auto length = qFromLittleEndian<qint32>(bytes.data() + std::size_t(rank) * 4);
        if (length < 0)
            continue;
        const quint64 unitBytes = 2 * static_cast<quint64>(length);
        if (unitBytes > size - at)
            raiseWrongSize(size, at + unitBytes);
        // An empty text is not a null one.
        QString value(length, Qt::Uninitialized);
        if (length > 0)
            std::memcpy(value.data(), bytes.data() + at, unitBytes);
        texts[static_cast<std::size_t>(rank)] = length == 0 ? QLatin1String("") : value;
        at += unitBytes;
    }
    if (at != size)
        raiseWrongSize(size, at);
    static_cast<HbdVariableText&>(variable).setValues(std::move(texts));
}

struct Codec {
    QByteArray (*encode)(const HbdAVariable&);
    void (*decode)(const QByteArray&, int, HbdAVariable&);
};

template <class Variable>
constexpr Codec numbers()
{
    return {&encodeNumbers<Variable>, &decodeNumbers<Variable>};
}

Codec codecOf(const HbdAVariable& variable)
{
    switch (variable.getType().toEnum()) {
    case HbdEVarType::E_REAL:
        return numbers<HbdVariableReal>();
    case HbdEVarType::E_REAL_32:
        return numbers<HbdVariableReal32>();
    case HbdEVarType::E_INTEGER:
        return numbers<HbdVariableInteger>();
    case HbdEVarType::E_CATEGORY:
        return numbers<HbdVariableEnum>();
    case HbdEVarType::E_COLOR:
        return numbers<HbdVariableColor>();
    case HbdEVarType::E_ALPHA_CHANNEL:
        return numbers<HbdVariableAlpha>();
    case HbdEVarType::E_SELECTION:
        return numbers<HbdVariableSelection>();
    case HbdEVarType::E_DATE:
        return numbers<HbdVariableDate>();
    case HbdEVarType::E_TEXT:
        break;
    }
    return {&encodeTexts, &decodeTexts};
}
} // namespace

QByteArray KudColumnBytes::encode(const HbdAVariable& variable)
{
    return codecOf(variable).encode(variable);
}

void KudColumnBytes::decode(const QByteArray& text, int count, HbdAVariable& variable)
{
    codecOf(variable).decode(text, count, variable);
}
