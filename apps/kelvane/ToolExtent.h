#pragma once

#include <util/utils/KuuCoordSystem.h>

#include <basic/geometry/HbgBox.h>

class KudADataset;

/// Where the samples of a dataset lie in another coordinate system.
namespace ToolExtent
{
/// The box of the converted coordinates, each sample converted for itself; empty where there are
/// none. HbeUserError where the dataset's system, or its unit, does not convert.
HbgBox compute(const KudADataset& dataset, const KuuCoordSystem& system);

/// Of the y coordinates as they are stored: their own unit, else that of the dataset's system. The
/// x coordinates may be in another one.
HbuUnit getUnitOfY(const KudADataset& dataset);
} // namespace ToolExtent
