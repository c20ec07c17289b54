#include <util/dataset/KudTableModif.h>

#include <basic/data/HbdScDetails.h>
#include <basic/data/HbdVariableDetails.h>

#include <QtCore/QtAlgorithms>

/// The details that a notice carries; few notices do.
class KudTableModifDetails
{
public:
    QMap<KudDatasetVariable, HbdVariableDetails> details;
    QMap<KudDatasetVariable, HbdScDetails> compounds;
};

namespace
{
// Up to here a walk over the changes is faster than a hash.
constexpr int MAX_WALKED = 16;

// Reasons up to 0x200 name a variable, ValuesChanged names one with ranks.
constexpr int NAMING_REASONS = 0x3FF;
constexpr int LISTED_REASONS = NAMING_REASONS | KudTableModif::ValuesChanged;

void uniteRanks(HbiIntervalIntSmallDisjoint& ranks, const HbiIntervalIntSmallDisjoint& more)
{
    // Most notices add one range, and adding a range does not walk the whole set.
    if (more.isEmpty()) {
        return;
    }
    if (ranks.isEmpty()) {
        ranks = more;
    } else if (more.getIntervalCount() == 1) {
        ranks.add(HbiIntervalIntSmall(more.getMin(), more.getMax()));
    } else {
        ranks.unite(more);
    }
}
} // namespace

const std::array<KudTableModif::Reason, 8>& KudTableModif::getVariableReasons()
{
    static const std::array<Reason, 8> reasons = {
        VariableRenamed, DetailsFacet1,         DetailsFacet2,          DetailsFacet3,
        DetailsFacet4,   VariableFormatChanged, VariableCatalogChanged, DetailsFacet5};
    return reasons;
}

KudTableModif::Reasons KudTableModif::compareDetails(const HbdVariableDetails& before,
                                                     const HbdVariableDetails& after)
{
    Reasons reasons;
    reasons.setFlag(VariableRenamed, before.name != after.name);
    reasons.setFlag(DetailsFacet1, before.type != after.type || before.support != after.support);
    reasons.setFlag(DetailsFacet2, before.role != after.role || !(before.tags == after.tags));
    reasons.setFlag(DetailsFacet3,
                    before.unit != after.unit || before.displayUnit != after.displayUnit);
    reasons.setFlag(DetailsFacet4, before.colorScaleId != after.colorScaleId ||
                                       before.temporary != after.temporary);
    reasons.setFlag(VariableFormatChanged, before.format != after.format ||
                                               before.automaticFormat != after.automaticFormat);
    reasons.setFlag(VariableCatalogChanged, before.catalogId != after.catalogId);
    reasons.setFlag(DetailsFacet5,
                    before.precision != after.precision || before.width != after.width);
    return reasons;
}

KudTableModif::KudTableModif(Reason reason, const KudDatasetVariable& variable,
                             const HbiIntervalIntSmallDisjoint& ranks)
    : m_reasons(reason)
{
    switch (reason) {
    case SamplesAdded:
        m_addedSamples = ranks;
        break;
    case SamplesRemoved:
        m_removedSamples = ranks;
        break;
    case ValuesChanged:
        m_changes.append(KudVariableChange{variable, reason, ranks});
        break;
    default:
        if ((reason & NAMING_REASONS) && variable.isValid()) {
            m_changes.append(KudVariableChange{variable, reason, {}});
        }
    }
}

KudTableModif::KudTableModif(const KudDatasetVariableList& variables,
                             const HbiIntervalIntSmallDisjoint& ranks)
{
    if (variables.isEmpty()) {
        return;
    }
    m_reasons = ValuesChanged;
    m_changes.reserve(variables.count());
    for (const KudDatasetVariable& variable : variables) {
        _append(variable, ValuesChanged, ranks);
    }
}

KudTableModif::KudTableModif(const Row& row, const HbiIntervalIntSmallDisjoint& ranks)
    : m_row(row)
    , m_rowRanks(ranks)
    , m_reasons(ValuesChanged)
{
}

void KudTableModif::_unfoldRow() const
{
    if (!m_row) {
        return;
    }
    auto* self = const_cast<KudTableModif*>(this); // the same content in another form
    const Row row = std::move(m_row);
    m_row.reset();
    self->m_changes.reserve(row->size());
    for (const KudDatasetVariable& variable : *row) {
        self->_append(variable, ValuesChanged, m_rowRanks);
    }
}

void KudTableModif::addChangedValues(const KudDatasetVariable& variable,
                                     const HbiIntervalIntSmallDisjoint& ranks)
{
    _unfoldRow();
    m_reasons |= ValuesChanged;
    if (m_isAscending && _isBehindAll(variable)) {
        m_changes.append(KudVariableChange{variable, ValuesChanged, ranks});
    } else {
        _record(variable, ValuesChanged, ranks);
    }
}

void KudTableModif::merge(const KudTableModif& other)
{
    m_reasons |= other.m_reasons;
    uniteRanks(m_addedSamples, other.m_addedSamples);
    uniteRanks(m_removedSamples, other.m_removedSamples);
    const bool isSameRow = m_row && m_row == other.m_row;
    if (isSameRow) {
        uniteRanks(m_rowRanks, other.m_rowRanks);
    } else if (!m_row && m_changes.isEmpty()) {
        m_row = other.m_row;
        m_rowRanks = other.m_rowRanks;
        m_changes = other.m_changes;
        m_positions = other.m_positions;
        m_isAscending = other.m_isAscending;
    } else {
        _unfoldRow();
        other._unfoldRow();
        for (const KudVariableChange& change : other.m_changes) {
            _record(change.variable, static_cast<Reason>(change.reason), change.ranks);
        }
    }
    if (!m_details) {
        m_details = other.m_details;
    } else if (other.m_details && other.m_details != m_details) {
        KudTableModifDetails& mine = _editDetails();
        const KudTableModifDetails& later = *other.m_details;
        for (auto it = later.details.begin(); it != later.details.end(); ++it) {
            mine.details.insert(it.key(), it.value());
        }
        for (auto it = later.compounds.begin(); it != later.compounds.end(); ++it) {
            mine.compounds.insert(it.key(), it.value());
        }
    }
}

int KudTableModif::getNumberOfModif() const
{
    if (m_reasons == Reset) {
        return 1;
    }
    int count = (m_addedSamples.isEmpty() ? 0 : 1) + (m_removedSamples.isEmpty() ? 0 : 1);
    count += static_cast<int>(qPopulationCount(static_cast<quint32>(m_reasons & LISTED_REASONS)));
    if (m_row) {
        count += m_row->size();
    } else if (m_reasons & ValuesChanged) {
        const auto hasValues = [](const KudVariableChange& c) { return c.reason == ValuesChanged; };
        count += static_cast<int>(std::count_if(m_changes.begin(), m_changes.end(), hasValues));
    }
    if (m_details) {
        count += m_details->details.size() + m_details->compounds.size();
    }
    return count;
}

KudDatasetVariableList KudTableModif::variables(Reasons requested) const
{
    _unfoldRow();
    KudDatasetVariableList list;
    for (int reason = VariableAdded; reason <= ValuesChanged; reason <<= 1) {
        _mergeIf(list, requested, static_cast<Reason>(reason));
    }
    return list;
}

void KudTableModif::_mergeIf(KudDatasetVariableList& list, Reasons requested, Reason reason) const
{
    if (!(reason & LISTED_REASONS & requested & m_reasons)) {
        return;
    }
    for (const KudVariableChange& change : m_changes) {
        if (change.reason == reason) {
            list.append(change.variable);
        }
    }
}

bool KudTableModif::hasModifForVariable(const KudDatasetVariable& variable) const
{
    for (int reason = VariableAdded; reason <= ValuesChanged; reason <<= 1) {
        if ((reason & m_reasons) && _find(variable, static_cast<Reason>(reason)) >= 0) {
            return true;
        }
    }
    return m_details &&
           (m_details->details.contains(variable) || m_details->compounds.contains(variable));
}

QMap<KudDatasetVariable, HbiIntervalIntSmallDisjoint> KudTableModif::changedValues() const
{
    _unfoldRow();
    QMap<KudDatasetVariable, HbiIntervalIntSmallDisjoint> values;
    for (const KudVariableChange& change : m_changes) {
        if (change.reason == ValuesChanged) {
            values.insert(change.variable, change.ranks);
        }
    }
    return values;
}

HbiIntervalIntSmallDisjoint KudTableModif::changedValues(const KudDatasetVariable& variable) const
{
    const int position = _find(variable, ValuesChanged);
    return position < 0 ? HbiIntervalIntSmallDisjoint() : m_changes[position].ranks;
}

HbdVariableDetails KudTableModif::details(const KudDatasetVariable& variable) const
{
    return m_details ? m_details->details.value(variable) : HbdVariableDetails();
}

void KudTableModif::setDetails(const KudDatasetVariable& variable,
                               const HbdVariableDetails& details)
{
    _editDetails().details.insert(variable, details);
}

HbdScDetails KudTableModif::compoundDetails(const KudDatasetVariable& variable) const
{
    return m_details ? m_details->compounds.value(variable) : HbdScDetails();
}

void KudTableModif::setCompoundDetails(const KudDatasetVariable& variable,
                                       const HbdScDetails& details)
{
    _editDetails().compounds.insert(variable, details);
}

QString KudTableModif::getDetailsName(const KudDatasetVariable& variable) const
{
    return details(variable).name;
}

HbbTags KudTableModif::getDetailsTags(const KudDatasetVariable& variable) const
{
    return details(variable).tags;
}

void KudTableModif::_record(const KudDatasetVariable& variable, Reason reason,
                            const HbiIntervalIntSmallDisjoint& ranks)
{
    const int position = _find(variable, reason);
    if (position < 0) {
        _append(variable, reason, ranks);
    } else if (reason == ValuesChanged) {
        uniteRanks(m_changes[position].ranks, ranks);
    }
}

void KudTableModif::_append(const KudDatasetVariable& variable, Reason reason,
                            const HbiIntervalIntSmallDisjoint& ranks)
{
    m_isAscending = m_isAscending && _isBehindAll(variable);
    m_changes.append(KudVariableChange{variable, reason, ranks});
}

bool KudTableModif::_isBehindAll(const KudDatasetVariable& variable) const
{
    return m_changes.isEmpty() || m_changes[m_changes.size() - 1].variable < variable;
}

int KudTableModif::_find(const KudDatasetVariable& variable, Reason reason) const
{
    _unfoldRow();
    const auto isMeant = [&](const KudVariableChange& change) {
        return change.reason == reason && change.variable == variable;
    };
    if (m_changes.size() <= MAX_WALKED) {
        const auto found = std::find_if(m_changes.begin(), m_changes.end(), isMeant);
        return found == m_changes.end() ? -1 : static_cast<int>(found - m_changes.begin());
    }
    if (m_isAscending) {
        const auto isBefore = [](const KudVariableChange& change, const KudDatasetVariable& v) {
            return change.variable < v;
        };
        const auto found = std::lower_bound(m_changes.begin(), m_changes.end(), variable, isBefore);
        return found != m_changes.end() && isMeant(*found)
                   ? static_cast<int>(found - m_changes.begin())
                   : -1;
    }
    // The index follows the changes when it is needed, not when they come: a notice of a whole
    // wide row is built and read without one.
    for (int i = m_positions.size(); i < m_changes.size(); ++i) {
        m_positions.insert(qHash(m_changes[i].variable), i);
    }
    const uint hash = qHash(variable);
    for (auto it = m_positions.constFind(hash); it != m_positions.constEnd() && it.key() == hash;
         ++it) {
        if (isMeant(m_changes[it.value()])) {
            return it.value();
        }
    }
    return -1;
}

KudTableModifDetails& KudTableModif::_editDetails()
{
    if (!m_details) {
        m_details = std::make_shared<KudTableModifDetails>();
    } else if (m_details.use_count() > 1) {
        m_details = std::make_shared<KudTableModifDetails>(*m_details);
    }
    return *m_details;
}
