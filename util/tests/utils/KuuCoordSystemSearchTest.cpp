#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuCoordSystemDetails.h>
#include <util/utils/KuuCoordSystemSearch.h>
#include <util/utils/KuuCoordSystemService.h>

namespace
{
using Search = KuuCoordSystemSearch;
using Area = KuuCoordSystemArea;

QStringList textsOf(const Search::Answer& answer)
{
    QStringList texts;
    for (const Search::Entry& entry : answer.entries)
        texts.append(entry.getText());
    return texts;
}

Search::Answer findAt(const QString& text, const char* area, int limit = 10)
{
    Search::Question question;
    question.text = text;
    question.area = Area::fromText(area);
    question.limit = limit;
    EXPECT_TRUE(question.area.isValid) << area;
    return Search::find(question);
}

TEST(KuuCoordSystemArea, readsPointsAndBoxes)
{
    for (const char* text : {"", "1", "1,2,3", "1,2,3,4,5", "a,b", "1,91", "361,0", "0,5,1,4",
                             "1;2", "1,nan", "1,1e400", ",", "1,2,"})
        EXPECT_FALSE(Area::fromText(text).isValid) << text;
    const Area box = Area::fromText(" -10.5 , 1e1,20,30");
    EXPECT_TRUE(box.isValid);
    EXPECT_EQ(box.west, -10.5);
    EXPECT_EQ(box.north, 30.);
}

TEST(KuuCoordSystemArea, containsAcrossTheAntimeridianAndTheWorld)
{
    const Area fiji = Area::fromBox(176.8, -20.8, -178.1, -12.4);
    const Area world = Area::fromBox(-180., -90., 180., 90.);
    const Area east = Area::fromBox(174., -80., 180., 0.);
    const struct {
        const Area& outer;
        const char* inner;
        bool contains;
    } rows[] = {
        {fiji, "178,-17", true},
        {fiji, "-179,-17", true},
        {fiji, "181,-17", true},
        {fiji, "180,-17", true},
        {fiji, "-180,-17", true},
        {fiji, "0,-17", false},
        {fiji, "178,-11", false},
        {fiji, "178,-18,-179,-17", true},
        {fiji, "-179,-18,178,-17", false},
        {world, "-180,-90,180,90", true},
        {world, "170,0,-170,1", true},
        {world, "0,0,360,10", true},
        {east, "180,-1", true},
        {east, "-180,-1", true},
        {east, "-179.9,-1", false},
        {east, "174,-80", true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.outer.contains(Area::fromText(row.inner)), row.contains) << row.inner;
    EXPECT_FALSE(Area().contains(world));
    EXPECT_FALSE(world.contains(Area()));
    EXPECT_DOUBLE_EQ(world.getSize(), 1.);
    EXPECT_NEAR(fiji.getWidth(), 5.1, 1e-9);
}

TEST(KuuCoordSystemSearch, ranksWhatIsMeantFirst)
{
    ASSERT_GT(Search::getSystemCount(), 5000);
    const struct {
        const char* text;
        QStringList first;
    } rows[] = {
        {"2154", {"EPSG:2154"}},
        {"EPSG:2154", {"EPSG:2154"}},
        {" epsg:2154 ", {"EPSG:2154"}},
        {"lamb93", {"IGNF:LAMB93"}},
        {"31700", {"EPSG:31700"}}, // asked for by its code, though deprecated
        {"WGS 84", {"EPSG:4326", "EPSG:4979"}},
        {"wgs84", {"EPSG:4326", "EPSG:4979"}},
        {"WGS 84 / UTM zone 31N", {"EPSG:32631"}},
        {"utm 31n", {"EPSG:32631", "EPSG:25831", "EPSG:23031"}},
        {"lambert-93", {"EPSG:2154", "IGNF:LAMB93"}},
        {"lambert93", {"EPSG:2154", "IGNF:LAMB93"}},
        {"rd new", {"EPSG:28992"}},
        {"british national grid", {"EPSG:27700"}},
        {"\u00c9TENDU", {"IGNF:LAMBE"}},
        {"r\u00e9union tm", {"EPSG:3727"}},
        {"gauss-kr\u00fcger dhdn zone 3", {"EPSG:31467"}},
        {"stereo 70", {"EPSG:3844", "EPSG:31700"}},
    };
    for (const auto& row : rows) {
        const QStringList found = textsOf(Search::find(row.text, row.first.size()));
        EXPECT_EQ(found, row.first) << row.text;
    }
    EXPECT_EQ(Search::find("no such thing").count, 0);
    EXPECT_EQ(Search::find("EPSG:LAMB93").count, 0);
    // "zone 3" is neither zone 30 nor zone 13.
    for (const Search::Entry& entry : Search::find("utm zone 3n", 1000).entries)
        EXPECT_TRUE(entry.name.contains("3N") && !entry.name.contains("13N"))
            << entry.name.toStdString();
}

TEST(KuuCoordSystemSearch, looksAtAPlace)
{
    const Search::Answer paris = findAt("", "2.35,48.85", 5);
    EXPECT_EQ(textsOf(paris).value(0), "EPSG:3949");
    EXPECT_GT(paris.count, 100);
    EXPECT_TRUE(textsOf(findAt("utm wgs", "-179.5,-17")).contains("EPSG:32701"));
    for (const Search::Entry& entry : findAt("utm", "2.35,48.85", 1000).entries)
        EXPECT_TRUE(entry.area.contains(Area::fromText("2.35,48.85")));
}

TEST(KuuCoordSystemSearch, boundsAndFilters)
{
    Search::Question question;
    question.text = "nad27";
    const int all = Search::find(question).count;
    EXPECT_EQ(Search::find(question).entries.size(), std::min(all, question.limit));
    question.limit = 100000;
    EXPECT_EQ(Search::find(question).entries.size(), all);
    question.withProjected = false;
    const int geographic = Search::find(question).count;
    question.withProjected = true;
    question.withGeographic = false;
    EXPECT_EQ(Search::find(question).count, all - geographic);
    question.withDeprecated = false;
    for (const Search::Entry& entry : Search::find(question).entries)
        EXPECT_FALSE(entry.isDeprecated);
    question.limit = -1;
    EXPECT_TRUE(Search::find(question).entries.isEmpty());
}

// The list of the database tells no more than types: what we made of them is what each system, made
// one by one, says of itself.
TEST(KuuCoordSystemSearch, agreesWithEachSystemItself)
{
    const KuuCoordSystemService& service = KuuCoordSystemService::getInstance();
    const Search::Answer all = Search::find("", 100000);
    EXPECT_EQ(all.count, Search::getSystemCount());
    int asked = 0;
    for (int i = 0; i < all.entries.size(); ++i) {
        const Search::Entry& entry = all.entries.at(i);
        if (entry.kind != Ku::CoordSystemKind::COMPOUND && i % 20 != 0)
            continue;
        ++asked;
        const auto description = entry.authority == "EPSG" ? service.describeEpsg(entry.code)
                                                           : service.describeIgnf(entry.code);
        EXPECT_EQ(description.isKnown, true) << entry.getText().toStdString();
        EXPECT_EQ(description.mode, entry.mode) << entry.getText().toStdString();
        EXPECT_EQ(description.name, entry.name);
    }
    EXPECT_GT(asked, 500);
}

TEST(KuuCoordSystemDetails, namesAxesOfAllParts)
{
    const auto axesOf = [](const char* text) {
        QStringList directions;
        for (const auto& axis : KuuCoordSystemDetails::of(KuuCoordSystem::unserialize(text)).axes)
            directions.append(axis.direction);
        return directions;
    };
    EXPECT_EQ(axesOf("EPSG:4326"), QStringList({"north", "east"}));
    EXPECT_EQ(axesOf("EPSG:4979"), QStringList({"north", "east", "up"}));
    EXPECT_EQ(axesOf("EPSG:7405"), QStringList({"east", "north", "up"}));
    EXPECT_EQ(axesOf("PROJ4:+proj=utm +zone=31 +ellps=intl +towgs84=1,2,3"),
              QStringList({"east", "north"}));
    EXPECT_EQ(axesOf("EPSG:99999"), QStringList());
}

TEST(KuuCoordSystemDetails, findsEquivalentsOfTheOtherAuthority)
{
    const auto equivalents = [](const KuuCoordSystem& system) {
        QStringList texts;
        for (const auto& other : KuuCoordSystemDetails::findEquivalents(system))
            texts.append(other.text);
        return texts;
    };
    EXPECT_TRUE(equivalents(KuuCoordSystem::createFromEpsg("2154")).contains("IGNF:LAMB93"));
    EXPECT_TRUE(equivalents(KuuCoordSystem::createFromIgnf("LAMBE")).contains("EPSG:27572"));
    const KuuCoordSystem both =
        KuuCoordSystem::createFromFields("", "4326", "WGS84G", KueProj4Definition());
    EXPECT_EQ(equivalents(both).value(0), "EPSG:4326");
    EXPECT_TRUE(equivalents(KuuCoordSystem::createLocal()).isEmpty());
    EXPECT_TRUE(equivalents(KuuCoordSystem::createFromEpsg("99999")).isEmpty());
}
} // namespace
