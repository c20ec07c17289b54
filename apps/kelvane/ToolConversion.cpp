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

/// What was done, in one line. Which operation a point took is known when there is but one.
void printSummary(const QVector<Operation>& operations, const Counts& counts)
{
    QStringList names;
    for (const Operation& operation : operations) {
        if (operation.grids.isEmpty())
            names.append(operation.name);
    }
    QString text = Tool::tr("Coordinates converted: %1 points").arg(counts.converted);
    if (counts.undefined > 0)
        text += Tool::tr(", %1 without coordinates").arg(counts.undefined);
    if (counts.converted > 0)
        text += QStringLiteral(", ") + accuracyText(counts.worstAccuracy);
    if (!names.isEmpty())
        text += Tool::tr(", by '%1'").arg(names.first());
    if (names.size() > 1)
        text += Tool::tr(" or, where that does not hold, %1 others").arg(names.size() - 1);
    ToolOutput::printNote(text);
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
    ToolOutput::printWarning(
        Tool::tr("A better conversion (%1) needs a file that PROJ does not find here: %2")
            .arg(accuracyText(best->accuracy), best->grids.join(QStringLiteral(", "))));
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
