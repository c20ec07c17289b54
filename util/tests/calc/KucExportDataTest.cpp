#include "ErrorText.h"
#include "ExportFixture.h"

#include <basic/calc/HbcCancelled.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include <cerrno>
#include <functional>
#include <numeric>

namespace
{
using Range = HbiIntervalIntSmall;
using Line = QList<KueFormatedVariant>;

HbdVariableDetails details(const char* name, const HbbEFormat& format = HbbEFormat::DECIMAL,
                           int precision = 2)
{
    HbdVariableDetails result(name);
    result.format = format;
    result.precision = precision;
    return result;
}

/// Notes what it is given, and does more when it is told to.
class NotingEncoding : public KucAExportDataEncoding
{
public:
    struct Notes {
        std::vector<int> blocks; // rows of each
        std::vector<Line> lines;
        QStringList calls;
        std::function<void()> atLine;
    };
    explicit NotingEncoding(Notes& notes)
        : KucAExportDataEncoding(QString())
        , m_notes(notes)
    {
    }
    ~NotingEncoding() override { m_notes.calls << "deleted"; }
    void openFile() override { m_notes.calls << "open"; }
    void closeFile() override { m_notes.calls << "close"; }
    void abandonFile() override { m_notes.calls << "abandon"; }
    void writeLine(const Line& row) override
    {
        m_notes.lines.push_back(row);
        if (m_notes.atLine)
            m_notes.atLine();
    }
    void writeBlock(const KucExportBlock& block) override
    {
        m_notes.blocks.push_back(block.getRowCount());
        KucAExportDataEncoding::writeBlock(block);
    }
    using KucAExportDataEncoding::getStyle;

private:
    Notes& m_notes;
};

class KucExportDataTest : public ExportFixture
{
protected:
    void addNumbers(int count)
    {
        std::vector<double> numbers(std::size_t(count), 0.);
        std::iota(numbers.begin(), numbers.end(), 0.);
        addColumn<HbdVariableReal>(details("N", HbbEFormat::DECIMAL, 0), std::move(numbers));
    }
    /// The grid with the ranks of its nodes as its only column.
    HgdDataSetGrid numberedGrid(const HbgGeomGrid& geometry)
    {
        m_columns.clear();
        addNumbers(int(geometry.getNodeCount()));
        HgdDataSetGrid grid(geometry);
        grid.addVariable(*m_columns.front());
        return grid;
    }
    static void run(KucExportData& exportData, NotingEncoding::Notes& notes)
    {
        exportData.setEncodingStrategy(new NotingEncoding(notes));
        ASSERT_TRUE(exportData.runInCurrentThread());
    }
};
} // namespace

TEST_F(KucExportDataTest, CellsFollowTheirVariables)
{
    const HbdVariableDetails plain = details("A");
    HbdVariableDetails feet = details("Depth", HbbEFormat::DECIMAL, 3);
    feet.unit = unit(HbuEUnitClass::LENGTH, "m");
    feet.displayUnit = unit(HbuEUnitClass::LENGTH, "ft");
    HbdVariableDetails crossed = feet; // no mass is a length: left as it is
    crossed.displayUnit = unit(HbuEUnitClass::MASS, "kg");
    ASSERT_TRUE(feet.displayUnit.isValid() && crossed.displayUnit.isValid());
    const struct {
        HbdEVarType type;
        HbdVariableDetails details;
        QVariant value; // invalid: undefined
        const char* cell;
    } rows[] = {
        {HbdEVarType::REAL, plain, 1.5, "1.50"},
        {HbdEVarType::REAL, details("A", HbbEFormat::SCIENTIFIC, 3), -1500., "-1.500e+03"},
        {HbdEVarType::REAL, plain, {}, "NA"},
        {HbdEVarType::REAL, feet, 3.048, "10.000"},
        {HbdEVarType::REAL, crossed, 3.048, "3.048"},
        {HbdEVarType::REAL, feet, {}, "NA"},
        {HbdEVarType::REAL_32, details("A", HbbEFormat::DECIMAL, 9), .1, "0.100000001"},
        {HbdEVarType::REAL_32, feet, {}, "NA"},
        {HbdEVarType::INTEGER, plain, qint64(9007199254740993), "9007199254740993"},
        {HbdEVarType::INTEGER, plain, {}, "NA"},
        {HbdEVarType::INTEGER, feet, 1, "3.281"},
        {HbdEVarType::INTEGER, feet, {}, "NA"},
        {HbdEVarType::TEXT, plain, "a,\"b\"", "\"a,\"\"b\"\"\""},
        {HbdEVarType::TEXT, plain, "", ""},
        {HbdEVarType::TEXT, plain, {}, "NA"},
        {HbdEVarType::SELECTION, plain, true, "1"},
        {HbdEVarType::ALPHA_CHANNEL, plain, 128, "128"},
        {HbdEVarType::COLOR, plain, "#ff8000", "#ff8000"},
        {HbdEVarType::COLOR, plain, {}, "NA"},
        {HbdEVarType::DATE, plain, "2024-02-29T12:00:00Z", "2024-02-29T12:00:00.000Z"},
        {HbdEVarType::DATE, plain, {}, "NA"},
    };
    for (const auto& row : rows) {
        HbdVariableDetails typed = row.details;
        typed.type = row.type;
        m_columns.clear();
        m_columns.push_back(HbdAVariable::create(typed));
        m_columns.back()->resize(1);
        m_columns.back()->setVariant(0, row.value);
        KucExportData exportData;
        exportData.setDataset(points());
        exportData.setUndefString("NA");
        EXPECT_EQ(write(exportData).split('\n').value(1), row.cell);
        EXPECT_EQ(write<LineEncoding>(exportData).split('\n').value(1), row.cell);
    }
}

TEST_F(KucExportDataTest, UndefinedAndUnknownCategoriesAreEmptyCells)
{
    HbdEnumCatalog catalog;
    catalog.addCategory(700, QString::fromUtf8("grès, fin"));
    addColumn<HbdVariableEnum>(details("Rock"), {700, 0xFFFF, 5, 0xFFFE}).setCatalog(catalog);
    KucExportData exportData;
    exportData.setDataset(points());
    exportData.setUndefString("NA");
    EXPECT_EQ(write(exportData), "Rock\n\"grès, fin\"\n\n\n\n");
}

TEST_F(KucExportDataTest, HeaderCellsAreTextsWithTheirOwnFormat)
{
    auto& zn = addColumn<HbdVariableReal>(details("Zn, \"ppm\"", HbbEFormat::SCIENTIFIC, 5), {1.});
    zn.setRealization("3");
    EXPECT_EQ(write(points()).split('\n').first(), "\"Zn, \"\"ppm\"\"[3]\"");
    NotingEncoding::Notes notes;
    KucExportData exportData;
    exportData.setDataset(points());
    run(exportData, notes);
    EXPECT_EQ(notes.lines[0][0].format, HbbEFormat::DECIMAL);
    EXPECT_EQ(notes.lines[0][0].precision, 2);
    EXPECT_EQ(notes.lines[1][0].format, HbbEFormat::SCIENTIFIC);
    EXPECT_EQ(notes.lines[1][0].precision, 5);
}

TEST_F(KucExportDataTest, GeographicCoordinatesAreLongitudeAndLatitudeInDegrees)
{
    HbdVariableDetails x = details("east");
    x.role = HbdEVarRole::X_COORDINATE;
    HbdVariableDetails y = details("north");
    y.role = HbdEVarRole::Y_COORDINATE;
    y.unit = unit(HbuEUnitClass::ANGLE, "gon");
    y.displayUnit = unit(HbuEUnitClass::ANGLE, "rad");
    addColumn<HbdVariableReal>(x, {2.25});
    addColumn<HbdVariableReal>(y, {50});
    addColumn<HbdVariableReal>(details("Zn"), {7});
    KucExportData exportData;
    exportData.setDataset(points());
    exportData.setCoordSystems(KuuCoordSystem::createFromEpsg("4326"),
                               KuuCoordSystem::createFromEpsg("4326"));
    EXPECT_EQ(write(exportData), "Longitude,Latitude,Zn\n2.2500000,45.0000000,7.00\n");
    exportData.setCoordSystems(KuuCoordSystem::createFromEpsg("2154"),
                               KuuCoordSystem::createFromEpsg("2154"));
    EXPECT_EQ(write(exportData), "east,north,Zn\n2.25,0.79,7.00\n");
}

TEST_F(KucExportDataTest, PointsGoInBlocksOfRanks)
{
    addNumbers(250000);
    HgdDataSetPoints dataset = points();
    const struct {
        HbiIntervalIntSmallDisjoint selection;
        std::vector<int> blocks;
    } rows[] = {
        {HbiIntervalIntSmallDisjoint{Range(0, 249999)}, {100000, 100000, 50000}},
        {HbiIntervalIntSmallDisjoint{Range(99999, 100000)}, {1, 1, 0}},
        {HbiIntervalIntSmallDisjoint{Range(5, 5), Range(7, 220000), Range(249999, 249999)},
         {99994, 100000, 20002}},
        {HbiIntervalIntSmallDisjoint(), {0, 0, 0}},
    };
    for (const auto& row : rows) {
        dataset.setSelection(row.selection);
        NotingEncoding::Notes notes;
        KucExportData exportData;
        exportData.setDataset(dataset);
        run(exportData, notes);
        EXPECT_EQ(notes.blocks, row.blocks);
        std::vector<int> written;
        for (std::size_t i = 1; i < notes.lines.size(); ++i)
            written.push_back(notes.lines[i][0].value.toInt());
        std::vector<int> expected;
        row.selection.forEachRank([&](int rank) { expected.push_back(rank); });
        EXPECT_EQ(written, expected);
        EXPECT_EQ(exportData.getCounter(), 250000);
        EXPECT_EQ(exportData.getMessage(), "Exporting...");
        EXPECT_EQ(notes.calls, (QStringList{"open", "close"}));
    }
}

TEST_F(KucExportDataTest, GridLoopsFollowTheSortingAndTheSelection)
{
    const HbgGeomGrid solid(4, 3, 5, {0, 0, 0}, 1, 1, 1);
    const HbgGeomGrid flat(4, 3, {0, 0}, 1, 1);
    for (const HbgGeomGrid& geometry : {solid, flat}) {
        HgdDataSetGrid grid = numberedGrid(geometry);
        const HbiIntervalIntSmallDisjoint selection{Range(0, 3), Range(7, 59)};
        if (geometry.is3D()) // the other has none
            grid.setSelection(selection);
        QList<int> axes = geometry.is3D() ? QList<int>{0, 1, 2} : QList<int>{0, 1};
        const QByteArray z = geometry.is3D() ? ",IZ" : "";
        const int lengths[] = {geometry.getNx(), geometry.getNy(), geometry.getNz()};
        do {
            QByteArray ranks = "IB,N\n";
            QByteArray indices = "IX,IY" + z + ",N\n";
            int at[3] = {0, 0, 0};
            const std::function<void(int)> loop = [&](int depth) {
                if (depth < axes.size()) {
                    int& i = at[axes[depth]];
                    for (i = 0; i < lengths[axes[depth]]; ++i)
                        loop(depth + 1);
                    i = 0;
                    return;
                }
                const qint64 rank = geometry.getRank({at[0], at[1], at[2]});
                if (geometry.is3D() && !selection.contains(int(rank)))
                    return;
                const QByteArray value = QByteArray::number(rank) + '\n';
                ranks += QByteArray::number(rank + 1) + ',' + value;
                for (int i = 0; i < axes.size(); ++i)
                    indices += QByteArray::number(at[i] + 1) + ',';
                indices += value;
            };
            loop(0);
            KucExportData exportData;
            exportData.setDataset(grid);
            exportData.setSorting(axes);
            // 8 bytes a cell: at once, in slabs of several layers, of one layer.
            for (const int memory : {1000000, 250, 90, 1}) {
                exportData.setAvailableMemory(memory);
                exportData.setGridCellPosition(KucExportData::CellIndices);
                EXPECT_EQ(write(exportData), indices);
                exportData.setGridCellPosition(KucExportData::CellRank);
                EXPECT_EQ(write<LineEncoding>(exportData), ranks);
                EXPECT_EQ(exportData.getCounter(), geometry.getNodeCount());
            }
        } while (std::next_permutation(axes.begin(), axes.end()));
    }
}

TEST_F(KucExportDataTest, LowMemoryReadsTheGridInSlabsOfTheOutermostLoop)
{
    const HgdDataSetGrid grid = numberedGrid(HbgGeomGrid(4, 3, 5, {0, 0, 0}, 1, 1, 1));
    for (const int memory : {5 * 3 * 8, 5 * 3 * 8 - 1, 1}) {
        NotingEncoding::Notes notes;
        KucExportData exportData;
        exportData.setDataset(grid);
        exportData.setSorting({2, 1, 0});
        exportData.setAvailableMemory(memory);
        run(exportData, notes);
        // A layer of Z has 12 cells of 8 bytes.
        EXPECT_EQ(notes.blocks,
                  memory == 5 * 3 * 8 ? std::vector<int>{60} : std::vector<int>(5, 12));
    }
}

TEST_F(KucExportDataTest, FailuresSpeakInWholeMessages)
{
    const HgdDataSetGrid grid = numberedGrid(HbgGeomGrid(3, 2, {0, 0}, 1, 1));
    const HgdDataSetPoints points = this->points();
    const QString setup = "'virtual void KucExportData::_checkSetup() const' in file "
                          "'calc\\KucExportData' failed:\n\n";
    const QString sorting = "'void KucExportData::checkSorting(const HgdDataSetGrid&) const' in "
                            "file 'calc\\KucExportData' failed:\n\n"
                            "The sorting does not name each grid axis once";
    const QString missing = path("no/file %1.csv");
    const QString notFound = " : " + qt_error_string(ENOENT);
    const HgdDataSetPoints empty(3);
    const struct {
        QString error;
        const HgdADataSet& dataset;
        QList<int> axes;
        QString path;
        const char* output;
    } rows[] = {
        {setup + "There is no encoding strategy set.", points, {}, {}, ""},
        {setup + "Expecting Point dataset", grid, {}, path(), ""},
        {setup + "Expecting Grid dataset", points, {0, 1}, path(), ""},
        {sorting, grid, {0, 1, 2}, path(), ""},
        {sorting, grid, {1, 1}, path(), ""},
        {"Too few variables of role 'V': 0 given, at least 1 expected.", empty, {}, path(), ""},
        {"Cannot open the file '" + missing + '\'' + notFound, points, {}, missing, ""},
        {"The coordinate system \"\" cannot be used: there is no coordinate system.",
         points,
         {},
         path(),
         "4326"},
    };
    for (const auto& row : rows) {
        KucExportData exportData;
        exportData.setDataset(row.dataset);
        exportData.setSorting(row.axes);
        if (*row.output)
            exportData.setCoordSystems({}, KuuCoordSystem::createFromEpsg(row.output));
        if (!row.path.isEmpty())
            exportData.setEncodingStrategy(csv(row.path));
        exportData.start();
        exportData.wait();
        EXPECT_EQ(exportData.getErrorText(), row.error);
        if (row.error.startsWith('\''))
            EXPECT_THROW(exportData.rethrowError(), HbeProgrammingError);
        else
            EXPECT_THROW(exportData.rethrowError(), HbeUserError);
        EXPECT_EQ(readFile(), "no file");
    }
}

TEST_F(KucExportDataTest, ALineWithoutAnOpenFileIsAProgrammingError)
{
    KucExportDataEncodingCsv encoding(path(), KueCsvSeparator(), KueDecimalSeparator());
    EXPECT_TRUE(
        errorOf<HbeProgrammingError>([&] {
            encoding.writeLine({});
        }).endsWith("' in file 'calc\\KucExportDataEncodingCsv' failed:\n\nFile is not open"));
}

TEST_F(KucExportDataTest, AFullDiskIsTold)
{
    if (!QFile::exists("/dev/full"))
        GTEST_SKIP();
    addNumbers(100);
    KucExportData exportData;
    exportData.setDataset(points());
    exportData.setEncodingStrategy(csv("/dev/full"));
    EXPECT_FALSE(exportData.runInCurrentThread());
    EXPECT_EQ(exportData.getErrorText(),
              "Cannot write the file '/dev/full' : " + qt_error_string(ENOSPC));
    EXPECT_THROW(exportData.rethrowError(), HbeUserError);
}

TEST_F(KucExportDataTest, ACancelFromAnotherThreadKeepsTheRowsWritten)
{
    addNumbers(3000000);
    for (const bool interrupt : {false, true}) {
        KucExportData exportData;
        exportData.setDataset(points());
        exportData.setEncodingStrategy(csv(path()));
        exportData.start();
        while (exportData.getCounter() < 150000 && exportData.isRunning())
            QThread::yieldCurrentThread();
        if (interrupt)
            exportData.requestInterruption();
        else
            exportData.requestCancel();
        exportData.wait();
        ASSERT_EQ(exportData.getOutcome(), HbcAProgress::Outcome::CANCELLED);
        EXPECT_THROW(exportData.rethrowError(), HbcCancelled);
        const QByteArray bytes = readFile();
        const int rows = bytes.count('\n') - 1;
        EXPECT_EQ(rows, exportData.getCounter());
        EXPECT_LT(rows, 3000000);
        EXPECT_TRUE(bytes.endsWith('\n' + QByteArray::number(rows - 1) + '\n'));
        // The same export, started again, runs to its end.
        EXPECT_TRUE(exportData.runInCurrentThread());
        EXPECT_EQ(readFile().count('\n'), 3000001);
    }
}

TEST_F(KucExportDataTest, TheEncodingIsOwnedAndLetsGoOfTheFileAfterAnError)
{
    addNumbers(10);
    NotingEncoding::Notes first;
    NotingEncoding::Notes second;
    {
        KucExportData exportData;
        exportData.setDataset(points());
        auto* const encoding = new NotingEncoding(first);
        exportData.setEncodingStrategy(encoding);
        exportData.setEncodingStrategy(encoding);
        first.atLine = [&first] {
            if (first.lines.size() == 4)
                throw HbeUserError("enough");
        };
        EXPECT_FALSE(exportData.runInCurrentThread());
        EXPECT_EQ(exportData.getErrorText(), "enough");
        EXPECT_EQ(first.calls, (QStringList{"open", "abandon"}));
        exportData.setEncodingStrategy(new NotingEncoding(second));
        EXPECT_EQ(first.calls.last(), "deleted");
    }
    EXPECT_EQ(second.calls, QStringList("deleted"));
}

TEST_F(KucExportDataTest, StylesOfColumnsCountForRowsOfTheirLength)
{
    NotingEncoding::Notes notes;
    NotingEncoding encoding(notes);
    encoding.setStyleRow({7, Qt::red, "row", 1});
    EXPECT_EQ(encoding.getStyle(1, 2).text, "row");
    encoding.setStyleCells({{1, Qt::blue, "a", 2}, {2, Qt::green, "b", 3}});
    EXPECT_EQ(encoding.getStyle(1, 2).text, "b");
    const KucAExportDataEncoding::CellFormat other = encoding.getStyle(1, 3);
    EXPECT_EQ(other.style, 0);
    EXPECT_EQ(other.color, QColor(Qt::white));
    EXPECT_EQ(other.text, "");
    EXPECT_EQ(other.alignment, 0);
}
