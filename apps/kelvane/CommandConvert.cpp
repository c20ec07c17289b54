#include "CoordinateLines.h"
#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolInterrupt.h"
#include "ToolUsageError.h"

#include <basic/error/HbeDiskError.h>
#include <basic/unit/HbuUnitService.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{
constexpr std::size_t CHUNK = 1 << 18;
constexpr std::size_t MAX_LINE = 1 << 20;
constexpr int POLL_MILLISECONDS = 200;

using Counts = KuuCoordSystemConverter::Counts;

/// The reader of our output has gone, which is its right ("| head").
struct ReaderGone {
};

void writeOut(const QByteArray& text)
{
    const char* at = text.constData();
    auto left = static_cast<std::size_t>(text.size());
    while (left > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, at, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0 && errno == EPIPE)
            throw ReaderGone();
        if (written < 0) {
            throw HbeDiskError(
                Tool::tr("Cannot write to the standard output: %1").arg(qt_error_string(errno)));
        }
        at += written;
        left -= static_cast<std::size_t>(written);
    }
}

/// A file or the standard input, read as its bytes arrive.
class Input
{
public:
    explicit Input(const QString& path)
        : m_name(path == QLatin1String("-") ? Tool::tr("standard input") : path)
    {
        if (path == QLatin1String("-"))
            return;
        m_descriptor = ::open(path.toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC);
        if (m_descriptor < 0) {
            throw HbeDiskError(Tool::tr("Cannot read '%1': %2").arg(path, qt_error_string(errno)));
        }
    }
    ~Input()
    {
        if (m_descriptor != STDIN_FILENO)
            ::close(m_descriptor);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    const QString& getName() const { return m_name; }

    /// Waits for bytes; 0 at the end.
    std::size_t read(char* buffer, std::size_t size) const
    {
        for (;;) {
            ToolInterrupt::check();
            pollfd descriptor = {m_descriptor, POLLIN, 0};
            if (::poll(&descriptor, 1, POLL_MILLISECONDS) <= 0)
                continue;
            const ssize_t count = ::read(m_descriptor, buffer, size);
            if (count >= 0)
                return static_cast<std::size_t>(count);
            if (errno != EINTR && errno != EAGAIN) {
                throw HbeDiskError(
                    Tool::tr("Cannot read '%1': %2").arg(m_name, qt_error_string(errno)));
            }
        }
    }

private:
    QString m_name;
    int m_descriptor = STDIN_FILENO;
};

/// Converts lines as they come: whatever has arrived is converted before more is waited for.
class LineConverter
{
public:
    LineConverter(const KuuCoordSystemConverter& converter, const QByteArray& undefined)
        : m_converter(converter)
        , m_lines(undefined)
    {
    }

    void run(const Input& input)
    {
        std::vector<char> buffer(CHUNK);
        std::size_t size = 0;
        for (;;) {
            if (size == buffer.size())
                buffer.resize(2 * size);
            const std::size_t count = input.read(buffer.data() + size, buffer.size() - size);
            size += count;
            const std::size_t used = takeLines(input, buffer.data(), size, count == 0);
            if (count == 0)
                return;
            std::copy(buffer.data() + used, buffer.data() + size, buffer.data());
            size -= used;
            if (size > MAX_LINE) {
                ++m_line;
                fail(input, Tool::tr("the line is too long"));
            }
        }
    }

    const Counts& getCounts() const { return m_counts; }

private:
    /// The whole lines of the buffer, at the end of the input also the rest; answers their bytes.
    std::size_t takeLines(const Input& input, const char* begin, std::size_t size, bool isEnd)
    {
        const char* at = begin;
        const char* const end = begin + size;
        while (at != end) {
            const char* const feed = std::find(at, end, '\n');
            if (feed == end && !isEnd)
                break;
            ++m_line;
            const QString fault = m_lines.add(at, feed);
            if (!fault.isEmpty())
                fail(input, fault);
            at = feed == end ? end : feed + 1;
            if (m_lines.isFull())
                flush();
        }
        flush();
        return static_cast<std::size_t>(at - begin);
    }

    void flush()
    {
        ToolInterrupt::check();
        m_out.resize(0);
        m_counts += m_lines.convert(m_converter, m_out);
        writeOut(m_out);
    }

    [[noreturn]] void fail(const Input& input, const QString& fault)
    {
        flush(); // what stands before the line is right
        throw HbeUserError(
            Tool::tr("'%1', line %2: %3").arg(input.getName(), QString::number(m_line), fault));
    }

    const KuuCoordSystemConverter& m_converter;
    CoordinateLines m_lines;
    QByteArray m_out;
    Counts m_counts;
    qint64 m_line = 0;
};

KuuCoordSystem readSystem(const QCommandLineParser& line, const QString& option)
{
    if (!line.isSet(option))
        throw ToolUsageError(Tool::tr("--%1 CS is missing.").arg(option));
    const QString text = line.value(option);
    const KuuCoordSystem system = KuuCoordSystem::unserialize(text);
    // The converter tells why PROJ refuses a system; here is what is none at all.
    return system.serialize().isEmpty() ? KuuCoordSystem::fromUserText(text) : system;
}

/// By key or symbol; a unit that is not valid without the option.
HbuUnit readUnit(const QCommandLineParser& line, const QString& option)
{
    if (!line.isSet(option))
        return {};
    const QString text = line.value(option);
    QStringList known;
    for (const HbuEUnitClass& unitClass : {HbuEUnitClass::LENGTH, HbuEUnitClass::ANGLE}) {
        for (const HbuUnit& unit : HbuUnitService::getInstance().getUnits(unitClass)) {
            if (unit.getKey() == text || unit.getSymbol() == text)
                return unit;
            known.append(unit.getKey());
        }
    }
    throw ToolUsageError(Tool::tr("--%1: there is no unit '%2'%3\nThere are: %4")
                             .arg(option, text, ToolCommandLine::getHint(text, known),
                                  known.join(QStringLiteral(", "))));
}

/// One point, from the command line.
Counts convertPoint(const KuuCoordSystemConverter& converter, const QStringList& words,
                    const QByteArray& undefined)
{
    CoordinateLines lines(undefined);
    const QByteArray text = words.join(QLatin1Char(' ')).toUtf8();
    const QString fault = lines.add(text.constData(), text.constData() + text.size());
    if (!fault.isEmpty())
        throw ToolUsageError(fault);
    QByteArray out;
    const Counts counts = lines.convert(converter, out);
    writeOut(out);
    return counts;
}

void report(const KuuCoordSystemConverter& converter, const Counts& counts)
{
    const QByteArray text = converter.getReport(counts).toUtf8() + '\n';
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stderr);
}

int run(const QCommandLineParser& line)
{
    const KuuCoordSystem from = readSystem(line, QStringLiteral("from"));
    const KuuCoordSystem to = readSystem(line, QStringLiteral("to"));
    const KuuCoordSystemConverter converter(from, readUnit(line, QStringLiteral("from-unit")), to,
                                            readUnit(line, QStringLiteral("to-unit")));
    const QByteArray undefined = line.isSet(QStringLiteral("undefined"))
                                     ? line.value(QStringLiteral("undefined")).toUtf8()
                                     : QByteArrayLiteral("NA");
    const QStringList words = line.positionalArguments();
    const bool isQuiet = line.isSet(QStringLiteral("quiet"));
    std::signal(SIGPIPE, SIG_IGN); // its error ends us, with the report
    try {
        if (words.size() > 1) {
            const Counts counts = convertPoint(converter, words, undefined);
            if (!isQuiet)
                report(converter, counts);
            return ExitDone;
        }
        const Input input(words.first());
        LineConverter lines(converter, undefined);
        lines.run(input);
        if (!isQuiet)
            report(converter, lines.getCounts());
    } catch (const ReaderGone&) {
        return ExitSignal + SIGPIPE;
    }
    return ExitDone;
}
} // namespace

ToolCommand createConvertCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("convert");
    command.arguments = QStringLiteral("--from CS --to CS FILE|-|X Y [Z]");
    command.summary = Tool::tr("Converts coordinates from one coordinate system to another.");
    command.details = Tool::tr(
        "FILE holds lines of two or three columns, x (east or longitude), y (north or latitude) "
        "and z, between blanks, tabs, commas or semicolons; \"-\" is the standard input, converted "
        "as it arrives. The same columns come out, as the shortest texts that read back as the "
        "same numbers. Empty lines and lines that begin with # pass through.\n"
        "The report of what was done, and how exactly, goes to the standard error.");
    command.example =
        QStringLiteral("kelvane convert --from EPSG:4326 --to EPSG:2154 -4.5 48.4\n"
                       "kelvane convert --from IGNF:LAMBE --to EPSG:2154 --to-unit km points.txt");
    command.options = {
        {QStringLiteral("from"), QStringLiteral("CS"),
         Tool::tr("The present coordinate system: EPSG:2154, IGNF:LAMB93, \"PROJ4:+proj=…\".")},
        {QStringLiteral("to"), QStringLiteral("CS"), Tool::tr("The one to convert to.")},
        {QStringLiteral("from-unit"), QStringLiteral("U"),
         Tool::tr("The unit of the present coordinates; by default the system's.")},
        {QStringLiteral("to-unit"), QStringLiteral("U"), Tool::tr("Likewise of the new ones.")},
        {QStringLiteral("undefined"), QStringLiteral("TEXT"),
         Tool::tr("Stands for undefined coordinates, and comes out where a point cannot be "
                  "converted; NA by default.")},
        {QStringLiteral("quiet"), QString(), Tool::tr("No report.")},
    };
    command.minArguments = 1;
    command.maxArguments = 3;
    command.run = &run;
    return command;
}
