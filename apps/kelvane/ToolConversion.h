#pragma once

class KucExportData;

/// What is to be said of coordinates that were converted.
namespace ToolConversion
{
/// The report of the export's conversion: notes, and warnings of all that makes coordinates worse
/// than they look. Nothing where there was no conversion.
void print(const KucExportData& job);
} // namespace ToolConversion
