#pragma once

#include <QtCore/QtGlobal>

#include <array>
#include <string>
#include <string_view>

/// Cuts a window of bytes into cells and lines. A line feed stands behind the window.
///
/// The separator is a character, or SPACE for runs of spaces and tabs. A quote that begins a cell
/// encloses separators and line ends; any other quote is a character like the rest.
class KueTableTokenizer
{
public:
    static constexpr char SPACE = ' ';

    /// A cell without the white space around it; its quotes are still there.
    struct Cell {
        const char* begin = nullptr;
        const char* end = nullptr;
        bool quoted = false; ///< begins with a quote

        std::size_t size() const { return static_cast<std::size_t>(end - begin); }
    };

    /// What ends a cell.
    enum class Stop {
        SEPARATOR,
        LINE,      ///< the end of the line or of the file
        INCOMPLETE ///< the window ends before the cell does
    };

    explicit KueTableTokenizer(char separator);

    /// The window; at the end of the file its last line needs no line end.
    void setWindow(const char* end, bool isAtEnd)
    {
        m_end = end;
        m_isAtEnd = isAtEnd;
        m_limit = isAtEnd ? nullptr : end;
    }

    bool isSpaceSeparated() const { return m_separator == SPACE; }
    char getSeparator() const { return m_separator; }

    /// The byte ends a cell that is not quoted.
    bool isStop(char byte) const { return m_stops[static_cast<unsigned char>(byte)]; }

    /// `at` stands at the end of a cell that is not quoted, and not at that of the window.
    bool isCellEnd(const char* at) const { return isStop(*at) && at != m_limit; }

    /// Cuts the cell at `at`, which moves behind the separator or the line end; it stays where the
    /// cell is incomplete. A quote that the file does not close is incomplete, too.
    Stop next(const char*& at, Cell& cell) const;

    /// For `at` on the byte that ended a cell: what it is. Moves `at` behind it.
    Stop endCell(const char*& at) const
    {
        if (isSpaceSeparated()) {
            at = skipBlanks(at);
            if (*at != '\n' && *at != '\r')
                return Stop::SEPARATOR;
        } else if (*at == m_separator) {
            ++at;
            return Stop::SEPARATOR;
        }
        if (*at == '\n' && at != m_end) {
            ++at;
            return Stop::LINE;
        }
        return endLine(at);
    }

    /// Passes over spaces and tabs, but not over a tab that separates.
    const char* skipBlanks(const char* at) const
    {
        while (*at == ' ' || (*at == '\t' && m_separator != '\t'))
            ++at;
        return at;
    }

    /// If the line at `at` is empty but for blanks, moves `at` behind it. INCOMPLETE when that
    /// cannot be known yet, SEPARATOR when it is not empty.
    Stop skipEmptyLine(const char*& at) const;

    /// The text of a cell: enclosing quotes dropped, trimmed, doubled quotes halved, a line end of
    /// a lone CR made a line feed (nobody would quote it again). `buffer` holds the text where it
    /// is not in the window.
    static std::string_view getText(const Cell& cell, std::string& buffer);

    /// The line ends within a text: CR LF is one.
    static qint64 countLines(const char* begin, const char* end);

private:
    Stop endLine(const char*& at) const;
    const char* findQuotedEnd(const char* at) const;

    char m_separator;
    std::array<bool, 256> m_stops{};
    const char* m_end = nullptr;
    const char* m_limit = nullptr; ///< m_end where more follows
    bool m_isAtEnd = false;
};
