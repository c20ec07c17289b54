#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolInterrupt.h"
#include "ToolOutput.h"
#include "ToolUsageError.h"

#include <util/utils/KuuUnitCatalog.h>

#include <basic/calc/HbcCancelled.h>
#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QTextCodec>
#include <QtGui/QGuiApplication>

#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int US_ASCII = 3; // the number of the encoding in IANA's list

std::vector<ToolCommand> createCommands()
{
    return {createImportCommand(),  createInfoCommand(),   createSetCommand(),
            createSelectCommand(),  createTableCommand(),  createExportCommand(),
            createCheckCommand(),   createMapCommand(),    createCsCommand(),
            createConvertCommand(), createUnitsCommand(),  createPackCommand(),
            createUnpackCommand(),  createArchiveCommand()};
}

QString generalHelp(const std::vector<ToolCommand>& commands)
{
    QString help = Tool::tr("Usage: kelvane COMMAND [arguments]\n\n"
                            "Samples in, a project on disk, an export out.\n\nCommands:\n");
    for (const ToolCommand& command : commands)
        help += QStringLiteral("  %1%2\n").arg(command.name.leftJustified(8), command.summary);
    help += Tool::tr("\n'kelvane COMMAND --help' tells more of one of them. 'kelvane --version' "
                     "shows the version.\n\nExample:\n"
                     "  kelvane import samples.csv --project survey\n"
                     "  kelvane info survey samples\n\n"
                     "Exit codes: 0 done, 1 the input is wrong, 2 wrong usage, 3 a fault of the "
                     "tool,\n130 ended by Ctrl-C.\n");
    return help;
}

/// Qt's own remarks (on a missing runtime directory, say) are nothing for the user of a tool.
void keepQtQuiet(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        ToolOutput::printError(message);
}

/// A file of ours must not get the number of a stream that the caller has closed, or our messages
/// would go into it. What stands in for the stream fails as a closed one does.
void fillStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0 &&
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream)
            std::abort();
    }
}

/// The application that a command needs: drawing takes fonts, and no display.
std::unique_ptr<QCoreApplication> createApplication(int& argc, char** argv, bool draws)
{
    if (!draws)
        return std::make_unique<QCoreApplication>(argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

int runCommand(const ToolCommand& command, const QStringList& arguments)
{
    QCommandLineParser line;
    ToolCommandLine::parse(command, arguments, line);
    if (line.isSet(QStringLiteral("help"))) {
        ToolOutput::print(command.getHelp());
        return ExitDone;
    }
    if (command.usesUnits)
        KuuUnitCatalog::init(); // a variable may have a unit of the user's own
    return command.run(line);
}

int runTool(const std::vector<ToolCommand>& commands, const QStringList& arguments)
{
    const QString word = arguments.value(0);
    if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
        ToolOutput::print(generalHelp(commands));
        return ExitDone;
    }
    if (word == QLatin1String("--version")) {
        ToolOutput::print(QStringLiteral("kelvane %1\n").arg(QLatin1String(KELVANE_VERSION)));
        return ExitDone;
    }
    QStringList names{QStringLiteral("--help"), QStringLiteral("--version")};
    for (const ToolCommand& command : commands) {
        if (command.name == word)
            return runCommand(command, arguments);
        names.append(command.name);
    }
    if (word.isEmpty())
        throw ToolUsageError(Tool::tr("A command is missing.\n'kelvane --help' lists them."));
    throw ToolUsageError(Tool::tr("Unknown command '%1'%2\n'kelvane --help' lists the commands.")
                             .arg(word, ToolCommandLine::getHint(word, names)));
}

int fail(ExitCode code, const QString& message)
{
    ToolOutput::printError(message);
    return code;
}

int failByFault(const std::exception& error)
{
    return fail(ExitFault, Tool::tr("A fault of this program, which is worth a report:\n%1")
                               .arg(QString::fromUtf8(error.what())));
}

/// The exit code of whatever happens.
int guard(const std::vector<ToolCommand>& commands, const QStringList& arguments)
{
    try {
        return runTool(commands, arguments);
    } catch (const ToolUsageError& error) {
        return fail(ExitWrongUsage, error.getMessage());
    } catch (const HbcCancelled& cancelled) {
        ToolOutput::printError(cancelled.getMessage());
        return ExitSignal + ToolInterrupt::getSignal();
    } catch (const HbeProgrammingError& error) {
        return failByFault(error);
    } catch (const HbeError& error) {
        return fail(ExitWrongInput, error.getMessage());
    } catch (const std::bad_alloc&) {
        return fail(ExitFault, Tool::tr("There is not enough memory."));
    } catch (const std::exception& error) {
        return failByFault(error);
    }
}
} // namespace

int main(int argc, char** argv)
{
    fillStandardStreams();
    qInstallMessageHandler(&keepQtQuiet);
    const std::vector<ToolCommand> commands = createCommands();
    bool draws = false;
    for (const ToolCommand& command : commands)
        draws = draws || (command.draws && argc > 1 && command.name == QLatin1String(argv[1]));
    const std::unique_ptr<QCoreApplication> application = createApplication(argc, argv, draws);

    // Qt takes file names and arguments in the locale's encoding, and "C" says ASCII: names would
    // not survive. Names on disk are UTF-8 on every system that we know.
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (QTextCodec::codecForLocale()->mibEnum() == US_ASCII) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
        for (int i = 1; i < argc; ++i)
            arguments[i - 1] = QString::fromUtf8(argv[i]);
    }
    ToolInterrupt::install();
    return guard(commands, arguments);
}
