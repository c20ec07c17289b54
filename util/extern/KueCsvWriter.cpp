#include <util/extern/KueCsvWriter.h>

#include <basic/base/HbbStringFormat.h>

#include <algorithm>
#include <cstring>

namespace
{
constexpr std::size_t INTEGER_CAPACITY = 20;

/// Writes UTF-8 and returns the end; at most three bytes a unit. Half a surrogate pair becomes "?",
/// as QString::toUtf8 has it.
char* writeUtf8(char* out, QStringView text)
{
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t unit = text[i].unicode();
        if (unit < 0x80) {
            *out++ = static_cast<char>(unit);
        } else if (unit < 0x800) {
            *out++ = static_cast<char>(0xC0 | (unit >> 6));
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        } else if (!QChar::isSurrogate(unit)) {
            *out++ = static_cast<char>(0xE0 | (unit >> 12));
            *out++ = static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        } else if (QChar::isHighSurrogate(unit) && i + 1 < size && text[i + 1].isLowSurrogate()) {
            const uint code = QChar::surrogateToUcs4(unit, text[++i].unicode());
            *out++ = static_cast<char>(0xF0 | (code >> 18));
            *out++ = static_cast<char>(0x80 | ((code >> 12) & 0x3F));
            *out++ = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            *out++ = static_cast<char>(0x80 | (code & 0x3F));
        } else {
            *out++ = '?';
        }
    }
    return out;
}

bool contains(const char* begin, const char* end, const QByteArray& bytes)
{
    return std::search(begin, end, bytes.begin(), bytes.end()) != end;
}

bool endsWith(const char* begin, const char* end, const QByteArray& bytes)
{
    return end - begin >= bytes.size() &&
           std::memcmp(end - bytes.size(), bytes.constData(), std::size_t(bytes.size())) == 0;
}
} // namespace

KueCsvWriter::KueCsvWriter(const KueCsv& codec)
    : m_codec(codec)
    , m_quoting(!codec.m_quote.isNull())
{
    for (const char byte : {codec.m_separatorBytes.front(), codec.m_quoteBytes.front(), '\n'})
        m_special[static_cast<unsigned char>(byte)] = m_quoting;
}

void KueCsvWriter::appendText(QStringView text)
{
    beginValue();
    const std::size_t begin = m_size;
    char* const out = reserve(3 * static_cast<std::size_t>(text.size()));
    m_size += static_cast<std::size_t>(writeUtf8(out, text) - out);
    quoteFrom(begin);
}

void KueCsvWriter::appendUtf8(const char* text, qint64 size)
{
    beginValue();
    const std::size_t begin = m_size;
    appendBytes(text, static_cast<std::size_t>(size));
    quoteFrom(begin);
}

void KueCsvWriter::appendReal(double value, HbbEFormat::EValue format, int precision)
{
    beginValue();
    const QByteArray& decimal = m_codec.m_decimalBytes;
    char* const out = reserve(std::size_t(HbbStringFormat::CAPACITY + decimal.size()));
    char* end = HbbStringFormat::write(out, value, format, precision);
    if (m_codec.m_decimal != QLatin1Char('.')) {
        char* const point = std::find(out, end, '.'); // a number has one at most
        if (point != end) {
            std::memmove(point + decimal.size(), point + 1, std::size_t(end - point - 1));
            std::memcpy(point, decimal.constData(), std::size_t(decimal.size()));
            end += decimal.size() - 1;
        }
    }
    m_size += static_cast<std::size_t>(end - out);
}

void KueCsvWriter::appendInteger(qint64 value)
{
    beginValue();
    char* const out = reserve(INTEGER_CAPACITY);
    m_size += static_cast<std::size_t>(HbbStringFormat::write(out, value) - out);
}

void KueCsvWriter::appendBool(bool value)
{
    beginValue();
    appendBytes(value ? "1" : "0", 1);
}

void KueCsvWriter::appendValue(const KueFormatedVariant& cell)
{
    const QVariant& value = cell.value;
    if (value.isNull())
        return appendEmpty();
    switch (value.userType()) {
    case QMetaType::Bool:
        return appendBool(value.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Short:
        return appendInteger(value.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return appendReal(value.toDouble(), cell.format.toEnum(), cell.precision);
    case QMetaType::QString:
        return appendText(value.toString());
    default:
        break;
    }
    // A date, for one, has a text form only.
    const QByteArray bytes =
        value.canConvert<QByteArray>() ? value.toByteArray() : value.toString().toUtf8();
    appendUtf8(bytes.constData(), bytes.size());
}

void KueCsvWriter::endLine()
{
    appendBytes("\n", 1);
    m_lineBegun = false;
}

void KueCsvWriter::clear()
{
    m_size = 0;
    m_lineBegun = false;
}

QByteArray KueCsvWriter::toByteArray() const
{
    return QByteArray(data(), static_cast<int>(m_size));
}

void KueCsvWriter::beginValue()
{
    if (m_lineBegun)
        appendBytes(m_codec.m_separatorBytes.constData(),
                    std::size_t(m_codec.m_separatorBytes.size()));
    m_lineBegun = true;
}

/// Room for so many bytes at the end of what is written.
char* KueCsvWriter::reserve(std::size_t bytes)
{
    if (m_buffer.size() < m_size + bytes)
        m_buffer.resize(std::max(m_size + bytes, 2 * m_buffer.size()));
    return m_buffer.data() + m_size;
}

void KueCsvWriter::appendBytes(const char* bytes, std::size_t count)
{
    std::copy(bytes, bytes + count, reserve(count));
    m_size += count;
}

/// Doubles the quotes of the text that begins there, and wraps it where the rule asks for it.
void KueCsvWriter::quoteFrom(std::size_t begin)
{
    const char* const text = m_buffer.data() + begin;
    const char* const end = m_buffer.data() + m_size;
    bool special = false;
    for (const char* at = text; at != end; ++at)
        special |= m_special[static_cast<unsigned char>(*at)];
    if (!special)
        return;

    const QByteArray& quote = m_codec.m_quoteBytes;
    const auto quoteSize = static_cast<std::size_t>(quote.size());
    std::size_t quotes = 0;
    for (const char* at = text; (at = std::search(at, end, quote.begin(), quote.end())) != end;
         at += quoteSize)
        ++quotes;
    if (quotes == 0 && !contains(text, end, m_codec.m_separatorBytes) &&
        std::find(text, end, '\n') == end)
        return;

    // From the back, so that nothing is overwritten before it has moved.
    reserve((quotes + 2) * quoteSize);
    char* const first = m_buffer.data() + begin;
    const char* source = m_buffer.data() + m_size;
    m_size += (quotes + 2) * quoteSize;
    char* target = m_buffer.data() + m_size;
    const auto putQuote = [&] {
        target -= quoteSize;
        std::memcpy(target, quote.constData(), quoteSize);
    };
    putQuote();
    while (source != first) {
        if (endsWith(first, source, quote)) {
            source -= quoteSize;
            putQuote();
            putQuote();
        } else {
            *--target = *--source;
        }
    }
    putQuote();
}
