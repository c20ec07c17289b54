#pragma once

#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudDatasetVariableList.h>
#include <util/utils/KuuCoordSystem.h>

#include <QtCore/QCommandLineParser>

/// What the commands that read a dataset of a project share.
namespace ToolProject
{
/// The dataset of that name; a user error that lists those there are when there is none.
std::unique_ptr<KudADataset> readDataset(const KudDatasetDirectory& project, const QString& name);

/// A variable of the dataset's samples by its full name; a user error that lists those there are
/// when there is none.
KudDatasetVariable findVariable(const KudADataset& dataset, const QString& name);

/// The variables that --variables lists, in its order; all that are to be exported without the
/// option. A name that holds a comma stands in double quotes.
KudDatasetVariableList readVariables(const QCommandLineParser& line, const KudADataset& dataset);

/// The system that --cs asks for; an invalid one without the option.
KuuCoordSystem readCoordSystem(const QCommandLineParser& line);

/// The dataset's system, to convert from; a user error that says how to set one when there is none
/// that can be used.
KuuCoordSystem requireCoordSystem(const KudDatasetDirectory& project, const KudADataset& dataset);
} // namespace ToolProject
