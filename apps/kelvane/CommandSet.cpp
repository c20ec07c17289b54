#include "ToolCommands.h"
#include "ToolDatasetFacts.h"
#include "ToolJson.h"
#include "ToolOutput.h"
#include "ToolProject.h"
#include "ToolUnits.h"
#include "ToolUsageError.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>

#include <basic/data/HbdVarTypeFlags.h>
#include <basic/error/HbeUserError.h>
#include <basic/unit/HbuUnitService.h>

namespace
{
const QString CS = QStringLiteral("cs");
const QString UNIT = QStringLiteral("unit");
const QString DISPLAY = QStringLiteral("display");

KuuCoordSystem readCoordSystem(const QCommandLineParser& line)
{
    const QString text = line.value(CS);
    if (text == QLatin1String("none"))
        return KuuCoordSystem();
    if (text == QLatin1String("local"))
        return KuuCoordSystem::createLocal();
    return KuuCoordSystem::fromUserText(text);
}

HbdVariableDetails requireNumbers(const KudADataset& dataset, const ToolUnits::Choice& choice)
{
    const HbdVariableDetails details = dataset.getVariableDetails(choice.variable);
    if (!HbdVarTypeFlags::NUMERIC.contains(details.type)) {
        throw HbeUserError(
            Tool::tr("The variable '%1' has no numbers, so no unit: it is of the "
                     "type %2.")
                .arg(choice.variable.getFullVariableName(), details.type.getKey().toLower()));
    }
    return details;
}

void apply(KudADataset& dataset, const KudDatasetVariable& variable,
           const HbdVariableDetails& details)
{
    if (!dataset.setVariableDetails(variable, details))
        throw HbeUserError(Tool::tr("The variable '%1' of the dataset '%2' cannot be edited.")
                               .arg(variable.getFullVariableName(), dataset.getName()));
}

void setUnit(KudADataset& dataset, const ToolUnits::Choice& choice)
{
    HbdVariableDetails details = requireNumbers(dataset, choice);
    details.unit = ToolUnits::isNone(choice) ? HbuUnit() : ToolUnits::findInAll(choice, details);
    const bool stillConverts =
        HbuUnitService::getInstance().getConversion(details.unit, details.displayUnit).isValid();
    if (!stillConverts)
        details.displayUnit = HbuUnit();
    apply(dataset, choice.variable, details);
}

void setDisplayUnit(KudADataset& dataset, const ToolUnits::Choice& choice)
{
    HbdVariableDetails details = requireNumbers(dataset, choice);
    if (ToolUnits::isNone(choice)) {
        details = details.shownIn(details.unit);
        details.displayUnit = HbuUnit();
    } else {
        details = details.shownIn(ToolUnits::findInClass(choice, details));
    }
    apply(dataset, choice.variable, details);
}

/// The unit of a coordinate is a length, or with longitudes and latitudes an angle.
void checkCoordinateUnits(const KudADataset& dataset)
{
    const KuuCoordSystem system = dataset.getCoordSystem();
    const KudADataTable& table = *dataset.getObjectTable();
    for (const HbdEVarRole& role : {HbdEVarRole::X_COORDINATE, HbdEVarRole::Y_COORDINATE}) {
        const KudDatasetVariable variable = table.getStructuralVariable(role);
        const HbuUnit unit = table.getDetails(variable).unit;
        const HbuEUnitClass unitClass = unit.getUnitClass();
        if (unit.isNone() || (unitClass.isAngle() && !system.isProjected()) ||
            (unitClass == HbuEUnitClass::LENGTH && !system.isGeographic()))
            continue;
        const QString inSystem =
            system.getUnit().isNone()
                ? Tool::tr("coordinates are lengths or angles")
                : Tool::tr("the coordinates of '%1' are in %2")
                      .arg(system.getName(), ToolUnits::toText(system.getUnit()));
        throw HbeUserError(
            Tool::tr("The unit %1 does not fit the coordinate '%2': %3.")
                .arg(ToolUnits::toText(unit), variable.getFullVariableName(), inSystem));
    }
}

int run(const QCommandLineParser& line)
{
    if (!line.isSet(CS) && !line.isSet(UNIT) && !line.isSet(DISPLAY))
        throw ToolUsageError(Tool::tr("Nothing to set: give --cs, --unit or --display."));
    const QStringList arguments = line.positionalArguments();
    const KudDatasetDirectory project(arguments.at(0));
    const auto dataset = ToolProject::readDataset(project, arguments.at(1));

    // All of it, or an error and nothing: only what is whole is saved.
    if (line.isSet(CS))
        dataset->setCoordSystem(readCoordSystem(line));
    for (const ToolUnits::Choice& choice : ToolUnits::read(line, UNIT, *dataset))
        setUnit(*dataset, choice);
    for (const ToolUnits::Choice& choice : ToolUnits::read(line, DISPLAY, *dataset))
        setDisplayUnit(*dataset, choice);
    checkCoordinateUnits(*dataset);
    project.save(*dataset);

    if (line.isSet(QStringLiteral("json"))) {
        ToolJson json;
        json.beginObject();
        json.key("project").value(arguments.first());
        json.key("dataset");
        ToolDatasetFacts::write(json, *dataset);
        json.endObject();
        ToolOutput::print(json.toByteArray());
        return ExitDone;
    }
    ToolOutput::print(Tool::tr("Saved into the project '%1':\n\n").arg(arguments.first()) +
                      ToolDatasetFacts::toText(*dataset));
    return ExitDone;
}
} // namespace

ToolCommand createSetCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("set");
    command.arguments = QStringLiteral("DIR DATASET");
    command.summary = Tool::tr("Says what the numbers of a dataset are: coordinate system, units.");
    command.details = Tool::tr(
        "No value changes: --cs and --unit state what the stored numbers are in, --display what "
        "they are shown and exported in. The file of the dataset is replaced when all of it is "
        "right; else nothing changes.\n"
        "A unit is given by its key or its symbol, \"none\" takes it away. Where several classes "
        "have the unit, CLASS:unit chooses (RATIO:ppm); without it, that of the present unit goes "
        "first.");
    command.example =
        QStringLiteral("kelvane set survey samples --cs EPSG:28992 --unit zinc=ppm,elev=m\n"
                       "kelvane set survey samples --display zinc=%");
    const QString list = QStringLiteral("LIST");
    command.options = {
        {CS, QStringLiteral("CS"),
         Tool::tr("The coordinate system: EPSG:code, IGNF:code, PROJ4:definition, local or none.")},
        {UNIT, list, Tool::tr("What values are in: VAR=UNIT,…; may be repeated.")},
        {DISPLAY, list,
         Tool::tr("What values are shown and exported in: VAR=UNIT,…; may be "
                  "repeated.")},
        {QStringLiteral("json"), QString(), Tool::tr("The dataset as one JSON document.")},
    };
    command.minArguments = 2;
    command.maxArguments = 2;
    command.run = &run;
    return command;
}
