#include <util/dataset/KudTablePaste.h>

#include <util/dataset/KudADataTable.h>
#include <util/observable/KuoOneNotice.h>

#include "KudTablePasteValues.h"

#include <algorithm>
#include <limits>
#include <set>

namespace
{
/// More ranges than this, and one for every so many samples they lie among, are written as one
/// range with the values between them as they are.
constexpr int MANY_RANGES = 64;
constexpr int SAMPLES_PER_RANGE = 1000;

constexpr int SUMMARY_LINES = 10;

QString notTaken()
{
    return KudTablePaste::tr("The table does not take it.");
}

/// Ranges of ranks to be written at once.
HbiIntervalIntSmallDisjoint rangesOf(const HbiIntervalIntSmallDisjoint& ranks)
{
    const HbiIntervalIntSmall hull(ranks.getMin(), ranks.getMax());
    const bool many = ranks.getIntervalCount() > MANY_RANGES + hull.getLength() / SAMPLES_PER_RANGE;
    return many ? HbiIntervalIntSmallDisjoint(hull) : ranks;
}
} // namespace

KudTablePaste::KudTablePaste(KudADataTable& table)
    : m_table(table)
{
}

KudTablePaste::~KudTablePaste() = default;

bool KudTablePaste::paste(const KudTableBlock& block, const Target& target)
{
    const KudTableBlock cells = target.byName ? block.withNames() : block;
    if (cells.isEmpty())
        return true;
    KuoOneNotice<KudDataTableModif> notice(m_table);
    if (target.byName)
        findColumnsByName(cells);
    else
        findColumns(cells, target);
    const bool takesAny = std::any_of(m_columns.begin(), m_columns.end(),
                                      [](const Column& c) { return c.refusal.isNull(); });
    findPlaces(cells, target, target.append && takesAny);
    appendSamples();
    for (const Column& column : m_columns)
        pasteColumn(cells, column);
    refuseStrays(cells);
    notice.send();
    return m_refusedCount == 0;
}

void KudTablePaste::findColumns(const KudTableBlock& block, const Target& target)
{
    const int first = std::max(target.firstColumn, 0);
    const int room = std::max(m_table.getVariableCount() - first, 0);
    const int wanted = target.fill ? target.columnCount : block.getColumnCount();
    for (int i = 0; i < std::min(wanted, room); ++i) {
        const KudDatasetVariable variable = m_table.getVariableAt(first + i);
        m_columns.push_back({i % block.getColumnCount(), variable, findRefusal(variable)});
    }
    for (int i = room; i < wanted && !target.fill; ++i)
        m_strays.push_back({i, {}, tr("There is no variable for it.")});
}

void KudTablePaste::findColumnsByName(const KudTableBlock& block)
{
    std::set<KudDatasetVariable> taken;
    for (int i = 0; i < block.getColumnCount(); ++i) {
        const KudDatasetVariable variable = m_table.getVariableFromName(block.getName(i));
        if (!variable.isValid())
            m_strays.push_back({i, {}, tr("There is no variable of this name.")});
        else if (!taken.insert(variable).second)
            m_strays.push_back({i, {}, tr("Another column has this name.")});
        else
            m_columns.push_back({i, variable, findRefusal(variable)});
    }
}

QString KudTablePaste::findRefusal(const KudDatasetVariable& variable) const
{
    if (m_table.testFlag(Ku::ReadOnlyValues))
        return tr("The table is read-only.");
    return m_table.isVariableReadonly(variable) ? tr("The variable is read-only.") : QString();
}

void KudTablePaste::findPlaces(const KudTableBlock& block, const Target& target, bool append)
{
    const int sampleCount = m_table.getSampleCount();
    const int listed = target.ranks ? static_cast<int>(target.ranks->size()) : 0;
    const int count = target.fill ? listed : block.getRowCount();
    m_places.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        qint64 rank = qint64(target.firstRank) + i;
        if (target.ranks)
            rank = i < listed ? (*target.ranks)[static_cast<std::size_t>(i)] : sampleCount;
        if (rank >= sampleCount)
            rank = append ? qint64(sampleCount) + m_appendedCount++ : -1;
        const bool isRank = rank >= 0 && rank < std::numeric_limits<int>::max();
        m_places.push_back({isRank ? static_cast<int>(rank) : -1, i % block.getRowCount()});
    }
    const auto isBefore = [](const Place& a, const Place& b) { return a.rank < b.rank; };
    if (!std::is_sorted(m_places.begin(), m_places.end(), isBefore))
        std::stable_sort(m_places.begin(), m_places.end(), isBefore);
}

void KudTablePaste::appendSamples()
{
    if (m_appendedCount == 0)
        return;
    const int sampleCount = m_table.getSampleCount();
    QList<KudADataTable::SampleRow> rows;
    rows.reserve(m_appendedCount);
    for (int i = 0; i < m_appendedCount; ++i)
        rows.append(KudADataTable::SampleRow());
    if (m_table.createSamples(rows) >= 0)
        return;
    m_appendedCount = 0;
    for (Place& place : m_places) {
        if (place.rank >= sampleCount)
            place.rank = -1;
    }
}

/// Row by row, for of a text that has one very long row all columns would be strays.
void KudTablePaste::refuseStrays(const KudTableBlock& block)
{
    for (const Place& place : m_places) {
        const int rowSize = m_strays.empty() ? 0 : block.getRowSize(place.row);
        for (const Column& column : m_strays) {
            if (column.source >= rowSize)
                break;
            refuse(block, column, place, column.refusal);
        }
    }
}

void KudTablePaste::pasteColumn(const KudTableBlock& block, const Column& column)
{
    const HbdAVariable* current = m_table.readValues(column.variable);
    if (current != nullptr && column.refusal.isNull()) {
        const Values values(block, column.source, *current);
        return write(block, column, values, findAccepted(block, column, values));
    }
    for (const Place& place : m_places)
        refuse(block, column, place, current != nullptr ? column.refusal : notTaken());
}

std::vector<KudTablePaste::Place>
KudTablePaste::findAccepted(const KudTableBlock& block, const Column& column, const Values& values)
{
    std::vector<Place> accepted;
    accepted.reserve(m_places.size());
    for (const Place& place : m_places) {
        if (!block.hasCell(place.row, column.source))
            continue;
        const QString problem =
            place.rank < 0 ? tr("There is no sample for it.") : values.getProblem(place.row);
        if (problem.isNull())
            accepted.push_back(place);
        else
            refuse(block, column, place, problem);
    }
    return accepted;
}

void KudTablePaste::write(const KudTableBlock& block, const Column& column, const Values& values,
                          const std::vector<Place>& accepted)
{
    HbiIntervalIntSmallDisjoint ranks;
    for (const Place& place : accepted)
        ranks.add(place.rank);
    const Place* first = accepted.data();
    const Place* const end = first + accepted.size();
    for (const HbiIntervalIntSmall& range : rangesOf(ranks).intervals()) {
        const Place* const last = std::find_if(
            first, end, [&range](const Place& place) { return place.rank > range.getMax(); });
        // Asked for each time: views hear of every range, and may do what they like.
        const HbdAVariable* current = m_table.readValues(column.variable);
        const bool isDone = current != nullptr && range.getMax() < current->getCount() &&
                            m_table.updateColumn(column.variable, range.getMin(),
                                                 *values.makePiece(*current, range, first, last));
        for (const Place* place = first; place != last && !isDone; ++place)
            refuse(block, column, *place, notTaken());
        m_writtenCount += isDone ? last - first : 0;
        first = last;
    }
}

void KudTablePaste::refuse(const KudTableBlock& block, const Column& column, const Place& place,
                           const QString& reason)
{
    if (!block.hasCell(place.row, column.source))
        return;
    ++m_refusedCount;
    if (m_refusals.size() < MAX_LISTED) {
        QString text = block.getText(place.row, column.source);
        if (text.size() > MAX_TEXT)
            text = text.left(MAX_TEXT) + QChar(0x2026);
        m_refusals.append(
            {place.rank, column.variable, block.getName(column.source), text, reason});
    }
}

QString KudTablePaste::toText(const Refusal& refusal)
{
    const QString name =
        refusal.variable.isValid() ? refusal.variable.getFullVariableName() : refusal.columnName;
    const QString place =
        refusal.rank >= 0
            ? tr("%1, sample %2", "variable").arg(name, QString::number(refusal.rank + 1))
            : name;
    return tr("%1: '%2'. %3", "place, cell, reason").arg(place, refusal.text, refusal.reason);
}

QString KudTablePaste::getSummary() const
{
    if (m_refusedCount == 0)
        return QString();
    QStringList lines{tr("%1 of %2 cells were not pasted.")
                          .arg(m_refusedCount)
                          .arg(m_refusedCount + m_writtenCount)};
    const int listed = std::min(m_refusals.size(), SUMMARY_LINES);
    for (int i = 0; i < listed; ++i)
        lines << toText(m_refusals.at(i));
    if (m_refusedCount > listed)
        lines << tr("… and %1 more.").arg(m_refusedCount - listed);
    return lines.join(QLatin1Char('\n'));
}
