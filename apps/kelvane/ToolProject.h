#pragma once

#include <util/dataset/KudDatasetDirectory.h>

/// What the commands that read a dataset of a project share.
namespace ToolProject
{
/// The dataset of that name; a user error that lists those there are when there is none.
std::unique_ptr<KudADataset> readDataset(const KudDatasetDirectory& project, const QString& name);
} // namespace ToolProject
