#include <util/dataset/KudADataTable.h>
#include <util/observable/KuoOneNotice.h>

#include "KudADataTableData.h"

#include <basic/data/HbdDataTable.h>

#include <limits>

// Editing and notices of tables. Each guarded operation refuses, has the concrete table do the
// work, and tells.

namespace
{
using OneNotice = KuoOneNotice<KudDataTableModif>;

/// Deleting more intervals than this one by one costs views more than being reset; or more samples
/// than this that move, all of them for each interval.
constexpr int MANY_INTERVALS = 64;
constexpr qint64 MANY_MOVES = qint64(1) << 26;

bool isBetterDoneAtOnce(int intervalCount, int sampleCount)
{
    return intervalCount > MANY_INTERVALS ||
           (intervalCount > 1 && qint64(intervalCount) * sampleCount > MANY_MOVES);
}
} // namespace

KudDatasetVariable KudADataTable::addVariable(HbdAVariable* variable)
{
    if (!testFlag(Ku::CanCreateVariables) || variable == nullptr)
        return KudDatasetVariable();
    _updateHeader();
    OneNotice notice(*this);
    const KudDatasetVariable added = _addVariable(variable);
    notice.send();
    return added;
}

KudDatasetVariable KudADataTable::addVariable(std::unique_ptr<HbdAVariable> variable)
{
    OneNotice notice(*this); // an observer may throw: sent when it is settled who owns the column
    const KudDatasetVariable added = addVariable(variable.get());
    if (added.isValid())
        variable.release(); // the table has adopted it
    notice.send();
    return added;
}

KudDatasetVariable KudADataTable::createVariable(const HbdVariableDetails& details)
{
    if (!testFlag(Ku::CanCreateVariables))
        return KudDatasetVariable();
    _updateHeader();
    OneNotice notice(*this); // as above
    const KudDatasetVariable created = _createVariable(details);
    notice.send();
    return created;
}

bool KudADataTable::deleteVariable(const KudDatasetVariable& variable)
{
    if (!testFlag(Ku::CanDeleteVariables))
        return false;
    _updateHeader();
    _deleteVariable(variable);
    return true; // permission is what is reported
}

bool KudADataTable::renameVariable(const KudDatasetVariable& variable, const QString& name)
{
    return _renameVariable(variable, name);
}

bool KudADataTable::setDetails(const KudDatasetVariable& variable,
                               const HbdVariableDetails& details)
{
    return _setDetails(variable, details);
}

bool KudADataTable::mayCreateSamples(int count) const
{
    // Ranks have 32 bits.
    return testFlag(Ku::CanCreateSamples) && count > 0 &&
           count <= std::numeric_limits<int>::max() - getSampleCount();
}

int KudADataTable::createSample(const SampleValues& values)
{
    return mayCreateSamples(1) ? _createSample(values) : -1;
}

int KudADataTable::createSample(const SampleRow& row)
{
    if (!mayCreateSamples(1))
        return -1;
    _updateHeader();
    return _createSampleRow(row);
}

int KudADataTable::createSamples(const QList<SampleRow>& rows, const SampleValues& defaults)
{
    if (!mayCreateSamples(rows.size()))
        return -1;
    _updateHeader();
    OneNotice notice(*this);
    const int first = _createSampleRows(rows, defaults);
    notice.send();
    return first;
}

int KudADataTable::appendSamples(const HbdDataTable& samples)
{
    if (!mayCreateSamples(samples.getSampleCount()))
        return -1;
    OneNotice notice(*this);
    const int first = _appendSamples(samples);
    notice.send();
    return first;
}

bool KudADataTable::deleteSample(int rank)
{
    return deleteSamples(HbiIntervalIntSmallDisjoint(rank));
}

bool KudADataTable::deleteSamples(const HbiIntervalIntSmallDisjoint& ranks)
{
    if (!testFlag(Ku::CanDeleteSamples) || ranks.isEmpty())
        return false;
    if (ranks.getMin() < 0 || ranks.getMax() >= getSampleCount())
        return false;

    const int masked = m_data->mask.getNSelected();
    const int highlighted = m_data->highlight.getNSelected();
    OneNotice notice(*this);
    const bool done =
        isBetterDoneAtOnce(ranks.getIntervalCount(), getSampleCount()) && _deleteSampleSet(ranks);
    if (!done) {
        // From the last interval to the first: the ranks of those not yet deleted stay valid.
        // Unless a slot of the model deletes, too: those that are left are other samples then.
        const QVector<HbiIntervalIntSmall> intervals = ranks.getIntervals();
        int count = getSampleCount();
        for (int i = intervals.size() - 1; i >= 0 && getSampleCount() >= count; --i) {
            count -= static_cast<int>(intervals.at(i).getLength());
            _deleteSamples(intervals.at(i));
        }
    }
    if (m_data->mask.getNSelected() != masked)
        notifyMaskChanged();
    if (m_data->highlight.getNSelected() != highlighted)
        notifyHighlightChanged();
    notice.send();
    return true;
}

bool KudADataTable::deleteAllSamples()
{
    return deleteSamples(HbiIntervalIntSmall(0, getSampleCount() - 1));
}

bool KudADataTable::updateValue(const KudDatasetVariable& variable, int rank, const QVariant& value)
{
    return updateValues(rank, {{variable, value}});
}

bool KudADataTable::updateValues(int rank, const SampleValues& values)
{
    if (testFlag(Ku::ReadOnlyValues) || rank < 0 || rank >= getSampleCount())
        return false;
    return _updateValues(rank, values);
}

bool KudADataTable::updateColumn(const KudDatasetVariable& variable, int firstRank,
                                 const HbdAVariable& values)
{
    const int count = values.getCount();
    if (testFlag(Ku::ReadOnlyValues) || firstRank < 0 || firstRank > getSampleCount() - count)
        return false;
    return count == 0 || _updateColumn(variable, firstRank, values);
}

bool KudADataTable::updateColumn(const KudDatasetVariable& variable, int firstRank,
                                 HbdSpan<const double> numbers)
{
    const int count = numbers.size();
    if (testFlag(Ku::ReadOnlyValues) || firstRank < 0 || firstRank > getSampleCount() - count)
        return false;
    return count == 0 || _updateColumn(variable, firstRank, numbers);
}

KudADataTable::SampleValues KudADataTable::mapSampleValues(const SampleRow& row, bool onlyValid,
                                                           const SampleValues& defaults) const
{
    SampleValues values = defaults;
    const KudDataTableHeader& variables = header();
    const int count = std::min(row.size(), variables.count());
    for (int i = 0; i < count; ++i) {
        if (row.at(i).isValid() || !onlyValid)
            values.insert(variables.at(i), row.at(i));
    }
    return values;
}

int KudADataTable::_createSampleRow(const SampleRow& row)
{
    return _createSample(mapSampleValues(row, true, SampleValues()));
}

int KudADataTable::_createSampleRows(const QList<SampleRow>& rows, const SampleValues& defaults)
{
    QList<SampleValues> samples;
    samples.reserve(rows.size());
    for (const SampleRow& row : rows)
        samples.append(mapSampleValues(row, true, defaults));
    return _createSamples(samples);
}

int KudADataTable::_appendSamples(const HbdDataTable&)
{
    return -1;
}

bool KudADataTable::_deleteSampleSet(const HbiIntervalIntSmallDisjoint&)
{
    return false;
}

bool KudADataTable::_updateColumn(const KudDatasetVariable&, int, const HbdAVariable&)
{
    return false;
}

bool KudADataTable::_updateColumn(const KudDatasetVariable&, int, HbdSpan<const double>)
{
    return false;
}

void KudADataTable::clearCache()
{
    _clearHeaderCache();
    _cacheClear();
}

void KudADataTable::_clearHeaderCache() const
{
    m_data->header.setValid(false);
}

KudDataTableHeader* KudADataTable::_editHeader() const
{
    return m_data->header.isValid() ? &m_data->header : nullptr;
}

void KudADataTable::_clearValuesCache(const KudDatasetVariable&) const
{
    _cacheClear();
}

void KudADataTable::_beginAppendSamples(int count) const
{
    m_data->model.beginInsertSamples(getSampleCount(), count);
}

void KudADataTable::_endAppendSamples() const
{
    m_data->model.endInsertSamples();
}

void KudADataTable::_beginResetTable() const
{
    m_data->model.beginResetTable();
    _clearHeaderCache();
    _cacheClear();
}

void KudADataTable::_endResetTable() const
{
    m_data->model.endResetTable();
}

void KudADataTable::_touch() const
{
    _beginResetTable();
    _endResetTable();
    notifyReset();
}

void KudADataTable::_tableValuesChanged(const HbiIntervalIntSmall& ranks,
                                        const KudDatasetVariable& variable) const
{
    const int column = getVariableRank(variable);
    if (column >= 0)
        m_data->model.valuesChanged(ranks, column);
}

void KudADataTable::notifyVariableAdded(const KudDatasetVariable& variable) const
{
    notify(KudDataTableModif(KudTableModif::VariableAdded, variable, {}));
}

void KudADataTable::notifyVariableRemoved(const KudDatasetVariable& variable) const
{
    notify(KudDataTableModif(KudTableModif::VariableRemoved, variable, {}));
}

void KudADataTable::notifyVariableModified(const KudDatasetVariable& variable,
                                           KudTableModif::Reasons reasons,
                                           const HbdVariableDetails& details) const
{
    KudTableModif modif;
    for (int bit = KudTableModif::VariableRenamed; bit <= KudTableModif::DetailsFacet5; bit <<= 1) {
        const auto reason = static_cast<KudTableModif::Reason>(bit);
        if (reasons.testFlag(reason))
            modif.merge(KudTableModif(reason, variable, {}));
    }
    if (modif.isEmpty())
        return;
    modif.setDetails(variable, details);
    notify(KudDataTableModif(modif));
}

void KudADataTable::notifySampleAdded(const HbiIntervalIntSmallDisjoint& ranks) const
{
    notify(KudDataTableModif(KudTableModif::SamplesAdded, KudDatasetVariable(), ranks));
}

void KudADataTable::notifySampleRemoved(const HbiIntervalIntSmallDisjoint& ranks) const
{
    notify(KudDataTableModif(KudTableModif::SamplesRemoved, KudDatasetVariable(), ranks));
}

void KudADataTable::notifyValueChanged(const KudDatasetVariable& variable,
                                       const HbiIntervalIntSmallDisjoint& ranks) const
{
    notify(KudDataTableModif(KudTableModif::ValuesChanged, variable, ranks));
}

void KudADataTable::notifyHighlightChanged() const
{
    notify(KudDataTableModif(KudTableModif::HighlightChanged, KudDatasetVariable(), {}));
}

void KudADataTable::notifyMaskChanged() const
{
    notify(KudDataTableModif(KudTableModif::MaskChanged, KudDatasetVariable(), {}));
}

void KudADataTable::notifySelectionChanged(KudTableModif::Reason reason) const
{
    if (reason == KudTableModif::HighlightChanged)
        notifyHighlightChanged();
    else
        notifyMaskChanged();
}

void KudADataTable::notifyReset() const
{
    notify(KudDataTableModif(KudTableModif::Reset, KudDatasetVariable(), {}));
}
