#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableModel.h>

#include "KudSelectionModel.h"

#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>

#include <utility>

KudSelector::KudSelector(KudTableModif::Reason reason)
    : m_reason(reason)
    , m_bits(std::make_unique<KudSelectorBits>())
{
}

KudSelector::~KudSelector() = default;

void KudSelector::setTable(const KudADataTable* table)
{
    if (table == m_table)
        return;
    m_selectionModel.reset();
    m_table = table;
    samplesReplaced();
}

bool KudSelector::select(int rank, Ku::SelectionFlag flag)
{
    return select(HbiIntervalIntSmallDisjoint(rank), flag);
}

bool KudSelector::select(const HbiIntervalIntSmallDisjoint& ranks, Ku::SelectionFlag flag)
{
    if (!prepareChange())
        return false;
    const int size = m_bits->getSize();
    const int count = m_bits->getCount();
    switch (flag) {
    case Ku::ClearSelection:
        return replace(KudSelectorBits(size));
    case Ku::ClearAndSelect: {
        KudSelectorBits selected(size);
        for (const HbiIntervalIntSmall& interval : ranks.intervals())
            selected.select(interval);
        return replace(std::move(selected));
    }
    case Ku::Select:
        for (const HbiIntervalIntSmall& interval : ranks.intervals())
            m_bits->select(interval);
        break;
    case Ku::Deselect:
        for (const HbiIntervalIntSmall& interval : ranks.intervals())
            m_bits->deselect(interval);
        break;
    case Ku::ToggleSelection:
        for (const HbiIntervalIntSmall& interval : ranks.intervals())
            m_bits->toggle(interval);
        m_changed = ranks.intersects(HbiIntervalIntSmall(0, size - 1));
        return _selectionChanged();
    }
    m_changed = m_bits->getCount() != count;
    return _selectionChanged();
}

bool KudSelector::selectAll()
{
    return prepareChange() && replace(KudSelectorBits(m_bits->getSize(), true));
}

bool KudSelector::deselectAll()
{
    return hasSelection() && select(HbiIntervalIntSmallDisjoint(), Ku::ClearSelection);
}

bool KudSelector::invert()
{
    if (!prepareChange() || m_bits->getSize() == 0)
        return false;
    m_bits->toggle(HbiIntervalIntSmall(0, m_bits->getSize() - 1));
    m_changed = true;
    return _selectionChanged();
}

bool KudSelector::setBitArray(const QBitArray& bits)
{
    return prepareChange() && replace(KudSelectorBits(bits, m_bits->getSize()));
}

/// Whether there is a table whose samples can be selected.
bool KudSelector::prepareChange()
{
    if (m_table == nullptr)
        return false;
    m_changed = false;
    m_table->getModel()->endInsertSamples(); // we may hear of cells that are being inserted
    fitToTable();
    return true;
}

bool KudSelector::replace(KudSelectorBits bits)
{
    m_changed = bits != *m_bits;
    if (m_changed)
        *m_bits = std::move(bits);
    return _selectionChanged();
}

/// Whether it has. Nothing is touched after the notice, for an observer may end the table.
bool KudSelector::_selectionChanged()
{
    if (!m_changed)
        return false;
    touchBits();
    const QPointer<KudSelector> self(this);
    emit bitsChanged();
    if (self)
        m_table->notifySelectionChanged(m_reason);
    return true;
}

void KudSelector::touchBits() const
{
    m_isBitArrayStale = true;
    ++m_revision;
}

int KudSelector::getNSelected() const
{
    keepUp();
    return m_bits->getCount();
}

HbiIntervalIntSmallDisjoint KudSelector::selectedRows() const
{
    return hasSelection() ? bits().toRanks() : HbiIntervalIntSmallDisjoint();
}

QBitArray KudSelector::getBitArray() const
{
    fitToTable();
    if (std::exchange(m_isBitArrayStale, false))
        m_bitArray = m_bits->toBitArray();
    return m_bitArray;
}

QItemSelectionModel* KudSelector::getSelectionModel() const
{
    if (m_selectionModel == nullptr && m_table != nullptr) {
        m_selectionModel = std::make_unique<KudSelectionModel>(const_cast<KudSelector&>(*this),
                                                               *m_table->getModel());
    }
    return m_selectionModel.get();
}

void KudSelector::follow(QTableView* view)
{
    auto* selection = qobject_cast<KudSelectionModel*>(view->selectionModel());
    if (selection == nullptr)
        return;
    const auto tell = [view, selection] {
        const int first = view->rowAt(0);
        const int last = view->rowAt(view->viewport()->height() - 1);
        if (first >= 0 && view->selectionModel() == selection)
            selection->setShownRows(first, last >= 0 ? last : view->model()->rowCount() - 1);
    };
    connect(view->verticalScrollBar(), &QScrollBar::valueChanged, selection, tell);
    connect(view->verticalScrollBar(), &QScrollBar::rangeChanged, selection, tell);
    tell();
}

const KudSelectorBits& KudSelector::bits() const
{
    fitToTable();
    return *m_bits;
}

/// Late: many samples may be appended before anybody asks for a bit.
void KudSelector::fitToTable() const
{
    const int size = m_table == nullptr ? 0 : m_table->getSampleCount();
    const int sizeBefore = m_bits->getSize();
    if (size == sizeBefore)
        return;
    if (m_gapFirst < sizeBefore && sizeBefore + m_gapCount == size)
        m_bits->insertGap(m_gapFirst, m_gapCount);
    else
        m_bits->resize(size);
    touchBits();
}

/// Before or after samples move: what is selected must be of the present ones.
void KudSelector::keepUp() const
{
    if (m_bits->getCount() > 0)
        fitToTable();
}

void KudSelector::samplesWillBeInserted(int first, int count)
{
    keepUp();
    m_gapFirst = first;
    m_gapCount = count;
}

void KudSelector::samplesRemoved(const HbiIntervalIntSmallDisjoint& ranks)
{
    m_gapCount = 0;
    if (m_bits->getCount() == 0)
        return;
    m_bits->removeRanks(ranks);
    touchBits();
    fitToTable();
}

/// By others, of which none is selected.
void KudSelector::samplesReplaced()
{
    *m_bits = KudSelectorBits();
    touchBits();
}
