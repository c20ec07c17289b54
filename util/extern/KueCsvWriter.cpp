#include <util/extern/KueCsvWriter.h>

#include <basic/base/HbbStringFormat.h>

#include <algorithm>
#include <cstring>

namespace
{
/// Writes UTF-8 and returns the end. Half a surrogate pair becomes "?", as QString::toUtf8 has it.
char* writeUtf8(char* out, char32_t code)
{
    if (code < 0x80) {
        *out++ = static_cast<char>(code);
    } else if (code < 0x800) {
        *out++ = static_cast<char>(0xC0 | (code >> 6));
        *out++ = static_cast<char>(0x80 | (code & 0x3F));
    } else if (QChar::isSurrogate(code)) {
        *out++ = '?';
    } else {
        if (code < 0x10000) {
            *out++ = static_cast<char>(0xE0 | (code >> 12));
        } else {
            *out++ = static_cast<char>(0xF0 | (code >> 18));
            *out++ = static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        }
        *out++ = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        *out++ = static_cast<char>(0x80 | (code & 0x3F));
    }
    return out;
}

/// At most three bytes a unit.
char* writeUtf8(char* out, QStringView text)
{
    const QChar* const end = text.data() + text.size();
    for (const QChar* at = text.data(); at != end; ++at) {
        if (at->unicode() < 0x80)
            *out++ = static_cast<char>(at->unicode());
        else if (at->isHighSurrogate() && at + 1 != end && at[1].isLowSurrogate()) {
            out = writeUtf8(out, QChar::surrogateToUcs4(at[0], at[1]));
            ++at;
        } else
            out = writeUtf8(out, char32_t(at->unicode()));
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
    , m_separatorSize(static_cast<std::size_t>(codec.m_separatorBytes.size()))
{
    std::copy(codec.m_separatorBytes.begin(), codec.m_separatorBytes.end(), m_separator.begin());
    for (const char byte : {codec.m_separatorBytes.front(), codec.m_quoteBytes.front(), '\n'})
        m_special[static_cast<unsigned char>(byte)] = m_quoting;
}

void KueCsvWriter::appendText(QStringView text)
{
    char* const out = beginValue(3 * static_cast<std::size_t>(text.size()));
    endValue(writeUtf8(out, text));
    quoteFrom(static_cast<std::size_t>(out - m_buffer.data()));
}

void KueCsvWriter::appendUtf8(const char* text, qint64 size)
{
    char* const out = beginValue(static_cast<std::size_t>(size));
    endValue(std::copy(text, text + size, out));
    quoteFrom(static_cast<std::size_t>(out - m_buffer.data()));
}

void KueCsvWriter::appendReal(double value, HbbEFormat::EValue format, int precision)
{
    const QByteArray& decimal = m_codec.m_decimalBytes;
    char* const out = beginValue(std::size_t(HbbStringFormat::CAPACITY + decimal.size()));
    char* end = HbbStringFormat::write(out, value, format, precision);
    if (m_codec.m_decimal != QLatin1Char('.')) {
        char* const point = std::find(out, end, '.'); // a number has one at most
        if (point != end && decimal.size() == 1) {
            *point = decimal.front();
        } else if (point != end) {
            std::memmove(point + decimal.size(), point + 1, std::size_t(end - point - 1));
            std::memcpy(point, decimal.constData(), std::size_t(decimal.size()));
            end += decimal.size() - 1;
        }
    }
    endValue(end);
}

void KueCsvWriter::appendInteger(qint64 value)
{
    endValue(HbbStringFormat::write(beginValue(HbbStringFormat::INTEGER_CAPACITY), value));
}

void KueCsvWriter::appendBool(bool value)
{
    char* const out = beginValue(1);
    *out = value ? '1' : '0';
    endValue(out + 1);
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
    m_lineBegun = false; // no separator before the line feed
    char* const out = beginValue(1);
    *out = '\n';
    endValue(out + 1);
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

/// Puts the separator where one is due and returns the place of the value, with room for so many
/// bytes.
char* KueCsvWriter::beginValue(std::size_t bytes)
{
    const std::size_t needed = m_size + m_separator.size() + bytes;
    if (m_buffer.size() < needed)
        m_buffer.resize(std::max(needed, 2 * m_buffer.size()));
    char* const out = m_buffer.data() + m_size;
    if (!m_lineBegun) {
        m_lineBegun = true;
        return out;
    }
    std::memcpy(out, m_separator.data(), m_separator.size());
    return out + m_separatorSize;
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
    const std::size_t oldSize = m_size;
    m_size += (quotes + 2) * quoteSize;
    if (m_buffer.size() < m_size)
        m_buffer.resize(std::max(m_size, 2 * m_buffer.size()));
    char* const first = m_buffer.data() + begin;
    const char* source = m_buffer.data() + oldSize;
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
