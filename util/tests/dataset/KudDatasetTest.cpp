#include "ErrorText.h"
#include "PythonRun.h"

#include <util/dataset/KudGenericDatasetFactory.h>
#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/dataset/KudSelector.h>
#include <util/observable/KuoIObserver.h>
#include <util/utils/KuuGeometrySample.h>
#include <util/utils/KuuMemento.h>
#include <util/utils/KuuMementoBytes.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/base/HbbGlobal.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>
#include <basic/geometry/HbgGeomGrid.h>
#include <basic/unit/HbuUnitService.h>

#include <limits>

namespace
{
class Recorder : public KuoIObserver<KudDatasetModif>
{
public:
    void update(const KudDatasetModif& notice) override { notices.push_back(notice); }
    std::vector<KudDatasetModif> notices;
};

KuuGeometrySet gridOf(int nx, int ny)
{
    return KuuGeometrySet(HbgGeomGrid(nx, ny, HbgVector2D{100, 200}, 10, 20));
}

std::unique_ptr<HbdAVariable> categories(int count)
{
    auto column =
        std::make_unique<HbdVariableEnum>(HbdVariableDetails("rock type", HbdEVarType::CATEGORY));
    HbdEnumCatalog catalog;
    catalog.setId("rocks");
    catalog.addCategory(3, QString::fromUtf8("grès <&> \"fin\""), QColor(200, 180, 60));
    catalog.addCategory(1, "");
    catalog.addCategory(65534, "  ");
    column->setCatalog(catalog);
    for (int i = 0; i < count; ++i)
        column->append(quint16(i % 4 == 0 ? 0xFFFF : i % 3 == 0 ? 77 : 3));
    return column;
}

/// A dataset with a column of every kind and values that like to get lost.
void fillWithEverything(KudMemoryDatasetPoint& dataset)
{
    constexpr double D = std::numeric_limits<double>::denorm_min();
    const double reals[] = {0.1, -0.0,  HbbGlobal::D_FFFF,
                            D,   1e308, std::numeric_limits<double>::infinity()};
    const QString texts[] = {QString(),
                             "",
                             " \t\r\n ",
                             QString::fromUtf8("地質 \xF0\x9F\xAA\xA8"),
                             QString(QChar(0xD800)),
                             QString(QChar(0))};
    KudMemoryDataTable& table = *dataset.getPointTable();
    HbdVariableDetails x("x", HbdEVarType::REAL, HbdEVarRole::X_COORDINATE);
    x.unit = HbuUnitService::getInstance().getUnit(HbuEUnitClass::LENGTH, "m");
    x.tags.add("a tag");
    x.format = HbbEFormat::DECIMAL;
    x.precision = 3;
    auto realColumn = std::make_unique<HbdVariableReal>(x);
    auto textColumn = std::make_unique<HbdVariableText>(
        HbdVariableDetails("note, with \"marks\"", HbdEVarType::TEXT, HbdEVarRole::NAME));
    for (int i = 0; i < 6; ++i) {
        realColumn->append(reals[i]);
        textColumn->append(texts[i]);
    }
    table.addVariable(std::move(realColumn));
    table.addVariable(std::move(textColumn));
    table.addVariable(categories(6));
    int value = 0;
    for (const HbdEVarType& type : HbdEVarType::createIterator()) {
        HbdVariableDetails details("every " + type.getKey(), type);
        const KudDatasetVariable variable = table.createVariable(details);
        for (int rank = 0; rank < 5; ++rank)
            table.updateValue(variable, rank, ++value % 250);
    }
    auto realization = std::make_unique<HbdVariableReal>(HbdVariableDetails("sim"));
    realization->setRealization("12");
    realization->resize(6);
    table.addVariable(std::move(realization));
}
} // namespace

TEST(KudADataset, ComesBackFromItsFileEqual)
{
    KudMemoryDatasetPoint dataset("Campaign 1");
    fillWithEverything(dataset);
    dataset.setCoordSystem(KuuCoordSystem::createFromEpsg("28992", "our name"));
    dataset.setFlag(Ku::CanDeleteVariables, false);
    dataset.setTagFlag("a tag", KudADataset::HiddenVariable);
    dataset.setDefaultObjectName("sample");
    dataset.setDatasetShared(true);
    dataset.setInterval({HbiIntervalIntSmallO64(0, 1), HbiIntervalIntSmallO64(3, qint64(1) << 40)});
    dataset.hideStructuralRoles({{HbdESupport::POINT, HbdVarRoleFlags(HbdEVarRole::NAME)}});
    dataset.getPointTable()->setFlag(Ku::ReadOnlyValues);
    dataset.mask({HbiIntervalIntSmall(0, 0), HbiIntervalIntSmall(4, 5)}, Ku::Select);
    dataset.getPointTable()->getHighlight()->selectAll();

    QTemporaryDir directory;
    KuxXmlMementoFile::save(QDir(directory.path()), dataset.getMemento());
    const auto ids =
        KuxXmlMementoFile::getIdList(QDir(directory.path()), KudADataset::getMementoRelation());
    ASSERT_EQ(ids.size(), 1);
    const KuuMemento memento = KuxXmlMementoFile::read(QDir(directory.path()), ids[0]);
    const auto restored = KudGenericDatasetFactory().create(memento, true);

    auto* points = KudMemoryDatasetPoint::convert(restored.get());
    ASSERT_NE(points, nullptr);
    EXPECT_EQ(points->getId(), dataset.getId());
    EXPECT_EQ(points->getName(), dataset.getName());
    EXPECT_EQ(points->getCoordSystem(), dataset.getCoordSystem());
    EXPECT_EQ(points->getFlags(), dataset.getFlags());
    EXPECT_EQ(points->getTags(KudADataset::HiddenVariable), QStringList{"a tag"});
    EXPECT_EQ(points->getDefaultObjectName(), "sample");
    EXPECT_TRUE(points->isDatasetShared());
    ASSERT_NE(points->getInterval(), nullptr);
    EXPECT_EQ(*points->getInterval(), *dataset.getInterval());
    EXPECT_FALSE(points->getNameVariable().isValid());
    EXPECT_EQ(points->getPointTable()->getFlags(), dataset.getPointTable()->getFlags());
    EXPECT_TRUE(
        points->getPointTable()->getDataTable().isEqual(dataset.getPointTable()->getDataTable()));
    EXPECT_EQ(points->getMask(), dataset.getMask());
    EXPECT_FALSE(points->getPointTable()->getHighlight()->hasSelection());

    const auto copy = KudGenericDatasetFactory().create(memento, false);
    EXPECT_NE(copy->getId(), dataset.getId());
}

TEST(KudADataset, RestoresAnEditWithOneNotice)
{
    Recorder recorder;
    KudMemoryDatasetPoint dataset("Campaign");
    fillWithEverything(dataset);
    const HbdDataTable before = dataset.getPointTable()->getDataTable();
    const KuuMemento memento = dataset.getMemento();

    dataset.mask(1, Ku::Select);
    dataset.getPointTable()->deleteSample(2);
    dataset.deleteVariable(dataset.getPointTable()->getVariableAt(1));
    dataset.setName("Renamed");
    dataset.setInterval(HbiIntervalIntSmallO64(0, 1));
    dataset.hideStructuralRoles({{HbdESupport::POINT, HbdVarRoleFlags(HbdEVarRole::NAME)}});
    dataset.addObserver(&recorder);
    dataset.setMemento(memento, false);

    EXPECT_TRUE(dataset.getPointTable()->getDataTable().isEqual(before));
    EXPECT_EQ(dataset.getName(), "Campaign");
    EXPECT_EQ(dataset.getMask(), QBitArray(6));
    EXPECT_EQ(dataset.getInterval(), nullptr);
    EXPECT_TRUE(dataset.getNameVariable().isValid());
    ASSERT_EQ(recorder.notices.size(), 1U);
    EXPECT_TRUE(recorder.notices[0].testReason(KudDatasetModif::Reset));
    EXPECT_EQ(recorder.notices[0].dataset(), &dataset);
}

TEST(KudADataset, KeepsItsStateWhenAMementoIsDamaged)
{
    Recorder recorder;
    KudMemoryDatasetPoint dataset("Campaign");
    fillWithEverything(dataset);
    dataset.mask(3, Ku::Select);
    const HbdDataTable before = dataset.getPointTable()->getDataTable();
    const QBitArray mask = dataset.getMask();
    const KuuMemento good = dataset.getMemento();
    dataset.addObserver(&recorder);

    const auto damaged = [&good](const std::function<void(QVariantMap&, QVariantMap&)>& damage) {
        QVariantMap table = good.getField("table").toMap();
        QVariantList variables = table.value("variables").toList();
        QVariantMap first = variables[0].toMap();
        damage(table, first);
        variables[0] = first;
        if (table.contains("variables"))
            table.insert("variables", variables);
        KuuMemento memento = good;
        memento.setField("table", table);
        return memento;
    };
    // A frame that says it holds 2^60 bytes: magic, an eight-byte size field, the size.
    const QByteArray bomb = QByteArray::fromHex("28b52ffd c000 0000000000001000").toBase64();
    const struct {
        const char* what;
        std::function<void(QVariantMap&, QVariantMap&)> damage;
        const char* message;
    } cases[] = {
        {"no number of samples", [](auto& t, auto&) { t.remove("sampleCount"); },
         "The number of samples of the table is not valid."},
        {"more samples than values", [](auto& t, auto&) { t["sampleCount"] = 2147483647; },
         "Cannot read the variable 'x': Its values take 48 bytes instead of 17179869176."},
        {"texts that say they take 2^60 bytes",
         [&](auto&, auto& c) {
             c["type"] = "TEXT";
             c["values"] = bomb;
         },
         "Cannot read the variable 'x': Its compressed values are damaged."},
        {"a negative number", [](auto& t, auto&) { t["sampleCount"] = "-6"; },
         "The number of samples of the table is not valid."},
        {"no base64", [](auto&, auto& c) { c["values"] = "@@@"; },
         "Cannot read the variable 'x': Its values are not valid base64."},
        {"no frame", [](auto&, auto& c) { c["values"] = "AAAAAAAA"; },
         "Cannot read the variable 'x': Its values are not compressed as expected."},
        {"a bomb", [&](auto&, auto& c) { c["values"] = bomb; }, "Cannot read the variable 'x'"},
        {"a cut frame", [](auto&, auto& c) { c["values"] = c["values"].toByteArray().left(24); },
         "Cannot read the variable 'x': Its compressed values are damaged."},
        {"an unknown type", [](auto&, auto& c) { c["type"] = "TENSOR"; },
         "Cannot read the variable 'x': Its type 'TENSOR' is not known."},
        {"no name", [](auto&, auto& c) { c["name"] = ""; },
         "Cannot read the variable '': Its name is empty or taken."},
        {"a mask of more samples",
         [](auto& t, auto&) { t["mask"] = KuuMementoBytes::pack("12", 2); },
         "Cannot read the mask: Its values take 2 bytes instead of 1."},
        {"an empty mask", [](auto& t, auto&) { t["mask"] = ""; },
         "Cannot read the mask: Its values take 0 bytes instead of 1."},
        {"a cut mask", [](auto& t, auto&) { t["mask"] = t["mask"].toByteArray().left(12); },
         "Cannot read the mask: Its compressed values are damaged."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const KuuMemento memento(KuuId::generate("Dataset"), damaged(c.damage));
        const QString error = errorOf<HbeUserError>([&] { dataset.setMemento(memento, true); });
        EXPECT_TRUE(error.startsWith(c.message)) << error.toStdString();
        EXPECT_TRUE(dataset.getPointTable()->getDataTable().isEqual(before));
        EXPECT_EQ(dataset.getMask(), mask);
        EXPECT_TRUE(recorder.notices.empty());
        EXPECT_FALSE(dataset.isLocked());
        EXPECT_EQ(dataset.getId(), good.getId().getUuid());
    }
}

TEST(KudADataset, TurnsTheNoticesOfItsTableIntoItsOwn)
{
    Recorder recorder;
    KudMemoryDatasetPoint dataset("Campaign");
    fillWithEverything(dataset);
    KudMemoryDataTable& table = *dataset.getPointTable();
    dataset.addObserver(&recorder);

    table.updateValue(table.getVariableAt(0), 1, 5.0);
    table.notifyReset();
    ASSERT_EQ(recorder.notices.size(), 2U);
    EXPECT_TRUE(recorder.notices[0].testReason(KudDatasetModif::TableModified));
    EXPECT_TRUE(recorder.notices[0].modifForTable(&table).testReason(KudTableModif::ValuesChanged));
    EXPECT_TRUE(recorder.notices[1].testReason(KudDatasetModif::TableModified));
    EXPECT_TRUE(recorder.notices[1].modifForTable(&table).testReason(KudTableModif::Reset));
}

// The unit of a column comes before that of the system; elevations take no angle.
TEST(KudADataset, KnowsTheUnitsOfItsCoordinates)
{
    const auto length = [](const char* key) {
        return HbuUnitService::getInstance().getUnit(HbuEUnitClass::LENGTH, key);
    };
    const HbuUnit degree = HbuUnitService::getInstance().getUnit(HbuEUnitClass::ANGLE, "deg");
    const KuuCoordSystem lambert = KuuCoordSystem::createFromEpsg("2154");
    const KuuCoordSystem wgs84 = KuuCoordSystem::createFromEpsg("4326");
    const struct {
        KuuCoordSystem system;
        HbuUnit x, z;
        HbuUnit coordinateUnit, elevationUnit;
    } cases[] = {
        {{}, {}, {}, {}, {}},
        {lambert, {}, {}, length("m"), length("m")},
        {lambert, HbuUnit::none(), HbuUnit::none(), length("m"), length("m")},
        {lambert, length("km"), {}, length("km"), length("km")},
        {lambert, length("km"), length("ft"), length("km"), length("ft")},
        {wgs84, {}, {}, degree, {}},
        {wgs84, {}, length("ft"), degree, length("ft")},
        {KuuCoordSystem::createLocal(length("ft")), {}, {}, length("ft"), length("ft")},
    };
    for (const auto& c : cases) {
        KudMemoryDatasetPoint dataset("Units");
        dataset.setCoordSystem(c.system);
        HbdVariableDetails x("x", HbdEVarType::REAL, HbdEVarRole::X_COORDINATE);
        HbdVariableDetails z("z", HbdEVarType::REAL, HbdEVarRole::Z_COORDINATE);
        x.unit = c.x;
        z.unit = c.z;
        dataset.createVariable(x, HbdESupport::POINT);
        dataset.createVariable(z, HbdESupport::POINT);
        KudMemoryDatasetPoint restored("Restored");
        restored.setMemento(dataset.getMemento(), false);
        for (const KudMemoryDatasetPoint* d : {&dataset, &restored}) {
            EXPECT_EQ(d->getCoordinateUnit(), c.coordinateUnit);
            EXPECT_EQ(d->getElevationUnit(), c.elevationUnit);
        }
    }
}

TEST(KudADataset, TellsOfAnotherCoordinateSystemOnce)
{
    Recorder recorder;
    KudMemoryDatasetPoint dataset("Campaign");
    fillWithEverything(dataset);
    dataset.addObserver(&recorder);
    dataset.setCoordSystem(KuuCoordSystem::createFromEpsg("28992"));
    dataset.setCoordSystem(KuuCoordSystem::createFromEpsg("28992"));
    ASSERT_EQ(recorder.notices.size(), 1U);
    EXPECT_TRUE(recorder.notices[0]
                    .modifForTable(dataset.getPointTable())
                    .testReason(KudTableModif::Reset));
    dataset.setCoordSystem(KuuCoordSystem());
    EXPECT_EQ(recorder.notices.size(), 2U);
}

TEST(KudMemoryDatasetPoint, HasOneObjectASample)
{
    KudMemoryDatasetPoint dataset("Holes");
    EXPECT_EQ(dataset.createObject(HbgVector2D{1, 2}), -1); // no coordinates yet
    KudMemoryDataTable& table = *dataset.getPointTable();
    for (const auto& [name, role] : {std::pair{"x", HbdEVarRole::X_COORDINATE},
                                     {"y", HbdEVarRole::Y_COORDINATE},
                                     {"z", HbdEVarRole::Z_COORDINATE}})
        table.createVariable(HbdVariableDetails(name, HbdEVarType::REAL, role));
    EXPECT_EQ(dataset.createObject(HbgVector3D{1, 2, 3}), 0);
    EXPECT_EQ(dataset.createObject(HbgVector2D{5, -7}), 1);
    table.createSample(QVector<QVariant>{});
    EXPECT_EQ(dataset.getObjectCount(), 3);
    EXPECT_TRUE(dataset.is3D());
    EXPECT_EQ(dataset.getObject(0), KuuGeometrySample(HbgVector3D{1, 2, 3}));
    EXPECT_TRUE(dataset.getObject(3).isEmpty());

    const HbgBox box = dataset.getBoundingBox();
    EXPECT_EQ(box.getXMax(), 5);
    EXPECT_EQ(box.getYMin(), -7);
    EXPECT_EQ(box.getZMax(), 3);
    EXPECT_EQ(dataset.readGeometrySet().getSampleCount(), 3);
    dataset.updateObject(1, HbgVector3D{6, 6, 6});
    EXPECT_EQ(table.readXCoordinate()->getNumber(1), 6);
    dataset.deleteObjects(HbiIntervalIntSmall(0, 1));
    EXPECT_EQ(dataset.getObjectCount(), 1);
}

TEST(KudMemoryDatasetGrid, HasOneSampleANodeAndRefusesWhatIsNoGrid)
{
    Recorder recorder;
    KudMemoryDatasetGrid grid("Model");
    grid.addObserver(&recorder);
    grid.setGeometrySet(gridOf(4, 3));
    EXPECT_EQ(grid.getObjectCount(), 12);
    ASSERT_EQ(recorder.notices.size(), 1U);
    EXPECT_TRUE(recorder.notices[0].testReason(KudDatasetModif::Reset));
    EXPECT_EQ(grid.createObject(HbgVector2D{0, 0}), -1);
    EXPECT_EQ(grid.getGridTable()->createSample(QVector<QVariant>{}), -1);
    EXPECT_FALSE(grid.getGridTable()->deleteAllSamples());

    const struct {
        KuuGeometrySet geometry;
        const char* message;
    } refused[] = {
        {KuuGeometrySet(HbgEGeometrySet::POINTS, HbgEDimension::DIM_2D), "Invalid geometry set."},
        {KuuGeometrySet(), "Invalid geometry set."},
        {gridOf(70000, 70000), "Too many samples for a Grid Memory dataset."},
        {KuuGeometrySet(HbgGeomGrid(3, 3, HbgVector2D{HbbGlobal::D_FFFF, 0}, 1, 1)),
         "Invalid geometry set."},
        {KuuGeometrySet(HbgSparseGrid(HbgGeomGrid(70000, 70000, HbgVector2D{0, 0}, 1, 1),
                                      HbiIntervalIntSmallO64(0, 2147483646))),
         "Too many samples for a Grid Memory dataset."},
    };
    for (const auto& c : refused) {
        const QString error =
            errorOf<HbeProgrammingError>([&] { grid.setGeometrySet(c.geometry); });
        EXPECT_TRUE(error.endsWith(c.message)) << error.toStdString();
        EXPECT_TRUE(error.contains("in file 'dataset/KudMemoryDatasetGrid'"));
        EXPECT_EQ(grid.getObjectCount(), 12);
    }
    EXPECT_THROW(grid.getObject(0), HbeProgrammingError);
}

/// A full grid and a sparse one, with one sample a cell.
TEST(KudMemoryDatasetGrid, ComesBackFromItsMementoEqual)
{
    const HbgGeomGrid whole(4, 3, 2, {100, 200, -50}, 10, 20, 5);
    const HbgSparseGrid cells(whole, {HbiIntervalIntSmallO64(1, 2), HbiIntervalIntSmallO64(5, 5)});
    for (const KuuGeometrySet& geometry : {gridOf(4, 3), KuuGeometrySet(cells)}) {
        KudMemoryDatasetGrid grid("Model");
        grid.setGeometrySet(geometry);
        EXPECT_EQ(grid.getObjectCount(), geometry.getSampleCount());
        EXPECT_EQ(grid.getGeometry(), geometry.getGeometry());
        EXPECT_EQ(grid.is3D(), geometry.isSparseGrid());
        EXPECT_EQ(grid.getBoundingBox(), geometry.getBoundingBox());
        grid.createVariable(HbdVariableDetails("v"), HbdESupport::GRID);
        grid.getGridTable()->updateValue(grid.getGridTable()->getVariableAt(0), 2, 7.5);
        grid.setCoordSystem(KuuCoordSystem::createLocal());
        grid.setObjectName(2, "no name variable: nothing happens");
        KudMemoryDatasetGrid other("Other");
        other.setMemento(grid.getMemento(), true);
        EXPECT_EQ(other.readGeometrySet(), geometry);
        EXPECT_EQ(other.getCoordSystem(), grid.getCoordSystem());
        const HbdDataTable& values = grid.getGridTable()->getDataTable();
        EXPECT_TRUE(other.getGridTable()->getDataTable().isEqual(values));

        KuuMemento wrong = grid.getMemento(); // of more cells than samples
        wrong.setField("geometry", KuuGeometrySet(whole).toVariantMap());
        EXPECT_THROW(other.setMemento(wrong, true), HbeUserError);
        EXPECT_EQ(other.readGeometrySet(), geometry);
    }
    KudMemoryDatasetGrid none("None"); // without cells, it is a grid all the same
    none.setGeometrySet(KuuGeometrySet(HbgSparseGrid()));
    EXPECT_EQ(none.getObjectCount(), 0);
}

TEST(KudGenericDatasetFactory, NamesTheTypeItCannotMake)
{
    KuuMemento memento(KuuId::generate("Dataset"));
    memento.setField("type", "Nonsense");
    const QString error =
        errorOf<HbeProgrammingError>([&] { KudGenericDatasetFactory().create(memento, true); });
    EXPECT_TRUE(error.endsWith("Unable to create a dataset of type Nonsense"));
    EXPECT_TRUE(error.contains("'dataset/KudGenericDatasetFactory'"));
}

TEST(KudEDatasetType, KnowsItsItems)
{
    EXPECT_EQ(KudEDatasetType::fromKey("GRID").getValue(), 4);
    EXPECT_EQ(KudEDatasetType::GRID.getLabel(), "Project grid");
    EXPECT_EQ(KudEDatasetType::count(), 12);
    EXPECT_EQ(KudEDatasetType(), KudEDatasetType::NONE);
}

/// The documented form, read by a program that knows nothing of ours: the one in the documentation.
TEST(KudADataset, IsReadByTheDocumentedPythonProgram)
{
    QFile document(qEnvironmentVariable("KELVANE_SOURCE_DIR") + "/docs/formats/dataset-memento.md");
    REQUIRE_PYTHON();
    if (QStandardPaths::findExecutable("zstd").isEmpty() || !document.open(QFile::ReadOnly))
        GTEST_SKIP() << "needs zstd and the source tree";
    const QString text = QString::fromUtf8(document.readAll());
    const QString program = text.section("```python\n", 1).section("```", 0, 0);

    KudMemoryDatasetPoint dataset("Campaign");
    KudMemoryDataTable& table = *dataset.getPointTable();
    const struct {
        HbdEVarType type;
        QVariant value;
        const char* printed;
    } columns[] = {
        {HbdEVarType::REAL, 0.1, "0.1"},
        {HbdEVarType::REAL, QVariant(), "1e+300"},
        {HbdEVarType::REAL_32, 0.5, "0.5"},
        {HbdEVarType::INTEGER, qint64(-9007199254740993), "-9007199254740993"},
        {HbdEVarType::TEXT, QString::fromUtf8("grès, 地質"), "grès, 地質"},
        {HbdEVarType::TEXT, QVariant(), "None"},
        {HbdEVarType::CATEGORY, 12, "12"},
        {HbdEVarType::DATE, "1970-01-01T00:00:01", "1000"},
        {HbdEVarType::SELECTION, 1, "1"},
    };
    QStringList expected;
    QVector<QVariant> row;
    for (const auto& column : columns) {
        const QString name = QString("v%1").arg(row.size());
        table.createVariable(HbdVariableDetails(name, column.type));
        row.append(column.value);
        expected << name + '\t' + QString::fromUtf8(column.printed);
    }
    table.createSamples({row, row});

    QTemporaryDir directory;
    const QString path = directory.filePath("dataset.xml");
    KuxXmlMementoFile::save(path, dataset.getMemento());
    EXPECT_EQ(QString::fromUtf8(runPython(program, {path})).trimmed().split('\n'), expected);
}
