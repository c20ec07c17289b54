#pragma once

#include <util/dataset/KudDatasetVariableList.h>

#include <basic/data/HbdCompoundDetails.h>
#include <basic/data/HbdECompoundType.h>
#include <basic/data/HbdEnumCatalog.h>
#include <basic/data/HbdVariableDetails.h>

/// The schema of one data table: its variables in column order, with their details, the catalogues
/// of the enumerated ones and the descriptions of the compound ones. A value, implicitly shared.
///
/// What is asked about an unknown variable is answered with default details, an empty catalogue, a
/// default compound description.
class KELVANE_UTIL_EXPORT KudDataTableHeader
{
public:
    struct CompoundInfo {
        HbdECompoundType type;
        HbdVariableDetails details; ///< of the compound as a whole
        HbdCompoundDetails components;

        bool operator==(const CompoundInfo& other) const;
        bool operator!=(const CompoundInfo& other) const { return !(*this == other); }
    };

    /// Appends the variable; one that is known keeps its column and gets the new details, one that
    /// is not valid is passed over.
    void addVariable(const KudDatasetVariable& variable, const HbdVariableDetails& details);
    /// The same for a compound. Its details as a whole are the variable's details too.
    void addCompound(const KudDatasetVariable& variable, const CompoundInfo& info);
    void removeVariable(const KudDatasetVariable& variable);
    /// Renames the variable with its realizations and components; what is known of them follows.
    /// Refused (nothing changes) when the new name is empty or one of the new names is taken.
    void renameVariable(const KudDatasetVariable& variable, const QString& newName);
    /// Nothing is stored for a variable that the header does not hold.
    void updateVariableDetails(const KudDatasetVariable& variable,
                               const HbdVariableDetails& details);
    void setCatalog(const KudDatasetVariable& variable, const HbdEnumCatalog& catalog);
    /// A fresh header, not valid.
    void clear();

    int count() const { return m_variables.count(); }
    bool isEmpty() const { return m_variables.isEmpty(); }
    const KudDatasetVariable& at(int i) const { return m_variables.at(i); }
    /// The column, or -1. Exact, as `contains`.
    int indexOf(const KudDatasetVariable& variable) const { return m_variables.indexOf(variable); }
    bool contains(const KudDatasetVariable& variable) const { return indexOf(variable) >= 0; }
    KudDatasetVariableList listByOrder() const { return m_variables; }

    HbdVariableDetails getDetails(const KudDatasetVariable& variable) const;
    HbdEVarType getType(const KudDatasetVariable& variable) const;
    HbdEVarRole getRole(const KudDatasetVariable& variable) const;
    HbbTags getTags(const KudDatasetVariable& variable) const;
    HbdEnumCatalog getCatalog(const KudDatasetVariable& variable) const;
    bool isCompound(const KudDatasetVariable& variable) const;
    CompoundInfo getCompoundInfo(const KudDatasetVariable& variable) const;

    /// The first variable, in column order, that plays the role; an empty one when none does.
    KudDatasetVariable roleToVar(const HbdEVarRole& role) const;

    /// Whether the header reflects the table's present columns.
    bool isValid() const { return m_isValid; }
    void setValid(bool valid) { m_isValid = valid; }

private:
    KudDatasetVariableList m_variables;
    QMap<KudDatasetVariable, HbdVariableDetails> m_details;
    QMap<KudDatasetVariable, HbdEnumCatalog> m_catalogs;
    QMap<KudDatasetVariable, CompoundInfo> m_compounds;
    bool m_isValid = false;
};
