#include <util/dataset/KudTableBlock.h>

#include <util/dataset/KudTableUtils.h>

#include "KudTableBlockColumn.h"
#include "KudTableBlockData.h"
#include "KudTableBlockForm.h"

#include <basic/error/HbeUserError.h>

#include <QtCore/QMimeData>

KudTableBlock::KudTableBlock()
{
    static const auto none = std::make_shared<const Data>();
    m_data = none;
}

KudTableBlock KudTableBlock::fromMimeData(const QMimeData& data)
{
    const QString ownForm = QLatin1String(KudTableUtils::KELVANE_MIME_DATA);
    if (data.hasFormat(ownForm)) {
        if (const auto block = fromOwnForm(data.data(ownForm)))
            return *block;
    }
    return data.hasText() ? fromText(data.text()) : KudTableBlock();
}

void KudTableBlock::Data::checkCount(qint64 cellCount)
{
    if (cellCount > KudTableBlockForm::MAX_CELLS) {
        throw HbeUserError(tr("Pasting from the clipboard: it holds more than the %1 cells that "
                              "can be pasted. Import them from a file instead.")
                               .arg(KudTableBlockForm::MAX_CELLS));
    }
}

int KudTableBlock::getRowCount() const
{
    return m_data->rowCount - m_firstRow;
}

int KudTableBlock::getColumnCount() const
{
    return m_data->columnCount;
}

int KudTableBlock::getRowSize(int row) const
{
    return m_data->rowSize(row + m_firstRow);
}

bool KudTableBlock::isTyped() const
{
    return m_data->isTyped;
}

KudTableBlock KudTableBlock::withNames() const
{
    KudTableBlock named = *this;
    named.m_firstRow = isTyped() || m_data->rowCount == 0 ? 0 : 1;
    return named;
}

QString KudTableBlock::getName(int column) const
{
    if (isTyped())
        return m_data->values(column).getDetails().name;
    const Data::Cell* cell = m_firstRow > 0 ? m_data->cell(0, column) : nullptr;
    return cell != nullptr ? m_data->text.mid(cell->begin, cell->size) : QString();
}

const HbdAVariable* KudTableBlock::getValues(int column) const
{
    return isTyped() ? &m_data->values(column) : nullptr;
}

bool KudTableBlock::hasCell(int row, int column) const
{
    if (!isTyped())
        return m_data->cell(row + m_firstRow, column) != nullptr;
    const QBitArray& gaps = m_data->gaps[std::size_t(column)];
    return gaps.isEmpty() || !gaps.testBit(row);
}

QVariant KudTableBlock::getCell(int row, int column) const
{
    if (!hasCell(row, column))
        return QVariant();
    return isTyped() ? m_data->values(column).getVariant(row) : getText(row, column);
}

QString KudTableBlock::getText(int row, int column) const
{
    if (!hasCell(row, column))
        return QString();
    if (isTyped()) {
        const auto cells = KudTableBlockColumn::create(m_data->values(column), QLatin1Char('.'));
        cells->render(&row, 1);
        const std::string_view bytes = cells->getTexts().at(0);
        return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
    }
    const Data::Cell* cell = m_data->cell(row + m_firstRow, column);
    return m_data->text.mid(cell->begin, cell->size);
}

QList<QVector<QVariant>> KudTableBlock::toRows(int cellCount,
                                               const HbiIntervalIntSmallDisjoint& rows,
                                               const HbiIntervalIntSmallDisjoint& columns,
                                               const QMap<QString, int>& positions) const
{
    const KudTableBlock named = positions.isEmpty() ? *this : withNames();
    std::vector<std::pair<int, int>> moves; // from a column to a position
    const HbiIntervalIntSmallDisjoint all(HbiIntervalIntSmall(0, getColumnCount() - 1));
    for (const int column : (columns.isEmpty() ? all : all.intersected(columns)).ranks()) {
        const int position = positions.isEmpty() ? static_cast<int>(moves.size())
                                                 : positions.value(named.getName(column), -1);
        if (position >= 0 && (cellCount <= 0 || position < cellCount))
            moves.emplace_back(column, position);
    }
    if (moves.empty() && !isTyped() && !positions.isEmpty())
        return toRows(cellCount, rows, columns, {}); // its first row has none of the names

    QList<QVector<QVariant>> result;
    const HbiIntervalIntSmallDisjoint allRows(HbiIntervalIntSmall(0, named.getRowCount() - 1));
    for (const int row : (rows.isEmpty() ? allRows : allRows.intersected(rows)).ranks()) {
        QVector<QVariant> cells(std::max(cellCount, 0));
        for (const auto& [column, position] : moves) {
            if (column >= named.getRowSize(row))
                break; // not a step for each column of the longest row
            if (!named.hasCell(row, column))
                continue;
            if (position >= cells.size())
                cells.resize(position + 1);
            cells[position] = named.getCell(row, column);
        }
        result.append(cells);
    }
    return result;
}
