#include "ToolCommand.h"

#include <algorithm>

namespace
{
constexpr int INDENT = 2;
constexpr int LINE_LENGTH = 88;

/// The words of a text in lines, each behind `indent` blanks but the first.
QString wrapped(const QString& text, int indent)
{
    QString lines;
    int column = indent;
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& word : words) {
        if (column > indent && column + 1 + word.size() > LINE_LENGTH) {
            lines += QLatin1Char('\n') + QString(indent, QLatin1Char(' '));
            column = indent;
        } else if (column > indent) {
            lines += QLatin1Char(' ');
            ++column;
        }
        lines += word;
        column += word.size();
    }
    return lines;
}

QString optionTitle(const ToolOption& option)
{
    const QString title = QStringLiteral("--") + option.name;
    return option.value.isEmpty() ? title : title + QLatin1Char(' ') + option.value;
}
} // namespace

QString ToolCommand::getHelp() const
{
    QString help = Tool::tr("Usage: kelvane %1 %2").arg(name, arguments);
    help += options.isEmpty() ? QString() : Tool::tr(" [options]");
    help += QStringLiteral("\n\n") + wrapped(summary, 0) + QLatin1Char('\n');
    for (const QString& paragraph : details.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        help += QLatin1Char('\n') + wrapped(paragraph, 0) + QLatin1Char('\n');

    QVector<ToolOption> rows = options;
    rows.append({QStringLiteral("help"), QString(), Tool::tr("Shows this text.")});
    int width = 0;
    for (const ToolOption& option : rows)
        width = std::max(width, optionTitle(option).size());

    help += Tool::tr("\nOptions:\n");
    for (const ToolOption& option : rows) {
        help += QString(INDENT, QLatin1Char(' ')) + optionTitle(option).leftJustified(width + 2) +
                wrapped(option.text, INDENT + width + 2) + QLatin1Char('\n');
    }
    help += Tool::tr("\nExample:\n");
    for (const QString& exampleLine : example.split(QLatin1Char('\n')))
        help += QString(INDENT, QLatin1Char(' ')) + exampleLine + QLatin1Char('\n');
    return help;
}
