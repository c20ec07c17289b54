#include <util/calc/KucExportData.h>

#include "KucExportCoordinates.h"
#include "KucGridOrder.h"

#include <geos/data/HgdDataSetGrid.h>
#include <geos/data/HgdDataSetPoints.h>

#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

#include <algorithm>

namespace
{
constexpr char SOURCE_PATH[] = "calc\\KucExportData";
constexpr int BLOCK_SIZE = 100000;   // ranks
constexpr int LON_LAT_PRECISION = 7; // about a centimetre

/// The details of a longitude or latitude; angles of other units are converted.
HbdVariableDetails toDegrees(HbdVariableDetails details)
{
    const HbuUnitService& units = HbuUnitService::getInstance();
    const bool isAngle = KucExportCoordinates::getConversionToDegrees(details.unit).isValid();
    details.displayUnit =
        units.getStorageUnit(isAngle ? details.unit.getUnitClass() : HbuEUnitClass::ANGLE);
    if (!isAngle)
        details.unit = details.displayUnit; // other units say nothing of degrees
    details.format = HbbEFormat::DECIMAL;
    details.precision = LON_LAT_PRECISION;
    return details;
}

/// Calls `function(first, end)` for the parts of at most `size` that a range falls into.
template <class Function>
void forEachPart(int first, int end, int size, Function&& function)
{
    while (first < end) {
        const int next = first + std::min(size, end - first);
        function(first, next);
        first = next;
    }
}

bool isXCoordinate(const HbdAVariable& variable)
{
    return variable.getDetails().role == HbdEVarRole::X_COORDINATE;
}
} // namespace

KucExportData::KucExportData(QObject* parent)
    : HgcACalculatorSimple(tr("Export"), parent)
{
    addInputRule({HgdADataSet::getDataRole(), 1, HgcInputRule::NO_LIMIT, {}});
}

KucExportData::~KucExportData()
{
    cancelAndWait();
}

void KucExportData::setDataset(const HgdADataSet& dataset)
{
    m_dataset = dataset.clone();
}

void KucExportData::setCoordSystems(const KuuCoordSystem& input, const KuuCoordSystem& output)
{
    m_inputSystem = input;
    m_outputSystem = output;
}

void KucExportData::setUnit(const QString& variable, const HbuUnit& unit)
{
    if (unit.isValid())
        m_units.insert(variable, unit);
    else
        m_units.remove(variable);
}

void KucExportData::setNodeCoordinates(bool write)
{
    m_nodeCoordinates = write;
}

void KucExportData::setSorting(const QList<int>& axes)
{
    m_sorting = axes;
}

void KucExportData::setGridCellPosition(int position)
{
    m_gridCellPosition = position;
}

void KucExportData::setUndefString(const QString& text)
{
    m_undefined = text;
}

void KucExportData::setFullPrecision(bool full)
{
    m_fullPrecision = full;
}

void KucExportData::setEncodingStrategy(KucAExportDataEncoding* encoding)
{
    if (encoding != m_encoding.get())
        m_encoding.reset(encoding);
}

const KuuCoordSystemConverter* KucExportData::getConverter() const
{
    return m_coordinates ? m_coordinates->getConverter() : nullptr;
}

KuuCoordSystemConverter::Counts KucExportData::getConversionCounts() const
{
    return m_coordinates ? m_coordinates->getCounts() : KuuCoordSystemConverter::Counts();
}

QString KucExportData::getConversionReport() const
{
    const KuuCoordSystemConverter* const converter = getConverter();
    return converter != nullptr ? converter->getReport(getConversionCounts()) : QString();
}

int KucExportData::_countInputs(const HgcInputRule& rule) const
{
    return m_dataset ? countVariables(rule, *m_dataset) : 0;
}

void KucExportData::_checkSetup() const
{
    if (!m_encoding)
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("There is no encoding strategy set."));
    if (!isGridExport()) {
        if (dynamic_cast<const HgdDataSetPoints*>(m_dataset.get()) == nullptr)
            HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("Expecting Point dataset"));
        return;
    }
    const auto* grid = dynamic_cast<const HgdDataSetGrid*>(m_dataset.get());
    if (grid == nullptr)
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("Expecting Grid dataset"));
    checkSorting(*grid);
}

void KucExportData::checkSorting(const HgdDataSetGrid& grid) const
{
    QList<int> axes = m_sorting;
    std::sort(axes.begin(), axes.end());
    const QList<int> expected = grid.getAxisCount() == 3 ? QList<int>{0, 1, 2} : QList<int>{0, 1};
    if (axes != expected)
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, tr("The sorting does not name each grid axis once"));
}

QString KucExportData::_checkInputs() const
{
    const QString error = HgcACalculatorSimple::_checkInputs();
    if (!error.isEmpty())
        return error;
    try {
        checkUnits(*createCoordinates());
    } catch (const HbeUserError& unfit) {
        return unfit.getMessage();
    }
    return QString();
}

std::unique_ptr<KucExportCoordinates> KucExportData::createCoordinates() const
{
    return std::make_unique<KucExportCoordinates>(
        *m_dataset,
        KucExportCoordinates::Setup{m_inputSystem, m_outputSystem, m_nodeCoordinates, BLOCK_SIZE});
}

void KucExportData::checkUnits(const KucExportCoordinates& coordinates) const
{
    QMap<QString, HbuUnit> unknown = m_units;
    for (const HbdAVariable* variable : m_dataset->getVariables(HgdADataSet::getDataRole())) {
        const QString name = variable->getFullName();
        unknown.remove(name);
        if (!m_units.contains(name))
            continue;
        const HbuUnit before = describe(*variable, coordinates).unit;
        const HbuUnit after = m_units.value(name);
        if (!HbuUnitService::getInstance().getConversion(before, after).isValid()) {
            throw HbeUserError(tr("The variable '%1' cannot be exported in '%2': its values are in "
                                  "'%3'.")
                                   .arg(name, after.getSymbol(), before.getSymbol()));
        }
    }
    if (!unknown.isEmpty())
        throw HbeUserError(tr("There is no variable '%1' to export in '%2'.")
                               .arg(unknown.firstKey(), unknown.first().getSymbol()));
}

void KucExportData::_compute()
{
    m_coordinates = createCoordinates();
    m_encoding->openFile();
    try {
        setMessage(tr("Exporting..."));
        writeHeader();
        exportSamples();
        m_encoding->closeFile();
    } catch (...) {
        m_encoding->abandonFile();
        throw;
    }
}

bool KucExportData::isLonLat(const HbdAVariable& variable) const
{
    return m_outputSystem.isGeographic() &&
           (isXCoordinate(variable) || variable.getDetails().role == HbdEVarRole::Y_COORDINATE);
}

/// The variable as it is exported; the unit is that of the values that the column reads.
HbdVariableDetails KucExportData::describe(const HbdAVariable& variable,
                                           const KucExportCoordinates& coordinates) const
{
    HbdVariableDetails details = coordinates.findValues(variable) != nullptr
                                     ? coordinates.describe(variable)
                                     : variable.getDetails();
    if (isLonLat(variable))
        details = toDegrees(details);
    const auto unit = m_units.find(variable.getFullName());
    if (unit != m_units.end())
        details = details.shownIn(*unit);
    if (m_fullPrecision)
        details.format = HbbEFormat::SHORTEST;
    return details;
}

KucExportColumn KucExportData::createColumn(const HbdAVariable& variable) const
{
    const HbdVariableDetails details = describe(variable, *m_coordinates);
    const HbuUnitTransfo conversion =
        HbuUnitService::getInstance().getConversion(details.unit, details.getShownUnit());
    if (const double* values = m_coordinates->findValues(variable))
        return KucExportColumn(values, conversion, details.format, details.precision);
    return KucExportColumn(variable, conversion, details.format, details.precision);
}

std::vector<const HbdAVariable*> KucExportData::getColumnVariables() const
{
    std::vector<const HbdAVariable*> variables = m_coordinates->getNodeVariables();
    for (const HbdAVariable* variable : m_dataset->getVariables(HgdADataSet::getDataRole()))
        variables.push_back(variable);
    return variables;
}

QStringList KucExportData::getIndexNames() const
{
    if (!isGridExport())
        return {};
    if (m_gridCellPosition == CellRank)
        return {QStringLiteral("IB")};
    if (m_gridCellPosition != CellIndices)
        return {};
    const QStringList names = {QStringLiteral("IX"), QStringLiteral("IY"), QStringLiteral("IZ")};
    return names.mid(0, m_sorting.size());
}

void KucExportData::writeHeader()
{
    QStringList names = getIndexNames();
    for (const HbdAVariable* variable : getColumnVariables()) {
        if (!isLonLat(*variable))
            names.append(variable->getFullName());
        else
            names.append(isXCoordinate(*variable) ? HbuEUnitClass::LONGITUDE.getLabel()
                                                  : HbuEUnitClass::LATITUDE.getLabel());
    }
    QList<KueFormatedVariant> cells;
    for (const QString& name : names)
        cells.append({name, HbbEFormat::DECIMAL, 2});
    m_encoding->writeLine(cells);
}

void KucExportData::exportSamples()
{
    Columns columns;
    for (const HbdAVariable* variable : getColumnVariables())
        columns.push_back(createColumn(*variable));
    KucExportBlock block(columns, m_undefined, *this);
    initCounter(m_dataset->getSampleCount());
    if (isGridExport())
        exportGrid(block);
    else
        exportPoints(block);
}

void KucExportData::exportPoints(KucExportBlock& block)
{
    const int count = m_dataset->getSampleCount();
    const HbiIntervalIntSmallDisjoint selected =
        m_dataset->hasSelection() ? m_dataset->getSelection()
                                  : HbiIntervalIntSmallDisjoint(HbiIntervalIntSmall(0, count - 1));
    const auto intervals = selected.intervals();
    auto interval = intervals.begin();
    std::vector<int> ranks;
    forEachPart(0, count, BLOCK_SIZE, [&](int first, int end) {
        checkCancelled();
        ranks.clear();
        for (; interval != intervals.end() && (*interval).getMin() < end; ++interval) {
            const int last = std::min((*interval).getMax(), end - 1);
            for (int rank = std::max((*interval).getMin(), first); rank <= last; ++rank)
                ranks.push_back(rank);
            if ((*interval).getMax() >= end)
                break; // it goes on in the next block
        }
        const int loaded = static_cast<int>(ranks.size());
        advance(end - first - loaded);
        writeBlock(block, ranks, {}, 0);
    });
}

/// Columns are read where they are, so a slab takes no memory for values but the block's
/// coordinates. Still a grid whose values are more than the memory is read in slabs: along the
/// outermost loop, whose rows are consecutive in the file, so that the file is the same.
void KucExportData::exportGrid(KucExportBlock& block)
{
    const auto& grid = static_cast<const HgdDataSetGrid&>(*m_dataset);
    const KucGridOrder order(grid, m_sorting);
    const qint64 sampleSize = grid.getSampleSize() + (getConverter() != nullptr ? 8 : 0);
    const qint64 memory = getAvailableMemory();
    qint64 layers = order.getLength(0);
    if (layers * order.getLength(1) * sampleSize > memory)
        layers = std::clamp<qint64>(memory / (order.getLayerSize() * sampleSize), 1, layers);
    const int slabSize = static_cast<int>(layers * order.getLayerSize());
    forEachPart(0, grid.getSampleCount(), slabSize, [&](int slabFirst, int slabEnd) {
        checkCancelled();
        forEachPart(slabFirst, slabEnd, BLOCK_SIZE, [&](int first, int end) {
            checkCancelled();
            exportCells(block, order, first, end);
        });
    });
}

void KucExportData::exportCells(KucExportBlock& block, const KucGridOrder& order, int first,
                                int end)
{
    const int indexCount = getIndexNames().size();
    const bool all = !m_dataset->hasSelection();
    std::vector<int> ranks;
    std::vector<int> indices;
    ranks.reserve(std::size_t(end - first));
    order.forEachCell(first, end, [&](int rank, const std::array<int, 3>& at) {
        if (!all && !m_dataset->getSelection().contains(rank))
            return;
        ranks.push_back(rank);
        if (m_gridCellPosition == CellRank)
            indices.push_back(rank + 1);
        else
            for (int i = 0; i < indexCount; ++i)
                indices.push_back(at[std::size_t(i)] + 1);
    });
    const int loaded = static_cast<int>(ranks.size());
    advance(end - first - loaded);
    writeBlock(block, ranks, indices, indexCount);
}

void KucExportData::writeBlock(KucExportBlock& block, const std::vector<int>& ranks,
                               const std::vector<int>& indices, int indexCount)
{
    const HbdSpan<const int> rows(ranks.data(), static_cast<int>(ranks.size()));
    m_coordinates->load(rows, *this);
    block.setRows(rows, {indices.data(), static_cast<int>(indices.size())}, indexCount);
    m_encoding->writeBlock(block);
}
