#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTableUtils.h>

#include "KudSelectorBits.h"

#include <basic/data/HbdVariableEnum.h>

#include <QtGui/QBrush>

#include <utility>

KudTableModel::KudTableModel(KudADataTable& table)
    : m_table(table)
{
}

KudTableModel::~KudTableModel() = default;

int KudTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_table.getSampleCount();
}

int KudTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_table.getVariableCount();
}

QVariant KudTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount())
        return QVariant();
    if (role == Qt::TextAlignmentRole)
        return QVariant(static_cast<int>(m_alignment));
    if (role == Qt::ForegroundRole)
        return isMasked(index.row()) ? QVariant(QBrush(Qt::gray)) : QVariant();
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::DecorationRole)
        return QVariant(); // views ask for many roles, and each asks for the column
    const HbdAVariable* variable = m_table.readValues(m_table.getVariableAt(index.column()));
    return variable == nullptr ? QVariant()
                               : KudTableUtils::valueToRole(role, *variable, index.row());
}

bool KudTableModel::isMasked(int row) const
{
    const KudSelectorBits& mask = m_table.getMaskConst()->bits();
    return mask.contains(row) && mask.isSelected(row);
}

QVariant KudTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    if (section < 0 || section >= columnCount())
        return QVariant();
    if (role == Qt::DisplayRole)
        return m_table.getVariableAt(section).getFullVariableName();
    if (role == Qt::ToolTipRole)
        return columnToolTip(section);
    return QVariant();
}

QString KudTableModel::columnToolTip(int column) const
{
    const HbdVariableDetails details = m_table.getDetails(m_table.getVariableAt(column));
    QStringList lines{tr("Type: %1").arg(details.type.getLabel())};
    if (details.role != HbdEVarRole::NONE)
        lines << tr("Role: %1").arg(details.role.getLabel());
    if (details.getShownUnit().isValid())
        lines << tr("Unit: %1").arg(details.getShownUnit().getSymbol());
    if (!details.tags.isEmpty())
        lines << tr("Tags: %1").arg(details.tags.toStringList().join(QLatin1String(", ")));
    return lines.join(QLatin1Char('\n'));
}

Qt::ItemFlags KudTableModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return QAbstractTableModel::flags(index);
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    flags |= Qt::ItemIsSelectable | Qt::ItemIsEditable;
    flags &= ~(Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled | Qt::ItemIsUserCheckable);
    if (m_table.isVariableReadonly(m_table.getVariableAt(index.column())))
        flags &= ~Qt::ItemIsEditable;
    return flags;
}

bool KudTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const KudDatasetVariable variable = m_table.getVariableAt(index.column());
    const HbdAVariable* column = m_table.readValues(variable);
    if (column == nullptr || index.row() >= column->getCount())
        return false;
    // An editor closed as it was opened changes nothing: no digit by converting there and back, and
    // no undefined text into an empty one.
    const QVariant edited = KudTableUtils::valueToRole(Qt::EditRole, *column, index.row());
    if (edited.isValid() ? value == edited : value.toString().isEmpty())
        return m_table.updateValue(variable, index.row(), column->getVariant(index.row()));
    const QVariant stored = KudTableUtils::editRoleToValue(column->getDetails(), value);
    // What cannot be stored leaves the cell as it is; only an empty text, or N/A, clears it.
    if (!stored.isValid() && !KudTableUtils::isClearing(value))
        return false;
    if (column->getType() == HbdEVarType::CATEGORY && stored.type() == QVariant::String &&
        !static_cast<const HbdVariableEnum*>(column)->getCatalog().containsLabel(stored.toString()))
        return false;
    return m_table.updateValue(variable, index.row(), stored);
}

void KudTableModel::setCellAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    allChanged(Qt::TextAlignmentRole);
}

void KudTableModel::maskChanged()
{
    endInsertSamples();
    allChanged(Qt::ForegroundRole);
}

void KudTableModel::allChanged(int role)
{
    if (rowCount() > 0 && columnCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {role});
}

void KudTableModel::beginInsertSamples(int first, int count)
{
    endInsertSamples();
    m_table.getMask()->samplesWillBeInserted(first, count);
    m_table.getHighlight()->samplesWillBeInserted(first, count);
    beginInsertRows(QModelIndex(), first, first + count - 1);
    m_isInserting = true;
}

void KudTableModel::endInsertSamples()
{
    if (std::exchange(m_isInserting, false))
        endInsertRows();
}

void KudTableModel::beginRemoveSamples(int first, int count)
{
    endInsertSamples();
    beginRemoveRows(QModelIndex(), first, first + count - 1);
    m_removedRows = HbiIntervalIntSmall(first, first + count - 1);
    selectionsKeepUp();
}

void KudTableModel::endRemoveSamples()
{
    m_table.getMask()->samplesRemoved(m_removedRows);
    m_table.getHighlight()->samplesRemoved(m_removedRows);
    endRemoveRows();
}

void KudTableModel::beginInsertVariables(int first, int count)
{
    endInsertSamples();
    beginInsertColumns(QModelIndex(), first, first + count - 1);
}

void KudTableModel::endInsertVariables()
{
    endInsertColumns();
}

void KudTableModel::beginRemoveVariables(int first, int count)
{
    endInsertSamples();
    beginRemoveColumns(QModelIndex(), first, first + count - 1);
}

void KudTableModel::endRemoveVariables()
{
    endRemoveColumns();
}

void KudTableModel::beginResetTable()
{
    endInsertSamples();
    m_removedByReset.reset();
    beginResetModel();
}

void KudTableModel::beginResetTable(const HbiIntervalIntSmallDisjoint& removed)
{
    endInsertSamples();
    m_removedByReset = removed;
    beginResetModel();
    selectionsKeepUp();
}

void KudTableModel::endResetTable()
{
    const auto removed = std::exchange(m_removedByReset, std::nullopt);
    for (KudSelector* selector : {m_table.getMask(), m_table.getHighlight()}) {
        if (removed)
            selector->samplesRemoved(*removed);
        else
            selector->samplesReplaced();
    }
    endResetModel();
}

const HbiIntervalIntSmallDisjoint* KudTableModel::getRemovedByReset() const
{
    return m_removedByReset ? &*m_removedByReset : nullptr;
}

void KudTableModel::selectionsKeepUp()
{
    m_table.getMask()->keepUp();
    m_table.getHighlight()->keepUp();
}

void KudTableModel::headerChanged(int first, int last)
{
    endInsertSamples();
    emit headerDataChanged(Qt::Horizontal, first, last);
}

void KudTableModel::sampleChanged(int row)
{
    endInsertSamples();
    if (columnCount() > 0)
        emit dataChanged(index(row, 0), index(row, columnCount() - 1));
}

void KudTableModel::valueChanged(int row, int column)
{
    valuesChanged(HbiIntervalIntSmall(row, row), column);
}

void KudTableModel::valuesChanged(const HbiIntervalIntSmall& rows, int column)
{
    endInsertSamples();
    if (!rows.isEmpty())
        emit dataChanged(index(rows.getMin(), column), index(rows.getMax(), column));
}

void KudTableModel::variableChanged(int column)
{
    headerChanged(column, column);
    if (rowCount() > 0)
        valuesChanged(HbiIntervalIntSmall(0, rowCount() - 1), column);
}
