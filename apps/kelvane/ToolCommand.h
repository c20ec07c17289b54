#pragma once

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QVector>

/// Carries the translations of the tool's messages: Tool::tr("…").
struct Tool {
    Q_DECLARE_TR_FUNCTIONS(Tool)
};

/// What the tool's exit code says. A run that a signal ends answers 128 and the signal's number, as
/// shells do: 130 for Ctrl-C.
enum ExitCode {
    ExitDone = 0,
    ExitWrongInput = 1, ///< the user's files or names are wrong, or the disk refused
    ExitWrongUsage = 2, ///< the command line makes no sense
    ExitFault = 3,      ///< the tool itself is at fault
    ExitSignal = 128,
};

/// One option of a subcommand; without `value` it is a switch.
struct ToolOption {
    QString name;
    QString value; ///< what stands for the value in the help
    QString text;
};

/// A subcommand: what it is called with, what its help says, what it does. The functions that make
/// them stand in ToolCommands.h, each beside its command.
struct ToolCommand {
    QString name;
    QString arguments; ///< as the help shows them: "DIR DATASET FILE"
    QString summary;   ///< one line
    QString details;   ///< paragraphs of the help; may be empty
    QString example;   ///< lines that can be typed as they stand
    QVector<ToolOption> options;
    int minArguments = 0;
    int maxArguments = 0;
    bool draws = false;    ///< it needs fonts, so a QGuiApplication
    bool usesUnits = true; ///< it needs the units, the user's own among them

    /// Does the work; the command line has its options and as many arguments as it may.
    int (*run)(const QCommandLineParser& line) = nullptr;

    QString getHelp() const;
};
