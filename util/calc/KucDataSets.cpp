#include <util/calc/KucDataSets.h>

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/dataset/KudSelector.h>

#include <basic/data/HbdANumericVariable.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QCoreApplication>

namespace
{
const KudADataTable& objectTable(const KudADataset& dataset)
{
    const KudADataTable* table = dataset.getObjectTable();
    return table != nullptr ? *table : *KudADataTable::staticEmptyDataTable();
}

void addVariables(HgdADataSet& dataSet, const KudADataTable& table,
                  const KudDatasetVariableList& variables)
{
    for (const KudDatasetVariable& variable : variables) {
        const HbdAVariable* values = table.readValues(variable);
        if (values == nullptr) {
            HBE_PROGRAMMING_ERROR(
                "calc\\KucDataSets",
                QCoreApplication::translate("KucDataSets", "There is no variable '%1'")
                    .arg(variable.getFullVariableName()));
        }
        dataSet.addVariable(*values);
    }
}

void restrict(HbiIntervalIntSmallDisjoint& ranks, const HbiIntervalIntSmallO64Disjoint* interval)
{
    if (interval == nullptr)
        return;
    HbiIntervalIntSmallDisjoint kept;
    for (const auto& range : interval->intervals()) {
        const qint64 first = std::max<qint64>(range.getMin(), ranks.getMin());
        const qint64 last = std::min<qint64>(range.getMax(), ranks.getMax());
        if (first <= last)
            kept.add(HbiIntervalIntSmall(int(first), int(last)));
    }
    ranks.intersect(kept);
}
} // namespace

KudDatasetVariableList Kuc::getExportedVariables(const KudADataset& dataset)
{
    const KudADataTable& table = objectTable(dataset);
    const QStringList kept = dataset.getTags(KudADataset::NotExportedVariable);
    KudDatasetVariableList variables;
    for (int i = 0; i < table.getVariableCount(); ++i) {
        const KudDatasetVariable variable = table.getVariableAt(i);
        const HbbTags tags = table.getVariableTags(variable);
        const bool isKept = std::any_of(kept.begin(), kept.end(),
                                        [&](const QString& tag) { return tags.contains(tag); });
        if (!isKept && table.readValues(variable) != nullptr)
            variables.append(variable);
    }
    return variables;
}

HbiIntervalIntSmallDisjoint Kuc::getActiveSamples(const KudADataset& dataset)
{
    const KudADataTable& table = objectTable(dataset);
    HbiIntervalIntSmallDisjoint ranks(HbiIntervalIntSmall(0, table.getSampleCount() - 1));
    restrict(ranks, dataset.getInterval());
    restrict(ranks, table.getInterval());
    return ranks.subtract(table.getMaskConst()->selectedRows());
}

HgdDataSetPoints Kuc::createPoints(const KudADataset& dataset,
                                   const KudDatasetVariableList& variables)
{
    const KudADataTable& table = objectTable(dataset);
    HgdDataSetPoints points(table.getSampleCount());
    points.setCoordinates(table.readXCoordinate(), table.readYCoordinate(),
                          table.readZCoordinate());
    addVariables(points, table, variables);
    return points;
}

HgdDataSetGrid Kuc::createGrid(const KudMemoryDatasetGrid& dataset,
                               const KudDatasetVariableList& variables)
{
    const KuuGeometrySet geometry = dataset.readGeometrySet();
    if (geometry.isSparseGrid()) {
        throw HbeUserError(QCoreApplication::translate(
                               "KucDataSets", "The grid '%1' is sparse: a full grid is needed.")
                               .arg(dataset.getName()));
    }
    HgdDataSetGrid grid(geometry.isValid() ? std::as_const(geometry).toGrid() : HbgGeomGrid());
    addVariables(grid, *dataset.getGridTable(), variables);
    return grid;
}
