// Tables that others wrote.
#include <util/extern/KueTableReader.h>

#include "FileBytes.h"
#include "PythonRun.h"

#include <basic/base/HbbGlobal.h>
#include <basic/data/HbdANumericVariable.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{
QString getDataPath(const QString& file)
{
    return qEnvironmentVariable("KELVANE_TEST_DATA") + '/' + file;
}

class RealDataTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!QFile::exists(getDataPath("points/meuse.csv")))
            GTEST_SKIP() << "KELVANE_TEST_DATA does not name the folder of real data";
    }
};

TEST_F(RealDataTest, CountsSumsAndRangesAreThoseOfIndependentReaders)
{
    const struct {
        const char* file;
        int rows;
        int columns;
        const char* column;
        int defined;
        double sum;
        double minimum;
        double maximum;
    } facts[] = {
        {"points/meuse_riv.csv", 176, 2, "V2", 176, 58337298, 325698, 337685},
        {"points/jura_prediction.csv", 259, 11, "Co", 259, 2409.368, 1.552, 17.72},
        {"points/walker.dat", 470, 6, "U variable, concentration in ppm", 275, 166122.3, 0, 5190.1},
        {"points/gslib/parta.dat", 8, 4, "Normal Scores", 8, 6.644, -0.493, 2.119},
        {"points/gslib/ydata.dat", 2500, 4, "Primary", 2500, -2373.05, -1, 22.75},
        {"points/sic97/sic_full.dat", 467, 4, "rainfall 10th of mm", 467, 86042, 0, 585},
        {"points/sic97/sic_obs.dat", 100, 4, "V4", 100, 18015, 10, 585},
        {"points/geodatasets/12_sample_data.csv", 480, 7, "Perm", 480, 250047.4, 0.00577551,
         10319.9},
        {"points/drillholes/collar.csv", 29, 5, "ZCOLLAR", 29, 2832.9478, 77.3977, 112.151},
        {"points/juliaearth/agriculture.csv", 75000, 7, "band4", 75000, 24284491, 130, 495},
        {"grids/meuse_grid.csv", 3103, 7, "dist", 3103, 921.96174, 0, 0.992607},
        {"grids/gslib/true.dat", 2500, 2, "Primary", 2500, 6450.49, 0.01, 102.7},
        {"grids/geodatasets/AI_grid.csv", 100, 100, "V1", 100, 516265.46 + 6250.529645526713,
         3584.05, 6282.17},
    };
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.file);
        const KueTableResult result = KueTableReader().read(getDataPath(fact.file));
        EXPECT_EQ(result.table.getSampleCount(), fact.rows);
        EXPECT_EQ(result.table.getVariableCount(), fact.columns);
        const auto* const column =
            dynamic_cast<const HbdANumericVariable*>(result.table.findVariable(fact.column));
        ASSERT_TRUE(column);
        std::vector<double> values(static_cast<std::size_t>(fact.rows));
        column->readNumbers(0, fact.rows, values.data());
        values.erase(std::remove_if(values.begin(), values.end(),
                                    [](double value) { return HbbGlobal::isUndefined(value); }),
                     values.end());
        EXPECT_EQ(values.size(), static_cast<std::size_t>(fact.defined));
        const double sum = std::accumulate(values.begin(), values.end(), 0.0);
        EXPECT_NEAR(sum, fact.sum, std::abs(fact.sum) * 1e-7);
        const auto [minimum, maximum] = std::minmax_element(values.begin(), values.end());
        EXPECT_NEAR(*minimum, fact.minimum, std::abs(fact.minimum) * 1e-5);
        EXPECT_NEAR(*maximum, fact.maximum, std::abs(fact.maximum) * 1e-5);
    }
}

TEST_F(RealDataTest, OddTablesAreReadAsTheirExpectedJsonSays)
{
    const QDir folder(getDataPath("edge-csv/csv-spectrum/csvs"));
    const QStringList files = folder.entryList({"*.csv"}, QDir::Files);
    EXPECT_EQ(files.size(), 12);
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        QFile file(
            getDataPath("edge-csv/csv-spectrum/json/" + QFileInfo(name).baseName() + ".json"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QJsonArray rows = QJsonDocument::fromJson(file.readAll()).array();
        if (rows.isEmpty())
            continue; // one of them expects what its table does not hold
        KueTableOptions options;
        options.missingTexts = QStringList();
        options.textColumns = rows.first().toObject().keys();
        const KueTableResult result = KueTableReader(options).read(folder.filePath(name));
        ASSERT_EQ(result.table.getSampleCount(), rows.size());
        for (int rank = 0; rank < rows.size(); ++rank) {
            const QJsonObject row = rows.at(rank).toObject();
            ASSERT_EQ(result.table.getVariableCount(), row.size());
            for (const QString& key : row.keys())
                EXPECT_EQ(result.table.findVariable(key)->getVariant(rank).toString(),
                          row.value(key).toString().trimmed().remove('\r')); // as is the file
        }
    }
}

TEST_F(RealDataTest, EveryOddTableIsReadOrRefused)
{
    const struct {
        const char* file;
        const char* error; ///< a part of it; empty: it is read
        int rows;
        int columns;
    } cases[] = {
        {"csvkit/blanks.csv", "", 1, 6},
        {"csvkit/dummy.tsv", "", 1, 3},
        {"csvkit/dummy_col_shuffled_ragged.csv", "", 1, 4},
        {"csvkit/empty.csv", "holds no table", 0, 0},
        {"csvkit/no_header_row3.csv", "", 2, 3},
        {"csvkit/optional_quote_characters.csv", "", 1, 3},
        {"csvkit/test_empty_columns.csv", "line 3: the row has 4 cells", 0, 0},
        {"csvkit/test_empty_columns_long_row.csv", "line 2: the row has 4 cells", 0, 0},
        {"csvkit/test_empty_columns_short_row.csv", "line 2: the row has 2 cells", 0, 0},
        {"csvkit/test_header_newline.csv", "", 1, 3},
        {"csvkit/test_join_short_rows.csv", "line 2: the row has 2 cells", 0, 0},
        {"csvkit/test_skip_lines.csv", "", 1, 3},
        {"csvkit/test_utf8_bom.csv", "", 2, 3},
        {"duckdb/comma_decimal_null.csv", "", 8, 28},
        {"duckdb/decimal_separators/decimal_separators.csv", "", 5, 2},
        {"duckdb/encodings/all_latin1.csv", "", 189, 1},
        {"duckdb/leading_zeros2.csv", "", 5, 7},
        {"duckdb/mixed_new_line.csv", "", 3, 3},
        {"duckdb/real/ontime_sample.csv", "", 9, 110},
        {"duckdb/titanic.csv", "", 891, 12},
        {"duckdb/weather.csv", "", 366, 7},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.file);
        try {
            const KueTableResult result =
                KueTableReader().read(getDataPath(QString("edge-csv/") + each.file));
            EXPECT_STREQ(each.error, "");
            EXPECT_EQ(result.table.getSampleCount(), each.rows);
            EXPECT_EQ(result.table.getVariableCount(), each.columns);
        } catch (const HbeUserError& error) {
            EXPECT_NE(*each.error, 0) << error.what();
            EXPECT_TRUE(error.getMessage().contains(each.error)) << error.what();
        }
    }
}

/// Cells that Python wrote and read again, compared as texts.
TEST(KueTableReaderTest, AnIndependentWriterIsUnderstood)
{
    REQUIRE_PYTHON();
    const char* const script = R"(
import csv, json, random, sys
random.seed(11)
letters = 'ab1 ,;"\n\tü.'
rows = [['c%d' % i for i in range(5)]]
for _ in range(500):
    rows.append(['x' + ''.join(random.choice(letters) for _ in range(random.randrange(9))) + 'y'
                 for _ in range(5)])
with open(sys.argv[1], 'w', encoding='utf-8', newline='') as file:
    csv.writer(file, delimiter=sys.argv[2], quoting=int(sys.argv[3]),
               lineterminator=sys.argv[4].encode().decode('unicode_escape')).writerows(rows)
with open(sys.argv[1], encoding='utf-8', newline='') as file:
    rows = list(csv.reader(file, delimiter=sys.argv[2]))
print(json.dumps(rows))
)";
    const QTemporaryDir directory;
    const QString path = directory.filePath("python.csv");
    for (const char* separator : {",", ";", "\t"}) {
        for (const char* quoting : {"0", "1"}) {
            for (const char* lineEnd : {"\\n", "\\r\\n"}) {
                SCOPED_TRACE(std::string(separator) + quoting + lineEnd);
                const QByteArray json = runPython(script, {path, separator, quoting, lineEnd});
                const QJsonArray rows = QJsonDocument::fromJson(json).array();
                KueTableOptions options;
                if (*quoting == '1')
                    options.blockSize = 7; // rows, quotes and characters end in the next block
                const KueTableResult result = KueTableReader(options).read(path);
                ASSERT_EQ(result.table.getSampleCount(), rows.size() - 1);
                for (int rank = 0; rank < result.table.getSampleCount(); ++rank) {
                    for (int i = 0; i < 5; ++i) {
                        // Doubled quotes are halved in every cell, quoted or not.
                        ASSERT_EQ(result.table.getVariableAt(i)->getVariant(rank).toString(),
                                  rows.at(rank + 1).toArray().at(i).toString());
                    }
                }
            }
        }
    }
}
} // namespace
