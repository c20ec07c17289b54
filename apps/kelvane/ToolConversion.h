#pragma once

class KucExportData;

/// What is to be said of coordinates that were converted.
namespace ToolConversion
{
/// The conversion of the export in a line, and a warning of each thing that makes coordinates worse
/// than they look. Nothing where there was no conversion.
void print(const KucExportData& job);
} // namespace ToolConversion
