#include "KucExportCoordinates.h"

#include <geos/data/HgdDataSetGrid.h>
#include <geos/data/HgdDataSetPoints.h>

#include <basic/calc/HbcSubProgress.h>
#include <basic/data/HbdANumericVariable.h>
#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

#include <algorithm>
#include <cmath>

namespace
{
const HbdEVarRole& roleOf(int axis)
{
    static const HbdEVarRole* const roles[] = {
        &HbdEVarRole::X_COORDINATE, &HbdEVarRole::Y_COORDINATE, &HbdEVarRole::Z_COORDINATE};
    return *roles[axis];
}

/// The unit of elevations that go with a system: that of its coordinates, metres where these are
/// angles.
HbuUnit getElevationUnit(const KuuCoordSystem& system)
{
    const HbuUnit unit = system.getUnit();
    return unit.getUnitClass() == HbuEUnitClass::LENGTH
               ? unit
               : HbuUnitService::getInstance().getReferenceUnit(HbuEUnitClass::LENGTH);
}

/// As many decimals as a millimetre takes.
int getDecimals(const HbuUnit& length)
{
    const double metres = length.getUnitClass() == HbuEUnitClass::LENGTH
                              ? std::fabs(length.getTransfo().getFactor())
                              : 1.;
    return std::max(0, static_cast<int>(std::ceil(3 + std::log10(metres) - 1e-9)));
}

/// Numbers that show fractions keep their digits; whole ones are whole no more.
bool hasOwnDigits(const HbdVariableDetails& details)
{
    const bool isWhole = details.format == HbbEFormat::INTEGER ||
                         (details.format == HbbEFormat::DECIMAL && details.precision <= 0);
    return details.type != HbdEVarType::INTEGER && details.format != HbbEFormat::GENERAL &&
           !isWhole;
}

const HbdAVariable* readPoints(const HgdDataSetPoints& points, int axis)
{
    const HbdANumericVariable* const columns[] = {points.getX(), points.getY(), points.getZ()};
    return columns[axis];
}
} // namespace

KucExportCoordinates::KucExportCoordinates(const HgdADataSet& dataset, const Setup& setup)
    : m_setup(setup)
    , m_grid(dynamic_cast<const HgdDataSetGrid*>(&dataset))
{
    if (!setup.input.isSameTransfo(setup.output))
        m_converter.emplace(setup.input, setup.output);
    findExported(dataset);
    if (setup.writesNodes && m_grid != nullptr)
        addNodeVariables(dataset);
    if (m_converter)
        convertExported(dataset);
    for (Source& source : m_sources) {
        if (source.isUsed)
            source.values.resize(std::size_t(std::min(setup.blockSize, dataset.getSampleCount())));
    }
}

void KucExportCoordinates::findExported(const HgdADataSet& dataset)
{
    for (const HbdAVariable* variable : dataset.getVariables(HgdADataSet::getDataRole())) {
        for (int axis = X; axis < AXIS_COUNT; ++axis) {
            Source& source = m_sources[std::size_t(axis)];
            if (variable->getDetails().role != roleOf(axis) || variable == source.exported ||
                dynamic_cast<const HbdANumericVariable*>(variable) == nullptr)
                continue;
            if (source.exported != nullptr && m_converter) {
                throw HbeUserError(
                    tr("The coordinates cannot be converted: '%1' and '%2' have the same role, %3.")
                        .arg(source.exported->getFullName(), variable->getFullName(),
                             roleOf(axis).getLabel()));
            }
            if (source.exported == nullptr)
                source.exported = variable;
        }
    }
}

void KucExportCoordinates::addNodeVariables(const HgdADataSet& dataset)
{
    QStringList taken;
    for (const HbdAVariable* variable : dataset.getVariables(HgdADataSet::getDataRole()))
        taken.append(variable->getFullName());
    static const QString names[] = {QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z")};
    for (int axis = X; axis < m_grid->getAxisCount(); ++axis) {
        Source& source = m_sources[std::size_t(axis)];
        if (source.exported != nullptr)
            continue;
        QString name = names[axis];
        while (taken.contains(name))
            name += QLatin1String("_node");
        HbdVariableDetails details(name, HbdEVarType::REAL, roleOf(axis));
        details.unit = axis == Z ? getElevationUnit(m_setup.input) : m_setup.input.getUnit();
        details.format = m_converter ? HbbEFormat::GENERAL : HbbEFormat::SHORTEST;
        source.node = std::make_unique<HbdVariableReal>(details);
        source.isNode = true;
        source.isUsed = true;
    }
}

void KucExportCoordinates::convertExported(const HgdADataSet& dataset)
{
    m_converts = std::any_of(m_sources.begin(), m_sources.end(), [](const Source& source) {
        return source.exported != nullptr || source.node != nullptr;
    });
    if (!m_converts)
        return;
    for (const Axis axis : {X, Y, Z}) {
        openSource(axis, dataset);
        if (!m_sources[axis].isUsed && axis != Z) {
            throw HbeUserError(tr("The coordinates cannot be converted: the dataset has no "
                                  "variable of the role %1.")
                                   .arg(roleOf(axis).getLabel()));
        }
    }
}

void KucExportCoordinates::openSource(Axis axis, const HgdADataSet& dataset)
{
    Source& source = m_sources[axis];
    const HbdAVariable* variable = source.exported;
    if (const auto* points = dynamic_cast<const HgdDataSetPoints*>(&dataset))
        variable = variable != nullptr ? variable : readPoints(*points, axis);
    if (variable == nullptr) {
        source.isNode = m_grid != nullptr && axis < m_grid->getAxisCount();
        source.isUsed = source.isNode;
        return;
    }
    const HbuUnit& unit = variable->getDetails().unit;
    if (axis == Z && !unit.isNone() && unit.getUnitClass() != HbuEUnitClass::LENGTH)
        return; // a depth in milliseconds is no elevation, and stays as it is
    source.column.emplace(*variable, getUnitConversion(axis, *variable), HbbEFormat::SHORTEST, 0);
    source.isUsed = true;
}

/// From the variable's unit to that of the system it is converted from.
HbuUnitTransfo KucExportCoordinates::getUnitConversion(Axis axis,
                                                       const HbdAVariable& variable) const
{
    const HbuUnitService& units = HbuUnitService::getInstance();
    const HbuUnit& unit = variable.getDetails().unit;
    if (unit.isNone())
        return HbuUnitTransfo();
    const HbuUnitTransfo conversion =
        axis == Z                      ? units.getConversion(unit, getElevationUnit(m_setup.input))
        : m_setup.input.isGeographic() ? getConversionToDegrees(unit)
                                       : m_setup.input.getConvertFromTransfo(unit);
    if (!conversion.isValid()) {
        throw HbeUserError(
            tr("The unit '%1' of the variable '%2' does not fit the coordinate system '%3', whose "
               "coordinates are in '%4'.")
                .arg(unit.getSymbol(), variable.getFullName(), m_setup.input.getName(),
                     m_setup.input.getUnit().getSymbol()));
    }
    return conversion;
}

HbuUnitTransfo KucExportCoordinates::getConversionToDegrees(const HbuUnit& unit)
{
    return unit.getUnitClass().isAngle()
               ? HbuUnitService::getInstance().getConversionToStorageUnit(unit)
               : HbuUnitTransfo::invalid();
}

std::vector<const HbdAVariable*> KucExportCoordinates::getNodeVariables() const
{
    std::vector<const HbdAVariable*> variables;
    for (const Source& source : m_sources) {
        if (source.node)
            variables.push_back(source.node.get());
    }
    return variables;
}

int KucExportCoordinates::indexOf(const HbdAVariable& variable) const
{
    for (int axis = X; axis < AXIS_COUNT; ++axis) {
        const Source& source = m_sources[std::size_t(axis)];
        const bool isConverted = m_converts && source.exported == &variable;
        if (source.isUsed && (isConverted || source.node.get() == &variable))
            return axis;
    }
    return -1;
}

const double* KucExportCoordinates::findValues(const HbdAVariable& variable) const
{
    const int axis = indexOf(variable);
    return axis < 0 ? nullptr : m_sources[std::size_t(axis)].values.data();
}

HbdVariableDetails KucExportCoordinates::describe(const HbdAVariable& variable) const
{
    HbdVariableDetails details = variable.getDetails();
    if (!m_converts)
        return details;
    const bool isElevation = indexOf(variable) == Z;
    const auto unitOf = [isElevation](const KuuCoordSystem& system) {
        return isElevation ? getElevationUnit(system) : system.getUnit();
    };
    const HbuUnit before =
        details.getShownUnit().isNone() ? unitOf(m_setup.input) : details.getShownUnit();
    const HbuUnit after = isElevation ? before : unitOf(m_setup.output);
    if (hasOwnDigits(details)) {
        details.displayUnit = before;
        details = details.shownIn(after);
    } else {
        details.format = HbbEFormat::DECIMAL;
        details.precision = getDecimals(after);
    }
    details.type = HbdEVarType::REAL; // so are the values, whatever the column's are
    details.unit = unitOf(m_setup.output);
    details.displayUnit = after;
    return details;
}

void KucExportCoordinates::readNodes(HbdSpan<const int> ranks)
{
    const HbgGeomGrid& geometry = m_grid->getGeometry();
    for (int row = 0; row < ranks.size(); ++row) {
        const HbgVector3D at = geometry.getPosition(ranks[row]);
        const double position[] = {at.x, at.y, at.z};
        for (int axis = X; axis < AXIS_COUNT; ++axis) {
            Source& source = m_sources[std::size_t(axis)];
            if (source.isNode && source.isUsed)
                source.values[std::size_t(row)] = position[axis];
        }
    }
}

void KucExportCoordinates::load(HbdSpan<const int> ranks, HbcAProgress& progress)
{
    bool hasNodes = false;
    for (Source& source : m_sources) {
        hasNodes = hasNodes || source.isNode;
        for (int row = 0; source.column && row < ranks.size(); ++row)
            source.values[std::size_t(row)] = source.column->getReal(ranks[row]);
    }
    if (hasNodes)
        readNodes(ranks);
    if (!m_converts || ranks.size() == 0)
        return;
    double* const z = m_sources[Z].isUsed ? m_sources[Z].values.data() : nullptr;
    m_converter->wantToConvert(m_sources[X].values.data(), m_sources[Y].values.data(), z,
                               ranks.size());
    const HbcSubProgress part(progress, 0); // the rows are counted as they are written
    m_counts += m_converter->convertWanted(progress);
}
