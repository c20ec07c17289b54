#include "ToolOutput.h"

#include "ToolCommand.h"
#include "ToolText.h"

#include <basic/base/HbbGlobal.h>
#include <basic/base/HbbStringFormat.h>
#include <basic/error/HbeDiskError.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{
/// Messages hold names and texts of files that come from anywhere.
void printLine(const char* prefix, const QString& message)
{
    QStringList lines = message.trimmed().split(QLatin1Char('\n'));
    for (QString& line : lines)
        line = ToolText::makeVisible(line);
    std::fprintf(stderr, "%s%s\n", prefix, lines.join(QLatin1Char('\n')).toUtf8().constData());
}
} // namespace

void ToolOutput::print(const QByteArray& utf8)
{
    const std::size_t size = static_cast<std::size_t>(utf8.size());
    if (std::fwrite(utf8.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0)
        throw HbeDiskError(
            Tool::tr("Cannot write to the standard output: %1").arg(qt_error_string(errno)));
}

void ToolOutput::print(const QString& text)
{
    print(text.toUtf8());
}

int ToolOutput::getTerminalWidth()
{
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void ToolOutput::printError(const QString& message)
{
    printLine("kelvane: ", message);
}

void ToolOutput::printWarning(const QString& message)
{
    printLine("warning: ", message);
}

void ToolOutput::printNote(const QString& message)
{
    printLine("note: ", message);
}

QString ToolOutput::toText(double value)
{
    if (HbbGlobal::isUndefined(value))
        return QString();
    // Coordinates of national grids have seven digits before the point.
    const bool large = std::fabs(value) >= 1e5 && std::fabs(value) < 1e9;
    return QString::fromLatin1(
        HbbStringFormat::simpleValueToByteArray(value, HbbEFormat::GENERAL, large ? 9 : 6));
}
