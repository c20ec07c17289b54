#pragma once

#include <QtCore/QString>

class KudADataset;
class ToolJson;

/// What `info` and `import` tell about a dataset.
namespace ToolDatasetFacts
{
/// One object; docs/formats/info-json.md describes it.
void write(ToolJson& json, const KudADataset& dataset);

/// Lines for people: the dataset, then a table of its variables.
QString toText(const KudADataset& dataset);
} // namespace ToolDatasetFacts
