#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableSortFilterModel.h>

#include "KudSelectionModel.h"

#include <algorithm>

namespace
{
/// What is mirrored of a selection: all of it up to these limits, else what lies within a window
/// around the rows that are shown. Painting a cell compares it with each range; painting a header
/// asks each row of the ranges from the first row on for its flags.
constexpr std::size_t MANY_RANGES = 256;
constexpr int MANY_ROWS = 10000;
constexpr int WINDOW_ROWS = 512; // which make MANY_RANGES at most
} // namespace

KudSelectionModel::KudSelectionModel(KudSelector& selector, QAbstractItemModel& model,
                                     const KudTableSortFilterModel* order)
    : m_selector(&selector)
    , m_order(order)
{
    // Listened to before the base class does, which would follow changes of rows range by range and
    // keep an index of each selected row through a change of layout.
    listenTo(model);
    setModel(&model);
    connect(&selector, &KudSelector::bitsChanged, this, &KudSelectionModel::mirror);
    connect(this, &QItemSelectionModel::currentChanged, this,
            &KudSelectionModel::currentHasChanged);
    mirror();
}

KudSelectionModel::~KudSelectionModel() = default;

void KudSelectionModel::listenTo(QAbstractItemModel& model)
{
    using Model = QAbstractItemModel;
    const auto release = &KudSelectionModel::release;
    connect(&model, &Model::rowsAboutToBeRemoved, this, release);
    connect(&model, &Model::rowsAboutToBeMoved, this, release);
    connect(&model, &Model::columnsAboutToBeInserted, this, release);
    connect(&model, &Model::columnsAboutToBeRemoved, this, [this] {
        this->release();
        m_areColumnsGoing = true;
    });
    connect(&model, &Model::columnsAboutToBeMoved, this, release);
    connect(&model, &Model::layoutAboutToBeChanged, this, release);
    connect(&model, &Model::modelAboutToBeReset, this, release);
    connect(&model, &Model::rowsAboutToBeInserted, this,
            [this](const QModelIndex& parent, int first) {
                // New samples at the end are not selected, but those that an order shows again are.
                if (m_order != nullptr || first < this->model()->rowCount(parent))
                    this->release();
            });

    const auto done = [this] {
        if (m_isReleased)
            rowsReordered();
    };
    connect(&model, &Model::rowsInserted, this, done);
    connect(&model, &Model::rowsRemoved, this, done);
    connect(&model, &Model::rowsMoved, this, done);
    connect(&model, &Model::columnsInserted, this, done);
    connect(&model, &Model::columnsRemoved, this, done);
    connect(&model, &Model::columnsMoved, this, done);
    connect(&model, &Model::layoutChanged, this, done);
    connect(&model, &Model::modelReset, this, done);
    // Rows of an order have other ranks now; somebody may have selected while it did not know.
    connect(&model, &Model::headerDataChanged, this, [this](Qt::Orientation orientation) {
        if (orientation == Qt::Vertical)
            mirrorQuietly();
    });
}

/// Rows or columns are about to change: the base class holds no range while they do.
void KudSelectionModel::release()
{
    m_isReleased = true;
    const QSignalBlocker blocker(this);
    QItemSelectionModel::select(QItemSelection(), Clear);
}

void KudSelectionModel::rowsReordered()
{
    m_isReleased = false;
    m_areColumnsGoing = false;
    mirrorQuietly();
}

/// Within signals of the model, in which nobody may edit: views paint all of a model that changed
/// so. That selected samples went with their rows is told when the model is through.
void KudSelectionModel::mirrorQuietly()
{
    const int toldCount = m_toldCount;
    const QSignalBlocker blocker(this);
    mirror();
    if (m_toldCount != toldCount) {
        const auto tell = [this] { emit selectionChanged(QItemSelection(), QItemSelection()); };
        QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
    }
}

void KudSelectionModel::select(const QItemSelection& selection, SelectionFlags command)
{
    if (command == NoUpdate || m_areColumnsGoing || m_selector == nullptr ||
        !m_selector->prepareChange())
        return;
    const KudSelectorBits& bits = m_selector->bits();
    // With Current, what was selected last makes way for what is selected now.
    const bool isReplacing =
        command.testFlag(Current) && m_settled && m_settledRevision == m_selector->revision();
    const bool isEmptied = command.testFlag(Clear);
    const bool isChanging = command & (Select | Deselect | Toggle);
    if (isReplacing && !isEmptied && !isChanging)
        return;

    KudSelectorBits after = isEmptied     ? KudSelectorBits(bits.getSize())
                            : isReplacing ? *m_settled
                                          : bits;
    m_settled = after;
    if (command.testFlag(Deselect))
        after.deselect(samplesOf(selection, command));
    else if (command.testFlag(Toggle))
        after.toggle(samplesOf(selection, command));
    else if (command.testFlag(Select))
        after.select(samplesOf(selection, command));
    m_settledRevision = m_selector->revision() + (after == bits ? 0 : 1);
    m_selector->replace(std::move(after)); // last: an observer may end the table, and us with it
}

void KudSelectionModel::reset()
{
    const QSignalBlocker blocker(this);
    clearCurrentIndex();
}

KudSelectorBits KudSelectionModel::samplesOf(const QItemSelection& selection,
                                             SelectionFlags command) const
{
    KudSelectorBits samples(m_selector->bits().getSize());
    const int rowCount = model()->rowCount();
    for (const QItemSelectionRange& range : selection) {
        if (!range.isValid() || range.model() != model())
            continue;
        const bool isAll = command.testFlag(Columns) || range.height() == rowCount;
        const HbiIntervalIntSmall rows = isAll ? HbiIntervalIntSmall(0, rowCount - 1)
                                               : HbiIntervalIntSmall(range.top(), range.bottom());
        if (m_order == nullptr || (isAll && rowCount == samples.getSize())) {
            samples.select(rows);
            continue;
        }
        for (int row = rows.getMin(); row <= rows.getMax(); ++row) {
            const int rank = m_order->getRank(row);
            if (samples.contains(rank))
                samples.select(rank);
        }
    }
    return samples;
}

KudSelectorBits KudSelectionModel::selectedRows() const
{
    const int rowCount = model() == nullptr || m_selector == nullptr ? 0 : model()->rowCount();
    KudSelectorBits rows(rowCount);
    if (rowCount == 0)
        return rows;
    const KudSelectorBits& bits = m_selector->bits();
    if (m_order == nullptr)
        return bits;
    for (int rank = bits.findSelected(0); rank < bits.getSize();
         rank = bits.findSelected(rank + 1)) {
        const int row = m_order->getRow(rank);
        if (rows.contains(row))
            rows.select(row);
    }
    return rows;
}

HbiIntervalIntSmallDisjoint KudSelectionModel::getSelectedRows() const
{
    return selectedRows().toRanks();
}

void KudSelectionModel::setShownRows(int first, int last)
{
    m_shownRows = HbiIntervalIntSmall(first, last);
    if (!m_window.contains(first) || !m_window.contains(last))
        mirror();
}

void KudSelectionModel::currentHasChanged()
{
    if (!m_shownRows && currentIndex().isValid() && !m_window.contains(currentIndex().row()))
        mirror();
}

HbiIntervalIntSmall KudSelectionModel::windowToMirror() const
{
    const int current = std::max(currentIndex().row(), 0);
    const HbiIntervalIntSmall shown = m_shownRows.value_or(HbiIntervalIntSmall(current, current));
    const int around = (WINDOW_ROWS - static_cast<int>(shown.getLength())) / 2;
    const int first = std::max(shown.getMin() - std::max(around, 0), 0);
    const int count = std::min(WINDOW_ROWS, model()->rowCount() - first);
    return HbiIntervalIntSmall(first, first + count - 1);
}

bool KudSelectionModel::isSelectedRow(int row, const KudSelectorBits& bits) const
{
    const int rank = m_order == nullptr ? row : m_order->getRank(row);
    return bits.contains(rank) && bits.isSelected(rank);
}

/// The first one; the number of rows for none.
int KudSelectionModel::findSelectedRow(const KudSelectorBits& bits) const
{
    if (m_order == nullptr)
        return bits.findSelected(0);
    const int rowCount = model()->rowCount();
    int row = 0;
    while (row < rowCount && !isSelectedRow(row, bits))
        ++row;
    return row;
}

std::vector<HbiIntervalIntSmall> KudSelectionModel::rangesToMirror()
{
    m_window = HbiIntervalIntSmall(0, model()->rowCount() - 1);
    if (!m_selector->hasSelection())
        return {};
    if (m_selector->getNSelected() <= MANY_ROWS) {
        std::vector<HbiIntervalIntSmall> ranges = allRanges();
        if (ranges.size() <= MANY_RANGES)
            return ranges;
    }
    m_window = windowToMirror();
    return rangesInWindow();
}

/// Or the first of them, one more than are mirrored.
std::vector<HbiIntervalIntSmall> KudSelectionModel::allRanges() const
{
    const KudSelectorBits rows = selectedRows();
    std::vector<HbiIntervalIntSmall> ranges;
    int first = rows.findSelected(0);
    while (first < rows.getSize() && ranges.size() <= MANY_RANGES) {
        const int end = rows.findDeselected(first);
        ranges.emplace_back(first, end - 1);
        first = rows.findSelected(end);
    }
    return ranges;
}

/// And one elsewhere if there is none, so that the base class knows of a selection.
std::vector<HbiIntervalIntSmall> KudSelectionModel::rangesInWindow() const
{
    const KudSelectorBits& bits = m_selector->bits();
    std::vector<HbiIntervalIntSmall> ranges;
    for (int row = m_window.getMin(); row <= m_window.getMax(); ++row) {
        if (!isSelectedRow(row, bits))
            continue;
        if (!ranges.empty() && ranges.back().getMax() == row - 1)
            ranges.back() = HbiIntervalIntSmall(ranges.back().getMin(), row);
        else
            ranges.emplace_back(row, row);
    }
    const int elsewhere = ranges.empty() ? findSelectedRow(bits) : 0;
    if (ranges.empty() && elsewhere < model()->rowCount())
        ranges.emplace_back(elsewhere, elsewhere);
    return ranges;
}

void KudSelectionModel::mirror()
{
    if (m_isReleased || model() == nullptr || m_selector == nullptr)
        return;
    m_toldCount = m_selector->getNSelected();
    const std::vector<HbiIntervalIntSmall> ranges = rangesToMirror();
    const int lastColumn = model()->columnCount() - 1;
    QItemSelection selection;
    if (lastColumn >= 0) {
        for (const HbiIntervalIntSmall& rows : ranges)
            selection.append(
                {model()->index(rows.getMin(), 0), model()->index(rows.getMax(), lastColumn)});
    }
    const QPointer<KudSelectionModel> self(this);
    QItemSelectionModel::select(selection, ClearAndSelect);
    // Settled at once, for Qt merges what was selected last anew whenever it is asked.
    if (self)
        QItemSelectionModel::select(QItemSelection(), Select);
}
