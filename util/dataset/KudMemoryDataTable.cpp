#include <util/dataset/KudMemoryDataTable.h>
#include <util/utils/KuuCoordSystem.h>

#include "KudModelScopes.h"

#include <basic/data/HbdName.h>
#include <basic/data/HbdVariableEnum.h>

// The store as a whole and its variables. Samples and cells stand in KudMemoryDataTableSamples.cpp.

KudMemoryDataTable::KudMemoryDataTable(const QString& name, const HbdESupport& support)
    : m_name(name)
    , m_support(support)
    , m_coordSystem(std::make_unique<KuuCoordSystem>())
{
    setFlags(Ku::DatasetFlags(Ku::MEMORY_DATASET_FLAGS));
}

KudMemoryDataTable::~KudMemoryDataTable() = default;

QByteArray KudMemoryDataTable::getClassType()
{
    return QByteArrayLiteral("MemoryDataTable");
}

KudMemoryDataTable* KudMemoryDataTable::convert(KudADataTable* table)
{
    const bool matches = table != nullptr && table->getType() == getClassType();
    return matches ? static_cast<KudMemoryDataTable*>(table) : nullptr;
}

const KudMemoryDataTable* KudMemoryDataTable::convert(const KudADataTable* table)
{
    return convert(const_cast<KudADataTable*>(table));
}

bool KudMemoryDataTable::isValid() const
{
    return true;
}

QByteArray KudMemoryDataTable::getType() const
{
    return getClassType();
}

QString KudMemoryDataTable::getName() const
{
    return m_name;
}

bool KudMemoryDataTable::hasSample() const
{
    return getSampleCount() > 0;
}

int KudMemoryDataTable::getSampleCount() const
{
    return m_table.getSampleCount();
}

void KudMemoryDataTable::setCoordSystem(const KuuCoordSystem& coordSystem)
{
    if (*m_coordSystem == coordSystem)
        return;
    *m_coordSystem = coordSystem;
    notifyReset();
}

KuuCoordSystem KudMemoryDataTable::getCoordSystem() const
{
    return *m_coordSystem;
}

HbuUnit KudMemoryDataTable::getCoordinateUnit() const
{
    const HbuUnit unit = getDetails(getStructuralVariable(HbdEVarRole::X_COORDINATE)).unit;
    return unit.isNone() ? m_coordSystem->getUnit() : unit;
}

HbuUnit KudMemoryDataTable::getElevationUnit() const
{
    const HbuUnit unit = getDetails(getStructuralVariable(HbdEVarRole::Z_COORDINATE)).unit;
    if (!unit.isNone())
        return unit;
    const HbuUnit coordinateUnit = getCoordinateUnit();
    return coordinateUnit.getUnitClass() == HbuEUnitClass::LENGTH ? coordinateUnit : HbuUnit();
}

void KudMemoryDataTable::setDataTable(HbdDataTable table)
{
    _beginResetTable();
    m_table = std::move(table);
    _endResetTable();
    notifyReset();
}

void KudMemoryDataTable::appendTable(const HbdDataTable& table, bool addMissing)
{
    {
        const KudResetScope scope(getModel());
        _clearHeaderCache();
        m_table.appendTable(table, addMissing);
    }
    notifyReset();
}

void KudMemoryDataTable::clearDataTable()
{
    setDataTable(HbdDataTable());
}

void KudMemoryDataTable::initHeaderFrom(const KudADataTable& other)
{
    HbdDataTable table;
    for (int i = 0; i < other.getVariableCount(); ++i) {
        if (const HbdAVariable* variable = other.readValues(other.getVariableAt(i)))
            table.addVariable(variable->createEmpty());
    }
    setDataTable(std::move(table));
}

void KudMemoryDataTable::initTableFrom(const KudADataTable& other)
{
    HbdDataTable table;
    table.setSampleCount(other.getSampleCount());
    for (int i = 0; i < other.getVariableCount(); ++i) {
        if (const HbdAVariable* variable = other.readValues(other.getVariableAt(i)))
            table.addVariable(variable->clone());
    }
    setDataTable(std::move(table));
}

void KudMemoryDataTable::addStructuralRoleToFilter(const HbdEVarRole& role)
{
    m_filteredRoles |= role;
    shownColumnsChanged();
    notifyReset();
}

void KudMemoryDataTable::addTagToFilter(const QString& tag)
{
    m_filteredTags << tag;
    shownColumnsChanged();
    notifyReset();
}

void KudMemoryDataTable::shownColumnsChanged()
{
    const KudResetScope scope(getModel());
    _clearHeaderCache();
}

bool KudMemoryDataTable::isFiltered(const HbdAVariable& variable) const
{
    const HbdVariableDetails& details = variable.getDetails();
    return m_filteredRoles.contains(details.role) ||
           std::any_of(m_filteredTags.begin(), m_filteredTags.end(),
                       [&](const QString& tag) { return details.tags.contains(tag); });
}

KudDatasetVariable KudMemoryDataTable::nameOf(const HbdAVariable& variable) const
{
    return KudDatasetVariable::createComponent(m_name, variable.getDetails().name,
                                               variable.getIndex(), variable.getComponent());
}

KudDataTableHeader KudMemoryDataTable::_rebuildHeader() const
{
    KudDataTableHeader header;
    QVector<KudDatasetVariable> row;
    m_columns.clear();
    for (int i = 0; i < m_table.getVariableCount(); ++i) {
        const HbdAVariable& column = *m_table.getVariableAt(i);
        if (isFiltered(column))
            continue;
        const KudDatasetVariable variable = nameOf(column);
        if (!variable.isValid())
            continue; // of a table without a name: nobody could ask for it
        HbdVariableDetails details = column.getDetails();
        details.support = m_support;
        header.addVariable(variable, details);
        if (const auto* categories = dynamic_cast<const HbdVariableEnum*>(&column))
            header.setCatalog(variable, categories->getCatalog());
        m_columns.push_back(const_cast<HbdAVariable*>(&column));
        row.append(variable);
    }
    m_row = std::make_shared<const QVector<KudDatasetVariable>>(std::move(row));
    header.setValid(true);
    return header;
}

void KudMemoryDataTable::_cacheClear() const
{
    // The columns are the values: nothing else is kept.
}

HbdAVariable* KudMemoryDataTable::_readVariable(const KudDatasetVariable& variable) const
{
    if (variable.support() != m_name)
        return nullptr;
    auto* column = const_cast<HbdAVariable*>(m_table.findVariable(variable.getFullVariableName()));
    // A plain name may look like that of a realization or a component.
    const bool isSame = column != nullptr && column->getIndex() == variable.index() &&
                        column->getComponent() == variable.component();
    return isSame ? column : nullptr;
}

KudDatasetVariable KudMemoryDataTable::_addVariable(HbdAVariable* variable)
{
    // Asked first, because a model must not announce a column that does not come.
    const KudDatasetVariable added = nameOf(*variable);
    const bool isAlone = m_table.getVariableCount() == 0 && getSampleCount() == 0;
    const bool setsCount = isAlone && variable->getCount() > 0;
    const bool hasFittingCount =
        setsCount ? testFlag(Ku::CanCreateSamples) : variable->getCount() == getSampleCount();
    if (!added.isValid() || !hasFittingCount || m_table.indexOf(variable->getFullName()) >= 0)
        return KudDatasetVariable(); // the column stays with the caller

    const int column = getVariableCount();
    const bool isShown = !isFiltered(*variable);
    std::unique_ptr<HbdAVariable> adopted(variable);
    if (setsCount) {
        _beginResetTable();
        m_table.addVariable(std::move(adopted));
        _endResetTable();
    } else {
        if (isShown)
            getModel()->beginInsertVariables(column, 1);
        m_table.addVariable(std::move(adopted));
        _clearHeaderCache();
        if (isShown)
            getModel()->endInsertVariables();
    }
    KudTableModif modif(KudTableModif::VariableAdded, added);
    if (setsCount) {
        modif.merge(KudTableModif(KudTableModif::SamplesAdded, KudDatasetVariable(),
                                  HbiIntervalIntSmall(0, getSampleCount() - 1)));
    }
    notify(KudDataTableModif(std::move(modif)));
    return added;
}

KudDatasetVariable KudMemoryDataTable::_createVariable(const HbdVariableDetails& details)
{
    std::unique_ptr<HbdAVariable> variable = HbdAVariable::create(details);
    variable->resize(getSampleCount());
    const KudDatasetVariable created = _addVariable(variable.get());
    if (created.isValid())
        variable.release(); // adopted
    return created;
}

bool KudMemoryDataTable::_deleteVariable(const KudDatasetVariable& variable)
{
    const HbdAVariable* column = _readVariable(variable);
    if (column == nullptr)
        return false;
    const int place = m_table.indexOf(column->getFullName());
    const int shown = getVariableRank(variable);
    if (shown >= 0)
        getModel()->beginRemoveVariables(shown, 1);
    m_table.removeVariable(place);
    _clearHeaderCache();
    if (shown >= 0)
        getModel()->endRemoveVariables();
    notifyVariableRemoved(variable);
    return true;
}

bool KudMemoryDataTable::renameColumns(const KudDatasetVariable& variable, const QString& name)
{
    // A plain variable takes its realizations and components along.
    std::vector<int> places;
    for (int i = 0; i < m_table.getVariableCount(); ++i) {
        const KudDatasetVariable column = nameOf(*m_table.getVariableAt(i));
        if (column == variable || variable.isChild(column))
            places.push_back(i);
    }
    for (std::size_t done = 0; done < places.size(); ++done) {
        if (m_table.renameVariable(places[done], name))
            continue;
        while (done > 0)
            m_table.renameVariable(places[--done], variable.variable());
        return false;
    }
    _clearHeaderCache();
    return !places.empty();
}

bool KudMemoryDataTable::_renameVariable(const KudDatasetVariable& variable, const QString& name)
{
    if (variable.support() != m_name || name == variable.variable() ||
        !renameColumns(variable, name))
        return false;
    const KudDatasetVariable renamed = variable.renamed(name);
    for (int i = 0; i < getVariableCount(); ++i) {
        if (getVariableAt(i) == renamed || renamed.isChild(getVariableAt(i)))
            getModel()->headerChanged(i, i);
    }
    notifyVariableModified(variable, KudTableModif::VariableRenamed, getDetails(renamed));
    return true;
}

bool KudMemoryDataTable::_setDetails(const KudDatasetVariable& variable,
                                     const HbdVariableDetails& details)
{
    HbdAVariable* column = _readVariable(variable);
    if (column == nullptr)
        return false;
    const HbdVariableDetails before = column->getDetails();
    HbdVariableDetails after = details;
    after.type = before.type;
    after.support = before.support; // the table says what its samples stand for
    const KudTableModif::Reasons reasons = KudTableModif::compareDetails(before, after);
    if (!reasons)
        return true;
    if (after.name != before.name && !renameColumns(variable, after.name))
        return false;

    const bool wasShown = !isFiltered(*column);
    column->setDetails(after);
    _clearHeaderCache();
    const int place = getVariableRank(variable.renamed(after.name));
    if (wasShown == isFiltered(*column))
        shownColumnsChanged();
    else if (place >= 0)
        getModel()->variableChanged(place);
    notifyVariableModified(variable, reasons, after);
    return true;
}
