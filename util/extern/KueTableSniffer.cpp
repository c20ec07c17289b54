#include "KueTableSniffer.h"

#include "KueTableNumber.h"
#include "KueTableSource.h"

#include <basic/error/HbeUserError.h>

#include <algorithm>
#include <optional>

namespace
{
using Cell = KueTableTokenizer::Cell;
using Stop = KueTableTokenizer::Stop;
using Record = std::vector<Cell>;
using Separator = KueTableOptions::Separator;
using Decimal = KueTableOptions::Decimal;

constexpr int SEPARATOR_ROWS = 100; // rows that must agree on the number of cells
constexpr int SAMPLE_ROWS = 5000;   // rows that decide decimal sign and quotes

/// Reads the next row that is not empty; false where the window ends before it does. Moves `at`
/// behind it, and counts the lines it passes.
bool readRecord(const KueTableTokenizer& tokenizer, const char* end, const char*& at,
                Record& record, qint64* line = nullptr)
{
    Stop stop = Stop::LINE;
    const char* row = at;
    while (row != end && (stop = tokenizer.skipEmptyLine(row)) == Stop::LINE) {
        if (line)
            ++*line;
    }
    if (row == end || stop == Stop::INCOMPLETE)
        return false;
    record.clear();
    const char* cellBegin = tokenizer.isSpaceSeparated() ? tokenizer.skipBlanks(row) : row;
    do {
        Cell cell;
        stop = tokenizer.next(cellBegin, cell);
        record.push_back(cell);
    } while (stop == Stop::SEPARATOR);
    if (stop == Stop::INCOMPLETE)
        return false;
    if (line)
        *line += 1 + KueTableTokenizer::countLines(row, record.back().end);
    at = cellBegin;
    return true;
}

template <class Visit>
void forEachRecord(const KueTableTokenizer& tokenizer, const char* at, const char* end, int limit,
                   Visit visit)
{
    Record record;
    for (int i = 0; i < limit && readRecord(tokenizer, end, at, record); ++i)
        visit(record);
}

/// The cells of a line of GeoEAS numbers.
std::vector<std::string_view> splitNumbers(std::string_view line)
{
    std::vector<std::string_view> cells;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(" \t,", at)) != std::string_view::npos) {
        const std::size_t stop = std::min(line.find_first_of(" \t,", at), line.size());
        cells.push_back(line.substr(at, stop - at));
        at = stop;
    }
    return cells;
}

/// The lines of a window, without their ends; the last one only where the file ends.
class LineReader
{
public:
    LineReader(const char* at, const char* end)
        : m_begin(at)
        , m_at(at)
        , m_end(end)
    {
    }
    std::optional<std::string_view> next()
    {
        if (m_at == m_end)
            return std::nullopt;
        const char* stop = m_at;
        while (*stop != '\n' && *stop != '\r') // there is one behind the window
            ++stop;
        const std::string_view line(m_at, static_cast<std::size_t>(stop - m_at));
        m_at = stop == m_end ? stop : stop + 1;
        if (*stop == '\r' && m_at != m_end && *m_at == '\n')
            ++m_at;
        ++m_line;
        return line;
    }
    std::size_t getOffset() const { return static_cast<std::size_t>(m_at - m_begin); }
    qint64 getLine() const { return m_line; }

private:
    const char* m_begin;
    const char* m_at;
    const char* m_end;
    qint64 m_line = 1;
};
} // namespace

KueTableSniffer::KueTableSniffer(KueTableSource& source, const KueTableOptions& options,
                                 const KueTableMissing& missing)
    : m_source(source)
    , m_options(options)
    , m_missing(missing)
{
}

KueTableLayout KueTableSniffer::sniff()
{
    m_layout.decimal = m_options.decimal == Decimal::COMMA ? ',' : '.';
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    while (!m_source.isAtEnd() && m_source.end() - m_source.begin() <= m_options.maxLineLength &&
           std::none_of(m_source.begin(), m_source.end(), isLineEnd))
        m_source.advance(m_source.begin(), 1);
    if (findGeoEas())
        return m_layout;
    switch (m_options.separator) {
    case Separator::AUTO:
        m_layout.separator = chooseSeparator();
        break;
    case Separator::COMMA:
        m_layout.separator = ',';
        break;
    case Separator::SEMICOLON:
        m_layout.separator = ';';
        break;
    case Separator::TAB:
        m_layout.separator = '\t';
        break;
    case Separator::SPACE:
        m_layout.separator = KueTableTokenizer::SPACE;
        break;
    }
    readHeader();
    return m_layout;
}

KueTableTokenizer KueTableSniffer::makeTokenizer(char separator) const
{
    KueTableTokenizer tokenizer(separator);
    tokenizer.setWindow(m_source.end(), m_source.isAtEnd());
    return tokenizer;
}

bool KueTableSniffer::isNumber(std::string_view text) const
{
    const KueTableNumber number =
        KueTableNumber::parse(text.data(), text.data() + text.size(), {m_layout.decimal, false});
    return number.kind != KueTableNumber::Kind::NONE;
}

bool KueTableSniffer::findGeoEas()
{
    const auto isAnyNumber = [](std::string_view text) {
        return KueTableNumber::parse(text.data(), text.data() + text.size(), {'.', true}).kind !=
               KueTableNumber::Kind::NONE;
    };
    LineReader lines(m_source.begin(), m_source.end());
    const auto title = lines.next();
    const auto countLine = title ? lines.next() : std::nullopt;
    if (!countLine)
        return false;
    const std::vector<std::string_view> counts = splitNumbers(*countLine);
    if (counts.empty() || !std::all_of(counts.begin(), counts.end(), isAnyNumber))
        return false;
    const KueTableNumber count =
        KueTableNumber::parse(counts[0].data(), counts[0].data() + counts[0].size(), {});
    if (count.kind != KueTableNumber::Kind::INTEGER || count.integer < 1 ||
        count.integer > m_options.maxColumns)
        return false;

    std::vector<std::string> names;
    for (qint64 i = 0; i < count.integer; ++i) {
        const auto name = lines.next();
        // A column of a delimited text may begin like this, but it goes on with numbers.
        if (!name || isAnyNumber(*name) || m_missing.contains(*name))
            return false;
        names.emplace_back(*name);
    }
    const std::size_t headerSize = lines.getOffset();
    const qint64 firstLine = lines.getLine();
    auto row = lines.next();
    while (row && row->find_first_not_of(" \t") == std::string_view::npos)
        row = lines.next();
    if (!row)
        return false;
    const std::vector<std::string_view> cells = splitNumbers(*row);
    if (static_cast<qint64>(cells.size()) != count.integer ||
        !std::all_of(cells.begin(), cells.end(), isAnyNumber))
        return false;

    m_layout.form = KueTableResult::Form::GEO_EAS;
    m_layout.separator = row->find(',') == std::string_view::npos ? KueTableTokenizer::SPACE : ',';
    m_layout.decimal = '.';
    m_layout.title = *title;
    m_layout.names = std::move(names);
    m_layout.quotedTexts.assign(m_layout.names.size(), false);
    m_layout.headerSize = headerSize;
    m_layout.firstLine = firstLine;
    return true;
}

char KueTableSniffer::chooseSeparator() const
{
    char mostInHeader = ',';
    std::size_t most = 1;
    for (const char separator : {'\t', ';', ',', KueTableTokenizer::SPACE}) {
        const bool isSpace = separator == KueTableTokenizer::SPACE;
        if (isSpace && most > 1)
            break;
        std::size_t cells = 0;
        bool agrees = true;
        int rows = 0;
        forEachRecord(makeTokenizer(separator), m_source.begin(), m_source.end(), SEPARATOR_ROWS,
                      [&](const Record& record) {
                          if (cells == 0)
                              cells = record.size();
                          agrees = agrees && record.size() == cells;
                          // Words have blanks between them, too: a row must hold a number.
                          if (isSpace && rows++ > 0)
                              agrees =
                                  agrees &&
                                  std::any_of(record.begin(), record.end(), [&](const Cell& cell) {
                                      return isNumber({cell.begin, cell.size()});
                                  });
                      });
        if (cells > 1 && agrees && (!isSpace || rows > 1))
            return separator;
        if (cells > most && !isSpace) {
            most = cells;
            mostInHeader = separator;
        }
    }
    return mostInHeader;
}

void KueTableSniffer::readHeader()
{
    Record header;
    qint64 line = 1;
    const char* at = m_source.begin();
    while (!readRecord(makeTokenizer(m_layout.separator), m_source.end(), at, header, &line)) {
        const qint64 size = m_source.end() - m_source.begin();
        if (m_source.isAtEnd()) {
            const bool isEmpty = std::all_of(m_source.begin(), m_source.end(), [](char c) {
                return c == ' ' || (c >= '\t' && c <= '\r');
            });
            throw HbeUserError(isEmpty
                                   ? tr("'%1' holds no table: it is empty.").arg(m_source.getPath())
                                   : tr("'%1', line %2: a quote is opened that is never closed.")
                                         .arg(m_source.getPath())
                                         .arg(line));
        }
        if (size > m_options.maxLineLength)
            throw HbeUserError(tr("'%1', line 1: the line is longer than %2 bytes.")
                                   .arg(m_source.getPath())
                                   .arg(m_options.maxLineLength));
        m_source.advance(m_source.begin(), 1);
        at = m_source.begin();
        line = 1;
    }
    if (header.size() > static_cast<std::size_t>(m_options.maxColumns))
        throw HbeUserError(tr("'%1', line %2: there are %3 columns; at most %4 are read.")
                               .arg(m_source.getPath())
                               .arg(line - 1)
                               .arg(header.size())
                               .arg(m_options.maxColumns));
    examineRows();
    nameColumns(header);
    if (m_layout.hasHeader) {
        m_layout.headerSize = static_cast<std::size_t>(at - m_source.begin());
        m_layout.firstLine = line;
    }
    m_layout.quotedTexts.resize(header.size(), false);
}

void KueTableSniffer::nameColumns(const Record& header)
{
    std::string buffer;
    std::size_t filled = 0;
    std::size_t numbers = 0;
    for (const Cell& cell : header) {
        m_layout.names.emplace_back(KueTableTokenizer::getText(cell, buffer));
        filled += m_layout.names.back().empty() ? 0 : 1;
        numbers += isNumber(m_layout.names.back()) ? 1 : 0;
    }
    m_layout.hasNumberInHeader = numbers > 0;
    m_layout.hasHeader = filled == 0 || numbers < filled;
    if (!m_layout.hasHeader)
        m_layout.names.assign(header.size(), std::string());
}

void KueTableSniffer::examineRows()
{
    const KueTableTokenizer tokenizer = makeTokenizer(m_layout.separator);
    if (m_options.decimal == Decimal::AUTO)
        chooseDecimal(tokenizer);
    findQuotedTexts(tokenizer);
}

void KueTableSniffer::chooseDecimal(const KueTableTokenizer& tokenizer)
{
    int dots = 0;
    int commas = 0;
    std::string buffer;
    const auto hasDecimals = [](std::string_view text, char decimal, bool mayGroup) {
        const KueTableNumber number =
            KueTableNumber::parse(text.data(), text.data() + text.size(), {decimal, false});
        // "1,234" among commas is as likely a number in groups of three digits.
        const bool isGroup = mayGroup && number.decimals == 3 && number.integerDigits <= 3;
        return number.kind == KueTableNumber::Kind::REAL && number.decimals > 0 && !isGroup;
    };
    forEachRecord(tokenizer, m_source.begin(), m_source.end(), SAMPLE_ROWS,
                  [&](const Record& record) {
                      for (const Cell& cell : record) {
                          const std::string_view text = KueTableTokenizer::getText(cell, buffer);
                          if (text.find(',') != std::string_view::npos)
                              commas += hasDecimals(text, ',', m_layout.separator == ',') ? 1 : 0;
                          else if (text.find('.') != std::string_view::npos)
                              dots += hasDecimals(text, '.', false) ? 1 : 0;
                      }
                  });
    m_layout.decimal = commas > dots ? ',' : '.';
}

void KueTableSniffer::findQuotedTexts(const KueTableTokenizer& tokenizer)
{
    struct Column {
        bool isQuoted = false;   ///< a cell has quotes that it does not need
        bool isUnquoted = false; ///< a value has none
    };
    std::vector<Column> columns;
    bool hasBareNumber = false; // the file does not simply quote everything
    std::string buffer;
    bool isHeader = true;
    const auto needsQuotes = [&](std::string_view text) {
        return std::any_of(text.begin(), text.end(),
                           [&](char c) { return c == '"' || tokenizer.isStop(c); });
    };
    forEachRecord(
        tokenizer, m_source.begin(), m_source.end(), SAMPLE_ROWS, [&](const Record& record) {
            const bool skip = isHeader;
            isHeader = false;
            columns.resize(std::max(columns.size(), record.size()));
            for (std::size_t i = 0; i < record.size() && !skip; ++i) {
                const std::string_view text = KueTableTokenizer::getText(record[i], buffer);
                if (m_missing.contains(text))
                    continue;
                if (!record[i].quoted) {
                    columns[i].isUnquoted = true;
                    hasBareNumber = hasBareNumber || isNumber(text);
                } else if (!needsQuotes(text)) {
                    columns[i].isQuoted = true;
                }
            }
        });
    for (const Column& column : columns)
        m_layout.quotedTexts.push_back(hasBareNumber && column.isQuoted && !column.isUnquoted);
}
