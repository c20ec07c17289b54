#include <util/extern/KueCsv.h>
#include <util/extern/KueCsvWriter.h>

#include <basic/error/HbeProgrammingError.h>

#include "ErrorText.h"
#include "PythonRun.h"

#include <QtCore/QDate>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace
{
const QChar COMMA(',');
const QChar QUOTE('"');
const QChar POINT('.');

QString u(const char* text)
{
    return QString::fromUtf8(text);
}

/// The quoting rule, spelled out with whole byte arrays.
QByteArray quotedNaively(QByteArray text, const KueCsv& codec)
{
    const QByteArray quote = QString(codec.getQuote()).toUtf8();
    const int before = text.size();
    if (!codec.getQuote().isNull()) {
        text.replace(quote, quote + quote);
        if (text.size() != before || text.contains(QString(codec.getSeparator()).toUtf8()) ||
            text.contains('\n'))
            text = quote + text + quote;
    }
    return text;
}

QString randomText(std::mt19937& random, const QString& alphabet, int longest)
{
    QString text;
    for (int count = static_cast<int>(random() % (longest + 1)); count > 0; --count)
        text += alphabet.at(static_cast<int>(random() % alphabet.size()));
    return text;
}
} // namespace

TEST(KueSeparatorsTest, CharactersFallOnTheSecondItemDeliberately)
{
    EXPECT_EQ(KueCsvSeparator(), KueCsvSeparator::COMMA);
    EXPECT_EQ(KueDecimalSeparator(), KueDecimalSeparator::DOT);
    EXPECT_EQ(KueCsvSeparator::fromChar(','), KueCsvSeparator::COMMA);
    EXPECT_EQ(KueCsvSeparator::fromChar('\t'), KueCsvSeparator::SEMICOLON);
    EXPECT_EQ(KueDecimalSeparator::fromChar('.'), KueDecimalSeparator::DOT);
    EXPECT_EQ(KueDecimalSeparator::fromChar(','), KueDecimalSeparator::COMMA);
    EXPECT_EQ(KueDecimalSeparator::fromChar('x'), KueDecimalSeparator::COMMA);
    EXPECT_EQ(KueCsvSeparator::SEMICOLON.getChar(), ';');
    EXPECT_EQ(KueDecimalSeparator::COMMA.getChar(), ',');
}

TEST(KueSeparatorsTest, FailedLookUpsNameTheirSource)
{
    EXPECT_EQ(errorOf<HbeProgrammingError>([] { KueCsvSeparator::fromKey("TAB"); }),
              "'KueCsvSeparator::fromKey(const QString&)' in file 'extern\\KueCsv' failed:\n\n"
              "TAB is not valid");
    EXPECT_EQ(errorOf<HbeProgrammingError>([] { KueDecimalSeparator::fromValue(7); }),
              "'KueDecimalSeparator::fromValue(int)' in file 'extern\\KueCsv' failed:\n\n"
              "7 is not valid");
}

TEST(KueCsvTest, ANullSeparatorIsAProgrammingError)
{
    EXPECT_EQ(errorOf<HbeProgrammingError>([] { KueCsv(QChar(), true, QUOTE, POINT); }),
              "'KueCsv::KueCsv(const QChar&, bool, const QChar&, const QChar&)' in file "
              "'extern\\KueCsv' failed:\n\nEmpty separator");
}

TEST(KueCsvTest, ParsesRows)
{
    const struct {
        const char* row;
        QStringList apart;     // each separator counts
        QStringList collapsed; // runs of separators count as one
    } rows[] = {
        {"", {""}, {""}},
        {" \t ", {""}, {""}},
        {"a,,b", {"a", "", "b"}, {"a", "b"}},
        {",a", {"", "a"}, {"", "a"}},
        {",,a", {"", "", "a"}, {"", "a"}},
        {"a,,,", {"a", "", "", ""}, {"a", ""}},
        {"a, ,b", {"a", "", "b"}, {"a", "", "b"}},
        {"a,\"\",b", {"a", "", "b"}, {"a", "", "b"}},
        {" a , b c ,d ", {"a", "b c", "d"}, {"a", "b c", "d"}},
        {"\"a,b\",c", {"a,b", "c"}, {"a,b", "c"}},
        {" \" a,b \" ,c", {"a,b", "c"}, {"a,b", "c"}},
        {"\"a \"\"b\"\"\",c", {"a \"b\"", "c"}, {"a \"b\"", "c"}},
        {"\"a\nb\",c", {"a\nb", "c"}, {"a\nb", "c"}},
        {"a\"b,c,d", {"a\"b,c,d"}, {"a\"b,c,d"}},
        {"a\"b,c\"d,e", {"a\"b,c\"d", "e"}, {"a\"b,c\"d", "e"}},
        {"a\"\"b,c", {"a\"b", "c"}, {"a\"b", "c"}},
        {"a,\"", {"a", ""}, {"a", ""}},
        {"\"\"\"\"", {"\""}, {"\""}},
    };
    const KueCsv apart(COMMA, false, QUOTE, POINT);
    const KueCsv collapsing;
    for (const auto& row : rows) {
        EXPECT_EQ(apart.parseDelimitedRow(u(row.row)), row.apart) << row.row;
        EXPECT_EQ(collapsing.parseDelimitedRow(u(row.row)), row.collapsed) << row.row;
    }
}

TEST(KueCsvTest, ANullQuoteSwitchesQuotingOff)
{
    const KueCsv codec(';', false, QChar(), POINT);
    EXPECT_EQ(codec.parseDelimitedRow(u("\"a;b\";\"\"c")), (QStringList{"\"a", "b\"", "\"\"c"}));
    EXPECT_EQ(codec.encodeValue({u("a;\"\n")}), "a;\"\n");
}

TEST(KueCsvTest, EncodesByType)
{
    const struct {
        QVariant value;
        QByteArray bytes;
    } rows[] = {
        {QVariant(), ""},
        {QVariant(QVariant::Int), ""},
        {true, "1"},
        {false, "0"},
        {-42, "-42"},
        {std::numeric_limits<qint64>::min(), "-9223372036854775808"},
        {QVariant::fromValue<short>(-7), "-7"},
        {QVariant::fromValue<quint64>(18446744073709551615u), "18446744073709551615"},
        {1.5, "1,500"},
        {-0.0625f, "-0,062"},
        {-1234567.0, "-1234567,000"},
        {"1.5", "1.5"},
        {"a;b", "\"a;b\""},
        {"a,b", "a,b"},
        {"a\"b", "\"a\"\"b\""},
        {"\"", "\"\"\"\""},
        {"a\nb", "\"a\nb\""},
        {"a\rb", "a\rb"},
        {u("é€😀"), "é€😀"},
        {QByteArray("x;y"), "\"x;y\""},
        {QDate(2020, 2, 3), "2020-02-03"},
    };
    const KueCsv codec(';', false, QUOTE, COMMA);
    QList<KueFormatedVariant> all;
    QByteArrayList expected;
    for (const auto& row : rows) {
        const KueFormatedVariant cell{row.value, HbbEFormat::DECIMAL, 3};
        EXPECT_EQ(codec.encodeValue(cell), row.bytes) << row.bytes.constData();
        all.append(cell);
        expected.append(row.bytes);
    }
    EXPECT_EQ(codec.encodeValues(all), expected.join(';'));
    EXPECT_EQ(codec.encodeValues({}), "");
}

TEST(KueCsvWriterTest, AppendsTheBytesOfTheRuleWhateverTheCharacters)
{
    std::mt19937 random(7);
    QString alphabet = u("ab\"\"';,\n\r\t.§€😀€§0");
    alphabet += QChar(0xD800);
    alphabet += QChar(0xDC00);
    alphabet += QChar(0);
    for (const QChar separator : u(",;§€\"")) {
        for (const QChar quote : u("\"'€§") + QChar()) {
            const KueCsv codec(separator, false, quote, QChar(0x20AC));
            KueCsvWriter writer(codec);
            QByteArray expected;
            for (int row = 0; row < 100; ++row) {
                const QString text = randomText(random, alphabet, 12);
                const double real = std::ldexp(static_cast<double>(random()), -20);
                writer.appendText(text);
                writer.appendReal(real, HbbEFormat::E_DECIMAL, 4);
                writer.appendUtf8(text.toUtf8().constData(), text.toUtf8().size());
                writer.appendInteger(-row);
                writer.appendEmpty();
                writer.endLine();
                const QByteArray encoded = quotedNaively(text.toUtf8(), codec);
                const QByteArrayList cells{
                    encoded, QByteArray::number(real, 'f', 4).replace(".", u("€").toUtf8()),
                    encoded, QByteArray::number(-row), QByteArray()};
                expected += cells.join(QString(separator).toUtf8()) + '\n';
            }
            ASSERT_EQ(writer.toByteArray(), expected);
        }
    }
}

TEST(KueCsvWriterTest, KeepsItsMemoryBetweenBlocks)
{
    KueCsvWriter writer((KueCsv()));
    writer.appendText(u("a,b"));
    const char* const memory = writer.data();
    writer.clear();
    EXPECT_EQ(writer.size(), 0);
    writer.appendBool(true);
    EXPECT_EQ(writer.toByteArray(), "1");
    EXPECT_EQ(writer.data(), memory);
}

// Both ways against an independent codec: it reads what we write, and we read what it writes.
TEST(KueCsvTest, AgreesWithPython)
{
    REQUIRE_PYTHON();
    const char* script = R"(
import csv, io, json, sys
data = sys.stdin.buffer.read().decode("utf-8")
out = []
for row in csv.reader(io.StringIO(data, newline=""), delimiter=";"):
    line = io.StringIO(newline="")
    csv.writer(line, delimiter=";", lineterminator="").writerow(row)
    out.append({"row": row, "line": line.getvalue()})
sys.stdout.buffer.write(json.dumps(out).encode("ascii"))
)";
    const KueCsv codec(';', false, QUOTE, COMMA);
    std::mt19937 random(11);
    QList<QStringList> rows;
    QByteArray text;
    for (int i = 0; i < 2000; ++i) {
        QStringList row;
        QList<KueFormatedVariant> cells;
        for (auto count = 2 + random() % 4; count > 0; --count) {
            row.append(randomText(random, u("ab \"\";,\n'é€\t"), 8));
            cells.append({row.last()});
        }
        rows.append(row);
        text += codec.encodeValues(cells) + '\n';
    }

    const QJsonArray read = QJsonDocument::fromJson(runPython(script, {}, text)).array();
    ASSERT_EQ(read.size(), rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        const QJsonObject object = read.at(i).toObject();
        EXPECT_EQ(object.value("row").toVariant().toStringList(), rows[i]);
        // Trimmed by our rule: a row of blanks alone is one field.
        QStringList trimmed;
        for (const QString& field : rows[i])
            trimmed.append(field.trimmed());
        EXPECT_EQ(codec.parseDelimitedRow(object.value("line").toString()), trimmed)
            << object.value("line").toString().toStdString();
    }
}
