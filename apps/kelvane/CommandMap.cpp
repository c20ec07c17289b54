#include "MapPicture.h"
#include "ToolCommandLine.h"
#include "ToolCommands.h"
#include "ToolInterrupt.h"
#include "ToolOutput.h"
#include "ToolProgress.h"
#include "ToolProject.h"

#include <util/dataset/KudADataTable.h>
#include <util/dataset/KudADataset.h>
#include <util/system/KusSafeFile.h>
#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuGeometrySet.h>

#include <basic/base/HbbGlobal.h>
#include <basic/data/HbdANumericVariable.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QBuffer>

#include <cmath>

namespace
{
constexpr double PI = 3.14159265358979323846;

bool isDrawable(const HbdVariableDetails& details)
{
    return HbdVarTypeFlags::NUMERIC_ENUM.contains(details.type);
}

/// The variable that is asked for, else the first one that says more than where a sample lies.
KudDatasetVariable chooseVariable(const KudADataTable& table, const QString& name)
{
    QStringList known;
    for (int i = 0; i < table.getVariableCount(); ++i) {
        const KudDatasetVariable variable = table.getVariableAt(i);
        const HbdVariableDetails details = table.getDetails(variable);
        if (!isDrawable(details))
            continue;
        known.append(variable.getFullVariableName());
        const bool matches =
            name.isEmpty() ? details.role == HbdEVarRole::NONE && details.type == HbdEVarType::REAL
                           : known.last() == name;
        if (matches)
            return variable;
    }
    throw HbeUserError(name.isEmpty()
                           ? Tool::tr("There is no real variable to draw; name another one with "
                                      "--variable.")
                           : Tool::tr("There is no variable '%1' of numbers or categories%2\n"
                                      "There are: %3")
                                 .arg(name, ToolCommandLine::getHint(name, known),
                                      known.join(QStringLiteral(", "))));
}

/// One value a sample, as MapPicture takes them.
std::vector<double> readValues(const HbdAVariable& column)
{
    std::vector<double> values(static_cast<std::size_t>(column.getCount()), HbbGlobal::D_FFFF);
    if (column.getType() == HbdEVarType::CATEGORY) {
        const auto& codes = static_cast<const HbdVariableEnum&>(column);
        const QVector<HbdEnumCatalog::Category>& categories = codes.getCatalog().getCategories();
        std::vector<double> placeOfCode(0x10000, HbbGlobal::D_FFFF);
        for (int place = 0; place < categories.size(); ++place)
            placeOfCode[categories.at(place).code] = place;
        for (int rank = 0; rank < codes.getCount(); ++rank)
            values[static_cast<std::size_t>(rank)] = placeOfCode[codes.at(rank)];
    } else {
        static_cast<const HbdANumericVariable&>(column).readNumbers(0, column.getCount(),
                                                                    values.data());
    }
    return values;
}

QVector<MapPicture::Category> readCategories(const HbdAVariable& column)
{
    QVector<MapPicture::Category> categories;
    if (column.getType() != HbdEVarType::CATEGORY)
        return categories;
    for (const auto& category :
         static_cast<const HbdVariableEnum&>(column).getCatalog().getCategories()) {
        categories.append({category.label, category.color.isValid()
                                               ? category.color
                                               : MapColors::getDistinct(categories.size())});
    }
    return categories;
}

/// The samples that have coordinates.
std::vector<MapPicture::Sample> readSamples(const KudADataTable& table, const HbdAVariable& column)
{
    const HbdANumericVariable* x = table.readXCoordinate();
    const HbdANumericVariable* y = table.readYCoordinate();
    if (x == nullptr || y == nullptr)
        throw HbeUserError(Tool::tr("The dataset has no coordinates: import it with --x and --y."));

    const std::vector<double> xs = readValues(*x);
    const std::vector<double> ys = readValues(*y);
    const std::vector<double> values = readValues(column);
    std::vector<MapPicture::Sample> samples;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const bool placed = !HbbGlobal::isUndefined(xs[i]) && !HbbGlobal::isUndefined(ys[i]) &&
                            std::isfinite(xs[i]) && std::isfinite(ys[i]);
        if (placed)
            samples.push_back({xs[i], ys[i], values[i]});
    }
    return samples;
}

QString withUnit(const KudADataTable& table, const KudDatasetVariable& variable)
{
    const QString symbol = table.getDetails(variable).unit.getSymbol();
    return variable.getFullVariableName() +
           (symbol.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(symbol));
}

MapPicture createPicture(const KudADataset& dataset, const QString& variableName)
{
    const KudADataTable& table = *dataset.getObjectTable();
    const KudDatasetVariable variable = chooseVariable(table, variableName);
    const HbdAVariable& column = *table.readValues(variable);

    MapPicture picture;
    picture.samples = readSamples(table, column);
    picture.categories = readCategories(column);
    picture.title = withUnit(table, variable);
    picture.legendTitle = picture.title;
    picture.subtitle =
        Tool::tr("%1, %2 samples").arg(dataset.getName()).arg(dataset.getObjectCount());
    const KuuCoordSystem system = dataset.getCoordSystem();
    if (!system.serialize().isEmpty())
        picture.subtitle += QStringLiteral(", ") + system.serialize();
    picture.xTitle = withUnit(table, table.getStructuralVariable(HbdEVarRole::X_COORDINATE));
    picture.yTitle = withUnit(table, table.getStructuralVariable(HbdEVarRole::Y_COORDINATE));
    if (system.isGeographic()) {
        const HbgBox box = dataset.getBoundingBox();
        const double middle = (box.getYMin() + box.getYMax()) / 2;
        if (std::fabs(middle) < 85)
            picture.yScale = 1.0 / std::cos(middle * PI / 180.0);
    }
    return picture;
}

void savePicture(const QImage& image, const QString& path)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    KusSafeFile file(path);
    if (!file.open() || !file.write(bytes) || !file.commit())
        throw HbeDiskError(
            Tool::tr("Cannot write the file '%1': %2").arg(path, file.getErrorString()));
}

int run(const QCommandLineParser& line)
{
    const QStringList arguments = line.positionalArguments();
    ToolProgress progress(Tool::tr("Drawing"));
    const auto dataset =
        ToolProject::readDataset(KudDatasetDirectory(arguments.at(0)), arguments.at(1));
    MapPicture picture = createPicture(*dataset, line.value(QStringLiteral("variable")));
    progress.show(0, 0);
    savePicture(picture.draw(), arguments.at(2));
    return ExitDone;
}
} // namespace

ToolCommand createMapCommand()
{
    ToolCommand command;
    command.name = QStringLiteral("map");
    command.arguments = QStringLiteral("DIR DATASET FILE.png");
    command.summary = Tool::tr("Draws a map of the samples, coloured by a variable.");
    command.details =
        Tool::tr("The picture is a PNG file; no display is needed. Samples without a value are "
                 "hollow and grey, high values lie on top.");
    command.example = QStringLiteral("kelvane map survey samples zinc.png --variable zinc");
    command.options = {
        {QStringLiteral("variable"), QStringLiteral("V"),
         Tool::tr("A variable of numbers or categories; by default the first real one that is no "
                  "coordinate.")}};
    command.minArguments = 3;
    command.maxArguments = 3;
    command.draws = true;
    command.run = &run;
    return command;
}
