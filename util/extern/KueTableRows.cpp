#include "KueTableRows.h"

#include <basic/calc/HbcCancelled.h>
#include <basic/error/HbeUserError.h>

#include <algorithm>

namespace
{
constexpr std::size_t SAMPLE_ROWS = 10000;
constexpr std::size_t ROWS_AT_FIRST = 16;  // that columns have room for, and double
constexpr std::size_t ROWS_AT_ONCE = 8192; // that they grow by at most
constexpr std::size_t MAX_ROWS = std::numeric_limits<int>::max() - ROWS_AT_ONCE;
constexpr int SHOWN_TEXT = 60; // characters of a text in a message
} // namespace

KueTableRows::KueTableRows(KueTableSource& source, const KueTableLayout& layout,
                           const KueTableRules& rules, const KueTableOptions& options,
                           const QStringList& names, std::vector<KueTableColumn>& columns)
    : m_source(source)
    , m_layout(layout)
    , m_rules(rules)
    , m_options(options)
    , m_names(names)
    , m_columns(columns)
    , m_tokenizer(layout.separator)
{
}

void KueTableRows::read(const KueTableReader::Progress& progress)
{
    m_passes = 1;
    if (!readPass(progress, SAMPLE_ROWS)) {
        for (KueTableColumn& column : m_columns)
            column.restart();
        readPass(progress, 0);
    }
    const std::size_t count = m_rank;
    closeColumns();
    if (isAnyRejected()) {
        m_passes = 2;
        for (KueTableColumn& column : m_columns)
            column.restart();
        readPass(progress, 0);
        if (m_rank != count)
            throw HbeUserError(
                tr("The file '%1' was changed while it was read.").arg(m_source.getPath()));
        closeColumns();
    }
    tell(progress, m_source.getBytesTotal());
}

void KueTableRows::closeColumns()
{
    for (KueTableColumn& column : m_columns) {
        if (column.isOpen())
            column.close(m_rank, m_rules);
    }
}

void KueTableRows::tell(const KueTableReader::Progress& progress, qint64 bytes) const
{
    // Once it is known that there will be a second pass, it is counted in.
    const qint64 total = m_source.getBytesTotal();
    const bool isTwice = m_passes == 2 || isAnyRejected();
    if (progress && !progress(m_passes == 2 ? total + bytes : bytes, isTwice ? 2 * total : total))
        throw HbcCancelled();
}

/// False when, after `sample` rows, some column is no column of numbers; 0 is no sample.
bool KueTableRows::readPass(const KueTableReader::Progress& progress, std::size_t sample)
{
    begin();
    for (;;) {
        while (!isAtEnd()) {
            if (readRow() == Stop::INCOMPLETE)
                break;
            if (m_rank == sample && sample != 0) {
                if (isAnyRejected())
                    return false;
                sample = 0;
            }
        }
        if (m_source.isAtEnd()) {
            if (m_at != m_source.end())
                refuseOpenQuote();
            return sample == 0 || !isAnyRejected();
        }
        nextBlock(progress);
    }
}

void KueTableRows::begin()
{
    m_source.rewind();
    while (static_cast<std::size_t>(m_source.end() - m_source.begin()) < m_layout.headerSize &&
           !m_source.isAtEnd())
        m_source.advance(m_source.begin(), 1);
    const auto size = static_cast<std::size_t>(m_source.end() - m_source.begin());
    m_at = m_source.begin() + std::min(m_layout.headerSize, size);
    m_tokenizer.setWindow(m_source.end(), m_source.isAtEnd());
    m_line = m_layout.firstLine;
    m_rank = 0;
    m_capacity = 0;
    m_emptyRows = 0;
    m_emptyLines = 0;
}

void KueTableRows::nextBlock(const KueTableReader::Progress& progress)
{
    tell(progress, m_source.getBytesRead());
    if (m_source.end() - m_at > m_options.maxLineLength)
        refuseLongRow();
    const KueTableSource::Encoding encoding = m_source.getEncoding();
    m_source.advance(m_at, m_line);
    m_at = m_source.begin();
    m_tokenizer.setWindow(m_source.end(), m_source.isAtEnd());
    if (m_source.getEncoding() != encoding) {
        for (KueTableColumn& column : m_columns)
            column.decodeAgain(m_rank);
    }
}

KueTableRows::Stop KueTableRows::readRow()
{
    if (*m_at == '\n' || *m_at == '\r' || *m_at == ' ' || *m_at == '\t') {
        const Stop stop = readEmptyLine();
        if (stop != Stop::SEPARATOR)
            return stop;
    }
    if (m_emptyRows != 0)
        storeEmptyRows();
    if (m_rank == m_capacity)
        growColumns();

    const char* at = m_tokenizer.isSpaceSeparated() ? m_tokenizer.skipBlanks(m_at) : m_at;
    const std::size_t count = m_columns.size();
    qint64 lines = 1;
    Stop stop = Stop::SEPARATOR;
    for (std::size_t i = 0; i < count; ++i) {
        if (stop == Stop::LINE)
            return refuseRow();
        KueTableColumn& column = m_columns[i];
        const char* end = nullptr;
        if (column.isNumeric() && column.isOpen())
            end = column.storeNumber(at, m_rank, m_tokenizer, m_rules);
        if (end) {
            stop = m_tokenizer.endCell(end);
            at = end;
        } else {
            stop = readCell(i, at, lines);
        }
        if (stop == Stop::INCOMPLETE)
            return stop;
    }
    if (stop != Stop::LINE)
        return refuseRow();
    if (at - m_at > m_options.maxLineLength)
        refuseLongRow();
    m_at = at;
    m_line += lines;
    ++m_rank;
    return stop;
}

KueTableRows::Stop KueTableRows::readEmptyLine()
{
    const Stop stop = m_tokenizer.skipEmptyLine(m_at);
    if (stop == Stop::LINE) {
        ++m_line;
        if (m_columns.size() == 1)
            ++m_emptyRows;
        else
            ++m_emptyLines;
    }
    return stop;
}

void KueTableRows::storeEmptyRows()
{
    static constexpr char NOTHING = 0;
    Cell cell;
    cell.begin = cell.end = &NOTHING;
    KueTableColumn& column = m_columns.front();
    for (; m_emptyRows != 0; --m_emptyRows, ++m_rank) {
        if (m_rank == m_capacity)
            growColumns();
        if (column.isOpen())
            handle(column.store(cell, m_rank, m_rules), 0,
                   m_line - static_cast<qint64>(m_emptyRows), cell);
    }
}

KueTableRows::Stop KueTableRows::readCell(std::size_t column, const char*& at, qint64& lines)
{
    Cell cell;
    const Stop stop = m_tokenizer.next(at, cell);
    if (stop == Stop::INCOMPLETE)
        return stop;
    const qint64 line = m_line + lines - 1;
    if (cell.quoted)
        lines += KueTableTokenizer::countLines(cell.begin, cell.end);
    if (m_columns[column].isOpen())
        handle(m_columns[column].store(cell, m_rank, m_rules), column, line, cell);
    return stop;
}

void KueTableRows::handle(KueTableColumn::Outcome outcome, std::size_t column, qint64 line,
                          const Cell& cell)
{
    using Outcome = KueTableColumn::Outcome;
    if (outcome == Outcome::WIDENED)
        m_widenings.push_back({column, line, getText(cell)});
    else if (outcome != Outcome::STORED)
        refuseCell(outcome, column, line, getText(cell));
}

void KueTableRows::growColumns()
{
    if (m_capacity > MAX_ROWS)
        throw HbeUserError(
            tr("The file '%1' has more than %2 rows.").arg(m_source.getPath()).arg(MAX_ROWS));
    const std::size_t expected = guessCount();
    m_capacity += std::clamp(m_capacity, ROWS_AT_FIRST, ROWS_AT_ONCE);
    for (KueTableColumn& column : m_columns) {
        if (column.isOpen())
            column.resize(m_capacity, expected);
    }
}

/// How many rows there will be if they go on as they began; 0 while nothing is known.
std::size_t KueTableRows::guessCount() const
{
    if (m_rank == 0 || m_source.getEncoding() == KueTableSource::Encoding::UTF_16)
        return 0;
    const auto read = static_cast<double>(m_source.getBytesRead() - (m_source.end() - m_at));
    const auto total = static_cast<double>(m_source.getBytesTotal());
    const double rows = 1.02 * static_cast<double>(m_rank) * total / std::max(read, 1.0);
    return static_cast<std::size_t>(std::min({rows, total, double(MAX_ROWS)}));
}

bool KueTableRows::isAnyRejected() const
{
    return std::any_of(m_columns.cbegin(), m_columns.cend(), [](const KueTableColumn& column) {
        return column.getKind() == KueTableColumn::Kind::REJECTED;
    });
}

QString KueTableRows::getText(const Cell& cell) const
{
    std::string buffer;
    const std::string_view text = KueTableTokenizer::getText(cell, buffer);
    const QString shown = m_source.decode(text.data(), std::min<std::size_t>(text.size(), 1000));
    return shown.size() > SHOWN_TEXT ? shown.left(SHOWN_TEXT) + QChar(0x2026) : shown;
}

/// INCOMPLETE while the window does not hold the whole row.
KueTableRows::Stop KueTableRows::refuseRow() const
{
    std::size_t cells = 0;
    const char* at = m_tokenizer.isSpaceSeparated() ? m_tokenizer.skipBlanks(m_at) : m_at;
    Cell cell;
    Stop stop = Stop::SEPARATOR;
    for (; stop == Stop::SEPARATOR; ++cells)
        stop = m_tokenizer.next(at, cell);
    if (stop == Stop::INCOMPLETE)
        return stop;
    Cell row;
    row.begin = m_at;
    row.end = std::find_if(m_at, m_source.end(), [](char c) { return c == '\n' || c == '\r'; });
    throw HbeUserError(tr("'%1', line %2: the row has %3 cells, but there are %4 columns: '%5'")
                           .arg(m_source.getPath())
                           .arg(m_line)
                           .arg(cells)
                           .arg(m_columns.size())
                           .arg(getText(row)));
}

void KueTableRows::refuseCell(KueTableColumn::Outcome outcome, std::size_t column, qint64 line,
                              const QString& text) const
{
    const QString place = tr("'%1', line %2, column '%3': ")
                              .arg(m_source.getPath())
                              .arg(line)
                              .arg(m_names.at(static_cast<int>(column)));
    if (outcome == KueTableColumn::Outcome::TOO_MANY)
        throw HbeUserError(place + tr("'%1' is one category too many; there can be %2.")
                                       .arg(text)
                                       .arg(KueTableLabels::MAX_COUNT));
    throw HbeUserError(place + tr("'%1' is not a number.").arg(text));
}

void KueTableRows::refuseLongRow() const
{
    throw HbeUserError(tr("'%1', line %2: the row is longer than %3 bytes. A quote that is "
                          "never closed makes one row of many.")
                           .arg(m_source.getPath())
                           .arg(m_line)
                           .arg(m_options.maxLineLength));
}

void KueTableRows::refuseOpenQuote() const
{
    throw HbeUserError(tr("'%1', line %2: the row opens a quote that is never closed.")
                           .arg(m_source.getPath())
                           .arg(m_line));
}
