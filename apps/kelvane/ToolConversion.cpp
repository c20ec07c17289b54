#include "ToolConversion.h"

#include "ToolCommand.h"
#include "ToolOutput.h"

#include <util/calc/KucExportData.h>

#include <basic/base/HbbGlobal.h>

#include <algorithm>

namespace
{
using Counts = KuuCoordSystemConverter::Counts;
using Operation = KuuCoordSystemConverter::Operation;

QString accuracyText(double accuracy)
{
    return HbbGlobal::isUndefined(accuracy)
               ? Tool::tr("accuracy unknown")
               : Tool::tr("accuracy %1 m").arg(ToolOutput::toText(accuracy));
}

/// The operations that points took, with the number of points where there are several.
QString operationsText(const QVector<Operation>& operations, const Counts& counts)
{
    const QVector<qint64>& points = counts.byOperation;
    QStringList used;
    for (int i = 0; i < std::min(operations.size(), points.size()); ++i) {
        if (points.at(i) == 0)
            continue;
        const QString name = QStringLiteral("'%1'").arg(operations.at(i).name);
        const bool isAll = points.at(i) == counts.converted;
        used.append(isAll ? name : Tool::tr("%1 (%2 points)").arg(name).arg(points.at(i)));
    }
    return used.isEmpty() ? QString() : Tool::tr(", by %1").arg(used.join(QStringLiteral(", ")));
}

/// What was done, in one line.
void printSummary(const QVector<Operation>& operations, const Counts& counts)
{
    QString text = Tool::tr("Coordinates converted: %1 points").arg(counts.converted);
    if (counts.undefined > 0)
        text += Tool::tr(", %1 without coordinates").arg(counts.undefined);
    if (counts.converted > 0)
        text += QStringLiteral(", ") + accuracyText(counts.worstAccuracy);
    ToolOutput::printNote(text + operationsText(operations, counts));
}

/// The best operation that lacks a file, if it would have done better.
void warnOfMissingFiles(const QVector<Operation>& operations, const Counts& counts)
{
    const Operation* best = nullptr;
    for (const Operation& operation : operations) {
        const double limit = best != nullptr ? best->accuracy : counts.worstAccuracy;
        if (!operation.grids.isEmpty() && operation.accuracy < limit) // D_FFFF is the greatest
            best = &operation;
    }
    if (best == nullptr || counts.converted == 0)
        return;
    QString text =
        Tool::tr("A better conversion (%1) needs a file that PROJ does not find here: %2")
            .arg(accuracyText(best->accuracy), best->grids.join(QStringLiteral(", ")));
    if (!best->areaName.isEmpty())
        text += Tool::tr("; its area of use is %1").arg(best->areaName);
    ToolOutput::printWarning(text);
}
} // namespace

void ToolConversion::print(const KucExportData& job)
{
    const KuuCoordSystemConverter* const converter = job.getConverter();
    if (converter == nullptr)
        return;
    const Counts counts = job.getConversionCounts();
    const QVector<Operation> operations = converter->getOperations();
    printSummary(operations, counts);
    if (counts.failed > 0) {
        ToolOutput::printWarning(Tool::tr("%1 points cannot be converted: their coordinates are "
                                          "written as undefined.")
                                     .arg(counts.failed));
    }
    if (counts.outside > 0) {
        ToolOutput::printWarning(Tool::tr("%1 points lie outside of the area of use of one of the "
                                          "two systems: nobody vouches for what they became.")
                                     .arg(counts.outside));
    }
    if (counts.ballpark > 0) {
        ToolOutput::printWarning(Tool::tr("%1 points were converted without the change of datum: "
                                          "they may be wrong by tens or hundreds of metres.")
                                     .arg(counts.ballpark));
    }
    warnOfMissingFiles(operations, counts);
}
