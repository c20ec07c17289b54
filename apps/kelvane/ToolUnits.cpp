#include "ToolUnits.h"

#include "ToolCommand.h"
#include "ToolCommandLine.h"
#include "ToolProject.h"
#include "ToolUsageError.h"

#include <util/dataset/KudADataset.h>
#include <util/extern/KueCsv.h>

#include <basic/data/HbdVariableDetails.h>
#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

namespace
{
HbuUnit find(const HbuEUnitClass& unitClass, const QString& text)
{
    const HbuUnitService& service = HbuUnitService::getInstance();
    const HbuUnit unit = service.getUnit(unitClass, text);
    return unit.isValid() ? unit : service.getUnitFromSymbol(unitClass, text);
}

QStringList keysOf(const HbuEUnitClass& unitClass)
{
    QStringList keys;
    for (const HbuUnit& unit : HbuUnitService::getInstance().getUnits(unitClass))
        keys.append(unit.getKey());
    return keys;
}

[[noreturn]] void throwUnknown(const QString& text, const HbuEUnitClass& unitClass)
{
    throw HbeUserError(Tool::tr("There is no unit '%1' of the class %2.\nThere are: %3")
                           .arg(text, unitClass.getLabel().toLower(),
                                keysOf(unitClass).join(QStringLiteral(", "))));
}

/// The name and the unit of one VAR=UNIT; the last sign counts, as no unit has one.
ToolUnits::Choice split(const QString& word, const QString& option, const KudADataset& dataset)
{
    const int sign = word.lastIndexOf(QLatin1Char('='));
    if (sign < 1 || sign + 1 == word.size()) {
        throw ToolUsageError(Tool::tr("--%1 takes VAR=UNIT, not '%2'.").arg(option, word));
    }
    QString name = word.left(sign).trimmed();
    if (name.size() > 1 && name.startsWith(QLatin1Char('"')) && name.endsWith(QLatin1Char('"')))
        name = name.mid(1, name.size() - 2);
    return {ToolProject::findVariable(dataset, name), word.mid(sign + 1).trimmed()};
}
} // namespace

QVector<ToolUnits::Choice> ToolUnits::read(const QCommandLineParser& line, const QString& option,
                                           const KudADataset& dataset)
{
    const KueCsv list(QLatin1Char(','), false, QLatin1Char('"'), QLatin1Char('.'));
    QVector<Choice> choices;
    for (const QString& value : line.values(option)) {
        for (const QString& word : list.parseDelimitedRow(value)) {
            const Choice choice = split(word, option, dataset);
            for (const Choice& other : choices) {
                if (other.variable == choice.variable) {
                    throw HbeUserError(Tool::tr("--%1 names the variable '%2' twice.")
                                           .arg(option, choice.variable.getFullVariableName()));
                }
            }
            choices.append(choice);
        }
    }
    return choices;
}

bool ToolUnits::isNone(const Choice& choice)
{
    return choice.unit == QLatin1String("none");
}

HbuUnit ToolUnits::findInClass(const Choice& choice, const HbdVariableDetails& details)
{
    const HbuEUnitClass unitClass = details.unit.getUnitClass();
    if (details.unit.isNone()) {
        throw HbeUserError(Tool::tr("The variable '%1' has no unit, so nothing converts into '%2': "
                                    "say what its values are in with 'kelvane set', option --unit.")
                               .arg(choice.variable.getFullVariableName(), choice.unit));
    }
    const HbuUnit unit = find(unitClass, choice.unit);
    if (unit.isValid())
        return unit;
    throw HbeUserError(
        Tool::tr(
            "The variable '%1' is in '%2', and '%3' is no unit of the class %4.\nThere are: %5")
            .arg(choice.variable.getFullVariableName(), details.unit.getSymbol(), choice.unit,
                 unitClass.getLabel().toLower(), keysOf(unitClass).join(QStringLiteral(", "))));
}

HbuUnit ToolUnits::findInAll(const Choice& choice, const HbdVariableDetails& details)
{
    const int colon = choice.unit.indexOf(QLatin1Char(':'));
    const QString className = choice.unit.left(colon).toUpper();
    if (colon > 0 && HbuEUnitClass::existsKey(className)) {
        const HbuEUnitClass unitClass = HbuEUnitClass::fromKey(className);
        const HbuUnit unit = find(unitClass, choice.unit.mid(colon + 1));
        if (!unit.isValid())
            throwUnknown(choice.unit.mid(colon + 1), unitClass);
        return unit;
    }
    if (!details.unit.isNone()) {
        const HbuUnit unit = find(details.unit.getUnitClass(), choice.unit);
        if (unit.isValid())
            return unit;
    }
    QStringList known;
    for (const HbuEUnitClass& unitClass : HbuEUnitClass::createIterator()) {
        const HbuUnit unit = find(unitClass, choice.unit);
        if (unit.isValid() && !unit.isNone())
            return unit;
        known += keysOf(unitClass);
    }
    throw HbeUserError(Tool::tr("There is no unit '%1' for the variable '%2'%3")
                           .arg(choice.unit, choice.variable.getFullVariableName(),
                                ToolCommandLine::getHint(choice.unit, known)));
}

QString ToolUnits::toText(const HbuUnit& unit)
{
    return unit.isNone() ? Tool::tr("none") : unit.getSymbol();
}
