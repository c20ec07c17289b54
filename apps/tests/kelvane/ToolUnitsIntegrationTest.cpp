#include "ToolRunner.h"

namespace
{
class ToolUnitsTest : public ToolTest
{
protected:
    QString convert(const char* value, const char* from, const char* to)
    {
        const ToolRun result = run({"units", "convert", value, from, to});
        return result.exitCode == 0 ? QString::fromUtf8(result.out).trimmed()
                                    : QString::fromUtf8(result.err);
    }
};

TEST_F(ToolUnitsTest, convertsInFullPrecision)
{
    const struct {
        const char* value;
        const char* from;
        const char* to;
        const char* result;
    } rows[] = {
        {"-40", "degF", "degC", "-40"},
        {"100", "°C", "°F", "212"},
        {"-.5", "ft", "in", "-6"},
        {"1", "ft-us", "m", "0.3048006096012192"},
        {"1e3", "LENGTH:m", "km", "1"},
        {"1", "length:ft", "m", "0.3048"},
        {"5", "%", "ppm", "50000"},   // grades and ratios convert alike
        {"180", "deg", "gon", "200"}, // so do angles, longitudes and latitudes
        {"2", "m²", "cm²", "20000"},
        {"3", "μm", "mm", "0.003"}, // a Greek letter
        {"1", "oz/t", "g/t", "34.285714285714285"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(convert(row.value, row.from, row.to), row.result) << row.from << ' ' << row.to;
    const QJsonObject json = run({"units", "convert", "1", "mi", "ft", "--json"}).json();
    EXPECT_EQ(json["result"].toDouble(), 5280.);
    EXPECT_EQ(json["from"].toObject()["key"].toString(), "mi");
}

TEST_F(ToolUnitsTest, saysWhatIsWrong)
{
    const struct {
        QStringList arguments;
        int exitCode;
        const char* error;
    } rows[] = {
        {{"units", "LENGHT"}, 1, "did you mean 'LENGTH'?"},
        {{"units", "convret", "1", "m", "ft"}, 2, "did you mean 'convert'?"},
        {{"units", "convert", "1", "m"}, 2, "convert VALUE FROM TO"},
        {{"units", "convert", "1,5", "m", "ft"}, 2, "the decimal sign is a dot"},
        {{"units", "convert", "inf", "m", "ft"}, 2, "VALUE is a number"},
        {{"units", "convert", "1", "m", "acr"}, 1, "did you mean 'acre'?"},
        {{"units", "convert", "1", "m", "s"}, 1, "'m' (length) does not convert into 's' (time)"},
        {{"units", "add", "V", "v", "LENGTH"}, 2, "add NAME SYMBOL CLASS FACTOR"},
        {{"units", "add", "V", "v", "LENGTH", "0"}, 2, "other than 0"},
        {{"units", "add", "V", "v", "LENGTH", "2", "--shift", "-3"}, 1, "no shift"},
        {{"units", "add", "V", "v", "LENGTH", "2", "--system", "metrc"}, 2, "'METRIC'?"},
        {{"units", "add", "_tmpScaling", "v", "LENGTH", "2"}, 1, "cannot be named"},
        {{"units", "remove", "ft"}, 1, "built in"},
        {{"units", "remove", "none"}, 1, "no unit of your own"},
    };
    for (const auto& row : rows)
        fault(row.arguments, row.exitCode, row.error);
    EXPECT_FALSE(QFile::exists(m_userFolder.filePath("unit_user.xml")));
}

TEST_F(ToolUnitsTest, allCommandsKnowTheUsersUnits)
{
    const ToolRun added = run({"units", "add", "Vara", "vara", "length", "0.83590512"});
    EXPECT_EQ(added.out, "LENGTH:Vara\n");
    EXPECT_TRUE(added.err.contains("0.835905")) << added.err.toStdString();
    run({"units", "add", "Reaumur", "°Ré", "TEMPERATURE", "1.25", "--shift", "273.15"});
    EXPECT_EQ(convert("80", "°Ré", "degC"), "100");
    EXPECT_EQ(convert("2", "vara", "m"), "1.67181");

    const QJsonArray units = run({"units", "LENGTH", "--json"}).json()["units"].toArray();
    EXPECT_TRUE(units.last().toObject()["user"].toBool());
    EXPECT_FALSE(units.first().toObject()["user"].toBool());
    EXPECT_FALSE(units.first().toObject()["source"].toString().isEmpty());
    EXPECT_GT(run({"units", "--json"}).json()["classes"].toArray().size(), 15);

    // A variable's unit is the user's: it is set, shown and converted on export.
    write("a.csv", "x,y,depth\n1,2,10\n");
    ok({"import", "a.csv", "--project", "p"});
    ok({"set", "p", "a", "--unit", "depth=vara"});
    EXPECT_EQ(dataset("p")["variables"].toArray()[2].toObject()["unit"].toString(), "vara");
    ok({"export", "p", "a", "o.csv", "--variables", "depth", "--units", "depth=m", "--precision",
        "full"});
    EXPECT_TRUE(read("o.csv").endsWith("\n8.35905\n")) << read("o.csv").toStdString();

    ok({"units", "remove", "Vara"});
    EXPECT_EQ(run({"units", "remove", "Vara"}).exitCode, 1);
}
} // namespace
