#pragma once

#include <util/calc/KucExportColumn.h>

#include <basic/calc/HbcAProgress.h>
#include <basic/data/HbdSpan.h>

#include <QtCore/QList>
#include <QtCore/QString>

/// Some consecutive rows of an export, as an encoding takes them: of each row the cell indices (of
/// a grid export), then a value of each column. All is borrowed for the duration of one call, in
/// the thread of the export.
///
/// Whoever writes the rows calls beginRow before each of them and endRow after it: so a cancel is
/// seen and the progress is counted.
class KELVANE_UTIL_EXPORT KucExportBlock
{
public:
    using Columns = std::vector<KucExportColumn>;
    using Row = QList<KueFormatedVariant>;

    /// `undefined` stands in for undefined values; `progress` is the job of the export.
    KucExportBlock(const Columns& columns, const QString& undefined, HbcAProgress& progress);

    /// `indices` holds `indexCount` numbers for each of the ranks, row by row.
    void setRows(HbdSpan<const int> ranks, HbdSpan<const int> indices, int indexCount);

    int getRowCount() const { return m_ranks.size(); }
    int getIndexCount() const { return m_indexCount; }
    int getIndex(int row, int i) const { return m_indices[row * m_indexCount + i]; }
    const Columns& getColumns() const { return m_columns; }
    /// Of the row's sample.
    int getRank(int row) const { return m_ranks[row]; }
    /// Where the column has the row's value.
    int getPlace(int row, const KucExportColumn& column) const
    {
        return column.isOfBlock() ? row : m_ranks[row];
    }
    const QString& getUndefined() const { return m_undefined; }

    /// Raises HbcCancelled when the export is to end.
    void beginRow() const { m_progress.checkCancelled(); }
    void endRow() const { m_progress.advance(); }

    /// A row with the format of each cell and no values yet: made once, filled for every row.
    Row createRow() const;
    void fillRow(int row, Row& cells) const;

private:
    const Columns& m_columns;
    QString m_undefined;
    QVariant m_undefinedValue;
    HbcAProgress& m_progress;
    HbdSpan<const int> m_ranks;
    HbdSpan<const int> m_indices;
    int m_indexCount = 0;
};
