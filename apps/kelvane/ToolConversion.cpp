#include "ToolConversion.h"

#include "ToolCommand.h"
#include "ToolOutput.h"

#include <util/calc/KucExportData.h>

void ToolConversion::print(const KucExportData& job)
{
    const KuuCoordSystemConverter* const converter = job.getConverter();
    if (converter == nullptr)
        return;
    const QStringList lines = job.getConversionReport().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines)
        ToolOutput::printNote(line);
}
