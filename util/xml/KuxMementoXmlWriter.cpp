#include "KuxMementoXmlWriter.h"

#include "KuxMementoXmlRules.h"

#include <basic/error/HbeError.h>

#include <cstring>
#include <limits>

namespace
{
constexpr int INDENT = 4;
constexpr qint64 MAXIMUM_SIZE = std::numeric_limits<int>::max() - 64;
constexpr int BLOCK = 32;
constexpr qint64 SINK_SIZE = 1 << 20; // what is handed to a sink at once, about

// Writes the block as ASCII and answers whether it was only characters that stand as they are. No
// branch in the loop, so that it becomes vector code: a long text passes at memory speed.
bool copyPlainBlock(const ushort* in, char* out)
{
    unsigned special = 0;
    for (int i = 0; i < BLOCK; ++i) {
        const unsigned c = in[i];
        special |= unsigned(c < 0x20) | unsigned(c > 0x7E) | unsigned(c == '<') |
                   unsigned(c == '&') | unsigned(c == '>');
        out[i] = char(c);
    }
    return special == 0;
}
} // namespace

KuxMementoXmlWriter::KuxMementoXmlWriter(Sink sink)
    : m_bytes(4096, Qt::Uninitialized)
    , m_sink(std::move(sink))
{
    static const char DECLARATION[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    append(DECLARATION, int(sizeof(DECLARATION)) - 1);
}

char* KuxMementoXmlWriter::reserve(qint64 size)
{
    if (m_size + size > m_bytes.size()) {
        if (m_written + m_size + size > MAXIMUM_SIZE) {
            throw HbeError(QObject::tr("A memento of more than 2 GB cannot be written."));
        }
        m_bytes.resize(int(qMin(MAXIMUM_SIZE, 2 * (m_size + size))));
    }
    return m_bytes.data() + m_size;
}

void KuxMementoXmlWriter::append(const char* bytes, int size)
{
    std::memcpy(reserve(size), bytes, size_t(size));
    m_size += size;
}

void KuxMementoXmlWriter::indent()
{
    const int width = INDENT * int(m_open.size());
    std::memset(reserve(width), ' ', size_t(width));
    m_size += width;
}

void KuxMementoXmlWriter::beginElement()
{
    KuxMementoXmlRules::checkDepth(m_open.size());
    if (!m_open.empty() && !m_open.back().hasElements) {
        m_open.back().hasElements = true;
        append(">\n", 2);
    }
    indent();
    append('<');
    m_open.push_back({m_names.size(), false, false});
}

// The end of an element repeats its name, which may have left the buffer by then.
void KuxMementoXmlWriter::keepName(qint64 from)
{
    m_names.append(m_bytes.constData() + from, int(m_size - from));
}

void KuxMementoXmlWriter::open(QLatin1String name)
{
    beginElement();
    append(name.data(), name.size());
    m_names.append(name.data(), name.size());
}

void KuxMementoXmlWriter::open(const QString& key)
{
    beginElement();
    const qint64 from = m_size;
    // Most keys are plain ASCII names: written as they are checked.
    const ushort* in = key.utf16();
    char* out = reserve(key.size());
    int i = 0;
    while (i < key.size() && in[i] < 0x80 && KuxXmlText::isPlainNameCharacter(in[i], i == 0) &&
           !(in[i] == '_' && i + 1 < key.size() && in[i + 1] == 'x')) {
        out[i] = char(in[i]);
        ++i;
    }
    if (i == key.size() && i > 0) {
        m_size += i;
    } else {
        appendUtf8(KuxXmlText::encodeName(key));
    }
    keepName(from);
}

void KuxMementoXmlWriter::openRelation(const QString& relation)
{
    beginElement();
    const qint64 from = m_size;
    appendUtf8(KuxXmlText::encodeRelation(relation));
    keepName(from);
}

void KuxMementoXmlWriter::setType(const char* type)
{
    append(" type=\"", 7);
    append(type, int(std::strlen(type)));
    append('"');
}

void KuxMementoXmlWriter::beginText()
{
    m_open.back().hasText = true;
    append('>');
}

void KuxMementoXmlWriter::ascii(const QByteArray& text)
{
    if (text.isEmpty()) {
        return;
    }
    beginText();
    if (!m_sink || text.size() < SINK_SIZE) {
        append(text.constData(), text.size());
        return;
    }
    finish();
    m_sink(text.constData(), text.size());
    m_written += text.size();
}

void KuxMementoXmlWriter::text(const QString& text, const QString& key)
{
    if (text.isEmpty()) {
        return;
    }
    if (text.size() > KuxXmlLimits::TEXT_LENGTH) {
        throw HbeError(QObject::tr("The text of '%1' is too long for an XML file.").arg(key));
    }
    beginText();
    if (text.at(0).isSpace() && KuxXmlText::needsCData(text)) {
        append("<![CDATA[", 9);
        appendUtf8(text);
        append("]]>", 3);
        return;
    }
    appendEscaped(text, key);
}

void KuxMementoXmlWriter::appendUtf8(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    append(utf8.constData(), utf8.size());
}

void KuxMementoXmlWriter::appendEscaped(const QString& text, const QString& key)
{
    const ushort* in = text.utf16();
    const int size = text.size();
    bool replaced = false;
    int at = 0;
    while (at < size) {
        if (size - at >= BLOCK && copyPlainBlock(in + at, reserve(BLOCK))) {
            m_size += BLOCK;
            at += BLOCK;
            continue;
        }
        const int end = qMin(size, at + BLOCK);
        while (at < end) {
            appendCharacter(in, at, size, replaced);
        }
    }
    if (replaced) {
        KuxXmlText::warnReplaced(key);
    }
}

// One character, and what the DOM's writer makes of it.
void KuxMementoXmlWriter::appendCharacter(const ushort* text, int& at, int size, bool& replaced)
{
    uint c = text[at++];
    if (c == '<') {
        return append("&lt;", 4);
    }
    if (c == '&') {
        return append("&amp;", 5);
    }
    if (c == '>' && at >= 3 && text[at - 2] == ']' && text[at - 3] == ']') {
        return append("&gt;", 4);
    }
    if (c == '\r') {
        return append("&#xd;", 5);
    }
    if (c < 0x80 && !KuxXmlText::isForbidden(ushort(c))) {
        return append(char(c));
    }
    if (QChar::isHighSurrogate(c) && at < size && QChar::isLowSurrogate(text[at])) {
        c = QChar::surrogateToUcs4(ushort(c), text[at++]);
    } else if (QChar::isSurrogate(c) || KuxXmlText::isForbidden(ushort(c))) {
        c = QChar::ReplacementCharacter;
        replaced = true;
    }
    char* out = reserve(4);
    int n = 0;
    if (c >= 0x10000) {
        out[n++] = char(0xF0 | (c >> 18));
        out[n++] = char(0x80 | ((c >> 12) & 0x3F));
    } else if (c >= 0x800) {
        out[n++] = char(0xE0 | (c >> 12));
    }
    if (c >= 0x800) {
        out[n++] = char(0x80 | ((c >> 6) & 0x3F));
    } else {
        out[n++] = char(0xC0 | (c >> 6));
    }
    out[n++] = char(0x80 | (c & 0x3F));
    m_size += n;
}

void KuxMementoXmlWriter::close()
{
    const Element element = m_open.back();
    m_open.pop_back();
    if (element.hasText || element.hasElements) {
        if (element.hasElements) {
            indent();
        }
        append("</", 2);
        append(m_names.constData() + element.nameAt, m_names.size() - element.nameAt);
        append(">\n", 2);
    } else {
        append("/>\n", 3);
    }
    m_names.truncate(element.nameAt);
    if (m_sink && m_size >= SINK_SIZE) {
        finish();
    }
}

void KuxMementoXmlWriter::finish()
{
    m_sink(m_bytes.constData(), m_size);
    m_written += m_size;
    m_size = 0;
}

QByteArray KuxMementoXmlWriter::takeBytes()
{
    m_bytes.truncate(int(m_size));
    return std::move(m_bytes);
}
