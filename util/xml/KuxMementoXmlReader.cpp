#include "KuxMementoXmlReader.h"

#include <algorithm>
#include <cstring>

using namespace KuxMementoXmlRules;

namespace
{
constexpr int BLOCK = 32;

bool isSpace(char c)
{
    return KuxXmlText::isXmlSpace(uchar(c));
}

bool isNameByte(uchar c, bool first)
{
    return c < 0x80 && KuxXmlText::isPlainNameCharacter(c, first);
}

// QString takes U+FEFF for a byte order mark there, and away.
bool beginsWithMark(const char* begin, const char* end)
{
    return end - begin >= 3 && std::memcmp(begin, "\xEF\xBB\xBF", 3) == 0;
}

struct Run {
    const char* end;   // at '<', or at the end of the bytes
    bool hasNonAscii;  // bytes above 0x7F
    bool hasReference; // '&'
    bool hasGreater;   // '>'
    bool isStrange;    // control characters, carriage returns
    bool isSpaceOnly;
};

// A stretch of a long text without anything to look at. As in the writer: no branch per byte.
const char* skipPlain(const char* at, const char* end)
{
    while (end - at >= BLOCK) {
        unsigned special = 0;
        for (int i = 0; i < BLOCK; ++i) {
            const unsigned c = uchar(at[i]);
            special |= unsigned(c < 0x20) | unsigned(c > 0x7E) | unsigned(c == '<') |
                       unsigned(c == '&') | unsigned(c == '>');
        }
        if (special != 0) {
            break;
        }
        at += BLOCK;
    }
    return at;
}

Run scanRun(const char* at, const char* end)
{
    Run run{at, false, false, false, false, true};
    while (at < end) {
        const uchar c = uchar(*at);
        if (c == '<') {
            break;
        }
        run.isSpaceOnly = run.isSpaceOnly && isSpace(char(c));
        run.hasNonAscii = run.hasNonAscii || c >= 0x80;
        run.hasReference = run.hasReference || c == '&';
        run.hasGreater = run.hasGreater || c == '>';
        run.isStrange = run.isStrange || (c < 0x20 && c != '\n' && c != '\t');
        ++at;
        if (!run.isSpaceOnly && end - at >= BLOCK) {
            at = skipPlain(at, end);
        }
    }
    run.end = at;
    return run;
}
} // namespace

bool KuxMementoXmlReader::read(KuuMemento& memento)
{
    if (m_end - m_at >= 3 && std::memcmp(m_at, "\xEF\xBB\xBF", 3) == 0) {
        m_at += 3;
    }
    if (!skipDeclaration()) {
        return false;
    }
    skipSpace();
    if (!readStartTag()) {
        return false;
    }
    const KuuMemento result = readBody(*this);
    leave();
    skipSpace();
    if (m_failed || m_at != m_end) {
        return false;
    }
    memento = result;
    return true;
}

bool KuxMementoXmlReader::giveUp()
{
    m_failed = true;
    return false;
}

bool KuxMementoXmlReader::startsWith(const char* token) const
{
    const size_t size = std::strlen(token);
    return size_t(m_end - m_at) >= size && std::memcmp(m_at, token, size) == 0;
}

void KuxMementoXmlReader::skipSpace()
{
    while (m_at < m_end && isSpace(*m_at)) {
        ++m_at;
    }
}

bool KuxMementoXmlReader::skipDeclaration()
{
    if (!startsWith("<?")) {
        return true;
    }
    for (const char* known :
         {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", "<?xml version='1.0' encoding='UTF-8'?>",
          "<?xml version=\"1.0\"?>"}) {
        if (startsWith(known)) {
            m_at += std::strlen(known);
            return true;
        }
    }
    return giveUp();
}

bool KuxMementoXmlReader::readName(Name& name)
{
    name.begin = m_at;
    while (m_at < m_end && isNameByte(uchar(*m_at), m_at == name.begin)) {
        ++m_at;
    }
    if (m_at < m_end && uchar(*m_at) >= 0x80) {
        // Letters beyond ASCII: checked in UTF-16.
        while (m_at < m_end && (uchar(*m_at) >= 0x80 || isNameByte(uchar(*m_at), false))) {
            ++m_at;
        }
        if (beginsWithMark(name.begin, m_at)) {
            return giveUp();
        }
        const QString text = QString::fromUtf8(name.begin, int(m_at - name.begin));
        for (int i = 0; i < text.size(); ++i) {
            if (!KuxXmlText::isPlainNameCharacter(text.at(i).unicode(), i == 0)) {
                return giveUp();
            }
        }
    }
    name.length = int(m_at - name.begin);
    return name.length > 0 || giveUp();
}

bool KuxMementoXmlReader::readStartTag()
{
    Name name{};
    if (m_at == m_end || *m_at != '<' || m_open.size() >= size_t(KuxXmlLimits::DEPTH)) {
        return giveUp();
    }
    ++m_at;
    if (!readName(name)) {
        return false;
    }
    m_type = Type::NONE;
    if (startsWith(" type=\"")) {
        m_at += 7;
        const char* begin = m_at;
        while (m_at < m_end && isNameByte(uchar(*m_at), false)) {
            ++m_at;
        }
        m_type = typeFromText(QLatin1String(begin, int(m_at - begin)));
        if (m_at == m_end || *m_at++ != '"') {
            return giveUp();
        }
    }
    m_closed = startsWith("/>");
    m_at += m_closed ? 2 : 1;
    if (m_at > m_end || m_at[-1] != '>') {
        return giveUp();
    }
    m_open.push_back(name);
    return true;
}

bool KuxMementoXmlReader::readEndTag()
{
    const Name& name = m_open.back();
    m_at += 2;
    if (m_end - m_at <= name.length || std::memcmp(m_at, name.begin, size_t(name.length)) != 0 ||
        m_at[name.length] != '>') {
        return giveUp();
    }
    m_at += name.length + 1;
    m_closed = true;
    return true;
}

bool KuxMementoXmlReader::enterChild()
{
    if (m_failed || m_closed) {
        return false;
    }
    skipSpace();
    if (startsWith("</")) {
        readEndTag();
        return false;
    }
    return readStartTag();
}

void KuxMementoXmlReader::leave()
{
    while (enterChild()) {
        leave();
    }
    m_closed = m_failed;
    if (!m_failed) {
        m_open.pop_back();
    }
}

QString KuxMementoXmlReader::readText()
{
    QString text;
    qint64 length = 0;
    while (!m_failed && !m_closed) {
        if (!readRun(text, length)) {
            break;
        }
        if (startsWith("</")) {
            readEndTag();
        } else if (!startsWith("<![CDATA[") || !readCData(text, length)) {
            giveUp();
        }
    }
    return text;
}

bool KuxMementoXmlReader::readRun(QString& text, qint64& length)
{
    const char* begin = m_at;
    const Run run = scanRun(m_at, m_end);
    length += run.end - begin;
    if (run.end == m_end || run.isStrange || length > KuxXmlLimits::TEXT_LENGTH) {
        return giveUp();
    }
    m_at = run.end;
    if (run.isSpaceOnly) {
        return true; // white space between tags; a text of it would stand in CDATA
    }
    if (run.hasGreater && memmem(begin, size_t(run.end - begin), "]]>", 3) != nullptr) {
        return giveUp();
    }
    if (!run.hasNonAscii && !run.hasReference) {
        text += QLatin1String(begin, int(run.end - begin));
        return true;
    }
    return appendReferences(begin, run.end, text);
}

bool KuxMementoXmlReader::readCData(QString& text, qint64& length)
{
    const char* begin = m_at + 9;
    const void* found = memmem(begin, size_t(m_end - begin), "]]>", 3);
    const char* end = static_cast<const char*>(found);
    if (!end) {
        return giveUp();
    }
    length += end - begin;
    if (length > KuxXmlLimits::TEXT_LENGTH) {
        return giveUp();
    }
    for (const char* at = begin; at < end; ++at) {
        if (uchar(*at) < 0x20 && *at != '\n' && *at != '\t') {
            return giveUp();
        }
    }
    m_at = end + 3;
    return append(begin, end, text);
}

bool KuxMementoXmlReader::append(const char* begin, const char* end, QString& text)
{
    if (beginsWithMark(begin, end)) {
        return giveUp();
    }
    const QString part = QString::fromUtf8(begin, int(end - begin));
    // What cannot be decoded shows as U+FFFD; whether it is that or a fault, the other road tells.
    for (const QChar c : part) {
        if (c.unicode() >= 0xFFFD) {
            return giveUp();
        }
    }
    text += part;
    return true;
}

bool KuxMementoXmlReader::appendReferences(const char* begin, const char* end, QString& text)
{
    static constexpr std::pair<const char*, char> NAMED[] = {
        {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
    while (begin < end) {
        const void* found = std::memchr(begin, '&', size_t(end - begin));
        const char* reference = found ? static_cast<const char*>(found) : end;
        if (!append(begin, reference, text)) {
            return false;
        }
        begin = reference;
        if (reference == end) {
            break;
        }
        if (end - begin >= 5 && std::memcmp(begin, "&#xd;", 5) == 0) {
            text += QLatin1Char('\r');
            begin += 5;
            continue;
        }
        const auto is = [&](const auto& named) {
            const size_t size = std::strlen(named.first);
            return size_t(end - begin) >= size && std::memcmp(begin, named.first, size) == 0;
        };
        const auto named = std::find_if(std::begin(NAMED), std::end(NAMED), is);
        if (named == std::end(NAMED)) {
            return giveUp();
        }
        text += QLatin1Char(named->second);
        begin += std::strlen(named->first);
    }
    return true;
}
