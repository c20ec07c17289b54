#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include <QtCore/QItemSelectionModel>
#include <QtCore/QScopedValueRollback>

#include <algorithm>

namespace
{
QItemSelectionModel::SelectionFlags toModelFlags(Ku::SelectionFlag flag)
{
    switch (flag) {
    case Ku::ClearSelection:
        return QItemSelectionModel::Clear;
    case Ku::Select:
        return QItemSelectionModel::Select;
    case Ku::ClearAndSelect:
        return QItemSelectionModel::ClearAndSelect;
    case Ku::Deselect:
        return QItemSelectionModel::Deselect;
    case Ku::ToggleSelection:
        return QItemSelectionModel::Toggle;
    }
    return QItemSelectionModel::NoUpdate;
}

/// Selecting more intervals than this at once is left to our sets of ranks: Qt compares each new
/// range with each old one.
constexpr int MANY_INTERVALS = 16;

HbiIntervalIntSmallDisjoint changed(HbiIntervalIntSmallDisjoint selected,
                                    const HbiIntervalIntSmallDisjoint& ranks,
                                    Ku::SelectionFlag flag)
{
    switch (flag) {
    case Ku::ClearSelection:
        return HbiIntervalIntSmallDisjoint();
    case Ku::Select:
        return selected.unite(ranks);
    case Ku::ClearAndSelect:
        return ranks;
    case Ku::Deselect:
        return selected.subtract(ranks);
    case Ku::ToggleSelection:
        break;
    }
    const HbiIntervalIntSmallDisjoint both = selected.intersected(ranks);
    return selected.unite(ranks).subtract(both);
}

/// Whole rows.
QItemSelection toSelection(const QAbstractItemModel& model,
                           const HbiIntervalIntSmallDisjoint& ranks)
{
    const int lastColumn = model.columnCount() - 1;
    QItemSelection selection;
    for (const HbiIntervalIntSmall& interval : ranks.intervals())
        selection.append(
            {model.index(interval.getMin(), 0), model.index(interval.getMax(), lastColumn)});
    return selection;
}

HbiIntervalIntSmallDisjoint toRanks(const QBitArray& bits, int count)
{
    HbiIntervalIntSmallDisjoint ranks;
    const int end = std::min(bits.size(), count);
    for (int rank = 0; rank < end; ++rank) {
        if (bits.testBit(rank))
            ranks.add(rank);
    }
    return ranks;
}
} // namespace

KudSelector::KudSelector(KudTableModif::Reason reason)
    : m_reason(reason)
{
}

KudSelector::~KudSelector() = default;

void KudSelector::setTable(const KudADataTable* table)
{
    if (table == m_table)
        return;
    if (m_table != nullptr)
        m_table->getModel()->disconnect(this);
    m_selectionModel.reset();
    m_table = table;
    m_bits.clear();
    m_selectedCount = 0;
    m_bitsAreStale = false;
}

bool KudSelector::select(int rank, Ku::SelectionFlag flag)
{
    return select(HbiIntervalIntSmallDisjoint(rank), flag);
}

bool KudSelector::select(const HbiIntervalIntSmallDisjoint& ranks, Ku::SelectionFlag flag)
{
    if (m_table == nullptr || (m_selectionModel == nullptr && ranks.isEmpty()))
        return false;
    QItemSelectionModel* selectionModel = getSelectionModel();
    const QItemSelectionModel::SelectionFlags modelFlags = toModelFlags(flag);
    if (modelFlags == QItemSelectionModel::NoUpdate)
        return false;

    m_table->getModel()->endInsertSamples(); // we may hear of cells that are being inserted
    const int count = m_table->getSampleCount();
    if (count == 0 || m_table->getVariableCount() == 0)
        return false; // no cell to select
    HbiIntervalIntSmallDisjoint rows = ranks;
    rows.intersect(HbiIntervalIntSmall(0, count - 1));
    m_changed = false;
    if (flag == Ku::ToggleSelection || rows.getIntervalCount() > MANY_INTERVALS) {
        const HbiIntervalIntSmallDisjoint before = selectedRows();
        const HbiIntervalIntSmallDisjoint after = changed(before, rows, flag);
        if (after != before)
            replaceRows(after);
    } else {
        const QScopedValueRollback<bool> quiet(m_isQuiet, true);
        selectionModel->select(toSelection(*selectionModel->model(), rows),
                               modelFlags | QItemSelectionModel::Rows);
    }
    if (!m_changed)
        return false;
    m_table->notifySelectionChanged(m_reason); // last: an observer may end the table
    return true;
}

void KudSelector::replaceRows(const HbiIntervalIntSmallDisjoint& rows)
{
    // In two steps, for what replaces nothing is compared with nothing; and without the row flag,
    // because the ranges are whole rows and Qt would merge them one by one.
    const QScopedValueRollback<bool> quiet(m_isQuiet, true);
    m_selectionModel->clearSelection();
    m_selectionModel->select(toSelection(*m_selectionModel->model(), rows),
                             QItemSelectionModel::Select);
}

bool KudSelector::deselectAll()
{
    return hasSelection() && select(HbiIntervalIntSmallDisjoint(), Ku::ClearSelection);
}

int KudSelector::getNSelected() const
{
    if (m_selectionModel == nullptr)
        return 0; // without making a bit for each sample
    refreshBits();
    return m_selectedCount;
}

HbiIntervalIntSmallDisjoint KudSelector::selectedRows() const
{
    if (!hasSelection())
        return HbiIntervalIntSmallDisjoint();
    const QBitArray bits = getBitArray();
    return toRanks(bits, bits.size());
}

QBitArray KudSelector::getBitArray() const
{
    refreshBits();
    return m_bits;
}

bool KudSelector::setBitArray(const QBitArray& bits)
{
    if (m_table == nullptr)
        return false;
    const HbiIntervalIntSmallDisjoint ranks = toRanks(bits, m_table->getSampleCount());
    if (ranks == selectedRows())
        return false;
    return select(ranks, Ku::ClearAndSelect);
}

QItemSelectionModel* KudSelector::getSelectionModel() const
{
    if (m_selectionModel == nullptr && m_table != nullptr) {
        auto* self = const_cast<KudSelector*>(this);
        QAbstractItemModel* model = m_table->getModel();
        // Heard before the selection model hears of it: a row stays selected while its cells go.
        connect(model, &QAbstractItemModel::columnsAboutToBeRemoved, self,
                [self] { self->columnsWillGo(); });
        m_selectionModel = std::make_unique<QItemSelectionModel>(model);
        const auto makeStale = [self] { self->m_bitsAreStale = true; };
        connect(m_selectionModel.get(), &QItemSelectionModel::selectionChanged, self,
                &KudSelector::_selectionChanged);
        connect(model, &QAbstractItemModel::rowsInserted, self, makeStale);
        connect(model, &QAbstractItemModel::rowsRemoved, self, makeStale);
        connect(model, &QAbstractItemModel::modelReset, self, makeStale);
        connect(model, &QAbstractItemModel::columnsRemoved, self,
                [self] { self->columnsHaveGone(); });
        connect(model, &QAbstractItemModel::columnsInserted, self,
                [self] { self->coverNewColumns(); });
    }
    return m_selectionModel.get();
}

void KudSelector::_selectionChanged()
{
    m_bitsAreStale = true;
    m_changed = true;
    if (!m_isQuiet)
        m_table->notifySelectionChanged(m_reason);
}

void KudSelector::columnsWillGo()
{
    m_countBeforeColumnsWent = getNSelected();
    m_isQuiet = true;
}

void KudSelector::columnsHaveGone()
{
    m_isQuiet = false;
    if (hasSelection() || m_countBeforeColumnsWent == 0)
        return;
    m_table->notifySelectionChanged(m_reason); // the last column took the selection along
}

void KudSelector::coverNewColumns()
{
    if (hasSelection())
        replaceRows(selectedRows());
}

void KudSelector::refreshBits() const
{
    const int count = m_table == nullptr ? 0 : m_table->getSampleCount();
    if (!m_bitsAreStale && m_bits.size() == count)
        return;

    // Nobody has selected anything before the selection model exists.
    m_bits = QBitArray(count, false);
    m_selectedCount = 0;
    if (m_selectionModel != nullptr) {
        for (const QItemSelectionRange& range : m_selectionModel->selection()) {
            const int last = std::min(range.bottom(), count - 1);
            if (range.top() <= last)
                m_bits.fill(true, range.top(), last + 1);
        }
        m_selectedCount = m_bits.count(true);
    }
    m_bitsAreStale = false;
}
