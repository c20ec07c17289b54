#include <util/utils/KuuCoordSystemCatalog.h>
#include <util/utils/KuuCoordSystemCatalogFile.h>
#include <util/utils/KuuCoordSystemService.h>

#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>
#include <util/system/KusFileUser.h>

#include "CapturedLog.h"
#include "FileBytes.h"

#include <QtCore/QSet>

#include <thread>

namespace
{
using File = KuuCoordSystemCatalogFile;
using Mode = Ku::CoordSystemMode;

const QString WGS84 = "WGS 84";
const QString LAMBERT = "RGF93 v1 / Lambert-93";
const QString MERCATOR = "WGS 84 / Pseudo-Mercator";
const QString LAEA = "ETRS89-extended / LAEA Europe";

QByteArray catalogOf(const QByteArray& content)
{
    return "<catalog><version>1</version>" + content + "</catalog>";
}

/// A catalog of its own user directory, with all that is logged.
class KuuCoordSystemCatalogTest : public testing::Test
{
protected:
    KuuCoordSystemCatalogTest()
        : m_formerDirectory(KusFileUser::setDirectory(m_folder.filePath("user")))
        , m_connection(QObject::connect(&catalog(), &KuuCoordSystemCatalog::favoritesChanged,
                                        [this] { ++m_signals; }))
    {
        catalog().setCatalogFiles({});
        restart();
    }
    ~KuuCoordSystemCatalogTest() override
    {
        QObject::disconnect(m_connection);
        KusFileUser::setDirectory(m_formerDirectory);
    }

    static KuuCoordSystemCatalog& catalog() { return KuuCoordSystemCatalog::getInstance(); }
    /// As another process would find it.
    void restart()
    {
        m_log.clear();
        catalog().init();
        m_signals = 0;
    }
    QString writeFile(const QString& name, const QByteArray& bytes)
    {
        return writeBytes(m_folder.filePath(name), bytes);
    }
    static QByteArray userFile() { return readBytes(KuuCoordSystemCatalog::getUserFilePath()); }
    static QStringList favorites(const KuuCoordSystemCatalog::Modes& modes = {Mode::GEOGRAPHIC,
                                                                              Mode::PROJECTED})
    {
        QStringList names;
        for (const KuuCoordSystem& system : catalog().getFavorites(modes))
            names.append(system.getName());
        return names;
    }
    static KuuCoordSystem system(const QString& name) { return catalog().getCoordSystem(name); }
    static KuuCoordSystem epsg(int code, const QString& name = QString())
    {
        return KuuCoordSystem::createFromEpsg(QString::number(code), name);
    }

    QTemporaryDir m_folder;
    CapturedLog m_captured;
    QStringList& m_log = m_captured.texts;
    int m_signals = 0;
    QString m_formerDirectory;
    QMetaObject::Connection m_connection;
};

TEST_F(KuuCoordSystemCatalogTest, everyShippedSystemIsKnownToPROJUnderItsName)
{
    const File& file = File::getShipped();
    ASSERT_EQ(file.state, File::State::READ);
    EXPECT_GT(file.systems.size(), 400);
    QSet<QString> names;
    int missing = 0;
    const KuuCoordSystemService& service = KuuCoordSystemService::getInstance();
    for (const File::System& system : file.systems) {
        EXPECT_FALSE(names.contains(system.name)) << system.name.toStdString();
        names.insert(system.name);
        const auto description = service.describeEpsg(system.epsg);
        if (!description.isKnown) {
            std::cout << "PROJ's database lacks EPSG:" << system.epsg.toStdString() << '\n';
            ++missing;
            continue;
        }
        EXPECT_EQ(description.name, system.name);
        if (!system.ignf.isEmpty()) {
            EXPECT_TRUE(service.areEquivalent(KuuCoordSystem::createFromEpsg(system.epsg),
                                              KuuCoordSystem::createFromIgnf(system.ignf)))
                << system.ignf.toStdString();
        }
    }
    EXPECT_LT(missing, 20);
    EXPECT_TRUE(m_log.isEmpty()) << m_log.join('\n').toStdString();
    EXPECT_EQ(catalog().getNames().size(), file.systems.size());
    EXPECT_EQ(catalog().getGeographicList().size() + catalog().getProjectedList().size(),
              file.systems.size() - missing);
}

TEST_F(KuuCoordSystemCatalogTest, findsByNameAndCode)
{
    EXPECT_EQ(system(LAMBERT).serialize(), "IGNF:LAMB93");
    EXPECT_EQ(catalog().getCoordSystemWithEpsg("2154"), system(LAMBERT));
    EXPECT_EQ(catalog().getCoordSystemWithIgnf("LAMB93"), system(LAMBERT));
    EXPECT_EQ(catalog().getWgs84().getIgnfCode(), "WGS84G");
    EXPECT_EQ(catalog().getWgs84(), system(WGS84));
    const KuuCoordSystem local = catalog().getCoordSystemLocal();
    EXPECT_TRUE(local.isLocal());
    EXPECT_EQ(system(local.getName()), local);
    for (const KuuCoordSystem& unknown :
         {system("wgs 84"), system(""), catalog().getCoordSystemWithEpsg("02154"),
          catalog().getCoordSystemWithEpsg(""), catalog().getCoordSystemWithIgnf("lamb93")})
        EXPECT_EQ(unknown, KuuCoordSystem());
}

TEST_F(KuuCoordSystemCatalogTest, theFirstCatalogThatDefinesANameWins)
{
    const QString one =
        writeFile("one.xml", catalogOf("<cs><name>Mine</name><epsg>2056</epsg></cs>"
                                       "<cs><name>WGS 84</name><epsg>2154</epsg></cs>"
                                       "<cs><proj4>+proj=longlat</proj4></cs>"));
    const QString two =
        writeFile("two.xml", catalogOf("<cs><name>Mine</name><epsg>21781</epsg></cs>"
                                       "<cs><name>Local</name><epsg>2154</epsg></cs>"
                                       "<cs><name> </name><epsg>2154</epsg></cs>"));
    const QString none = m_folder.filePath("none.xml");
    catalog().setCatalogFiles({one, none, two});
    restart();
    const QString ignored = "Loading coordinate system catalog: coordinate system '%1' already in "
                            "catalog (ignored).";
    EXPECT_EQ(m_log,
              QStringList({"  XML file '" + none + "' does not exist.", ignored.arg(WGS84),
                           ignored.arg("Mine"), ignored.arg("Local"), ignored.arg("unnamed")}));
    EXPECT_EQ(system("Mine").getEpsgCode(), "2056");
    EXPECT_EQ(system(WGS84).getEpsgCode(), "4326");
    EXPECT_TRUE(system("unnamed").isGeographic());
    EXPECT_TRUE(system("Local").isLocal());
    // Codes, too, are those of the first: the shipped catalog's.
    EXPECT_EQ(catalog().getCoordSystemWithEpsg("2056").getName(), "CH1903+ / LV95");
}

// What stands in a file, and what is made of it.
TEST_F(KuuCoordSystemCatalogTest, readsWhatItCanOfAnyFile)
{
    using State = File::State;
    const QByteArray good = "<cs><name>A</name><epsg>2154</epsg></cs>";
    const struct {
        const char* title;
        QByteArray bytes;
        State state;
        int systems;
        int logged;
    } rows[] = {
        {"created empty", "<catalog/>", State::READ, 0, 0},
        {"no version", "<catalog>" + good + "</catalog>", State::READ, 1, 0},
        {"nothing", "", State::DAMAGED, 0, 1},
        {"cut", catalogOf(good).left(60), State::DAMAGED, 0, 1},
        {"wrong root", "<catalogs>" + good + "</catalogs>", State::DAMAGED, 0, 1},
        {"newer", "<catalog><version>2</version>" + good + "</catalog>", State::UNKNOWN, 0, 1},
        {"version no number", "<catalog><version>x</version></catalog>", State::UNKNOWN, 0, 1},
        {"strangers", catalogOf("<x><cs><epsg>1</epsg></cs></x>text<!-- c -->" + good + "<y/>"),
         State::READ, 1, 0},
        {"no reference", catalogOf("<cs><name>A</name></cs>" + good + "<cs/>"), State::READ, 1, 2},
        {"doubled field", catalogOf("<cs><epsg>2154</epsg><epsg>1</epsg></cs>"), State::READ, 1, 1},
        {"doubled favorites",
         catalogOf("<favorites/><favorites><projected><cs rank='0'><name>A</name></cs>"
                   "</projected></favorites>"),
         State::READ, 0, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.title);
        m_log.clear();
        const File file = File::fromBytes(row.bytes, "file");
        EXPECT_EQ(file.state, row.state);
        EXPECT_EQ(file.systems.size(), row.systems);
        EXPECT_EQ(m_log.size(), row.logged) << m_log.join('\n').toStdString();
        EXPECT_TRUE(file.projectedFavorites.isEmpty());
    }
    const File tidy = File::fromBytes(
        catalogOf(
            "<cs>\n <name> A\n  B </name><epsg>\n2154 </epsg><ignf><![CDATA[X<Y]]></ignf></cs>"),
        "file");
    ASSERT_EQ(tidy.systems.size(), 1);
    EXPECT_EQ(tidy.systems.first(), (File::System{"A B", "2154", "X<Y", ""}));
}

TEST_F(KuuCoordSystemCatalogTest, ranksFixTheOrderOfFavorites)
{
    const auto entry = [](const QByteArray& rank, const QByteArray& content) {
        return "<cs rank=\"" + rank + "\">" + content + "</cs>";
    };
    writeFile("user/cs_user.xml",
              catalogOf("<favorites><geographic>" + entry("5", "<name>WGS 84</name>") +
                        entry("5", "<name>ETRS89</name>") + entry("-1", "<name>NTF</name>") +
                        entry("2", "<epsg>2154</epsg>") + // projected
                        "</geographic><projected>" + entry("10", "<epsg>2154</epsg>") +
                        entry("9", "<name>Nowhere Grid</name>") +
                        entry("1.5", "<epsg>3035</epsg>") + entry("", "<epsg>3035</epsg>") +
                        "<cs><epsg>3035</epsg></cs>" + entry("11", "<ignf>LAMB93</ignf>") +
                        entry("3", "<name>WGS 84</name><epsg>3857</epsg>") + // the code counts
                        "</projected></favorites>"));
    restart();
    EXPECT_EQ(favorites(), QStringList({"NTF", WGS84, "ETRS89", MERCATOR, LAMBERT}));
    EXPECT_EQ(favorites({Mode::PROJECTED}), QStringList({MERCATOR, LAMBERT}));
    EXPECT_EQ(favorites({Mode::LOCAL, Mode::GEOGRAPHIC}).last(), "Local");
    EXPECT_TRUE(favorites({}).isEmpty());
    EXPECT_EQ(m_log.filter("is no number").size(), 3);
    EXPECT_EQ(m_log.filter("Nowhere Grid").size(), 1);

    // What cannot be shown stays in the file, at its place.
    EXPECT_TRUE(catalog().moveFavorite(system(LAMBERT), 0));
    EXPECT_TRUE(userFile().contains("Nowhere Grid"));
    catalog().setFavorites(Mode::PROJECTED, {});
    EXPECT_TRUE(userFile().contains("Nowhere Grid"));
    EXPECT_EQ(favorites({Mode::PROJECTED}), QStringList());
}

TEST_F(KuuCoordSystemCatalogTest, favoritesAreEditedWrittenAndTold)
{
    EXPECT_TRUE(userFile().endsWith("<catalog/>\n"));
    EXPECT_EQ(favorites({Mode::PROJECTED}), QStringList({MERCATOR, LAEA, LAMBERT}));

    enum Edit { ADD, REMOVE, MOVE };
    const QString SWISS = "CH1903+ / LV95";
    const struct {
        Edit edit;
        KuuCoordSystem system;
        int place;
        QStringList projected; // afterwards; empty when nothing is to happen
    } rows[] = {
        {ADD, epsg(2056), 0, {MERCATOR, LAEA, LAMBERT, SWISS}},
        {ADD, system(SWISS), 0, {}},
        {ADD, KuuCoordSystem::createLocal(), 0, {}},
        {ADD, KuuCoordSystem(), 0, {}},
        {MOVE, epsg(2056), 0, {SWISS, MERCATOR, LAEA, LAMBERT}},
        {MOVE, epsg(3857), 99, {SWISS, LAEA, LAMBERT, MERCATOR}},
        {MOVE, epsg(3857), 3, {}},
        {MOVE, epsg(27700), 0, {}},
        {REMOVE, epsg(3035), 0, {SWISS, LAMBERT, MERCATOR}},
        {REMOVE, epsg(3035), 0, {}},
    };
    const auto expectChange = [&](bool isChange, const QStringList& projected, const auto& edit) {
        const QByteArray before = userFile();
        const QStringList expected = isChange ? projected : favorites({Mode::PROJECTED});
        m_signals = 0;
        edit();
        EXPECT_EQ(m_signals, isChange);
        EXPECT_EQ(userFile() != before, isChange);
        EXPECT_EQ(favorites({Mode::PROJECTED}), expected);
        restart();
        EXPECT_EQ(favorites({Mode::PROJECTED}), expected);
        EXPECT_TRUE(m_log.isEmpty()) << m_log.join('\n').toStdString();
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const bool isChange = !row.projected.isEmpty();
        expectChange(isChange, row.projected, [&] {
            EXPECT_EQ(row.edit == ADD      ? catalog().addFavorite(row.system)
                      : row.edit == REMOVE ? catalog().removeFavorite(row.system)
                                           : catalog().moveFavorite(row.system, row.place),
                      isChange);
        });
    }
    expectChange(true, {"OSGB36 / British National Grid", LAMBERT}, [] {
        catalog().setFavorites(Mode::PROJECTED, {epsg(27700), epsg(4326), epsg(2154), epsg(27700)});
    });
    EXPECT_EQ(favorites({Mode::GEOGRAPHIC}), QStringList({WGS84, "ETRS89"}));
    EXPECT_TRUE(catalog().isFavorite(system(LAMBERT)));
    EXPECT_FALSE(catalog().isFavorite(system(LAEA)));
}

TEST_F(KuuCoordSystemCatalogTest, addedSystemsStay)
{
    const KueProj4Definition oblique("+proj=omerc +lat_0=10 +lonc=20 +alpha=30 +ellps=GRS80");
    const KuuCoordSystem grid =
        catalog().addCoordSystem(KuuCoordSystem::createFromProj4(oblique, " Mine\n\x01 grid "));
    EXPECT_EQ(grid.getName(), QString("Mine \uFFFD grid"));
    const KuuCoordSystem other = catalog().addCoordSystem(epsg(2056, grid.getName()));
    EXPECT_EQ(other.getName(), grid.getName() + " (2)");
    EXPECT_EQ(other.getEpsgCode(), "2056");
    const QByteArray written = userFile();

    // Already there, or nothing that a file could hold.
    EXPECT_EQ(catalog().addCoordSystem(grid), grid);
    EXPECT_EQ(catalog().addCoordSystem(epsg(2154, LAMBERT)), system(LAMBERT));
    EXPECT_TRUE(catalog().addCoordSystem(KuuCoordSystem::createLocal()).isLocal());
    EXPECT_EQ(catalog().addCoordSystem(KuuCoordSystem()), KuuCoordSystem());
    EXPECT_EQ(userFile(), written);
    // The name of the local system is taken.
    EXPECT_EQ(catalog().addCoordSystem(epsg(2056, "Local")).getName(), "Local (2)");

    restart();
    EXPECT_EQ(system(grid.getName()), grid);
    EXPECT_EQ(system(other.getName()), other);
    EXPECT_EQ(catalog().getProjectedList().last().getName(), "Local (2)");

    EXPECT_TRUE(catalog().addFavorite(grid));
    EXPECT_FALSE(catalog().removeCoordSystem(LAMBERT));
    EXPECT_TRUE(catalog().removeCoordSystem(grid.getName()));
    EXPECT_EQ(m_signals, 2);
    EXPECT_EQ(system(grid.getName()), KuuCoordSystem());
    EXPECT_FALSE(catalog().isFavorite(grid));
    EXPECT_EQ(system(other.getName()), other);
}

TEST_F(KuuCoordSystemCatalogTest, whatPROJLacksIsKeptUnlisted)
{
    writeFile("user/cs_user.xml", catalogOf("<cs><name>Future</name><epsg>999999</epsg></cs>"
                                            "<cs><name>Broken</name><proj4>+proj=none</proj4></cs>"
                                            "<cs><name>WGS 84</name><epsg>2154</epsg></cs>"));
    restart();
    EXPECT_EQ(system("Future").serialize(), "EPSG:999999");
    EXPECT_FALSE(system("Future").isValid());
    for (const KuuCoordSystem& listed :
         catalog().getGeographicList() + catalog().getProjectedList())
        EXPECT_TRUE(listed.isValid());
    EXPECT_TRUE(catalog().getNames().contains("Broken"));
    EXPECT_TRUE(catalog().addFavorite(epsg(2056)));
    // A system that another catalog shadows is not lost, either.
    const File file = File::fromBytes(userFile(), "user");
    EXPECT_EQ(file.systems, QVector<File::System>({{"Future", "999999", "", ""},
                                                   {"Broken", "", "", "+proj=none"},
                                                   {WGS84, "2154", "", ""}}));
}

TEST_F(KuuCoordSystemCatalogTest, aDamagedUserFileIsSetAside)
{
    for (const QByteArray& damaged : {QByteArray("<catalog><cs>"), QByteArray("<x/>")}) {
        writeFile("user/cs_user.xml", damaged);
        restart();
        EXPECT_EQ(userFile(), damaged); // reading changes nothing
        EXPECT_EQ(favorites({Mode::PROJECTED}).size(), 3);
        EXPECT_TRUE(catalog().addFavorite(epsg(2056)));
        EXPECT_EQ(m_log.filter(".damaged").size(), 1);
    }
    EXPECT_EQ(QDir(m_folder.filePath("user")).entryList(QDir::Files | QDir::Hidden),
              QStringList({"cs_user.xml", "cs_user.xml.damaged", "cs_user.xml.damaged2"}));

    const QByteArray newer = "<catalog><version>7</version></catalog>";
    writeFile("user/cs_user.xml", newer);
    restart();
    EXPECT_THROW(catalog().addFavorite(epsg(2056)), HbeUserError);
    EXPECT_THROW(catalog().addCoordSystem(epsg(2056, "Mine")), HbeUserError);
    EXPECT_EQ(system("Mine"), KuuCoordSystem());
    EXPECT_EQ(userFile(), newer);
    EXPECT_EQ(m_signals, 0);
}

TEST_F(KuuCoordSystemCatalogTest, anotherProcesssChangesAreNotOverwritten)
{
    writeFile("user/cs_user.xml", catalogOf("<cs><name>Theirs</name><epsg>2056</epsg></cs>"));
    const KuuCoordSystem mine = catalog().addCoordSystem(epsg(21781, "Mine"));
    EXPECT_EQ(mine.getName(), "Mine");
    restart();
    EXPECT_EQ(system("Theirs").getEpsgCode(), "2056");
    EXPECT_EQ(system("Mine").getEpsgCode(), "21781");
}

TEST_F(KuuCoordSystemCatalogTest, aChangeThatCannotBeWrittenDoesNotHappen)
{
    const QString blocked = writeFile("file", "in the way") + "/below";
    KusFileUser::setDirectory(blocked);
    restart();
    EXPECT_EQ(m_log.size(), 1); // the file could not be created
    const QStringList before = favorites();
    EXPECT_THROW(catalog().addFavorite(epsg(2056)), HbeDiskError);
    EXPECT_THROW(catalog().addCoordSystem(epsg(2056, "Mine")), HbeDiskError);
    EXPECT_EQ(favorites(), before);
    EXPECT_EQ(system("Mine"), KuuCoordSystem());
    EXPECT_EQ(m_signals, 0);
}

TEST_F(KuuCoordSystemCatalogTest, filesReadBackAsWritten)
{
    const QVector<File::System> systems = {{"a <&>\"' ]]> \u00e9\U0001F30D", "1", "x y", "]]>"},
                                           {"b", "2", "", ""}};
    for (const bool hasFavorites : {false, true}) {
        File file;
        file.systems = systems;
        file.hasFavorites = hasFavorites;
        if (hasFavorites)
            file.projectedFavorites = systems;
        file.write(m_folder.filePath("round.xml"));
        const File again = File::read(m_folder.filePath("round.xml"));
        EXPECT_EQ(again.systems, systems);
        EXPECT_EQ(again.hasFavorites, hasFavorites);
        EXPECT_EQ(again.projectedFavorites, file.projectedFavorites);
        EXPECT_TRUE(again.geographicFavorites.isEmpty());
    }
}

TEST_F(KuuCoordSystemCatalogTest, threadsMayAskWhileOneEdits)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 50; ++i) {
                EXPECT_TRUE(system(LAMBERT).isProjected());
                EXPECT_FALSE(catalog().getProjectedList().isEmpty());
            }
        });
    for (int i = 0; i < 20; ++i) {
        catalog().addFavorite(epsg(2056));
        catalog().removeFavorite(epsg(2056));
    }
    for (std::thread& thread : threads)
        thread.join();
}
} // namespace
