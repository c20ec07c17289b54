#include <util/extern/KueTableReader.h>

#include "ErrorText.h"
#include "FileBytes.h"

#include <basic/base/HbbStringFormat.h>
#include <basic/calc/HbcCancelled.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeUserError.h>

namespace
{
class KueTableReaderTest : public testing::Test
{
protected:
    QString write(const QByteArray& bytes)
    {
        return writeBytes(m_directory.filePath("table.csv"), bytes);
    }
    KueTableResult read(const QByteArray& bytes, const KueTableOptions& options = {})
    {
        return KueTableReader(options).read(write(bytes));
    }
    /// The message of the error, without the file's name.
    QString readError(const QByteArray& bytes, const KueTableOptions& options = {})
    {
        const QString path = write(bytes);
        QString message = errorOf<HbeUserError>([&] { KueTableReader(options).read(path); });
        EXPECT_TRUE(message.contains(path)) << message.toStdString();
        return message.remove(path);
    }

    QTemporaryDir m_directory;
};

/// A cell as an export writes it; "NULL" where it is undefined.
QString toText(const HbdAVariable& column, int rank)
{
    if (column.isUndefined(rank))
        return QStringLiteral("NULL");
    if (const auto* reals = dynamic_cast<const HbdVariableReal*>(&column))
        return QString::fromLatin1(HbbStringFormat::simpleValueToByteArray(
            reals->at(rank), column.getDetails().format, column.getDetails().precision));
    return column.getVariant(rank).toString();
}

QStringList toTexts(const HbdAVariable& column)
{
    QStringList texts;
    for (int rank = 0; rank < column.getCount(); ++rank)
        texts.append(toText(column, rank));
    return texts;
}

QStringList getNames(const KueTableResult& result)
{
    QStringList names;
    for (int i = 0; i < result.table.getVariableCount(); ++i)
        names.append(result.table.getVariableAt(i)->getDetails().name);
    return names;
}

/// The rows, cells joined by '|'.
QStringList getRows(const KueTableResult& result)
{
    QStringList rows;
    for (int rank = 0; rank < result.table.getSampleCount(); ++rank) {
        QStringList cells;
        for (int i = 0; i < result.table.getVariableCount(); ++i)
            cells.append(toText(*result.table.getVariableAt(i), rank));
        rows.append(cells.join('|'));
    }
    return rows;
}

TEST_F(KueTableReaderTest, TypesOfColumnsFollowTheirTexts)
{
    struct Case {
        const char* name;
        QStringList cells;
        const char* form;         ///< the type, and of a number the format and the precision
        QStringList written = {}; ///< what leaves again; empty: the cells as they came
    };
    const QString u = "NULL";
    const Case cases[] = {
        {"whole numbers", {"1", "-20", "+5"}, "INTEGER INTEGER 0", {"1", "-20", "5"}},
        {"64 bits", {"9223372036854775807", "-9223372036854775807"}, "INTEGER INTEGER 0"},
        {"more than 64 bits", {"9223372036854775808", "1"}, "TEXT"},
        {"the undefined integer", {"-9223372036854775808", "1"}, "TEXT"},
        {"more than 64 bits among reals", {"36893488147419103232", "0.5"}, "REAL SHORTEST 17"},
        {"decimals", {"1.5", "-2.25"}, "REAL DECIMAL 2", {"1.50", "-2.25"}},
        {"mixed", {"1", "1.50"}, "REAL DECIMAL 2", {"1.00", "1.50"}},
        {"no digit on one side", {"1.", ".5"}, "REAL DECIMAL 1", {"1.0", "0.5"}},
        {"the sign of zero", {"-0", "3"}, "REAL DECIMAL 0"},
        {"exponents", {"1e5", "2.50E-3"}, "REAL SCIENTIFIC 2", {"1.00e+05", "2.50e-03"}},
        {"exponent and decimals",
         {"12.125", "1e3"},
         "REAL SCIENTIFIC 4",
         {"1.2125e+01", "1.0000e+03"}},
        {"fifteen digits",
         {"0.12345678901234", "1.5"},
         "REAL DECIMAL 14",
         {"0.12345678901234", "1.50000000000000"}},
        {"few digits far apart",
         {"123456789.5", "0.000000000001"},
         "REAL SHORTEST 17",
         {"123456789.5", "1e-12"}},
        {"shortest texts", {"0.30000000000000004", "0.1"}, "REAL SHORTEST 17"},
        {"seventeen decimals", {"0.30000000000000004", "0.10000000000000001"}, "REAL DECIMAL 17"},
        {"nineteen digits of a double",
         {"6.250529645526713466e+03", "5.000000000000000000e-01"},
         "REAL SCIENTIFIC 18"},
        {"zeros behind", {"0.10000000000000000000", "0.5"}, "REAL SHORTEST 17", {"0.1", "0.5"}},
        {"digits that no real holds", {"0.1234567890123456789", "1"}, "TEXT"},
        {"a large whole number among reals", {"9007199254740993", "0.5"}, "TEXT"},
        {"a large even one", {"9007199254740994", "0.5"}, "REAL SHORTEST 17"},
        {"beyond a double", {"1e999", "1"}, "TEXT"},
        {"below a double", {"1e-999", "1"}, "TEXT"},
        {"the undefined real", {"1e300", "1"}, "TEXT"},
        {"zeros in front", {"001", "2"}, "TEXT"},
        {"zeros in front of decimals", {"00.5", "2"}, "TEXT"},
        {"hexadecimal", {"0x10", "2"}, "TEXT"},
        {"infinity", {"inf", "2"}, "TEXT"},
        {"groups", {"1_000", "2"}, "TEXT"},
        {"a blank inside", {"1 000", "2"}, "TEXT"},
        {"half an exponent", {"1e", "2"}, "TEXT"},
        {"two points", {"1.2.3", "2"}, "TEXT"},
        {"dates", {"2010-05-01", "2"}, "TEXT"},
        {"blanks around", {" 12 ", "\t7"}, "INTEGER INTEGER 0", {"12", "7"}},
        {"gaps", {"1.5", "", "NA", "nan", "N/A", " - "}, "REAL DECIMAL 1", {"1.5", u, u, u, u, u}},
        {"gaps only", {"", "NA"}, "TEXT", {u, u}},
        {"sodium", {"Na", "NA", "K", "Na", "K"}, "CATEGORY", {"Na", u, "K", "Na", "K"}},
        {"nothing but such words", {"na", "nan", "na", "nan"}, "CATEGORY"},
        {"few texts", {"a", "b", "a", "b"}, "CATEGORY"},
        {"many texts", {"a", "b", "c", "a"}, "TEXT"},
        {"words after numbers", {"1", "2.5", "granite"}, "TEXT"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        // A second column keeps empty cells from being empty lines.
        QByteArray bytes = "c,other\n";
        for (const QString& cell : each.cells)
            bytes += cell.toUtf8() + ",x\n";
        const KueTableResult result = read(bytes);
        const HbdAVariable& column = *result.table.getVariableAt(0);
        const HbdVariableDetails& details = column.getDetails();
        const bool isNumber = dynamic_cast<const HbdANumericVariable*>(&column) != nullptr;
        EXPECT_EQ(details.type.getKey() +
                      (isNumber
                           ? QString(" %1 %2").arg(details.format.getKey()).arg(details.precision)
                           : QString()),
                  each.form);
        EXPECT_EQ(details.automaticFormat, !isNumber);
        EXPECT_EQ(toTexts(column), each.written.isEmpty() ? each.cells : each.written);
    }
}

TEST_F(KueTableReaderTest, LayoutsAreRecognised)
{
    struct Case {
        const char* name;
        QByteArray bytes;
        const char* names; ///< joined by '|', as are the cells of a row
        QStringList rows;
    };
    const Case cases[] = {
        {"comma", "a,b\n1,2\n", "a|b", {"1|2"}},
        {"semicolon", "a;b\n1;2\n", "a|b", {"1|2"}},
        {"tab", "a\tb\n1\t\n\t2\n", "a|b", {"1|NULL", "NULL|2"}},
        {"blanks", "  a   b\n 1  2\n3\t4 \n", "a|b", {"1|2", "3|4"}},
        {"decimal comma", "a;b\n1,5;x\n-0,25;y\n", "a|b", {"1.50|x", "-0.25|y"}},
        {"decimal comma with exponents",
         "a;b\n1,5e-07;x\nNA;y\n-2,5e+10;z\n",
         "a|b",
         {"1.5e-07|x", "NULL|y", "-2.5e+10|z"}},
        {"decimal comma in quotes", "a,b\n\"1,5\",2\n\"0,25\",3\n", "a|b", {"1.50|2", "0.25|3"}},
        {"groups in quotes", "a,b\n\"1,234\",2\n\"5,678\",3\n", "a|b", {"1,234|2", "5,678|3"}},
        {"one column", "a\n1\n2\n", "a", {"1", "2"}},
        {"one column of words",
         "a title\nred stone\ngrey stone\n",
         "a title",
         {"red stone", "grey stone"}},
        {"no line end at the end", "a,b\n1,", "a|b", {"1|NULL"}},
        {"line ends", "a,b\r\n1,2\r3,4\n5,6\r\n", "a|b", {"1|2", "3|4", "5|6"}},
        {"carriage returns", "a,b\r1,2\r3,4\r", "a|b", {"1|2", "3|4"}},
        {"empty lines", "\n\na,b\n1,2\n\n3,4\n \n\n", "a|b", {"1|2", "3|4"}},
        {"empty cells of one column", "a\n\n1\n\n2\n\n", "a", {"NULL", "1", "NULL", "2"}},
        {"cells of nothing", "a,b\n,\n", "a|b", {"NULL|NULL"}},
        {"header only", "a,b", "a|b", {}},
        {"no names", "a,,\n1,2,3\n", "a|V2|V3", {"1|2|3"}},
        {"same names", "a,a (1),a,a\n1,2,3,4\n", "a|a (1)|a (2)|a (3)", {"1|2|3|4"}},
        {"no header", "1,2.5\n3,4\n", "V1|V2", {"1|2.5", "3|4.0"}},
        {"byte-order mark", "\xEF\xBB\xBFx,b\n1,2\n", "x|b", {"1|2"}},
        {"quotes",
         "a,b\n\"x, \"\"y\"\"\nz\",1\n\"\",2\n 'p' , \" q \"\n5\" pipe,4\n",
         "a|b",
         {"x, \"y\"\nz|1", "NULL|2", "'p'|q", "5\" pipe|4"}},
        {"quotes beside the cell", "a,b\n\"x\"y,1\n\"\"\"\",2\n", "a|b", {"\"x\"y|1", "\"|2"}},
        {"everything quoted", "\"a\",\"b\"\n\"1\",\"x\"\n", "a|b", {"1|x"}},
        {"line ends in quotes", "a,b\r\"x\ry\",1\r", "a|b", {"x\ny|1"}},
        {"the end of old texts", "a,b\r\n1,2\r\n\x1A", "a|b", {"1|2"}},
        {"GeoEAS",
         "title\n2 10\nX loc\nAu, ppm\n 1 2.5\n 3 1.0E+31\n",
         "X loc|Au, ppm",
         {"1|2.5", "3|NULL"}},
        {"GeoEAS with commas",
         "title\n2\nid\nrain\n007,2\n8,1e30\n",
         "id|rain",
         {"7|2e+00", "8|1e+30"}},
        {"a column like GeoEAS", "depth\n1\n2\n3\n", "depth", {"1", "2", "3"}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const KueTableResult result = read(each.bytes);
        EXPECT_EQ(getNames(result).join('|'), each.names);
        EXPECT_EQ(getRows(result), each.rows);
        EXPECT_EQ(result.form == KueTableResult::Form::GEO_EAS,
                  QString(each.name).startsWith("GeoEAS"));
    }
}

TEST_F(KueTableReaderTest, BytesAreReadInTheirEncoding)
{
    const QString text = "Grün, Ørsted: ¼";
    const QString content = QStringLiteral("näme;v\n") + text + QStringLiteral(";1\n");
    const QByteArray latin = content.toLatin1();
    // The bytes of Latin-1 that are also UTF-8 are read anew when others are not.
    const QByteArray late = "n;v\n\xC3\xBC;1\n" + QByteArray("a;2\n").repeated(400000) + "\xFC;3\n";
    QByteArray utf16("\xFF\xFE", 2);
    utf16.append(reinterpret_cast<const char*>(content.utf16()), content.size() * 2);

    using Encoding = KueTableResult::Encoding;
    const std::pair<QByteArray, Encoding> cases[] = {
        {content.toUtf8(), Encoding::UTF_8}, {latin, Encoding::LATIN_1}, {utf16, Encoding::UTF_16}};
    for (const auto& [bytes, encoding] : cases) {
        const KueTableResult result = read(bytes);
        EXPECT_EQ(result.encoding, encoding);
        EXPECT_EQ(getNames(result), QStringList({"näme", "v"}));
        EXPECT_EQ(getRows(result), QStringList(text + "|1"));
    }
    KueTableOptions options;
    for (const bool asText : {false, true}) {
        if (asText)
            options.textColumns = QStringList{"n"};
        const KueTableResult result = read(late, options);
        EXPECT_EQ(result.encoding, Encoding::LATIN_1);
        const HbdAVariable& column = *result.table.getVariableAt(0);
        EXPECT_EQ(column.getVariant(0), "Ã¼");
        EXPECT_EQ(column.getVariant(400001), "ü");
    }
}

TEST_F(KueTableReaderTest, BlocksMayEndAnywhere)
{
    const QByteArray texts[] = {"a,b\r\n1,2\r\n\x1A", "word\n\n\x1A", "a,b\n1,\"2\n3\"\n",
                                "n\xC3\xA4;v\n\xC3\xBC;1"};
    for (const QByteArray& text : texts) {
        const KueTableResult whole = read(text);
        for (int size = 1; size <= text.size() + 1; ++size) {
            KueTableOptions options;
            options.blockSize = size;
            EXPECT_TRUE(read(text, options).table.isEqual(whole.table)) << size;
        }
    }
}

TEST_F(KueTableReaderTest, LateCellsChangeTypesWithinTwoPasses)
{
    const int before = 200000; // more than a block
    QByteArray bytes = "id,real,word,number\n";
    for (int i = 0; i < before; ++i)
        bytes += QByteArray::number(i) + ",1," + (i % 2 ? "a" : "b") + ",nan\n";
    const QByteArray numbers = bytes + "x7,1.5,c,2\n";
    const KueTableResult result = read(numbers);
    EXPECT_EQ(result.passes, 2);
    EXPECT_EQ(getRows(result).mid(before - 1), QStringList({"199999|1.0|a|NULL", "x7|1.5|c|2"}));
    EXPECT_EQ(result.table.getVariableAt(0)->getType(), HbdEVarType::TEXT);
    EXPECT_EQ(result.table.getVariableAt(1)->getType(), HbdEVarType::REAL);
    EXPECT_EQ(result.table.getVariableAt(2)->getType(), HbdEVarType::CATEGORY);
    EXPECT_EQ(result.table.getVariableAt(3)->getType(), HbdEVarType::INTEGER);
    EXPECT_EQ(result.notes, QStringList("Column 'id' is read as text: 'x7' in line 200002 is not a "
                                        "number."));

    const KueTableResult real = read(bytes + "7,1.5,c,2\n");
    EXPECT_EQ(real.passes, 1);
    EXPECT_EQ(real.table.getVariableAt(1)->getType(), HbdEVarType::REAL);

    // Only its end shows that a column of such words has no number.
    const KueTableResult words = read(bytes);
    EXPECT_EQ(words.passes, 2);
    EXPECT_EQ(toText(*words.table.getVariableAt(3), 5), "nan");
}

TEST_F(KueTableReaderTest, QuotesTellTextsFromNumbersWhereTheyAreNotEverywhere)
{
    const KueTableResult result = read("a,b,c\n1,\"1\",\"1,5\"\n2,\"2\",\"2,5\"\n3,\"1\",\"1,5\"\n"
                                       "4,\"2\",\"1,5\"\n");
    EXPECT_EQ(result.table.getVariableAt(0)->getType(), HbdEVarType::INTEGER);
    EXPECT_EQ(result.table.getVariableAt(1)->getType(), HbdEVarType::CATEGORY);
    EXPECT_EQ(result.table.getVariableAt(2)->getType(), HbdEVarType::REAL);
}

TEST_F(KueTableReaderTest, OptionsDecideOverTheFile)
{
    const QByteArray bytes = "id,rock,e,n,grade\n1,5,10,20,-999\n2,7,11,21,1.25\n";
    KueTableOptions options;
    options.textColumns = QStringList{"id"};
    options.categoryColumns = QStringList{"rock"};
    options.xColumn = "e";
    options.yColumn = "n";
    options.missingTexts = QStringList{"-999"};
    const KueTableResult result = read(bytes, options);
    EXPECT_EQ(result.table.getVariableAt(0)->getType(), HbdEVarType::TEXT);
    EXPECT_EQ(result.table.getVariableAt(1)->getType(), HbdEVarType::CATEGORY);
    EXPECT_EQ(result.table.getVariableAt(2)->getDetails().role, HbdEVarRole::X_COORDINATE);
    EXPECT_EQ(result.table.getVariableAt(2)->getType(), HbdEVarType::REAL);
    EXPECT_EQ(result.table.getVariableAt(3)->getDetails().role, HbdEVarRole::Y_COORDINATE);
    EXPECT_EQ(getRows(result), QStringList({"1|5|10|20|NULL", "2|7|11|21|1.25"}));
    EXPECT_EQ(result.xColumn, "e");
    EXPECT_FALSE(result.coordinatesGuessed);
    EXPECT_TRUE(result.notes.isEmpty());

    options = KueTableOptions();
    options.separator = KueTableOptions::Separator::SEMICOLON;
    options.decimal = KueTableOptions::Decimal::COMMA;
    EXPECT_EQ(getRows(read("a.b,c\n1.5,2\n", options)), QStringList("1.5,2"));
}

TEST_F(KueTableReaderTest, CoordinatesAreGuessedByNameAndSaidSo)
{
    const std::pair<QByteArray, QStringList> cases[] = {
        {"x,y,z", {"x", "y", "z"}},
        {"Easting (m),Northing (m),Au", {"Easting (m)", "Northing (m)", ""}},
        {"LONGITUDE,Lat,Elevation", {"LONGITUDE", "Lat", "Elevation"}},
        {"lon,lat,X", {"lon", "lat", ""}},
        {"X_COORD,y-coord,Elevation", {"X_COORD", "y-coord", "Elevation"}},
        {"Xlocation in meter,Ylocation in meter,V",
         {"Xlocation in meter", "Ylocation in meter", ""}},
        {"x,northing,z", {"", "", ""}},
        {"a,b,z", {"", "", ""}},
    };
    for (const auto& [header, coordinates] : cases) {
        const KueTableResult result = read(header + "\n1,2,3\n4,5,6\n");
        EXPECT_EQ(QStringList({result.xColumn, result.yColumn, result.zColumn}), coordinates);
        EXPECT_EQ(result.notes.isEmpty(), coordinates.first().isEmpty()) << header.toStdString();
        EXPECT_EQ(result.coordinatesGuessed, !coordinates.first().isEmpty());
    }
    EXPECT_EQ(read("x,y\n1,a\n2,b\n").xColumn, QString());
    EXPECT_EQ(read("x,y\n1.12345678901234567,2\n").warnings,
              QStringList("Column 'x': numbers with more digits than a real number keeps are "
                          "rounded."));
}

TEST_F(KueTableReaderTest, ErrorsNameLineColumnAndText)
{
    KueTableOptions coordinates;
    coordinates.xColumn = "x";
    KueTableOptions unknown;
    unknown.categoryColumns = QStringList{"rock"};
    KueTableOptions narrow;
    narrow.maxLineLength = 1000;
    const QByteArray longQuote = "a,b\n1,\"" + QByteArray("x\n").repeated(2000000) + "\"\n";
    const struct {
        const char* name;
        QByteArray bytes;
        QString message;
        KueTableOptions options = {};
    } cases[] = {
        {"short row", "a,b\n1,2\n3\n",
         "'', line 3: the row has 1 cells, but there are 2 columns: '3'"},
        {"long row", "a,b\n\"1\n\",2\n\n1,2,3\n",
         "'', line 5: the row has 3 cells, but there are 2 columns: '1,2,3'"},
        {"ragged GeoEAS", "t\n2\na\nb\n1 2\n3\n",
         "'', line 6: the row has 1 cells, but there are 2 columns: '3'"},
        {"coordinate", "x,y\n1,2\nabc,3\n", "'', line 3, column 'x': 'abc' is not a number.",
         coordinates},
        {"no such column", "a,b\n1,2\n",
         "'', line 1: there is no column 'rock'. The columns are: a, b", unknown},
        {"open quote", "a,b\n1,\"2\n3,4\n",
         "'', line 2: the row opens a quote that is never closed."},
        {"open quote in the header", "a,\"b\n1,2\n",
         "'', line 1: a quote is opened that is never closed."},
        {"long line", longQuote,
         "'', line 2: the row is longer than 1000 bytes. A quote that is never closed makes one "
         "row of many.",
         narrow},
        {"zero byte", QByteArray("a,b\n1,2\n1,\0002\n", 13),
         "'', line 3: a zero byte. This is no file of text."},
        {"nothing", "", "'' holds no table: it is empty."},
        {"blanks", "\n \n", "'' holds no table: it is empty."},
    };
    for (const auto& each : cases)
        EXPECT_EQ(readError(each.bytes, each.options), each.message) << each.name;

    const KueTableReader reader;
    EXPECT_THROW(reader.read(m_directory.path()), HbeUserError);
    EXPECT_THROW(reader.read("/dev/null"), HbeUserError);
    EXPECT_THROW(reader.read(m_directory.filePath("none")), HbeUserError);
    KueTableOptions twice;
    twice.textColumns = twice.categoryColumns = QStringList{"a"};
    EXPECT_THROW(KueTableReader(twice).read(write("a\n")), HbeUserError);
}

TEST_F(KueTableReaderTest, ProgressIsToldAndCancels)
{
    const QString path = write("a,b\n" + QByteArray("1,2\n").repeated(1500000));
    KueTableReader reader;
    std::vector<qint64> done;
    reader.setProgress([&](qint64 bytes, qint64 total) {
        EXPECT_EQ(total, 6000004);
        done.push_back(bytes);
        return true;
    });
    reader.read(path);
    EXPECT_GE(done.size(), 4u);
    EXPECT_TRUE(std::is_sorted(done.begin(), done.end()));
    reader.setProgress([](qint64 bytes, qint64) { return bytes < 3000000; });
    EXPECT_THROW(reader.read(path), HbcCancelled);
}
} // namespace
