#pragma once

#include <util/utils/KuuCoordSystem.h>

#include <QtCore/QString>

class KudADataset;
class ToolJson;

/// What `info` and `import` tell about a dataset.
namespace ToolDatasetFacts
{
/// One object; docs/formats/info-json.md describes it. With a coordinate system that is valid it
/// tells the extent in that one, too; what cannot be converted is warned of.
void write(ToolJson& json, const KudADataset& dataset,
           const KuuCoordSystem& other = KuuCoordSystem());

/// Lines for people: the dataset, then a table of its variables.
QString toText(const KudADataset& dataset, const KuuCoordSystem& other = KuuCoordSystem());
} // namespace ToolDatasetFacts
