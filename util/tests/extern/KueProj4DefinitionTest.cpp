#include <util/extern/KueProj4Definition.h>

TEST(KueProj4Definition, normalizesSpellingsThatSayTheSame)
{
    const struct {
        const char* text;
        const char* normalized;
    } rows[] = {
        {"+proj=utm +zone=31 +datum=WGS84 +units=m +no_defs",
         "+proj=utm +datum=WGS84 +units=m +zone=31"},
        {"  zone=31\tproj=utm  units=m datum=WGS84 +type=crs ",
         "+proj=utm +datum=WGS84 +units=m +zone=31"},
        {"+proj=lcc +lat_0=46.50 +lon_0=3.0 +x_0=7e5 +k=.9996",
         "+proj=lcc +k=0.9996 +lat_0=46.5 +lon_0=3 +x_0=700000"},
        {"+proj=utm +zone=31 +zone=32 +south", "+proj=utm +south +zone=31"},
        {"+towgs84=1.0,-2.50,0 +init=epsg:27572", "+init=epsg:27572 +towgs84=1,-2.5,0"},
    };
    for (const auto& row : rows) {
        const KueProj4Definition definition(QString::fromUtf8(row.text));
        EXPECT_EQ(definition.getNormalizedText(), QString::fromUtf8(row.normalized));
        EXPECT_TRUE(definition.isValid());
        EXPECT_EQ(definition, KueProj4Definition(QString::fromUtf8(row.normalized)));
    }
    EXPECT_NE(KueProj4Definition("+proj=utm +zone=31"),
              KueProj4Definition("+proj=utm +zone=31 +south"));
}

TEST(KueProj4Definition, isValidWhenItNamesAProjection)
{
    for (const char* text : {"", "   ", "garbage", "+zone=31", "+proj=", "+proj", "+init +x=1"})
        EXPECT_FALSE(KueProj4Definition(QString::fromUtf8(text)).isValid()) << text;
    const KueProj4Definition utm("+proj=utm +zone=31 +south");
    EXPECT_EQ(utm.getParameter("zone"), "31");
    EXPECT_TRUE(utm.hasParameter("south"));
    EXPECT_EQ(utm.getParameter("south"), QString());
}
