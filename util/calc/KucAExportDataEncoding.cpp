#include <util/calc/KucAExportDataEncoding.h>

#include <util/calc/KucExportBlock.h>

KucAExportDataEncoding::KucAExportDataEncoding(const QString& path)
    : m_path(path)
{
}

KucAExportDataEncoding::~KucAExportDataEncoding() = default;

void KucAExportDataEncoding::writeBlock(const KucExportBlock& block)
{
    KucExportBlock::Row cells = block.createRow();
    for (int row = 0; row < block.getRowCount(); ++row) {
        block.beginRow();
        block.fillRow(row, cells);
        writeLine(cells);
        block.endRow();
    }
}

void KucAExportDataEncoding::abandonFile() {}

KucAExportDataEncoding::CellFormat KucAExportDataEncoding::getStyle(int column, int rowLength) const
{
    if (m_styleCells.isEmpty())
        return m_styleRow;
    return m_styleCells.size() == rowLength ? m_styleCells.at(column) : CellFormat();
}
