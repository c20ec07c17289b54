#include "ToolUnitSearch.h"

#include "ToolCommand.h"
#include "ToolCommandLine.h"

#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

namespace
{
const HbuUnitService& service()
{
    return HbuUnitService::getInstance();
}

/// Of a class, the unit with the key, else those with the symbol.
void collect(QVector<HbuUnit>& found, const HbuEUnitClass& unitClass, const QString& text)
{
    const HbuUnit unit = service().getUnit(unitClass, text);
    if (unit.isValid()) {
        found.append(unit);
        return;
    }
    for (const HbuUnit& candidate : service().getUnits(unitClass)) {
        if (candidate.getSymbol() == text)
            found.append(candidate);
    }
}

QVector<HbuUnit> find(const QString& word)
{
    // Keyboards have the Greek letter, symbols the micro sign.
    QString text = word;
    text.replace(QChar(0x3BC), QChar(0xB5));
    const int colon = text.indexOf(QLatin1Char(':'));
    const QString prefix = text.left(colon).toUpper();
    QVector<HbuUnit> found;
    if (colon > 0 && HbuEUnitClass::existsKey(prefix))
        collect(found, HbuEUnitClass::fromKey(prefix), text.mid(colon + 1));
    if (!found.isEmpty())
        return found;

    QStringList known;
    for (const HbuEUnitClass& unitClass : HbuEUnitClass::createIterator()) {
        if (unitClass == HbuEUnitClass::NONE)
            continue;
        collect(found, unitClass, text);
        for (const HbuUnit& unit : service().getUnits(unitClass))
            known.append(unit.getKey());
    }
    if (found.isEmpty()) {
        throw HbeUserError(Tool::tr("There is no unit '%1'%2\n'kelvane units' lists the classes of "
                                    "units, 'kelvane units CLASS' the units of one.")
                               .arg(word, ToolCommandLine::getHint(text, known)));
    }
    return found;
}

QString toText(const HbuUnit& unit)
{
    return unit.getUnitClass().getKey() + QLatin1Char(':') + unit.getKey();
}

QString classesOf(const QVector<HbuUnit>& units)
{
    QStringList labels;
    for (const HbuUnit& unit : units)
        labels.append(unit.getUnitClass().getLabel().toLower());
    labels.removeDuplicates();
    return labels.join(QStringLiteral(", "));
}
} // namespace

HbuEUnitClass ToolUnitSearch::findClass(const QString& text)
{
    const QString key = text.toUpper();
    if (HbuEUnitClass::existsKey(key) && key != HbuEUnitClass::NONE.getKey())
        return HbuEUnitClass::fromKey(key);
    QStringList keys;
    for (const HbuEUnitClass& unitClass : HbuEUnitClass::createIterator())
        keys.append(unitClass.getKey());
    throw HbeUserError(
        Tool::tr("There is no class of units '%1'%2\n'kelvane units' lists the classes.")
            .arg(text, ToolCommandLine::getHint(key, keys)));
}

ToolUnitSearch::Pair ToolUnitSearch::findPair(const QString& from, const QString& to)
{
    const QVector<HbuUnit> sources = find(from);
    const QVector<HbuUnit> targets = find(to);
    QVector<Pair> pairs;
    bool isAmbiguous = false;
    for (const HbuUnit& source : sources) {
        for (const HbuUnit& target : targets) {
            const HbuUnitTransfo conversion = service().getConversion(source, target);
            if (!conversion.isValid())
                continue;
            pairs.append({source, target});
            isAmbiguous = isAmbiguous || conversion != service().getConversion(pairs.first().from,
                                                                               pairs.first().to);
        }
    }
    if (pairs.isEmpty()) {
        throw HbeUserError(Tool::tr("'%1' (%2) does not convert into '%3' (%4).")
                               .arg(from, classesOf(sources), to, classesOf(targets)));
    }
    if (isAmbiguous) {
        QString choices;
        for (const Pair& pair : pairs)
            choices += QStringLiteral("\n  %1 %2").arg(toText(pair.from), toText(pair.to));
        throw HbeUserError(
            Tool::tr("'%1' and '%2' are several units; say which:%3").arg(from, to, choices));
    }
    return pairs.first();
}
