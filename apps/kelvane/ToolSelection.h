#pragma once

#include "ToolCommand.h"

#include <util/filter/KufSampleFilter.h>

#include <basic/interval/HbiIntervalIntSmallDisjoint.h>

#include <QtCore/QBitArray>

class KudADataset;

/// The samples that the options --rule, --combine, --filter and --masked keep: one meaning for all
/// commands that have them. Rules and filters count masked samples like any others.
namespace ToolSelection
{
/// --rule, --combine and --filter, in the order of the help.
QVector<ToolOption> getFilterOptions();
/// These and --masked.
QVector<ToolOption> getOptions();

/// A usage error where the options make no sense together. Looks at the command line alone.
void checkUsage(const QCommandLineParser& line);

/// True with --rule or --filter.
bool hasFilter(const QCommandLineParser& line);
/// True when any of the options asks for some of the samples.
bool isRestricted(const QCommandLineParser& line);

/// What --rule and --combine say, or the project's filter that --filter names, checked against the
/// samples of the dataset. HbeUserError, which names the rule, the character and what was expected
/// there, or the rule and its variable.
KufSampleFilter readFilter(const QCommandLineParser& line, const QString& project,
                           const KudADataset& dataset);

/// One bit a sample. The filter fits the dataset, as readFilter checks.
QBitArray evaluate(const KufSampleFilter& filter, const KudADataset& dataset);

/// The ranks of the samples that the options keep; all of them without the options.
HbiIntervalIntSmallDisjoint readRanks(const QCommandLineParser& line, const QString& project,
                                      const KudADataset& dataset);
} // namespace ToolSelection
