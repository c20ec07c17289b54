#include <util/dataset/KudDataTableHeader.h>

#include <algorithm>

namespace
{
/// Moves what is known of each old name to its new one; no new name is an old one as well.
template <class Value>
void rekey(QMap<KudDatasetVariable, Value>& map, const QVector<KudDatasetVariable>& oldNames,
           const QString& newName)
{
    for (const KudDatasetVariable& oldName : oldNames) {
        const auto found = map.find(oldName);
        if (found != map.end()) {
            const Value value = *found;
            map.erase(found);
            map.insert(oldName.renamed(newName), value);
        }
    }
}
} // namespace

bool KudDataTableHeader::CompoundInfo::operator==(const CompoundInfo& other) const
{
    return type == other.type && details == other.details && components == other.components;
}

void KudDataTableHeader::addVariable(const KudDatasetVariable& variable,
                                     const HbdVariableDetails& details)
{
    m_variables.append(variable);
    updateVariableDetails(variable, details);
}

void KudDataTableHeader::addCompound(const KudDatasetVariable& variable, const CompoundInfo& info)
{
    addVariable(variable, info.details);
    if (contains(variable)) {
        m_compounds.insert(variable, info);
    }
}

void KudDataTableHeader::removeVariable(const KudDatasetVariable& variable)
{
    const KudDatasetVariable removed = variable; // may be the header's own
    m_variables.remove(removed);
    m_details.remove(removed);
    m_catalogs.remove(removed);
    m_compounds.remove(removed);
}

void KudDataTableHeader::renameVariable(const KudDatasetVariable& variable, const QString& newName)
{
    QVector<KudDatasetVariable> oldNames;
    for (const KudDatasetVariable& member : m_variables) {
        if (member == variable || variable.isChild(member)) {
            oldNames.append(member);
        }
    }
    const auto isTaken = [&](const KudDatasetVariable& oldName) {
        return contains(oldName.renamed(newName));
    };
    if (newName.isEmpty() || std::any_of(oldNames.cbegin(), oldNames.cend(), isTaken)) {
        return;
    }
    m_variables.updateVariableName(variable, newName);
    rekey(m_details, oldNames, newName);
    rekey(m_catalogs, oldNames, newName);
    rekey(m_compounds, oldNames, newName);
}

void KudDataTableHeader::updateVariableDetails(const KudDatasetVariable& variable,
                                               const HbdVariableDetails& details)
{
    if (contains(variable)) {
        m_details.insert(variable, details);
    }
}

void KudDataTableHeader::setCatalog(const KudDatasetVariable& variable,
                                    const HbdEnumCatalog& catalog)
{
    if (contains(variable)) {
        m_catalogs.insert(variable, catalog);
    }
}

void KudDataTableHeader::clear()
{
    *this = KudDataTableHeader();
}

HbdVariableDetails KudDataTableHeader::getDetails(const KudDatasetVariable& variable) const
{
    return m_details.value(variable);
}

HbdEVarType KudDataTableHeader::getType(const KudDatasetVariable& variable) const
{
    return getDetails(variable).type;
}

HbdEVarRole KudDataTableHeader::getRole(const KudDatasetVariable& variable) const
{
    return getDetails(variable).role;
}

HbbTags KudDataTableHeader::getTags(const KudDatasetVariable& variable) const
{
    return getDetails(variable).tags;
}

HbdEnumCatalog KudDataTableHeader::getCatalog(const KudDatasetVariable& variable) const
{
    return m_catalogs.value(variable);
}

bool KudDataTableHeader::isCompound(const KudDatasetVariable& variable) const
{
    return m_compounds.contains(variable);
}

KudDataTableHeader::CompoundInfo
KudDataTableHeader::getCompoundInfo(const KudDatasetVariable& variable) const
{
    return m_compounds.value(variable);
}

KudDatasetVariable KudDataTableHeader::roleToVar(const HbdEVarRole& role) const
{
    const auto plays = [&](const KudDatasetVariable& variable) {
        const auto details = m_details.constFind(variable);
        return details != m_details.constEnd() && details->role == role;
    };
    const auto found = std::find_if(m_variables.begin(), m_variables.end(), plays);
    return found == m_variables.end() ? KudDatasetVariable() : *found;
}
