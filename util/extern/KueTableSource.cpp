#include "KueTableSource.h"

#include <basic/error/HbeUserError.h>

#include <QtCore/QFileInfo>
#include <QtCore/QTextCodec>

#include <algorithm>
#include <cstring>

namespace
{
constexpr std::size_t FIRST_BLOCK = 1024 * 1024; // shows the layout
constexpr char END_OF_TEXT = '\x1A';             // closes files of old systems

/// The length of the UTF-8 character at `at`: 0 when the bytes are none, -1 when the text ends
/// within it.
int getUtf8Length(const unsigned char* at, const unsigned char* end)
{
    const unsigned char lead = *at;
    if (lead < 0x80)
        return 1;
    const int length = lead >= 0xC2 && lead <= 0xDF   ? 2
                       : lead >= 0xE0 && lead <= 0xEF ? 3
                       : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                      : 0;
    if (length == 0)
        return 0;
    // The second byte excludes overlong forms, surrogates, and what is above U+10FFFF.
    const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (int i = 1; i < length; ++i) {
        if (at + i == end)
            return -1;
        const unsigned char byte = at[i];
        if (byte < (i == 1 ? low : 0x80) || byte > (i == 1 ? high : 0xBF))
            return 0;
    }
    return length;
}

/// Eight bytes at a time while they are ASCII.
const unsigned char* skipAscii(const unsigned char* at, const unsigned char* end)
{
    for (; end - at >= 8; at += 8) {
        quint64 word;
        std::memcpy(&word, at, 8);
        if ((word & 0x8080808080808080u) != 0)
            break;
    }
    while (at != end && *at < 0x80)
        ++at;
    return at;
}
} // namespace

KueTableSource::KueTableSource(const QString& path, int blockSize)
    : m_path(path)
    , m_blockSize(static_cast<std::size_t>(blockSize))
    , m_file(path)
{
    const QFileInfo info(path);
    if (!info.exists())
        throw HbeUserError(tr("The file '%1' does not exist.").arg(path));
    if (!info.isFile())
        throw HbeUserError(tr("'%1' is not a regular file.").arg(path));
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw HbeUserError(tr("Cannot open the file '%1' : %2").arg(path, m_file.errorString()));
    m_bytesTotal = m_file.size();
    start(std::max(FIRST_BLOCK, m_blockSize));
}

KueTableSource::~KueTableSource() = default;

void KueTableSource::rewind()
{
    start(m_blockSize);
}

void KueTableSource::start(std::size_t blockSize)
{
    if (!m_file.seek(0))
        throw HbeUserError(tr("Cannot read the file '%1' : %2").arg(m_path, m_file.errorString()));
    m_end = m_validated = 0;
    m_bytesRead = 0;
    m_isAtEnd = m_isEndHeld = false;
    detectMark();
    readBlock(blockSize, 1);
}

void KueTableSource::detectMark()
{
    char mark[3] = {};
    const qint64 count = m_file.read(mark, sizeof mark);
    const auto startsWith = [&](const char* bytes, qint64 size) {
        return count >= size && std::memcmp(mark, bytes, static_cast<std::size_t>(size)) == 0;
    };
    qint64 skipped = 0;
    if (startsWith("\xEF\xBB\xBF", 3)) {
        skipped = 3;
    } else if (startsWith("\xFF\xFE", 2) || startsWith("\xFE\xFF", 2)) {
        skipped = 2;
        m_encoding = Encoding::UTF_16;
        QTextCodec* const codec =
            QTextCodec::codecForName(mark[0] == '\xFF' ? "UTF-16LE" : "UTF-16BE");
        m_decoder.reset(codec->makeDecoder(QTextCodec::IgnoreHeader));
    }
    m_file.seek(skipped);
    m_bytesRead = skipped;
}

void KueTableSource::advance(const char* position, qint64 line)
{
    const std::size_t dropped = static_cast<std::size_t>(position - m_bytes.data());
    std::memmove(m_bytes.data(), position, m_end - dropped);
    m_end -= dropped;
    m_validated -= std::min(dropped, m_validated);
    readBlock(m_blockSize, line);
}

qint64 KueTableSource::readBytes(char* out, qint64 count)
{
    qint64 done = 0;
    while (done < count) {
        const qint64 part = m_file.read(out + done, count - done);
        if (part < 0)
            throw HbeUserError(
                tr("Cannot read the file '%1' : %2").arg(m_path, m_file.errorString()));
        if (part == 0) {
            m_isAtEnd = true;
            break;
        }
        done += part;
    }
    m_bytesRead += done;
    return done;
}

void KueTableSource::readBlock(std::size_t blockSize, qint64 line)
{
    // A row longer than the window doubles it.
    const std::size_t block = std::max(blockSize, m_end);
    const std::size_t from = m_end;
    if (m_isEndHeld)
        m_bytes[m_end++] = END_OF_TEXT; // a window has room for one byte more
    if (m_decoder) {
        QByteArray raw(static_cast<int>(block), Qt::Uninitialized);
        raw.truncate(static_cast<int>(readBytes(raw.data(), raw.size())));
        const QByteArray text = m_decoder->toUnicode(raw).toUtf8();
        m_bytes.resize(std::max(m_bytes.size(), m_end + static_cast<std::size_t>(text.size()) + 1));
        std::copy(text.cbegin(), text.cend(), m_bytes.data() + m_end);
        m_end += static_cast<std::size_t>(text.size());
    } else {
        m_bytes.resize(std::max(m_bytes.size(), m_end + block + 1));
        m_end +=
            static_cast<std::size_t>(readBytes(m_bytes.data() + m_end, static_cast<qint64>(block)));
    }
    // It begins no row, so it is not shown before it is known to be followed by something.
    const bool isEnd = m_end != 0 && m_bytes[m_end - 1] == END_OF_TEXT;
    m_isEndHeld = isEnd && !m_isAtEnd;
    if (isEnd)
        --m_end;
    refuseZeroBytes(from, line);
    if (m_encoding == Encoding::UTF_8)
        validate();
    m_bytes[m_end] = '\n';
}

void KueTableSource::refuseZeroBytes(std::size_t from, qint64 line) const
{
    const char* const begin = m_bytes.data();
    const void* const zero = std::memchr(begin + from, 0, m_end - from);
    if (!zero)
        return;
    line += std::count(begin, static_cast<const char*>(zero), '\n');
    throw HbeUserError(
        tr("'%1', line %2: a zero byte. This is no file of text.").arg(m_path).arg(line));
}

void KueTableSource::validate()
{
    const auto* const data = reinterpret_cast<const unsigned char*>(m_bytes.data());
    const unsigned char* const end = data + m_end;
    const unsigned char* at = data + m_validated;
    while ((at = skipAscii(at, end)) != end) {
        const int length = getUtf8Length(at, end);
        if (length == 0 || (length < 0 && m_isAtEnd)) {
            m_encoding = Encoding::LATIN_1;
            return;
        }
        if (length < 0)
            break;
        at += length;
    }
    m_validated = static_cast<std::size_t>(at - data);
}

QString KueTableSource::decode(const char* text, std::size_t size) const
{
    const int count = static_cast<int>(size);
    return m_encoding == Encoding::LATIN_1 ? QString::fromLatin1(text, count)
                                           : QString::fromUtf8(text, count);
}
