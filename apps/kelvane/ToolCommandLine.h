#pragma once

#include <QtCore/QCommandLineParser>
#include <QtCore/QStringList>

struct ToolCommand;

/// Reads the words behind a subcommand's name. Raises ToolUsageError, with a hint, for words that
/// the subcommand does not know.
namespace ToolCommandLine
{
/// `arguments` begin with the subcommand's name.
void parse(const ToolCommand& command, const QStringList& arguments, QCommandLineParser& line);

/// "; did you mean '…'?" when one of the known words is close, else nothing.
QString getHint(const QString& word, const QStringList& known);

/// The value of an option that takes one of a few words, as its place in `words`; the first word is
/// the default.
int readWord(const QCommandLineParser& line, const QString& option, const QStringList& words);

/// The value of an option that takes a number above 0.
int readCount(const QCommandLineParser& line, const QString& option, int defaultCount);

/// The value of an option that takes a number of bytes above 0: "4096", "500M", "2G"; the letters
/// are powers of 1024.
qint64 readSize(const QCommandLineParser& line, const QString& option, qint64 defaultSize);

/// A usage error, with the hint, where two of the options are given.
void checkExclusive(const QCommandLineParser& line, const QStringList& options,
                    const QString& hint);
} // namespace ToolCommandLine
