#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolCsFacts.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolTable.h"
#include "ToolText.h"
#include "ToolUsageError.h"

#include <util/utils/KuuCoordSystemCatalog.h>
#include <util/utils/KuuCoordSystemDetails.h>
#include <util/utils/KuuCoordSystemSearch.h>

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeUserError.h>

namespace
{
using Search = KuuCoordSystemSearch;
using Mode = Ku::CoordSystemMode;

constexpr int DEFAULT_LIMIT = 20;
constexpr int HINTS = 3;
constexpr int AREA_LENGTH = 48; // of the name of an area in a table

bool wantsJson(const QCommandLineParser& line)
{
    return line.isSet(QStringLiteral("json"));
}

QString kindText(const Search::Entry& entry)
{
    if (entry.isDeprecated)
        return Tool::tr("deprecated");
    return entry.mode == Mode::GEOGRAPHIC ? Tool::tr("geographic") : Tool::tr("projected");
}

Search::Question readQuestion(const QCommandLineParser& line, const QStringList& words)
{
    Search::Question question;
    question.text = words.join(QLatin1Char(' '));
    question.limit = ToolCommandLine::readCount(line, QStringLiteral("limit"), DEFAULT_LIMIT);
    if (line.isSet(QStringLiteral("area"))) {
        const QString text = line.value(QStringLiteral("area"));
        question.area = KuuCoordSystemArea::fromText(text);
        if (!question.area.isValid)
            throw ToolUsageError(Tool::tr("--area is 'lon,lat' or 'west,south,east,north' in "
                                          "degrees, not '%1'")
                                     .arg(text));
    }
    if (words.isEmpty() && !question.area.isValid)
        throw ToolUsageError(Tool::tr("A text to search for, or --area, is missing."));
    return question;
}

void writeAnswer(const Search::Answer& answer)
{
    ToolJson json;
    json.beginObject();
    json.key("count").value(qint64(answer.count));
    json.key("systems").beginArray();
    for (const Search::Entry& entry : answer.entries) {
        json.beginObject();
        json.key("coordinateSystem").value(entry.getText());
        json.key("name").value(entry.name);
        json.key("mode").value(entry.mode == Mode::GEOGRAPHIC ? QStringLiteral("geographic")
                                                              : QStringLiteral("projected"));
        json.key("deprecated").value(entry.isDeprecated);
        ToolCsFacts::write(json.key("area"), entry.area);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    ToolOutput::print(json.toByteArray());
}

int search(const QCommandLineParser& line, const QStringList& words)
{
    const Search::Question question = readQuestion(line, words);
    const Search::Answer answer = Search::find(question);
    if (wantsJson(line)) {
        writeAnswer(answer);
        return ExitDone;
    }
    if (answer.count == 0)
        throw HbeUserError(
            Search::getSystemCount() == 0
                ? Tool::tr("The PROJ library finds no database of coordinate systems.")
                : Tool::tr("No coordinate system is found."));
    ToolTable table({Tool::tr("system"), Tool::tr("name"), Tool::tr("kind"), Tool::tr("area")});
    for (const Search::Entry& entry : answer.entries)
        table.addRow({entry.getText(), entry.name, kindText(entry),
                      ToolText::cut(entry.area.name, AREA_LENGTH)});
    ToolOutput::print(table.toText(0));
    if (answer.count > answer.entries.size())
        ToolOutput::printNote(Tool::tr("%1 more; --limit %2 shows all.")
                                  .arg(QString::number(answer.count - answer.entries.size()),
                                       QString::number(answer.count)));
    return ExitDone;
}

/// What the user may have meant.
QString getHint(const QString& text)
{
    QStringList lines;
    for (const Search::Entry& entry : Search::find(text, HINTS).entries)
        lines.append(QStringLiteral("  %1  %2").arg(entry.getText(), entry.name));
    return lines.isEmpty() ? Tool::tr("\n'kelvane cs search TEXT' finds coordinate systems.")
                           : Tool::tr("\nDid you mean:\n%1").arg(lines.join(QLatin1Char('\n')));
}

/// A text form, or a name of the catalog.
KuuCoordSystem readSystem(const QString& text)
{
    const KuuCoordSystem coded = KuuCoordSystem::unserialize(text);
    if (coded.isValid())
        return coded;
    const KuuCoordSystem named = KuuCoordSystemCatalog::getInstance().getCoordSystem(text);
    if (named.isGeographic() || named.isProjected())
        return named;
    const QString reason = KuuCoordSystemDetails::of(coded).reason;
    throw HbeUserError(
        Tool::tr("Unknown coordinate system: '%1'.%2%3")
            .arg(text, reason.isEmpty() ? QString() : QLatin1Char('\n') + reason, getHint(text)));
}

QString oneArgument(const QStringList& words, const QString& usage)
{
    if (words.size() != 1)
        throw ToolUsageError(Tool::tr("Usage: kelvane cs %1").arg(usage));
    return words.first();
}

int show(const QCommandLineParser& line, const QStringList& words)
{
    const KuuCoordSystem system = readSystem(oneArgument(words, QStringLiteral("show CS")));
    if (!wantsJson(line)) {
        ToolOutput::print(ToolCsFacts::toText(system));
        return ExitDone;
    }
    ToolJson json;
    ToolCsFacts::write(json, system);
    ToolOutput::print(json.toByteArray());
    return ExitDone;
}

void printSystems(const QCommandLineParser& line, const QList<KuuCoordSystem>& systems)
{
    ToolJson json;
    json.beginObject();
    json.key("systems").beginArray();
    ToolTable table({Tool::tr("system"), Tool::tr("name"), Tool::tr("kind")});
    for (const KuuCoordSystem& system : systems) {
        const bool isGeographic = system.isGeographic();
        table.addRow({system.serialize(), system.getName(),
                      isGeographic ? Tool::tr("geographic") : Tool::tr("projected")});
        json.beginObject();
        json.key("coordinateSystem").value(system.serialize());
        json.key("name").value(system.getName());
        json.key("mode").value(isGeographic ? QStringLiteral("geographic")
                                            : QStringLiteral("projected"));
        json.endObject();
    }
    json.endArray();
    json.endObject();
    ToolOutput::print(wantsJson(line) ? json.toByteArray() : table.toText(0).toUtf8());
}

int list(const QCommandLineParser& line, const QStringList& words)
{
    if (!words.isEmpty())
        throw ToolUsageError(Tool::tr("Usage: kelvane cs %1").arg(QStringLiteral("list")));
    const KuuCoordSystemCatalog& catalog = KuuCoordSystemCatalog::getInstance();
    printSystems(line, catalog.getGeographicList() + catalog.getProjectedList());
    return ExitDone;
}

int favorites(const QCommandLineParser& line, const QStringList& words)
{
    KuuCoordSystemCatalog& catalog = KuuCoordSystemCatalog::getInstance();
    if (!words.isEmpty()) {
        const QString usage = QStringLiteral("favorites [add|remove CS]");
        const KuuCoordSystem system = readSystem(oneArgument(words.mid(1), usage));
        bool isChanged = false;
        if (words.first() == QLatin1String("add"))
            isChanged = catalog.addFavorite(system);
        else if (words.first() == QLatin1String("remove"))
            isChanged = catalog.removeFavorite(system);
        else
            throw ToolUsageError(Tool::tr("Usage: kelvane cs %1").arg(usage));
        if (!isChanged)
            ToolOutput::printNote(Tool::tr("'%1' was so already.").arg(system.getName()));
    }
    printSystems(line, catalog.getFavorites({Mode::GEOGRAPHIC, Mode::PROJECTED}));
    return ExitDone;
}

int run(const QCommandLineParser& line)
{
    const struct {
        QString word;
        int (*run)(const QCommandLineParser& line, const QStringList& words);
    } actions[] = {{QStringLiteral("search"), &search},
                   {QStringLiteral("show"), &show},
                   {QStringLiteral("list"), &list},
                   {QStringLiteral("favorites"), &favorites}};
    QStringList words = line.positionalArguments();
    const QString word = words.takeFirst();
    QStringList known;
    for (const auto& action : actions) {
        if (action.word == word)
            return action.run(line, words);
        known.append(action.word);
    }
    throw ToolUsageError(
        Tool::tr("'kelvane cs' knows %1, not '%2'%3")
            .arg(known.join(QStringLiteral(", ")), word, ToolCommandLine::getHint(word, known)));
}
} // namespace

ToolCommand createCsCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("cs");
    command.arguments = QStringLiteral("search TEXT | show CS | list | favorites [add|remove CS]");
    command.summary = Tool::tr("Finds, shows and lists coordinate systems.");
    command.details = Tool::tr(
        "'search' looks for words in the names, codes and areas of all systems of the EPSG and "
        "IGNF registers, the best first.\n"
        "'show' tells what is known of one system: CS is a text such as EPSG:2154, IGNF:LAMB93 or "
        "\"PROJ4:+proj=utm +zone=31\", or a name that 'list' shows.\n"
        "'list' shows the systems in common use and the user's own; 'favorites' those that the "
        "user chose, and adds or removes one.");
    command.example = QStringLiteral("kelvane cs search lambert 93\n"
                                     "kelvane cs search utm --area 2.35,48.85 --limit 5\n"
                                     "kelvane cs show EPSG:2154\n"
                                     "kelvane cs favorites add EPSG:2154");
    command.options = {
        {QStringLiteral("area"), QStringLiteral("LON,LAT"),
         Tool::tr("Only systems for this place (search). A box is west,south,east,north.")},
        {QStringLiteral("limit"), QStringLiteral("N"),
         Tool::tr("At most so many systems (search); 20 without it.")},
        {QStringLiteral("json"), QString(), Tool::tr("One JSON document.")}};
    command.minArguments = 1;
    command.maxArguments = 100;
    command.run = &run;
    return command;
}
