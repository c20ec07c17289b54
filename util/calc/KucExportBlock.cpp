#include <util/calc/KucExportBlock.h>

KucExportBlock::KucExportBlock(const Columns& columns, const QString& undefined,
                               HbcAProgress& progress)
    : m_columns(columns)
    , m_undefined(undefined)
    , m_undefinedValue(undefined)
    , m_progress(progress)
{
}

void KucExportBlock::setRows(HbdSpan<const int> ranks, HbdSpan<const int> indices, int indexCount)
{
    m_ranks = ranks;
    m_indices = indices;
    m_indexCount = indexCount;
}

KucExportBlock::Row KucExportBlock::createRow() const
{
    Row cells;
    for (int i = 0; i < m_indexCount; ++i)
        cells.append(KueFormatedVariant());
    for (const KucExportColumn& column : m_columns)
        cells.append({QVariant(), column.getFormat(), column.getPrecision()});
    return cells;
}

void KucExportBlock::fillRow(int row, Row& cells) const
{
    auto cell = cells.begin();
    for (int i = 0; i < m_indexCount; ++i)
        (cell++)->value.setValue(getIndex(row, i));
    for (const KucExportColumn& column : m_columns) {
        if (!column.read(getPlace(row, column), cell->value))
            cell->value = m_undefinedValue;
        ++cell;
    }
}
