#include <util/dataset/KudTablePaste.h>

#include <util/dataset/KudADataTable.h>
#include <util/observable/KuoOneNotice.h>

#include "KudTablePasteValues.h"

#include <algorithm>
#include <limits>

namespace
{
/// More ranges than this, and one for every so many samples they lie among, are written as one
/// range with the values between them as they are.
constexpr int MANY_RANGES = 64;
constexpr int SAMPLES_PER_RANGE = 1000;

constexpr int SUMMARY_LINES = 10;

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
    const std::vector<Column> columns = findColumns(cells, target);
    const bool takesAny = std::any_of(columns.begin(), columns.end(),
                                      [](const Column& c) { return c.refusal.isNull(); });
    findPlaces(cells, target, target.append && takesAny);
    appendSamples();
    for (const Column& column : columns)
        pasteColumn(cells, column);
    notice.send();
    return m_refusedCount == 0;
}

std::vector<KudTablePaste::Column> KudTablePaste::findColumns(const KudTableBlock& block,
                                                              const Target& target) const
{
    const int blockCount = block.getColumnCount();
    const int count = target.fill && !target.byName ? target.columnCount : blockCount;
    std::vector<Column> columns;
    for (int i = 0; i < count; ++i) {
        const int source = i % blockCount;
        const KudDatasetVariable variable = target.byName
                                                ? m_table.getVariableFromName(block.getName(source))
                                                : m_table.getVariableAt(target.firstColumn + i);
        columns.push_back({source, variable, findRefusal(variable)});
    }
    return columns;
}

QString KudTablePaste::findRefusal(const KudDatasetVariable& variable) const
{
    if (!variable.isValid())
        return tr("There is no such variable.");
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

void KudTablePaste::pasteColumn(const KudTableBlock& block, const Column& column)
{
    const HbdAVariable* current = m_table.readValues(column.variable);
    if (current != nullptr && column.refusal.isNull()) {
        const Values values(block, column.source, *current);
        return write(block, column, values, findAccepted(block, column, values));
    }
    for (const Place& place : m_places)
        refuse(block, column, place, column.refusal);
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
        const bool isDone = current != nullptr &&
                            m_table.updateColumn(column.variable, range.getMin(),
                                                 *values.makePiece(*current, range, first, last));
        for (const Place* place = first; place != last && !isDone; ++place)
            refuse(block, column, *place, tr("The table does not take it."));
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
        m_refusals.append({place.rank, column.variable, block.getName(column.source),
                           block.getText(place.row, column.source), reason});
    }
}

QString KudTablePaste::toText(const Refusal& refusal)
{
    const QString name =
        refusal.variable.isValid() ? refusal.variable.getFullVariableName() : refusal.columnName;
    const QString place =
        refusal.rank >= 0 ? tr("%1, sample %2", "variable").arg(name).arg(refusal.rank + 1) : name;
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
