#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDatasetVariableList.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <geos/data/HgdDataSetGrid.h>
#include <geos/data/HgdDataSetPoints.h>

class KudADataset;
class KudMemoryDatasetGrid;

/// Datasets as calculators take them, without a copy of their columns: the dataset stays alive and
/// unedited while a calculator works with what is made here. Called in the main thread; the result
/// goes wherever the calculator runs.
namespace Kuc
{
/// The variables that are exported when none is named: those of the object table, without what a
/// tag keeps from being exported.
KELVANE_UTIL_EXPORT KudDatasetVariableList getExportedVariables(const KudADataset& dataset);

/// The ranks of the samples to work with: those of the intervals that the dataset and its object
/// table are restricted to, without the masked ones.
KELVANE_UTIL_EXPORT HbiIntervalIntSmallDisjoint getActiveSamples(const KudADataset& dataset);

/// The samples of the object table as points, with these variables in the role of data and the
/// table's coordinates. All samples are selected. A variable that the table does not hold is a
/// programming error.
KELVANE_UTIL_EXPORT HgdDataSetPoints createPoints(const KudADataset& dataset,
                                                  const KudDatasetVariableList& variables);

/// The same for the nodes of a full grid. HbeUserError for a sparse one: calculators walk along the
/// axes of a grid, and its cells leave gaps there.
KELVANE_UTIL_EXPORT HgdDataSetGrid createGrid(const KudMemoryDatasetGrid& dataset,
                                              const KudDatasetVariableList& variables);
} // namespace Kuc
