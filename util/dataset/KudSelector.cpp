#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include <QtCore/QItemSelectionModel>

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
    QItemSelectionModel* selectionModel = getSelectionModel();
    if (selectionModel == nullptr)
        return false;
    const QItemSelectionModel::SelectionFlags modelFlags = toModelFlags(flag);
    if (modelFlags == QItemSelectionModel::NoUpdate)
        return false;

    const int count = m_table->getSampleCount();
    const QAbstractItemModel* model = selectionModel->model();
    const int lastColumn = std::max(model->columnCount() - 1, 0);
    QItemSelection selection;
    for (const HbiIntervalIntSmall& interval : ranks.intervals()) {
        const int first = std::max(interval.getMin(), 0);
        const int last = std::min(interval.getMax(), count - 1);
        if (first <= last)
            selection.append({model->index(first, 0), model->index(last, lastColumn)});
    }
    m_changed = false;
    selectionModel->select(selection, modelFlags | QItemSelectionModel::Rows);
    return m_changed;
}

bool KudSelector::deselectAll()
{
    return hasSelection() && select(HbiIntervalIntSmallDisjoint(), Ku::ClearSelection);
}

int KudSelector::getNSelected() const
{
    refreshBits();
    return m_selectedCount;
}

HbiIntervalIntSmallDisjoint KudSelector::selectedRows() const
{
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
        m_selectionModel = std::make_unique<QItemSelectionModel>(model);
        const auto makeStale = [self] { self->m_bitsAreStale = true; };
        connect(m_selectionModel.get(), &QItemSelectionModel::selectionChanged, self,
                &KudSelector::_selectionChanged);
        connect(model, &QAbstractItemModel::rowsInserted, self, makeStale);
        connect(model, &QAbstractItemModel::rowsRemoved, self, makeStale);
        connect(model, &QAbstractItemModel::modelReset, self, makeStale);
    }
    return m_selectionModel.get();
}

void KudSelector::_selectionChanged()
{
    m_bitsAreStale = true;
    m_changed = true;
    m_table->notifySelectionChanged(m_reason);
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
