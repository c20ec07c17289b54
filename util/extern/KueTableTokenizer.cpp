#include "KueTableTokenizer.h"

#include <cstring>

namespace
{
constexpr char QUOTE = '"';

bool isWhite(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view trimmed(const char* begin, const char* end)
{
    while (begin != end && isWhite(*begin))
        ++begin;
    while (begin != end && isWhite(end[-1]))
        --end;
    return {begin, static_cast<std::size_t>(end - begin)};
}
} // namespace

KueTableTokenizer::KueTableTokenizer(char separator)
    : m_separator(separator)
{
    for (const char stop : {separator, '\n', '\r'})
        m_stops[static_cast<unsigned char>(stop)] = true;
    if (separator == SPACE)
        m_stops[static_cast<unsigned char>('\t')] = true;
}

KueTableTokenizer::Stop KueTableTokenizer::next(const char*& at, Cell& cell) const
{
    const char* begin = skipBlanks(at);
    const char* end = begin;
    cell.quoted = *begin == QUOTE;
    if (cell.quoted) {
        end = findQuotedEnd(begin);
        if (!end)
            return Stop::INCOMPLETE;
    } else {
        while (!isStop(*end))
            ++end;
    }
    const char* after = end;
    const Stop stop = endCell(after);
    if (stop == Stop::INCOMPLETE)
        return stop;
    const std::string_view text = trimmed(begin, end);
    cell.begin = text.data();
    cell.end = text.data() + text.size();
    at = after;
    return stop;
}

const char* KueTableTokenizer::findQuotedEnd(const char* at) const
{
    // Every quote opens or closes, so that a doubled one changes nothing.
    for (;;) {
        ++at;
        const void* const close = std::memchr(at, QUOTE, static_cast<std::size_t>(m_end - at));
        if (!close)
            return nullptr;
        at = static_cast<const char*>(close) + 1;
        while (*at != QUOTE && !isStop(*at))
            ++at;
        if (*at != QUOTE)
            return at;
    }
}

KueTableTokenizer::Stop KueTableTokenizer::endLine(const char*& at) const
{
    if (at == m_end)
        return m_isAtEnd ? Stop::LINE : Stop::INCOMPLETE;
    if (*at == '\r' && at + 1 == m_end && !m_isAtEnd)
        return Stop::INCOMPLETE; // a line feed may follow
    const bool isPair = *at == '\r' && at[1] == '\n' && at + 1 != m_end;
    at += isPair ? 2 : 1;
    return Stop::LINE;
}

KueTableTokenizer::Stop KueTableTokenizer::skipEmptyLine(const char*& at) const
{
    const char* after = skipBlanks(at);
    if (*after != '\n' && *after != '\r')
        return Stop::SEPARATOR;
    const Stop stop = endLine(after);
    if (stop == Stop::LINE)
        at = after;
    return stop;
}

std::string_view KueTableTokenizer::getText(const Cell& cell, std::string& buffer)
{
    std::string_view text(cell.begin, cell.size());
    if (!std::memchr(cell.begin, QUOTE, cell.size()))
        return text;
    if (text.front() == QUOTE && text.back() == QUOTE)
        text = text.size() < 2 ? std::string_view() : trimmed(cell.begin + 1, cell.end - 1);
    if (text.find("\"\"") == std::string_view::npos && text.find('\r') == std::string_view::npos)
        return text;
    buffer.clear();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        buffer.push_back(text[i] == '\r' && next != '\n' ? '\n' : text[i]);
        if (text[i] == QUOTE && next == QUOTE)
            ++i;
    }
    return buffer;
}

qint64 KueTableTokenizer::countLines(const char* begin, const char* end)
{
    qint64 count = 0;
    for (; begin != end; ++begin) {
        const bool isPair = *begin == '\r' && begin + 1 != end && begin[1] == '\n';
        count += (*begin == '\n' || *begin == '\r') && !isPair ? 1 : 0;
    }
    return count;
}
