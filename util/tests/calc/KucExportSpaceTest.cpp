// Exports in another coordinate system and in other units.
#include "ExportFixture.h"

#include <basic/error/HbeUserError.h>

namespace
{
HbuUnit length(const char* key)
{
    return unit(HbuEUnitClass::LENGTH, key);
}
KuuCoordSystem epsg(const char* code)
{
    return KuuCoordSystem::createFromEpsg(code);
}

HbdVariableDetails details(const char* name, const HbdEVarRole& role = HbdEVarRole::NONE,
                           const HbuUnit& unit = HbuUnit(),
                           const HbbEFormat& format = HbbEFormat::GENERAL, int precision = 6)
{
    HbdVariableDetails result(name, HbdEVarType::REAL, role);
    result.unit = unit;
    result.format = format;
    result.precision = precision;
    return result;
}

const HbdEVarRole& X = HbdEVarRole::X_COORDINATE;
const HbdEVarRole& Y = HbdEVarRole::Y_COORDINATE;
const HbdEVarRole& Z = HbdEVarRole::Z_COORDINATE;

class KucExportSpaceTest : public ExportFixture
{
protected:
    HbdVariableReal& add(const HbdVariableDetails& columnDetails, std::vector<double> values)
    {
        return addColumn<HbdVariableReal>(columnDetails, std::move(values));
    }

    /// The points, with coordinates whether they are exported or not.
    HgdDataSetPoints place(const HbdANumericVariable& x, const HbdANumericVariable& y,
                           const HbdANumericVariable* z,
                           const std::vector<const HbdAVariable*>& exported) const
    {
        HgdDataSetPoints dataset(x.getCount());
        dataset.setCoordinates(&x, &y, z);
        for (const HbdAVariable* variable : exported)
            dataset.addVariable(*variable);
        return dataset;
    }

    /// The same by blocks and line by line.
    QByteArray writeBoth(KucExportData& exportData)
    {
        const QByteArray blocks = write(exportData);
        EXPECT_EQ(write<LineEncoding>(exportData), blocks);
        return blocks;
    }

    QString errorOf(KucExportData& exportData)
    {
        exportData.setEncodingStrategy(csv(path()));
        EXPECT_FALSE(exportData.runInCurrentThread());
        EXPECT_THROW(exportData.rethrowError(), HbeUserError);
        EXPECT_EQ(readFile(), "no file");
        return exportData.getErrorText();
    }
};
} // namespace

// The origin of Lambert-93 is a place that is known without PROJ: 3° E, 46.5° N, and there the
// scale and the axes of both sides meet.
TEST_F(KucExportSpaceTest, CoordinatesAreConvertedFromTheirUnits)
{
    const HbuUnit none;
    const double foot = 0.3048;
    const struct {
        HbuUnit x, y, z;
        double at[3];
    } cases[] = {
        {none, none, none, {700000, 6600000, 120}},
        {HbuUnit::none(), length("m"), length("ft"), {700000, 6600000, 120}},
        {length("km"), length("km"), none, {700, 6600, 120}},
        {length("km"), length("m"), length("km"), {700, 6600000, 120}},
        {length("ft"), length("ft"), length("m"), {700000 / foot, 6600000 / foot, 120}},
    };
    for (const auto& c : cases) {
        m_columns.clear();
        auto& x = add(details("x", X, c.x), {c.at[0], HbbGlobal::D_FFFF, c.at[0]});
        auto& y = add(details("y", Y, c.y), {c.at[1], c.at[1], c.at[1]});
        auto& z = add(details("z", Z, c.z), {c.at[2], 5, HbbGlobal::D_FFFF});
        KucExportData exportData;
        exportData.setCoordSystems(epsg("2154"), epsg("4171"));
        exportData.setUndefString("NA");
        exportData.setDataset(place(x, y, &z, {&z, &y, &x}));
        EXPECT_EQ(writeBoth(exportData),
                  QByteArray("z,Latitude,Longitude\n"
                             "120.DDD,46.5000000,3.0000000\n"
                             "NA,NA,NA\n"
                             "NA,46.5000000,3.0000000\n")
                      .replace("DDD", c.z == length("km") ? "000000" : "000"));
        EXPECT_EQ(exportData.getConversionCounts().converted, 2);
        EXPECT_EQ(exportData.getConversionCounts().undefined, 1);
        EXPECT_NE(exportData.getConverter(), nullptr);
        // Whichever of them is exported, both are needed.
        for (const HbdAVariable* alone : {&x, &y}) {
            exportData.setDataset(place(x, y, nullptr, {alone}));
            EXPECT_EQ(writeBoth(exportData), alone == &x
                                                 ? "Longitude\n3.0000000\nNA\n3.0000000\n"
                                                 : "Latitude\n46.5000000\nNA\n46.5000000\n");
        }
        EXPECT_EQ(x.at(0), c.at[0]); // the columns are only read
        EXPECT_EQ(z.at(0), c.at[2]);
    }
}

TEST_F(KucExportSpaceTest, ProjectedCoordinatesKeepTheirDigits)
{
    const HbuUnit none;
    const struct {
        const char* type;
        HbuUnit unit;
        HbbEFormat format;
        int precision;
        HbuUnit chosen;
        const char* x;
    } cases[] = {
        {"REAL", none, HbbEFormat::DECIMAL, 2, none, "700000.00"},
        {"REAL", none, HbbEFormat::DECIMAL, 0, none, "700000.000"},
        {"REAL", none, HbbEFormat::GENERAL, 6, none, "700000.000"},
        {"REAL", none, HbbEFormat::SCIENTIFIC, 4, none, "7.0000e+05"},
        {"INTEGER", none, HbbEFormat::INTEGER, 0, none, "700000.000"},
        {"REAL_32", none, HbbEFormat::GENERAL, 6, length("km"), "700.000000"},
        {"REAL", none, HbbEFormat::DECIMAL, 2, length("km"), "700.00000"},
        {"INTEGER", unit(HbuEUnitClass::ANGLE, "deg"), HbbEFormat::INTEGER, 0, length("km"),
         "700.000000"},
    };
    for (const auto& c : cases) {
        m_columns.clear();
        HbdVariableDetails xDetails = details("x", X, c.unit, c.format, c.precision);
        xDetails.type = HbdEVarType::fromKey(c.type);
        m_columns.push_back(HbdAVariable::create(xDetails));
        m_columns.back()->resize(1);
        m_columns.back()->setVariant(0, 3);
        add(details("y", Y), {46.5});
        KucExportData exportData;
        exportData.setDataset(points());
        exportData.setCoordSystems(epsg("4171"), epsg("2154"));
        exportData.setUnit("x", c.chosen);
        EXPECT_EQ(writeBoth(exportData), "x,y\n" + QByteArray(c.x) + ",6600000.000\n");
    }
}

TEST_F(KucExportSpaceTest, ManyBlocksAreConvertedAsOne)
{
    constexpr int COUNT = 230000;
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> part;
    std::vector<double> xs, ys;
    for (int i = 0; i < COUNT; ++i) {
        xs.push_back(-5 + 14 * part(random));
        ys.push_back(i % 1000 == 7 ? 2000. : 42 + 9 * part(random)); // no latitude: it has no image
    }
    add(details("x", X), xs);
    add(details("y", Y), ys);
    HgdDataSetPoints dataset = points();
    HbiIntervalIntSmallDisjoint ranks(HbiIntervalIntSmall(0, COUNT - 1));
    ranks.subtract(HbiIntervalIntSmall(99000, 120000));
    dataset.setSelection(ranks);
    KucExportData exportData;
    exportData.setDataset(dataset);
    exportData.setCoordSystems(epsg("4326"), epsg("2154"));
    exportData.setFullPrecision(true);
    const QList<QByteArray> lines = write(exportData).split('\n');

    KuuCoordSystemConverter(epsg("4326"), epsg("2154"))
        .convert(xs.data(), ys.data(), nullptr, COUNT);
    int row = 0;
    qint64 failed = 0;
    ranks.forEachRank([&](int rank) {
        const double x = xs[std::size_t(rank)];
        const double y = ys[std::size_t(rank)];
        const QList<QByteArray> cells = lines.value(++row).split(',');
        failed += HbbGlobal::isUndefined(x);
        if (HbbGlobal::isUndefined(x))
            EXPECT_EQ(cells, (QList<QByteArray>{"", ""}));
        else
            EXPECT_TRUE(cells.value(0).toDouble() == x && cells.value(1).toDouble() == y) << rank;
    });
    EXPECT_EQ(lines.size(), row + 2);
    EXPECT_GT(failed, 200);
    EXPECT_EQ(exportData.getConversionCounts().failed, failed);
    EXPECT_EQ(exportData.getConversionCounts().converted, row - failed);
    EXPECT_EQ(exportData.getCounter(), COUNT);
}

// Whatever the memory and the loops, a file holds the same rows in the same order, and the place of
// each node is that of its geometry.
TEST_F(KucExportSpaceTest, SlabsOfGridsMakeTheSameFile)
{
    const HbgGeomGrid solid(5, 4, 3, {600000, 6500000, -50}, 250, 125, 10, 30);
    const HbgGeomGrid flat(5, 4, {600000, 6500000}, 250, 125, 30);
    const KuuCoordSystemConverter converter(epsg("2154"), epsg("4326"));
    for (const HbgGeomGrid& geometry : {solid, flat}) {
        const int count = int(geometry.getNodeCount());
        m_columns.clear();
        auto& n = add(details("n"), {});
        auto& y = add(details("north", Y), {});
        auto& x = add(details("east", X), {});
        for (int i = 0; i < count; ++i) {
            n.append(i);
            y.append(geometry.getPosition(i).y);
            x.append(geometry.getPosition(i).x);
        }
        for (const bool withColumns : {false, true}) {
            HgdDataSetGrid grid(geometry);
            grid.addVariable(n);
            if (withColumns) {
                grid.addVariable(y);
                grid.addVariable(x);
            }
            QList<int> axes = geometry.is3D() ? QList<int>{0, 1, 2} : QList<int>{0, 1};
            do {
                for (const bool converts : {true, false}) {
                    KucExportData exportData;
                    exportData.setDataset(grid);
                    exportData.setSorting(axes);
                    exportData.setNodeCoordinates(true);
                    exportData.setFullPrecision(true);
                    if (converts)
                        exportData.setCoordSystems(epsg("2154"), epsg("4326"));
                    exportData.setAvailableMemory(1000000);
                    const QByteArray whole = writeBoth(exportData);
                    for (const int memory : {1, 300, 700}) {
                        exportData.setAvailableMemory(memory);
                        EXPECT_EQ(write(exportData), whole);
                    }
                    const QList<QByteArray> lines = whole.trimmed().split('\n');
                    ASSERT_EQ(lines.size(), count + 1);
                    const QList<QByteArray> names = lines[0].split(',');
                    const QByteArrayList wanted = QByteArray(converts      ? "Longitude,Latitude"
                                                             : withColumns ? "east,north"
                                                                           : "X,Y")
                                                      .split(',');
                    EXPECT_EQ(names.contains("Z"), geometry.is3D());
                    for (int line = 1; line <= count; ++line) {
                        const QList<QByteArray> cells = lines[line].split(',');
                        const int rank = cells[names.indexOf("n")].toInt();
                        HbgVector2D place = geometry.getPosition(rank).toVector2D();
                        if (converts)
                            converter.convert(place);
                        ASSERT_NEAR(cells[names.indexOf(wanted[0])].toDouble(), place.x, 1e-9);
                        ASSERT_NEAR(cells[names.indexOf(wanted[1])].toDouble(), place.y, 1e-9);
                    }
                }
            } while (std::next_permutation(axes.begin(), axes.end()));
        }
    }
}

TEST_F(KucExportSpaceTest, AUnitForOneExportLosesNoDigits)
{
    const auto concentration = [](const char* key) {
        return unit(HbuEUnitClass::CONCENTRATION, key);
    };
    const HbuUnit percent = concentration("%");
    const struct {
        HbuUnit stored, shown, chosen;
        HbbEFormat format;
        int precision;
        double value;
        const char* cell;
    } cases[] = {
        {concentration("ppm"), {}, percent, HbbEFormat::DECIMAL, 0, 25, "0.0025"},
        {concentration("ppm"), {}, percent, HbbEFormat::GENERAL, 6, 25, "0.0025"},
        {concentration("ppm"), {}, percent, HbbEFormat::INTEGER, 0, 25, "0.0025"},
        {concentration("ppm"), {}, concentration("ppm"), HbbEFormat::INTEGER, 0, 25, "25"},
        {concentration("ppm"), percent, concentration("ppm"), HbbEFormat::DECIMAL, 4, 25,
         "25.0000"},
        {concentration("ppm"), concentration("kg/t"), percent, HbbEFormat::DECIMAL, 2, 12346,
         "1.235"},
        {percent, {}, concentration("ppm"), HbbEFormat::DECIMAL, 1, 2.5, "25000.0"},
        {length("ft"), {}, length("m"), HbbEFormat::DECIMAL, 0, 3, "0.9"},
        {length("m"), {}, length("ft"), HbbEFormat::DECIMAL, 1, 0.3048, "1.0"},
    };
    for (const auto& c : cases) {
        m_columns.clear();
        HbdVariableDetails grade = details("v", HbdEVarRole::NONE, c.stored, c.format, c.precision);
        grade.displayUnit = c.shown;
        add(grade, {c.value});
        KucExportData exportData;
        exportData.setDataset(points());
        const QByteArray before = writeBoth(exportData);
        exportData.setUnit("v", c.chosen);
        EXPECT_EQ(writeBoth(exportData), "v\n" + QByteArray(c.cell) + '\n');
        exportData.setUnit("v", HbuUnit());
        EXPECT_EQ(writeBoth(exportData), before);
        EXPECT_EQ(m_columns[0]->getDetails(), grade);
    }
}

TEST_F(KucExportSpaceTest, WhatDoesNotFitIsAnErrorBeforeTheFileIsOpened)
{
    const HbuUnit gram = unit(HbuEUnitClass::MASS, "g");
    const HbuUnit degree = unit(HbuEUnitClass::ANGLE, "deg");
    ASSERT_TRUE(gram.isValid() && degree.isValid());
    auto& x = add(details("x", X), {700000});
    auto& other = add(details("other x", X), {700000});
    auto& y = add(details("y", Y), {6600000});
    auto& inGrams = add(details("grams", X, gram), {700000});
    auto& inDegrees = add(details("degrees", Y, degree), {6600000});
    auto& text = addColumn<HbdVariableText>(HbdVariableDetails("t", HbdEVarType::TEXT), {"a"});
    const struct {
        std::vector<const HbdAVariable*> variables;
        KuuCoordSystem input;
        const char* unitOf;
        const char* error;
    } cases[] = {
        {{&x}, epsg("2154"), "", "has no variable of the role Y coordinate"},
        {{&text, &y}, epsg("2154"), "", "has no variable of the role X coordinate"},
        {{&x, &other, &y}, epsg("2154"), "", "'x' and 'other x' have the same role"},
        {{&inGrams, &y}, epsg("2154"), "", "unit 'g' of the variable 'grams' does not fit"},
        {{&x, &inDegrees}, epsg("2154"), "", "variable 'degrees' does not fit"},
        {{&x, &y}, KuuCoordSystem::createLocal(), "", "ocal"},
        {{&x, &y}, epsg("2154"), "zinc", "There is no variable 'zinc' to export in 'ft'."},
        {{&x, &y}, epsg("2154"), "x", "cannot be exported in 'ft'"}, // the output is in degrees
        {{&x, &y}, epsg("4326"), "x", "cannot be exported in 'ft'"}, // nothing is known of x
    };
    for (const auto& c : cases) {
        HgdDataSetPoints dataset(1);
        for (const HbdAVariable* variable : c.variables)
            dataset.addVariable(*variable);
        KucExportData exportData;
        exportData.setDataset(dataset);
        exportData.setCoordSystems(c.input, epsg("4326"));
        if (*c.unitOf)
            exportData.setUnit(c.unitOf, length("ft"));
        EXPECT_TRUE(errorOf(exportData).contains(c.error)) << errorOf(exportData).toStdString();
    }
    // Without coordinates there is nothing that could be wrong.
    KucExportData exportData;
    HgdDataSetPoints dataset(1);
    dataset.addVariable(text);
    exportData.setDataset(dataset);
    exportData.setCoordSystems(epsg("2154"), epsg("4326"));
    EXPECT_EQ(write(exportData), "t\na\n");
    EXPECT_EQ(exportData.getConversionCounts().converted, 0);
    EXPECT_EQ(exportData.getConverter(), nullptr);
    EXPECT_EQ(exportData.getConversionReport(), "");
}
