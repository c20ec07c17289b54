#include "ToolCommandLine.h"

#include "ToolCommand.h"
#include "ToolUsageError.h"

#include <basic/base/HbbGlobal.h>

#include <QtCore/QVector>

#include <algorithm>
#include <limits>

namespace
{
/// The number of letters to change, add or drop between two words.
int distance(const QString& a, const QString& b)
{
    QVector<int> row(b.size() + 1);
    for (int j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int replaced = diagonal + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.last();
}

QStringList optionNames(const ToolCommand& command)
{
    QStringList names{QStringLiteral("help")};
    for (const ToolOption& option : command.options)
        names.append(option.name);
    return names;
}

bool isNegativeNumber(const QString& word)
{
    return word.size() > 1 && word.at(0) == QLatin1Char('-') &&
           (word.at(1).isDigit() || word.at(1) == QLatin1Char('.'));
}

/// The same words with the arguments behind "--", so that a negative number among them is no
/// option.
QStringList withArgumentsLast(const ToolCommand& command, const QStringList& words)
{
    QStringList options;
    QStringList arguments;
    for (int i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (word == QLatin1String("--")) {
            arguments += words.mid(i + 1);
            break;
        }
        if (i > 0 &&
            (!word.startsWith(QLatin1Char('-')) || word.size() == 1 || isNegativeNumber(word))) {
            arguments += word;
            continue;
        }
        options += word;
        const bool takesNext = std::any_of(
            command.options.begin(), command.options.end(), [&word](const ToolOption& option) {
                return !option.value.isEmpty() && word == QStringLiteral("--") + option.name;
            });
        if (takesNext && i + 1 == words.size())
            return words; // "--" must not be taken for the value that is missing
        if (takesNext)
            options += words.at(++i);
    }
    return arguments.isEmpty() ? options : options << QStringLiteral("--") << arguments;
}

void checkArgumentCount(const ToolCommand& command, const QStringList& arguments)
{
    if (arguments.size() < command.minArguments) {
        throw ToolUsageError(Tool::tr("Too few arguments.\nUsage: kelvane %1 %2")
                                 .arg(command.name, command.arguments));
    }
    if (arguments.size() > command.maxArguments) {
        throw ToolUsageError(
            Tool::tr("'%1' is one argument too many.\nUsage: kelvane %2 %3")
                .arg(arguments.at(command.maxArguments), command.name, command.arguments));
    }
}
} // namespace

QString ToolCommandLine::getHint(const QString& word, const QStringList& known)
{
    QString closest;
    int least = 1 + word.size() / 3; // beyond this it is another word
    for (const QString& candidate : known) {
        const bool begins = word.size() > 1 && candidate.startsWith(word);
        const int letters = begins ? 0 : distance(word, candidate);
        if (letters < least || (letters == least && closest.isEmpty())) {
            least = letters;
            closest = candidate;
        }
    }
    return closest.isEmpty() ? QString() : Tool::tr("; did you mean '%1'?").arg(closest);
}

void ToolCommandLine::parse(const ToolCommand& command, const QStringList& arguments,
                            QCommandLineParser& line)
{
    line.addOption(QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")}));
    for (const ToolOption& option : command.options)
        line.addOption(QCommandLineOption(option.name, option.text, option.value));

    const bool understood = line.parse(withArgumentsLast(command, arguments));
    const QStringList unknown = line.unknownOptionNames();
    if (!unknown.isEmpty()) {
        const QString dashes(unknown.first().size() == 1 ? 1 : 2, QLatin1Char('-'));
        QStringList known = optionNames(command);
        for (QString& name : known)
            name.prepend(QStringLiteral("--"));
        const QString word = QStringLiteral("--") + unknown.first();
        throw ToolUsageError(
            Tool::tr("Unknown option '%1'%2\n'kelvane %3 --help' lists the options.")
                .arg(dashes + unknown.first(), getHint(word, known), command.name));
    }
    if (!understood)
        throw ToolUsageError(line.errorText());
    if (!line.isSet(QStringLiteral("help")))
        checkArgumentCount(command, line.positionalArguments());
}

int ToolCommandLine::readWord(const QCommandLineParser& line, const QString& option,
                              const QStringList& words)
{
    if (!line.isSet(option))
        return 0;
    const QString word = line.value(option);
    const int i = words.indexOf(word);
    if (i < 0) {
        throw ToolUsageError(
            Tool::tr("--%1 is one of %2, not '%3'%4")
                .arg(option, words.join(QStringLiteral(", ")), word, getHint(word, words)));
    }
    return i;
}

int ToolCommandLine::readCount(const QCommandLineParser& line, const QString& option,
                               int defaultCount)
{
    if (!line.isSet(option))
        return defaultCount;
    const int count = HbbGlobal::convertString(line.value(option), -1);
    if (count < 1)
        throw ToolUsageError(
            Tool::tr("--%1 is a number above 0, not '%2'").arg(option, line.value(option)));
    return count;
}

qint64 ToolCommandLine::readSize(const QCommandLineParser& line, const QString& option,
                                 qint64 defaultSize)
{
    if (!line.isSet(option))
        return defaultSize;
    QString digits = line.value(option);
    int power = 0;
    if (!digits.isEmpty()) {
        power = 1 + QStringLiteral("KMGT").indexOf(digits.back().toUpper());
        digits.chop(power > 0 ? 1 : 0);
    }
    const qint64 unit = qint64(1) << (10 * power);
    const qint64 count = HbbGlobal::convertString(digits, qint64(-1));
    if (count < 1 || count > std::numeric_limits<qint64>::max() / unit)
        throw ToolUsageError(Tool::tr("--%1 is a size such as 4096, 500M or 2G, not '%2'")
                                 .arg(option, line.value(option)));
    return count * unit;
}

void ToolCommandLine::checkExclusive(const QCommandLineParser& line, const QStringList& options,
                                     const QString& hint)
{
    QStringList given;
    for (const QString& option : options) {
        if (line.optionNames().contains(option))
            given.append(QStringLiteral("--") + option);
    }
    if (given.size() > 1)
        throw ToolUsageError(
            Tool::tr("%1 and %2 exclude each other: %3").arg(given.at(0), given.at(1), hint));
}
