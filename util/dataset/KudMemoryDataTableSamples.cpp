#include <util/dataset/KudMemoryDataTable.h>

#include "KudModelScopes.h"

#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdVariableUpdater.h>

#include <array>

namespace
{
/// Rows are written in blocks that stay in the cache while one column after the other takes its
/// cells from them.
constexpr int ROW_BLOCK = 256;
} // namespace

/// The insertion of one sample. Its cells are told of while the model is inserting, the sample
/// itself after that. An observer may edit the table meanwhile (the model then ends the insertion
/// before anything else), throw (the sample is there, so it is told of all the same) or end the
/// table.
class KudMemoryDataTable::NewSample
{
public:
    NewSample(KudMemoryDataTable& table, int rank)
        : m_table(table)
        , m_rank(rank)
    {
        m_table.getModel()->beginInsertSamples(rank, 1);
    }
    NewSample(const NewSample&) = delete;
    NewSample& operator=(const NewSample&) = delete;
    ~NewSample()
    {
        if (!m_isTold)
            m_table.getModel()->endInsertSamples();
    }

    /// Nothing is touched afterwards.
    void tell(KudTableModif cells)
    {
        const QPointer<KudTableModel> model(m_table.getModel());
        m_isTold = true;
        try {
            if (!cells.isEmpty())
                m_table.notify(KudDataTableModif(std::move(cells)));
        } catch (...) {
            tellOfSample(model);
            throw;
        }
        tellOfSample(model);
    }

private:
    void tellOfSample(const QPointer<KudTableModel>& model)
    {
        if (model == nullptr)
            return;
        model->endInsertSamples();
        m_table.notifySampleAdded(HbiIntervalIntSmallDisjoint(m_rank));
    }

    KudMemoryDataTable& m_table;
    int m_rank;
    bool m_isTold = false;
};

KudTableModif KudMemoryDataTable::writeCells(int rank, const SampleValues& values)
{
    KudTableModif modif;
    modif.reserve(values.size());
    for (auto cell = values.begin(); cell != values.end(); ++cell) {
        HbdAVariable* column = _readVariable(cell.key());
        if (column == nullptr)
            continue;
        HbdVariableUpdater updater(*column);
        updater.setRank(rank);
        updater.setValue(cell.value());
        modif.addChangedValues(cell.key(), HbiIntervalIntSmallDisjoint(rank));
    }
    return modif;
}

bool KudMemoryDataTable::_updateValues(int rank, const SampleValues& values)
{
    KudTableModif modif = writeCells(rank, values);
    if (modif.isEmpty())
        return false;
    for (auto cell = values.begin(); cell != values.end(); ++cell)
        _tableValuesChanged(HbiIntervalIntSmall(rank, rank), cell.key());
    notify(KudDataTableModif(std::move(modif)));
    return true;
}

int KudMemoryDataTable::_createSample(const SampleValues& values)
{
    const int rank = getSampleCount();
    m_table.reserveSamples(rank + 1); // before the model announces what might find no memory
    NewSample sample(*this, rank);
    m_table.setSampleCount(rank + 1);
    sample.tell(writeCells(rank, values));
    return rank;
}

int KudMemoryDataTable::_createSampleRow(const SampleRow& row)
{
    const int rank = getSampleCount();
    const HbiIntervalIntSmallDisjoint ranks(rank);
    m_table.reserveSamples(rank + 1);
    NewSample sample(*this, rank);
    m_table.setSampleCount(rank + 1);
    const int columnCount = static_cast<int>(m_columns.size());
    const int count = std::min(row.size(), columnCount);
    int written = 0;
    for (int i = 0; i < count; ++i) {
        if (row.at(i).isValid()) {
            m_columns[static_cast<std::size_t>(i)]->setVariant(rank, row.at(i));
            ++written;
        }
    }
    if (written == 0)
        sample.tell(KudTableModif());
    else
        sample.tell(written == columnCount ? KudTableModif(m_row, ranks)
                                           : modifOfCells(row, count, ranks));
    return rank;
}

KudTableModif KudMemoryDataTable::modifOfCells(const SampleRow& row, int count,
                                               const HbiIntervalIntSmallDisjoint& ranks) const
{
    KudTableModif modif;
    modif.reserve(count);
    for (int i = 0; i < count; ++i) {
        if (row.at(i).isValid())
            modif.addChangedValues(m_row->at(i), ranks);
    }
    return modif;
}

int KudMemoryDataTable::_createSamples(const QList<SampleValues>& samples)
{
    const int first = getSampleCount();
    m_table.reserveSamples(first + samples.size());
    {
        const KudAppendScope scope(getModel(), first, samples.size());
        m_table.setSampleCount(first + samples.size());
        KudTableModif modif;
        for (int i = 0; i < samples.size(); ++i)
            modif.merge(writeCells(first + i, samples.at(i)));
        if (!modif.isEmpty())
            notify(KudDataTableModif(std::move(modif)));
    }
    notifySampleAdded(HbiIntervalIntSmall(first, getSampleCount() - 1));
    return first;
}

int KudMemoryDataTable::_createSampleRows(const QList<SampleRow>& rows,
                                          const SampleValues& defaults)
{
    const int first = getSampleCount();
    const HbiIntervalIntSmallDisjoint ranks(HbiIntervalIntSmall(first, first + rows.size() - 1));
    m_table.reserveSamples(first + rows.size());
    {
        const KudAppendScope scope(getModel(), first, rows.size());
        m_table.setSampleCount(first + rows.size());
        fillRows(rows, defaults, first);
    }
    if (!m_row->isEmpty())
        notify(KudDataTableModif(KudTableModif(m_row, ranks)));
    notifySampleAdded(ranks);
    return first;
}

void KudMemoryDataTable::fillRows(const QList<SampleRow>& rows, const SampleValues& defaults,
                                  int first)
{
    const int columnCount = static_cast<int>(m_columns.size());
    std::vector<QVariant> defaultCells(m_columns.size());
    for (int c = 0; c < columnCount; ++c)
        defaultCells[static_cast<std::size_t>(c)] = defaults.value(getVariableAt(c));

    std::array<const QVariant*, ROW_BLOCK> cells;
    for (int block = 0; block < rows.size(); block += ROW_BLOCK) {
        const int count = std::min(ROW_BLOCK, rows.size() - block);
        for (int c = 0; c < columnCount; ++c) {
            const QVariant& fallback = defaultCells[static_cast<std::size_t>(c)];
            for (int i = 0; i < count; ++i) {
                const SampleRow& row = rows.at(block + i);
                const bool given = c < row.size() && row.at(c).isValid();
                cells[static_cast<std::size_t>(i)] = given ? &row.at(c) : &fallback;
            }
            m_columns[static_cast<std::size_t>(c)]->setVariants(first + block, cells.data(), count);
        }
    }
}

int KudMemoryDataTable::_appendSamples(const HbdDataTable& samples)
{
    const int first = getSampleCount();
    const HbiIntervalIntSmallDisjoint ranks(
        HbiIntervalIntSmall(first, first + samples.getSampleCount() - 1));
    KudDatasetVariableList written;
    m_table.reserveSamples(first + samples.getSampleCount());
    {
        const KudAppendScope scope(getModel(), first, samples.getSampleCount());
        m_table.appendTable(samples, false);
        _clearHeaderCache(); // a catalogue may have grown
    }
    for (int i = 0; i < getVariableCount(); ++i) {
        if (samples.findVariable(getVariableAt(i).getFullVariableName()) != nullptr)
            written.append(getVariableAt(i));
    }
    if (!written.isEmpty())
        notify(KudDataTableModif(KudTableModif(written, ranks)));
    notifySampleAdded(ranks);
    return first;
}

bool KudMemoryDataTable::_deleteSamples(const HbiIntervalIntSmall& ranks)
{
    getModel()->beginRemoveSamples(ranks.getMin(), static_cast<int>(ranks.getLength()));
    m_table.removeSamples(ranks);
    getModel()->endRemoveSamples();
    notifySampleRemoved(ranks);
    return true;
}

bool KudMemoryDataTable::_deleteSampleSet(const HbiIntervalIntSmallDisjoint& ranks)
{
    {
        const KudResetScope scope(getModel(), ranks);
        m_table.removeSamples(ranks);
    }
    notifySampleRemoved(ranks);
    return true;
}

void KudMemoryDataTable::setSampleCount(int count)
{
    const int before = getSampleCount();
    if (count == before || count < 0)
        return;
    if (count > before) {
        m_table.reserveSamples(count);
        const KudAppendScope scope(getModel(), before, count - before);
        m_table.setSampleCount(count);
        return;
    }
    const KudResetScope scope(getModel(), HbiIntervalIntSmall(count, before - 1));
    m_table.setSampleCount(count);
}

void KudMemoryDataTable::columnChanged(const KudDatasetVariable& variable, int firstRank, int count)
{
    const HbiIntervalIntSmall ranks(firstRank, firstRank + count - 1);
    _tableValuesChanged(ranks, variable);
    notifyValueChanged(variable, ranks);
}

bool KudMemoryDataTable::_updateColumn(const KudDatasetVariable& variable, int firstRank,
                                       const HbdAVariable& values)
{
    HbdAVariable* column = _readVariable(variable);
    if (column == nullptr || !column->copyValues(firstRank, values, 0, values.getCount()))
        return false;
    _clearHeaderCache(); // a catalogue may have grown
    columnChanged(variable, firstRank, values.getCount());
    return true;
}

bool KudMemoryDataTable::_updateColumn(const KudDatasetVariable& variable, int firstRank,
                                       HbdSpan<const double> numbers)
{
    auto* column = dynamic_cast<HbdANumericVariable*>(_readVariable(variable));
    if (column == nullptr)
        return false;
    column->writeNumbers(firstRank, numbers.size(), numbers.data());
    columnChanged(variable, firstRank, numbers.size());
    return true;
}
