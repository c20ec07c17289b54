#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolTable.h"
#include "ToolUnitSearch.h"
#include "ToolUsageError.h"

#include <util/utils/KuuUnitCatalog.h>
#include <util/xml/KuxXml.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeUserError.h>

#include <cmath>

namespace
{
const HbuUnitService& service()
{
    return HbuUnitService::getInstance();
}

bool wantsJson(const QCommandLineParser& line)
{
    return line.isSet(QStringLiteral("json"));
}

double readNumber(const QString& text, const QString& what)
{
    const double number = HbbGlobal::convertString(text, HbbGlobal::D_FFFF);
    if (std::isfinite(number) && !HbbGlobal::isUndefined(number))
        return number;
    const bool hasComma = text.contains(QLatin1Char(','));
    throw ToolUsageError(
        Tool::tr("%1 is a number, not '%2'%3")
            .arg(what, text, hasComma ? Tool::tr("; the decimal sign is a dot") : QString()));
}

QVector<HbuEUnitClass> classes()
{
    QVector<HbuEUnitClass> known;
    for (const HbuEUnitClass& unitClass : HbuEUnitClass::createIterator()) {
        if (unitClass != HbuEUnitClass::NONE)
            known.append(unitClass);
    }
    return known;
}

int listClasses(const QCommandLineParser& line)
{
    ToolTable table({Tool::tr("class"), Tool::tr("name"), Tool::tr("reference"),
                     Tool::tr("storage"), Tool::tr("units")});
    table.alignRight(4, 4);
    ToolJson json;
    json.beginObject();
    json.key("classes").beginArray();
    for (const HbuEUnitClass& unitClass : classes()) {
        const QString reference = service().getReferenceUnit(unitClass).getKey();
        const QString storage = service().getStorageUnit(unitClass).getKey();
        const int count = service().getUnits(unitClass).size();
        table.addRow(
            {unitClass.getKey(), unitClass.getLabel(), reference, storage, QString::number(count)});
        json.beginObject();
        json.key("class").value(unitClass.getKey());
        json.key("name").value(unitClass.getLabel());
        json.key("reference").value(reference);
        json.key("storage").value(storage);
        json.key("units").value(qint64(count));
        json.endObject();
    }
    json.endArray();
    json.endObject();
    ToolOutput::print(wantsJson(line) ? json.toByteArray() : table.toText(0).toUtf8());
    return ExitDone;
}

void writeUnit(ToolJson& json, const HbuUnit& unit)
{
    json.beginObject();
    json.key("class").value(unit.getUnitClass().getKey());
    json.key("key").value(unit.getKey());
    json.key("symbol").value(unit.getSymbol());
    json.key("name").value(unit.getName());
    json.key("system").value(unit.getUnitSystem().getKey());
    json.key("factor").value(unit.getTransfo().getFactor());
    json.key("shift").value(unit.getTransfo().getShift());
    json.key("user").value(!unit.isBuiltIn());
    json.key("source").textOrNull(unit.getSource());
    json.endObject();
}

int listUnits(const QCommandLineParser& line, const HbuEUnitClass& unitClass)
{
    ToolTable table({Tool::tr("key"), Tool::tr("symbol"), Tool::tr("name"), Tool::tr("system"),
                     Tool::tr("factor"), Tool::tr("shift"), Tool::tr("own")});
    ToolJson json;
    json.beginObject();
    json.key("class").value(unitClass.getKey());
    json.key("units").beginArray();
    for (const HbuUnit& unit : service().getUnits(unitClass)) {
        const HbuUnitTransfo transfo = unit.getTransfo();
        table.addRow({unit.getKey(), unit.getSymbol(), unit.getName(),
                      unit.getUnitSystem().getLabel(), KuxXml::encodeDouble(transfo.getFactor()),
                      transfo.isAffine() ? KuxXml::encodeDouble(transfo.getShift()) : QString(),
                      unit.isBuiltIn() ? QString() : Tool::tr("own")});
        writeUnit(json, unit);
    }
    json.endArray();
    json.endObject();
    if (wantsJson(line)) {
        ToolOutput::print(json.toByteArray());
        return ExitDone;
    }
    ToolOutput::print(
        Tool::tr("%1: a value times the factor, plus the shift if there is one, is in %2.\n\n")
            .arg(unitClass.getLabel(), service().getReferenceUnit(unitClass).getSymbol()));
    ToolOutput::print(table.toText(0));
    return ExitDone;
}

int convert(const QCommandLineParser& line, const QStringList& words)
{
    if (words.size() != 3)
        throw ToolUsageError(Tool::tr("Usage: kelvane units %1").arg("convert VALUE FROM TO"));
    const double value = readNumber(words.at(0), Tool::tr("VALUE"));
    const ToolUnitSearch::Pair pair = ToolUnitSearch::findPair(words.at(1), words.at(2));
    const double result = service().getConversion(pair.from, pair.to).apply(value);
    if (!wantsJson(line)) {
        ToolOutput::print(KuxXml::encodeDouble(result) + QLatin1Char('\n'));
        return ExitDone;
    }
    ToolJson json;
    json.beginObject();
    json.key("value").value(value);
    writeUnit(json.key("from"), pair.from);
    writeUnit(json.key("to"), pair.to);
    json.key("result").value(result);
    json.endObject();
    ToolOutput::print(json.toByteArray());
    return ExitDone;
}

HbuEUnitSystem readSystem(const QCommandLineParser& line)
{
    const QString option = QStringLiteral("system");
    if (!line.isSet(option))
        return HbuEUnitSystem::OTHER;
    QStringList keys;
    for (const HbuEUnitSystem& unitSystem : HbuEUnitSystem::createIterator())
        keys.append(unitSystem.getKey());
    const QString word = line.value(option).toUpper();
    if (!keys.contains(word)) {
        throw ToolUsageError(Tool::tr("--system is one of %1, not '%2'%3")
                                 .arg(keys.join(QStringLiteral(", ")), line.value(option),
                                      ToolCommandLine::getHint(word, keys)));
    }
    return HbuEUnitSystem::fromKey(word);
}

int add(const QCommandLineParser& line, const QStringList& words)
{
    if (words.size() != 4)
        throw ToolUsageError(
            Tool::tr("Usage: kelvane units %1").arg("add NAME SYMBOL CLASS FACTOR"));
    const QString& name = words.at(0);
    const HbuEUnitClass unitClass = ToolUnitSearch::findClass(words.at(2));
    const double factor = readNumber(words.at(3), Tool::tr("FACTOR"));
    const double shift =
        line.isSet(QStringLiteral("shift"))
            ? readNumber(line.value(QStringLiteral("shift")), QStringLiteral("--shift"))
            : 0.;
    if (factor == 0.)
        throw ToolUsageError(Tool::tr("FACTOR is a number other than 0."));
    if (shift != 0. && !service().acceptsAffine(unitClass))
        throw HbeUserError(
            Tool::tr("Units of the class %1 have no shift.").arg(unitClass.getKey()));
    if (name.isEmpty() || KuuUnitCatalog::isTemporary(name))
        throw HbeUserError(Tool::tr("A unit cannot be named '%1'.").arg(name));

    const HbuUnit unit = KuuUnitCatalog::getInstance().createUnit(
        name, words.at(1), unitClass, readSystem(line), HbuUnitTransfo::affine(factor, shift));
    const QString stored = KuuUnitCatalog::_saveUnit(unit).value(QStringLiteral("transfoFactor"));
    if (HbbGlobal::convertString(stored, 0.) != factor)
        ToolOutput::printNote(Tool::tr("Own units have six digits: the factor is %1.").arg(stored));
    ToolOutput::print(unitClass.getKey() + QLatin1Char(':') + unit.getKey() + QLatin1Char('\n'));
    return ExitDone;
}

int remove(const QCommandLineParser&, const QStringList& words)
{
    if (words.size() != 1)
        throw ToolUsageError(Tool::tr("Usage: kelvane units %1").arg("remove KEY"));
    const QString& key = words.first();
    if (KuuUnitCatalog::getInstance().deleteUnit(key))
        return ExitDone;
    for (const HbuEUnitClass& unitClass : classes()) {
        if (service().getUnit(unitClass, key).isValid())
            throw HbeUserError(Tool::tr("The unit '%1' is built in and stays.").arg(key));
    }
    QStringList keys;
    for (const HbuUnit& unit : service().getUserUnits())
        keys.append(unit.getKey());
    throw HbeUserError(Tool::tr("There is no unit of your own with the key '%1'%2")
                           .arg(key, ToolCommandLine::getHint(key, keys)));
}

int run(const QCommandLineParser& line)
{
    QStringList words = line.positionalArguments();
    if (words.isEmpty())
        return listClasses(line);
    const QString word = words.takeFirst();
    if (word == QLatin1String("convert"))
        return convert(line, words);
    if (word == QLatin1String("add"))
        return add(line, words);
    if (word == QLatin1String("remove"))
        return remove(line, words);
    if (!words.isEmpty())
        throw ToolUsageError(
            Tool::tr("'kelvane units' knows convert, add, remove or one class, not '%1'%2")
                .arg(word, ToolCommandLine::getHint(word, {QStringLiteral("convert"),
                                                           QStringLiteral("add"),
                                                           QStringLiteral("remove")})));
    return listUnits(line, ToolUnitSearch::findClass(word));
}
} // namespace

ToolCommand createUnitsCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("units");
    command.arguments = QStringLiteral("[CLASS | convert VALUE FROM TO | "
                                       "add NAME SYMBOL CLASS FACTOR | remove KEY]");
    command.summary = Tool::tr("Lists and converts units, and keeps your own.");
    command.details = Tool::tr(
        "Without a word it lists the classes of units, with a class its units.\n"
        "'convert' prints the value in the unit TO, in full precision. A unit is given by its key "
        "or its symbol, with its class before it where several classes have it: LENGTH:ft.\n"
        "'add' makes a unit of your own: a value times the factor, plus the shift, is in the "
        "reference unit of the class. Its key is printed; it is made from the name. All commands "
        "know your own units from then on. 'remove' takes one away.");
    command.example = QStringLiteral("kelvane units LENGTH\n"
                                     "kelvane units convert -40 degF degC\n"
                                     "kelvane units add Vara vara LENGTH 0.8359\n"
                                     "kelvane units remove Vara");
    command.options = {
        {QStringLiteral("shift"), QStringLiteral("S"),
         Tool::tr("The shift of a new unit; of temperatures only.")},
        {QStringLiteral("system"), QStringLiteral("SYS"),
         Tool::tr("The system of a new unit: METRIC, IMPERIAL, US_SURVEY or OTHER (without it).")},
        {QStringLiteral("json"), QString(), Tool::tr("One JSON document.")}};
    command.maxArguments = 5;
    command.run = &run;
    return command;
}
