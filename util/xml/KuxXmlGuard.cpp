#include "KuxXmlGuard.h"

#include "KuxXmlText.h"

#include <basic/error/HbeProgrammingError.h>
#include <util/xml/KuxXmlLimits.h>

#include <QtCore/QObject>
#include <QtCore/QTextCodec>

#include <cstring>

namespace
{
const char* find(const char* begin, const char* end, char c)
{
    const void* found = begin < end ? std::memchr(begin, c, size_t(end - begin)) : nullptr;
    return found ? static_cast<const char*>(found) : end;
}

// Behind the token, or the end.
const char* findBehind(const char* begin, const char* end, const char* token)
{
    const size_t size = std::strlen(token);
    const void* found = begin < end ? memmem(begin, size_t(end - begin), token, size) : nullptr;
    return found ? static_cast<const char*>(found) + size : end;
}

bool startsWith(const char* at, const char* end, const char* token)
{
    const size_t size = std::strlen(token);
    return size_t(end - at) >= size && std::memcmp(at, token, size) == 0;
}

bool isSpace(char c)
{
    return KuxXmlText::isXmlSpace(uchar(c));
}

// The encoding that the declaration names, as it is written; empty when it names none.
QByteArray declaredEncoding(const char* begin, const char* end)
{
    if (!startsWith(begin, end, "<?xml")) {
        return QByteArray();
    }
    const char* close = find(begin, end, '>');
    const char* at = findBehind(begin, close, "encoding");
    while (at < close && (isSpace(*at) || *at == '=')) {
        ++at;
    }
    if (at == close || (*at != '"' && *at != '\'')) {
        return QByteArray();
    }
    const char* last = find(at + 1, close, *at);
    return QByteArray(at + 1, int(last - at - 1));
}

// Length of the well-formed UTF-8 sequence at `at`, 0 when there is none.
int utf8Length(const uchar* at, qint64 left)
{
    const uchar c = at[0];
    const int length = c < 0x80 ? 1 : c < 0xC2 ? 0 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : c < 0xF5 ? 4 : 0;
    if (length == 0 || length > left) {
        return 0;
    }
    for (int i = 1; i < length; ++i) {
        if ((at[i] & 0xC0) != 0x80) {
            return 0;
        }
    }
    const bool overlong = (c == 0xE0 && at[1] < 0xA0) || (c == 0xF0 && at[1] < 0x90);
    const bool beyond = (c == 0xED && at[1] > 0x9F) || (c == 0xF4 && at[1] > 0x8F);
    return overlong || beyond ? 0 : length;
}

// The reference that begins here, without its semicolon; empty when it is none.
QByteArray referenceAt(const char* at, const char* end)
{
    constexpr int LONGEST = 1000;
    const char* limit = end - at > LONGEST ? at + LONGEST : end;
    for (const char* i = at + 1; i < limit; ++i) {
        if (*i == ';') {
            return QByteArray(at, int(i - at));
        }
        if (isSpace(*i) || *i == '<' || *i == '&' || *i == '%') {
            break;
        }
    }
    return QByteArray();
}

// The character of a reference's digits ("65", "x41"); 0 when it is none.
uint referencedCharacter(const QByteArray& digits)
{
    bool ok = false;
    const bool hexadecimal = digits.startsWith('x');
    const uint c = hexadecimal ? digits.mid(1).toUInt(&ok, 16) : digits.toUInt(&ok, 10);
    const bool isCharacter = ok && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF);
    return isCharacter ? c : 0;
}
} // namespace

KuxXmlGuard::KuxXmlGuard(const char* bytes, qint64 size, const QString& name)
    : m_name(name)
    , m_begin(bytes)
    , m_end(bytes + size)
{
}

QString KuxXmlGuard::getText()
{
    decode();
    checkUtf8();
    m_copied = m_begin;
    scan();
    if (m_end - m_begin > KuxXmlLimits::DOM_SIZE) {
        fail(m_begin + KuxXmlLimits::DOM_SIZE,
             QObject::tr("the document is larger than %1 bytes").arg(KuxXmlLimits::DOM_SIZE));
    }
    if (m_isMended) {
        copyUpTo(m_end);
        return QString::fromUtf8(m_output);
    }
    return QString::fromUtf8(m_begin, int(m_end - m_begin));
}

void KuxXmlGuard::raise(const QString& name, qint64 line, qint64 column, const QString& fault)
{
    HbeProgrammingError::raise(
        "void KuxXml::readXml(const QString&, QDomDocument&)", "xml/KuxXml",
        QObject::tr("Error while parsing XML file '%1' at line %2/column %3: '%4'.")
            .arg(name, QString::number(line), QString::number(column), fault));
}

void KuxXmlGuard::fail(const char* where, const QString& fault) const
{
    qint64 line = 1;
    const char* lineBegin = m_begin;
    for (const char* at = find(m_begin, where, '\n'); at < where; at = find(at + 1, where, '\n')) {
        ++line;
        lineBegin = at + 1;
    }
    // Columns count UTF-16 units: one for each sequence, two for those of four bytes.
    qint64 column = 1;
    for (const char* at = lineBegin; at < where; ++at) {
        const uchar c = uchar(*at);
        column += ((c & 0xC0) != 0x80) + (c >= 0xF0);
    }
    raise(m_name, line, column, fault);
}

void KuxXmlGuard::failUndecodable(const QString& text, const QByteArray& encoding) const
{
    const int at = qMax(0, text.indexOf(QChar(QChar::ReplacementCharacter)));
    const int line = text.leftRef(at).count(QLatin1Char('\n')) + 1;
    const int column = at - (at > 0 ? text.lastIndexOf(QLatin1Char('\n'), at - 1) : -1);
    raise(m_name, line, column,
          QObject::tr("bytes that are no text in the encoding %1")
              .arg(QString::fromLatin1(encoding)));
}

// After this, the document is UTF-8 without a byte order mark, and its line ends are LF.
void KuxXmlGuard::decode()
{
    const QByteArray head = QByteArray::fromRawData(m_begin, int(qMin<qint64>(4, m_end - m_begin)));
    QByteArray encoding;
    if (head.startsWith("\xEF\xBB\xBF")) {
        m_begin += 3;
    } else if (head.startsWith("\xFF\xFE") || head.startsWith(QByteArray("<\0", 2))) {
        encoding = "UTF-16LE";
    } else if (head.startsWith("\xFE\xFF") || head.startsWith(QByteArray("\0<", 2))) {
        encoding = "UTF-16BE";
    } else {
        encoding = declaredEncoding(m_begin, m_end);
        const QByteArray upper = encoding.toUpper();
        // A document whose first bytes read as ASCII is not UTF-16, whatever it says.
        if (upper == "UTF-8" || upper == "UTF8" || upper == "US-ASCII" ||
            upper.startsWith("UTF-16") || upper.startsWith("UTF-32")) {
            encoding.clear();
        }
    }

    if (!encoding.isEmpty()) {
        QTextCodec* codec = QTextCodec::codecForName(encoding);
        if (!codec) {
            fail(m_begin,
                 QObject::tr("unknown encoding %1").arg(QString::fromLatin1(encoding.left(40))));
        }
        if (m_end - m_begin > KuxXmlLimits::DOM_SIZE) {
            fail(m_begin,
                 QObject::tr("the document is larger than %1 bytes").arg(KuxXmlLimits::DOM_SIZE));
        }
        QTextCodec::ConverterState state;
        const QString text = codec->toUnicode(m_begin, int(m_end - m_begin), &state);
        if (state.invalidChars > 0 || state.remainingChars > 0) {
            failUndecodable(text, encoding);
        }
        m_owned = text.toUtf8();
        m_begin = m_owned.constData();
        m_end = m_begin + m_owned.size();
    }

    if (find(m_begin, m_end, '\r') != m_end && m_end - m_begin <= KuxXmlLimits::DOM_SIZE) {
        if (m_owned.isEmpty()) {
            m_owned = QByteArray(m_begin, int(m_end - m_begin));
        }
        m_owned.replace("\r\n", "\n").replace('\r', '\n');
        m_begin = m_owned.constData();
        m_end = m_begin + m_owned.size();
    }
}

void KuxXmlGuard::checkUtf8()
{
    const char* at = m_begin;
    while (at < m_end) {
        quint64 word = 0;
        while (m_end - at >= 8) {
            std::memcpy(&word, at, 8);
            if ((word & Q_UINT64_C(0x8080808080808080)) != 0) {
                break;
            }
            at += 8;
        }
        if (at == m_end) {
            break;
        }
        const int length = utf8Length(reinterpret_cast<const uchar*>(at), m_end - at);
        if (length == 0) {
            fail(at, QObject::tr("bytes that are no text in the encoding %1")
                         .arg(QStringLiteral("UTF-8")));
        }
        at += length;
    }
}

void KuxXmlGuard::scan()
{
    const char* at = m_begin;
    while (at < m_end) {
        const char* tag = find(at, m_end, '<');
        scanText(at, tag);
        if (tag == m_end) {
            return;
        }
        at = scanMarkup(tag);
    }
}

const char* KuxXmlGuard::scanMarkup(const char* at)
{
    const char* end = nullptr;
    if (startsWith(at, m_end, "<!--")) {
        end = findBehind(at + 4, m_end, "-->");
    } else if (startsWith(at, m_end, "<![CDATA[")) {
        end = findBehind(at + 9, m_end, "]]>");
    } else if (startsWith(at, m_end, "<?")) {
        end = findBehind(at + 2, m_end, "?>");
    } else if (startsWith(at, m_end, "<!DOCTYPE")) {
        return scanDocumentType(at + 9);
    } else if (startsWith(at, m_end, "</")) {
        --m_depth;
        return findBehind(at, m_end, ">");
    } else {
        return scanTag(at);
    }
    addNode(at);
    checkLength(at, end);
    return end;
}

// A start tag: "<" to ">", heeding quotes.
const char* KuxXmlGuard::scanTag(const char* at)
{
    addNode(at);
    if (++m_depth + m_entityTags > KuxXmlLimits::DEPTH) {
        fail(at, QObject::tr("elements are nested deeper than %1").arg(KuxXmlLimits::DEPTH));
    }
    const char* i = at + 1;
    while (i < m_end && *i != '>') {
        if (*i == '"' || *i == '\'') {
            addNode(i);
            const char* last = find(i + 1, m_end, *i);
            scanText(i + 1, last);
            i = last;
        }
        i += i < m_end;
    }
    if (i < m_end && i[-1] == '/') {
        --m_depth;
    }
    return i < m_end ? i + 1 : m_end;
}

// The internal subset holds the entities; everything in quotes or comments is skipped.
const char* KuxXmlGuard::scanDocumentType(const char* at)
{
    bool inSubset = false;
    while (at < m_end) {
        if (startsWith(at, m_end, "<!--")) {
            at = findBehind(at + 4, m_end, "-->");
        } else if (startsWith(at, m_end, "<?")) {
            at = findBehind(at + 2, m_end, "?>");
        } else if (startsWith(at, m_end, "<!ENTITY")) {
            at = scanEntity(at + 8);
        } else if (*at == '"' || *at == '\'') {
            at = find(at + 1, m_end, *at);
            at += at < m_end;
        } else if (*at == '%' && inSubset) {
            addReference(referenceAt(at, m_end), at);
            ++at;
        } else if (*at == '>' && !inSubset) {
            return at + 1;
        } else {
            inSubset = (inSubset || *at == '[') && *at != ']';
            ++at;
        }
    }
    return at;
}

// `<!ENTITY name "value">` or `<!ENTITY % name "value">`; of several, the first counts. One without
// a value is external, and is never fetched.
const char* KuxXmlGuard::scanEntity(const char* at)
{
    const auto skipSpace = [&] {
        while (at < m_end && isSpace(*at)) {
            ++at;
        }
    };
    skipSpace();
    QByteArray name = "&";
    if (at < m_end && *at == '%') {
        name = "%";
        ++at;
        skipSpace();
    }
    const char* begin = at;
    while (at < m_end && !isSpace(*at) && *at != '>' && *at != '"' && *at != '\'') {
        ++at;
    }
    name.append(begin, int(at - begin));
    skipSpace();
    Entity entity;
    if (at < m_end && (*at == '"' || *at == '\'')) {
        const char* last = find(at + 1, m_end, *at);
        entity.value = QByteArray(at + 1, int(last - at - 1));
        at = last;
    }
    addNode(begin);
    if (!m_entities.contains(name)) {
        m_entities.insert(name, entity);
    }
    return at < m_end ? at + 1 : m_end;
}

// What an entity expands to, computed once. Null for one that is not declared.
const KuxXmlGuard::Entity* KuxXmlGuard::expand(const QByteArray& name, const char* where, int level)
{
    constexpr int DEEPEST = 100;
    const auto found = m_entities.find(name);
    if (found == m_entities.end() || found->size >= 0) {
        return found == m_entities.end() ? nullptr : &*found;
    }
    if (found->isOpen || level > DEEPEST) {
        fail(where, found->isOpen
                        ? QObject::tr("entity %1 uses itself").arg(QString::fromUtf8(name.mid(1)))
                        : QObject::tr("entities are nested too deep"));
    }
    found->isOpen = true;
    const QByteArray value = found->value;
    qint64 size = value.size();
    qint64 tags = value.count('<');
    for (const char* at = value.cbegin(); at < value.cend(); ++at) {
        if (*at != '&' && *at != '%') {
            continue;
        }
        const QByteArray reference = referenceAt(at, value.cend());
        if (reference.startsWith("&#")) {
            tags += referencedCharacter(reference.mid(2)) == '<';
        } else if (const Entity* used = expand(reference, where, level + 1)) {
            size += used->size;
            tags += used->tags;
        }
        if (size > KuxXmlLimits::ENTITY_EXPANSION) {
            failExpansion(where);
        }
    }
    // The table does not change while references are followed.
    found->size = size;
    found->tags = tags;
    return &*found;
}

void KuxXmlGuard::failExpansion(const char* where) const
{
    fail(where, QObject::tr("entities expand to more than %1 characters")
                    .arg(KuxXmlLimits::ENTITY_EXPANSION));
}

void KuxXmlGuard::addReference(const QByteArray& name, const char* where)
{
    const Entity* entity = expand(name, where, 0);
    if (!entity) {
        return;
    }
    if (name.startsWith('%') && entity->tags > 0) {
        fail(where, QObject::tr("parameter entities that hold declarations are not supported"));
    }
    m_expansion += entity->size;
    // Its tags need not be balanced: each may nest all that follows.
    m_entityTags += entity->tags;
    if (m_expansion > KuxXmlLimits::ENTITY_EXPANSION) {
        failExpansion(where);
    }
    if (m_depth + m_entityTags > KuxXmlLimits::DEPTH) {
        fail(where, QObject::tr("elements are nested deeper than %1").arg(KuxXmlLimits::DEPTH));
    }
}

void KuxXmlGuard::addNode(const char* where)
{
    if (++m_nodes > KuxXmlLimits::NODES) {
        fail(where, QObject::tr("more than %1 elements and attributes").arg(KuxXmlLimits::NODES));
    }
}

void KuxXmlGuard::checkLength(const char* begin, const char* end)
{
    // UTF-8 has at least as many bytes as UTF-16 has units, so a short look will mostly do.
    if (end - begin <= KuxXmlLimits::TEXT_LENGTH) {
        return;
    }
    qint64 length = 0;
    for (const char* at = begin; at < end; ++at) {
        const uchar c = uchar(*at);
        length += ((c & 0xC0) != 0x80) + (c >= 0xF0);
        if (length > KuxXmlLimits::TEXT_LENGTH) {
            fail(at,
                 QObject::tr("a text longer than %1 characters").arg(KuxXmlLimits::TEXT_LENGTH));
        }
    }
}

// A text between tags, or the value of an attribute.
void KuxXmlGuard::scanText(const char* begin, const char* end)
{
    checkLength(begin, end);
    const bool inContent = m_depth > 0 && end < m_end && *end == '<';
    if (inContent && mendBlank(begin, end)) {
        return;
    }
    for (const char* at = find(begin, end, '&'); at < end; at = find(at + 1, end, '&')) {
        const QByteArray reference = referenceAt(at, end);
        if (!reference.startsWith("&#")) {
            addReference(reference, at);
        } else if (const uint c = referencedCharacter(reference.mid(2)); c > 0xFFFF) {
            copyUpTo(at);
            m_output += QString::fromUcs4(&c, 1).toUtf8();
            m_copied = at + reference.size() + 1;
            m_isMended = true;
        }
    }
}

// A text that XML counts as text, though it shows nothing, would be dropped by the DOM parser.
bool KuxXmlGuard::mendBlank(const char* begin, const char* end)
{
    constexpr int LONGEST = 1000; // nobody means anything by a longer one
    const char* at = begin;
    while (at < end && isSpace(*at)) {
        ++at;
    }
    if (at == end || end - begin > LONGEST || (*at != '&' && uchar(*at) < 0x80)) {
        return false;
    }
    QByteArray characters(begin, int(at - begin));
    while (at < end) {
        if (*at != '&') {
            characters += *at++;
            continue;
        }
        const QByteArray reference = referenceAt(at, end);
        const uint c = reference.startsWith("&#") ? referencedCharacter(reference.mid(2)) : 0;
        if (c == 0) {
            return false;
        }
        characters += QString::fromUcs4(&c, 1).toUtf8();
        at += reference.size() + 1;
    }
    if (!KuxXmlText::isBlank(QString::fromUtf8(characters))) {
        return false;
    }
    copyUpTo(begin);
    m_output += "<![CDATA[" + characters + "]]>";
    m_copied = end;
    m_isMended = true;
    return true;
}

void KuxXmlGuard::copyUpTo(const char* at)
{
    m_output.append(m_copied, int(at - m_copied));
    m_copied = at;
}
