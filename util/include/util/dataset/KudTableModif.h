#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDatasetVariableList.h>
#include <util/dataset/KudInlineVector.h>
#include <util/dataset/KudVariableChange.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QFlags>
#include <QtCore/QMap>

#include <array>
#include <memory>

class HbbTags;
struct HbdScDetails;
struct HbdVariableDetails;
class KudTableModifDetails;

/// What changed in one data table: a value that can be merged with a later one. Ranks are those of
/// the table at the time of the change.
///
/// An edit costs one of these per observer chain, so a notice of one variable is built, moved and
/// merged without allocation. It keeps its changes as they came; the lists and maps are made when
/// they are asked for. One thread at a time, also for reading.
class KELVANE_UTIL_EXPORT KudTableModif
{
public:
    enum Reason {
        VariableAdded = 0x1,
        VariableRemoved = 0x2,
        VariableRenamed = 0x4,
        DetailsFacet1 = 0x8,            ///< the type or the support
        DetailsFacet2 = 0x10,           ///< the role or the tags
        DetailsFacet3 = 0x20,           ///< the unit or the display unit
        DetailsFacet4 = 0x40,           ///< the colour scale, or whether the variable is temporary
        VariableFormatChanged = 0x80,   ///< the format, or whether it is automatic
        VariableCatalogChanged = 0x100, ///< the identifier of the catalogue
        DetailsFacet5 = 0x200,          ///< the precision or the width
        SamplesAdded = 0x400,
        SamplesRemoved = 0x800,
        ValuesChanged = 0x1000,
        HighlightChanged = 0x2000,
        MaskChanged = 0x4000,
        Reset = 0x8000 ///< anything may have changed
    };
    Q_DECLARE_FLAGS(Reasons, Reason)

    /// The reasons of a modified variable, from 0x4 to 0x200, in ascending order.
    static const std::array<Reason, 8>& getVariableReasons();

    /// Which of those reasons tell the details apart; none when they are equal.
    static Reasons compareDetails(const HbdVariableDetails& before,
                                  const HbdVariableDetails& after);

    /// An empty notice.
    KudTableModif() = default;
    /// The variable serves the reasons up to 0x200 and ValuesChanged, the ranks SamplesAdded,
    /// SamplesRemoved and ValuesChanged.
    explicit KudTableModif(
        Reason reason, const KudDatasetVariable& variable = KudDatasetVariable(),
        const HbiIntervalIntSmallDisjoint& ranks = HbiIntervalIntSmallDisjoint());
    /// ValuesChanged of several variables for the same ranks.
    KudTableModif(const KudDatasetVariableList& variables,
                  const HbiIntervalIntSmallDisjoint& ranks);

    /// The same for a whole row, whose variables many notices share: nothing is copied for it.
    using Row = std::shared_ptr<const QVector<KudDatasetVariable>>;
    KudTableModif(const Row& row, const HbiIntervalIntSmallDisjoint& ranks);

    /// Adds ValuesChanged of one more variable, or of more ranks of a variable. Cheapest when the
    /// variables come in their order, as from a map.
    void addChangedValues(const KudDatasetVariable& variable,
                          const HbiIntervalIntSmallDisjoint& ranks);
    /// Spares growth when `count` variables are going to be added to an empty notice.
    void reserve(int count) { m_changes.reserve(count); }

    /// Folds a later notice in: reasons, ranks and variables are united; of the details of one
    /// variable the later ones stay.
    void merge(const KudTableModif& other);

    Reasons reasons() const { return m_reasons; }
    /// Whether all bits of `reason` are set; no reason at all is asked for by 0.
    bool testReason(Reason reason) const { return m_reasons.testFlag(reason); }
    bool isEmpty() const { return !m_reasons; }
    /// 1 for a pure reset, else the number of rank sets (0 to 2), of variables with changed values,
    /// of reasons that name variables, and of details.
    int getNumberOfModif() const;

    /// The variables recorded for the requested reasons, reason by reason.
    KudDatasetVariableList variables(Reasons requested) const;
    bool hasModifForVariable(const KudDatasetVariable& variable) const;

    QMap<KudDatasetVariable, HbiIntervalIntSmallDisjoint> changedValues() const;
    HbiIntervalIntSmallDisjoint changedValues(const KudDatasetVariable& variable) const;
    const HbiIntervalIntSmallDisjoint& addedSamples() const { return m_addedSamples; }
    const HbiIntervalIntSmallDisjoint& removedSamples() const { return m_removedSamples; }

    /// The new details of a modified variable, or default ones.
    HbdVariableDetails details(const KudDatasetVariable& variable) const;
    void setDetails(const KudDatasetVariable& variable, const HbdVariableDetails& details);
    HbdScDetails compoundDetails(const KudDatasetVariable& variable) const;
    void setCompoundDetails(const KudDatasetVariable& variable, const HbdScDetails& details);
    QString getDetailsName(const KudDatasetVariable& variable) const;
    HbbTags getDetailsTags(const KudDatasetVariable& variable) const;

private:
    void _record(const KudDatasetVariable& variable, Reason reason,
                 const HbiIntervalIntSmallDisjoint& ranks);
    void _append(const KudDatasetVariable& variable, Reason reason,
                 const HbiIntervalIntSmallDisjoint& ranks);
    bool _isBehindAll(const KudDatasetVariable& variable) const;
    int _find(const KudDatasetVariable& variable, Reason reason) const;
    void _mergeIf(KudDatasetVariableList& list, Reasons requested, Reason reason) const;
    KudTableModifDetails& _editDetails();
    void _unfoldRow() const;

    HbiIntervalIntSmallDisjoint m_addedSamples;
    HbiIntervalIntSmallDisjoint m_removedSamples;
    // Values that changed in a whole row; while it is there, m_changes is empty. Whoever asks for
    // more than its size unfolds it.
    mutable Row m_row;
    HbiIntervalIntSmallDisjoint m_rowRanks;
    KudInlineVector<KudVariableChange> m_changes;    // one per variable and reason, as they came
    mutable QMultiHash<uint, int> m_positions;       // of m_changes by variable, see _find
    std::shared_ptr<KudTableModifDetails> m_details; // null while there are none; shared by copies
    Reasons m_reasons;
    bool m_isAscending = true; // the variables of m_changes, each behind the one before
};
Q_DECLARE_OPERATORS_FOR_FLAGS(KudTableModif::Reasons)
