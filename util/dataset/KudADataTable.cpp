#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudDatasetVariableFilter.h>
#include <util/dataset/KudEmptyDataTable.h>

#include "KudADataTableData.h"

#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdVariableText.h>

// Reading: variables, values, settings. Editing and notices stand in KudADataTableEdit.cpp.

KudADataTable::KudADataTable()
    : KuoAObservable<KudDataTableModif>(QStringLiteral("KudADataTable"))
    , m_data(std::make_unique<Data>(*this))
{
}

KudADataTable::~KudADataTable() = default;

KudADataTable* KudADataTable::staticEmptyDataTable()
{
    static KudEmptyDataTable table;
    return &table;
}

const KudADataTable* KudDataTableModif::dataTable() const
{
    return _getObservable();
}

const KudDataTableHeader& KudADataTable::header() const
{
    _updateHeader();
    return m_data->header;
}

void KudADataTable::_updateHeader() const
{
    if (!m_data->header.isValid())
        m_data->header = _rebuildHeader();
}

QString KudADataTable::getComponentNameFromRole(const KudDatasetVariable& variable,
                                                const HbdEComponentRole& role) const
{
    return getCompoundDetails(variable).getName(role);
}

bool KudADataTable::isVariableReadonly(const KudDatasetVariable& variable) const
{
    if (testFlag(Ku::ReadOnlyValues))
        return true;
    const HbdVariableDetails details = getDetails(variable);
    if (m_data->readonlyRoles.contains(details.role))
        return true;
    return std::any_of(m_data->readonlyTags.begin(), m_data->readonlyTags.end(),
                       [&](const QString& tag) { return details.tags.contains(tag); });
}

int KudADataTable::getVariableCount() const
{
    return header().count();
}

KudDatasetVariable KudADataTable::getVariableAt(int column) const
{
    const KudDataTableHeader& variables = header();
    return column >= 0 && column < variables.count() ? variables.at(column) : KudDatasetVariable();
}

int KudADataTable::getVariableRank(const KudDatasetVariable& variable) const
{
    return header().indexOf(variable);
}

KudDatasetVariable KudADataTable::getVariableFromName(const QString& name) const
{
    const KudDataTableHeader& variables = header();
    KudDatasetVariable plainMatch;
    for (int i = 0; i < variables.count(); ++i) {
        const KudDatasetVariable& variable = variables.at(i);
        if (variable.getFullVariableName() == name)
            return variable;
        if (!plainMatch.isValid() && variable.variable() == name)
            plainMatch = variable;
    }
    return plainMatch;
}

namespace
{
template <class Accept>
KudDatasetVariableList selected(const KudDataTableHeader& header, Accept accept)
{
    KudDatasetVariableList list;
    for (int i = 0; i < header.count(); ++i) {
        if (accept(header.at(i)))
            list.append(header.at(i));
    }
    return list;
}
} // namespace

KudDatasetVariableList KudADataTable::getVariables(const HbdVarTypeFlags& types) const
{
    const KudDataTableHeader& variables = header();
    return selected(variables, [&](const KudDatasetVariable& variable) {
        return types.contains(variables.getType(variable));
    });
}

KudDatasetVariableList KudADataTable::getVariables(const KudDatasetVariableFilter& filter) const
{
    return selected(header(), [&](const KudDatasetVariable& variable) {
        return isVariableValid(variable, filter);
    });
}

KudDatasetVariableList KudADataTable::getVariables(const QString& support) const
{
    return selected(header(), [&](const KudDatasetVariable& variable) {
        return variable.support() == support;
    });
}

bool KudADataTable::containsVariable(const KudDatasetVariable& variable) const
{
    return header().contains(variable);
}

bool KudADataTable::isVariableValid(const KudDatasetVariable& variable,
                                    const KudDatasetVariableFilter& filter) const
{
    if (!containsVariable(variable))
        return false;
    const HbdVariableDetails details = getDetails(variable);
    return filter.acceptSupport(details.support, variable.support()) &&
           filter.acceptType(details.type) && filter.acceptRole(details.role) &&
           filter.acceptTags(details.tags) && filter.acceptTemporary(details.temporary) &&
           filter.acceptCompound(getCompoundType(variable)) &&
           (!filter.acceptOnlyCompound() || isCompound(variable));
}

HbdVariableDetails KudADataTable::getDetails(const KudDatasetVariable& variable) const
{
    return header().getDetails(variable);
}

HbdEnumCatalog KudADataTable::getVariableCatalog(const KudDatasetVariable& variable) const
{
    return header().getCatalog(variable);
}

HbdECompoundType KudADataTable::getCompoundType(const KudDatasetVariable& variable) const
{
    return header().getCompoundInfo(variable).type;
}

HbdCompoundDetails KudADataTable::getCompoundDetails(const KudDatasetVariable& variable) const
{
    return header().getCompoundInfo(variable).components;
}

bool KudADataTable::isCompound(const KudDatasetVariable& variable) const
{
    return header().isCompound(variable);
}

HbbTags KudADataTable::getVariableTags(const KudDatasetVariable& variable) const
{
    return header().getTags(variable);
}

HbbTags KudADataTable::getSupportTags() const
{
    return m_data->supportTags;
}

bool KudADataTable::hasSupportTag(const QString& tag) const
{
    return m_data->supportTags.contains(tag);
}

bool KudADataTable::hasTagVariable(const QString& tag) const
{
    const KudDataTableHeader& variables = header();
    for (int i = 0; i < variables.count(); ++i) {
        if (variables.getTags(variables.at(i)).contains(tag))
            return true;
    }
    return false;
}

KudDatasetVariable KudADataTable::getStructuralVariable(const HbdEVarRole& role) const
{
    const bool isStructural = role != HbdEVarRole::NONE && !_isRoleHidden(role);
    return isStructural ? header().roleToVar(role) : KudDatasetVariable();
}

HbdEVarRole KudADataTable::getStructuralRole(const KudDatasetVariable& variable) const
{
    const HbdEVarRole role = header().getRole(variable);
    return _isRoleHidden(role) ? HbdEVarRole::NONE : role;
}

bool KudADataTable::hasStructuralVariable(const HbdEVarRole& role) const
{
    return getStructuralVariable(role).isValid();
}

void KudADataTable::hideStructuralRoles(const HbdVarRoleFlags& roles)
{
    m_data->hiddenRoles = roles;
}

bool KudADataTable::_isRoleHidden(const HbdEVarRole& role) const
{
    return m_data->hiddenRoles.contains(role);
}

const HbdAVariable* KudADataTable::readValues(const KudDatasetVariable& variable) const
{
    return _readVariable(variable);
}

const HbdANumericVariable*
KudADataTable::readNumericValues(const KudDatasetVariable& variable) const
{
    return dynamic_cast<const HbdANumericVariable*>(_readVariable(variable));
}

const HbdANumericVariable* KudADataTable::readNumericValues(const HbdEVarRole& role) const
{
    return readNumericValues(getStructuralVariable(role));
}

const HbdVariableText* KudADataTable::readStringValues(const KudDatasetVariable& variable) const
{
    return dynamic_cast<const HbdVariableText*>(_readVariable(variable));
}

const HbdVariableText* KudADataTable::readStringValues(const HbdEVarRole& role) const
{
    return readStringValues(getStructuralVariable(role));
}

const HbdAVariable* KudADataTable::readComponentValues(const KudDatasetVariable& variable,
                                                       const HbdEComponentRole& role) const
{
    const QString component = getComponentNameFromRole(variable, role);
    if (component.isEmpty())
        return nullptr;
    return _readVariable(KudDatasetVariable::createComponent(
        variable.support(), variable.variable(), variable.index(), component));
}

const HbdANumericVariable*
KudADataTable::readNumericComponentValues(const KudDatasetVariable& variable,
                                          const HbdEComponentRole& role) const
{
    return dynamic_cast<const HbdANumericVariable*>(readComponentValues(variable, role));
}

const HbdANumericVariable* KudADataTable::readXCoordinate() const
{
    return readNumericValues(HbdEVarRole::X_COORDINATE);
}

const HbdANumericVariable* KudADataTable::readYCoordinate() const
{
    return readNumericValues(HbdEVarRole::Y_COORDINATE);
}

const HbdANumericVariable* KudADataTable::readZCoordinate() const
{
    return readNumericValues(HbdEVarRole::Z_COORDINATE);
}

bool KudADataTable::checkCoordinates() const
{
    const HbdANumericVariable* x = readXCoordinate();
    const HbdANumericVariable* y = readYCoordinate();
    return x != nullptr && y != nullptr && x->isValid() && y->isValid();
}

bool KudADataTable::isSortedByXCoordinate(bool strictly) const
{
    const HbdANumericVariable* x = readXCoordinate();
    if (x == nullptr || !x->isValid())
        return false;
    std::vector<double> values(static_cast<std::size_t>(x->getCount()));
    x->readNumbers(0, x->getCount(), values.data());
    const auto isFault = [strictly](double left, double right) {
        return strictly ? left >= right : left > right;
    };
    return std::adjacent_find(values.begin(), values.end(), isFault) == values.end();
}

void KudADataTable::addReadonlyRoles(const HbdVarRoleFlags& roles)
{
    m_data->readonlyRoles |= roles;
}

void KudADataTable::addReadonlyTags(const QStringList& tags)
{
    m_data->readonlyTags << tags;
    m_data->readonlyTags.removeDuplicates();
}

void KudADataTable::setFlag(Ku::DatasetFlag flag, bool on)
{
    m_data->flags.setFlag(flag, on);
}

void KudADataTable::setFlags(Ku::DatasetFlags flags)
{
    m_data->flags = flags;
}

Ku::DatasetFlags KudADataTable::getFlags() const
{
    return m_data->flags;
}

bool KudADataTable::testFlag(Ku::DatasetFlag flag) const
{
    return m_data->flags.testFlag(flag);
}

void KudADataTable::setInterval(const HbiIntervalIntSmallO64Disjoint& interval)
{
    m_data->interval = interval;
}

void KudADataTable::removeInterval()
{
    m_data->interval.reset();
}

const HbiIntervalIntSmallO64Disjoint* KudADataTable::getInterval() const
{
    return m_data->interval ? &*m_data->interval : nullptr;
}

KudSelector* KudADataTable::getMask()
{
    return &m_data->mask;
}

KudSelector* KudADataTable::getHighlight()
{
    return &m_data->highlight;
}

const KudSelector* KudADataTable::getMaskConst() const
{
    return &m_data->mask;
}

const KudSelector* KudADataTable::getHighlightConst() const
{
    return &m_data->highlight;
}

KudTableModel* KudADataTable::getModel() const
{
    return &m_data->model;
}

void KudADataTable::_setSupportTags(const HbbTags& tags)
{
    m_data->supportTags = tags;
}
