#pragma once

#include "KueTableColumn.h"
#include "KueTableSniffer.h"
#include "KueTableSource.h"

#include <util/extern/KueTableReader.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>

#include <vector>

/// Drives the rows of a file through its columns, once or twice: first a sample, by which columns
/// that hold words begin as texts; then the whole file; then again for columns that a late cell
/// changed.
class KueTableRows
{
    Q_DECLARE_TR_FUNCTIONS(KueTableRows)

public:
    /// The cell that made texts of a column of numbers.
    struct Widening {
        std::size_t column = 0;
        qint64 line = 0;
        QString text;
    };

    /// Borrows all; `names` are for errors.
    KueTableRows(KueTableSource& source, const KueTableLayout& layout, const KueTableRules& rules,
                 const KueTableOptions& options, const QStringList& names,
                 std::vector<KueTableColumn>& columns);

    /// Reads all rows; the columns are closed then. Raises HbeUserError and HbcCancelled.
    void read(const KueTableReader::Progress& progress);

    std::size_t getCount() const { return m_rank; }
    int getPasses() const { return m_passes; }
    qint64 getEmptyLines() const { return m_emptyLines; }
    const std::vector<Widening>& getWidenings() const { return m_widenings; }

private:
    using Stop = KueTableTokenizer::Stop;
    using Cell = KueTableTokenizer::Cell;

    bool readPass(const KueTableReader::Progress& progress, std::size_t sample);
    void begin();
    void closeColumns();
    void tell(const KueTableReader::Progress& progress, qint64 bytes) const;
    void nextBlock(const KueTableReader::Progress& progress);
    Stop readRow();
    Stop readEmptyLine();
    void storeEmptyRows();
    Stop readCell(std::size_t column, const char*& at, qint64& lines);
    void growColumns();
    bool isAnyRejected() const;
    bool isAtEnd() const { return m_source.isAtEnd() && m_at == m_source.end(); }

    void handle(KueTableColumn::Outcome outcome, std::size_t column, qint64 line, const Cell& cell);
    std::size_t guessCount() const;

    Stop refuseRow() const;
    [[noreturn]] void refuseCell(KueTableColumn::Outcome outcome, std::size_t column, qint64 line,
                                 const QString& text) const;
    [[noreturn]] void refuseLongRow() const;
    [[noreturn]] void refuseOpenQuote() const;
    QString getText(const Cell& cell) const;

    KueTableSource& m_source;
    const KueTableLayout& m_layout;
    const KueTableRules& m_rules;
    const KueTableOptions& m_options;
    const QStringList& m_names;
    std::vector<KueTableColumn>& m_columns;
    KueTableTokenizer m_tokenizer;

    const char* m_at = nullptr; ///< the row that is read next
    qint64 m_line = 1;          ///< its line
    std::size_t m_rank = 0;
    std::size_t m_capacity = 0;  ///< ranks that the open columns have room for
    std::size_t m_emptyRows = 0; ///< empty lines of a table of one column that a row may follow
    qint64 m_emptyLines = 0;
    int m_passes = 0;
    std::vector<Widening> m_widenings;
};
