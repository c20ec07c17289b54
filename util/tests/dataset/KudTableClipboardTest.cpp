#include "KudDataTableFixture.h"
#include "PythonRun.h"

#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableBlock.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTablePaste.h>
#include <util/dataset/KudTableSortFilterModel.h>
#include <util/dataset/KudTableUtils.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/unit/HbuUnitService.h>

#include <QtCore/QItemSelectionModel>
#include <QtCore/QJsonDocument>
#include <QtCore/QMimeData>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QStringListModel>
#include <QtGui/QClipboard>
#include <QtGui/QColor>
#include <QtGui/QGuiApplication>

#include <cmath>
#include <cstring>

namespace
{
using Rows = QList<QVector<QVariant>>;

Ranks upTo(int count)
{
    return Range(0, count - 1);
}

std::unique_ptr<QMimeData> copyAll(const QAbstractItemModel& model)
{
    return std::unique_ptr<QMimeData>(KudTableUtils::encodeForClipboard(
        &model, upTo(model.rowCount()), upTo(model.columnCount())));
}

QString randomText(std::mt19937_64& random)
{
    static const QString SPECIAL = QStringLiteral("\t\n\r\"\\,-e[]ut'<>&;= aé€\U0001F30B") +
                                   QString(QChar(0)) + QChar(QChar::ByteOrderMark) + QChar(0xD83C) +
                                   QChar(0xDF0B);
    QString text(QLatin1String(""));
    for (auto length = random() % 8; length > 0; --length)
        text += SPECIAL.at(static_cast<int>(random() % static_cast<unsigned>(SPECIAL.size())));
    return text;
}

double randomReal(std::mt19937_64& random)
{
    static const double SPECIAL[] = {0.0, -0.0, 0.1, INFINITY, -INFINITY, 5e-324, 456789.123};
    const quint64 bits = random();
    double value = SPECIAL[bits % std::size(SPECIAL)];
    if (bits % 3 > 0)
        std::memcpy(&value, &bits, sizeof value);
    return value;
}

QVariant randomCell(const HbdEVarType& type, std::mt19937_64& random)
{
    if (random() % 8 == 0)
        return QVariant();
    if (type == HbdEVarType::TEXT)
        return randomText(random);
    if (type == HbdEVarType::REAL)
        return randomReal(random);
    if (type == HbdEVarType::REAL_32)
        return static_cast<float>(random()) / 3;
    if (type == HbdEVarType::INTEGER)
        return static_cast<qint64>(random());
    if (type == HbdEVarType::COLOR)
        return QColor(static_cast<QRgb>(random() | 0xFF000000U));
    if (type == HbdEVarType::DATE)
        return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(random() >> 20), Qt::UTC);
    return static_cast<int>(random() % (type == HbdEVarType::SELECTION ? 2 : 12)); // some codes
}

/// A variable of every type with random cells; two tables have the same categories under other
/// codes.
std::unique_ptr<KudMemoryDataTable> tableOfAll(int sampleCount, unsigned seed, bool reversed)
{
    std::mt19937_64 random(seed);
    std::mt19937_64 labels(7);
    HbdDataTable columns;
    for (const HbdEVarType& type : HbdEVarType::createIterator()) {
        auto column = HbdAVariable::create(HbdVariableDetails(type.getKey() + "\t\\[", type));
        if (type == HbdEVarType::CATEGORY) {
            HbdEnumCatalog catalog;
            for (int i = 0; i < 8; ++i)
                catalog.addCategory(static_cast<quint16>(reversed ? 7 - i : i),
                                    randomText(labels) + QString::number(i));
            static_cast<HbdVariableEnum&>(*column).setCatalog(catalog);
        }
        column->resize(sampleCount);
        for (int rank = 0; rank < sampleCount; ++rank)
            column->setVariant(rank, randomCell(type, random));
        columns.addVariable(std::move(column));
    }
    auto table = std::make_unique<KudMemoryDataTable>("All");
    table->setDataTable(std::move(columns));
    return table;
}

/// The cells of plain text and HTML as Python's csv and html modules read them.
Rows readWithPython(const QMimeData& data, const char* form)
{
    static const char SCRIPT[] = R"(
import csv, html.parser, io, json, sys
form, text = sys.argv[1], sys.stdin.buffer.read().decode('utf-8')
rows = []
class Reader(html.parser.HTMLParser):
    def handle_starttag(self, tag, attributes):
        if tag == 'tr': rows.append([])
        elif tag in ('td', 'th'): rows[-1].append('')
    def handle_data(self, data): rows[-1][-1] += data
if form == 'html': Reader().feed(text)
else: rows = list(csv.reader(io.StringIO(text, newline=''), 'excel-tab', strict=True))
print(json.dumps(rows))
)";
    const QString text = QString("html") == form ? data.html() : data.text();
    const QByteArray json = runPython(SCRIPT, {form}, text.toUtf8());
    Rows rows;
    for (const QVariant& row : QJsonDocument::fromJson(json).toVariant().toList())
        rows.append(row.toList().toVector());
    return rows;
}
} // namespace

/// Into our own form and back, through sorted rows on both sides, every value is what it was.
TEST(KudTableClipboard, KeepsEveryValueExactly)
{
    constexpr int COUNT = 700;
    Recorder recorder; // outlives what it observes
    const auto source = tableOfAll(COUNT, 1, false);
    const auto target = tableOfAll(COUNT, 2, true);
    QSortFilterProxyModel sorted;
    sorted.setSourceModel(source->getModel());
    sorted.sort(2, Qt::DescendingOrder);
    KudTablePaste::Target place;
    place.ranks.emplace();
    for (int row = 0; row < COUNT; ++row)
        place.ranks->push_back(sorted.mapToSource(sorted.index(row, 0)).row());
    target->addObserver(&recorder);

    KudTablePaste paste(*target);
    const bool isWhole = paste.paste(KudTableBlock::fromMimeData(*copyAll(sorted)), place);
    const auto* codes = static_cast<const HbdVariableEnum*>(
        source->readValues(source->getVariableFromName("CATEGORY\t\\[")));
    const auto codesBeyondCatalog =
        std::count_if(codes->getValues().begin(), codes->getValues().end(),
                      [](quint16 code) { return code > 7 && code != 0xFFFF; });
    EXPECT_TRUE(isWhole) << paste.getSummary().toStdString();
    EXPECT_GT(codesBeyondCatalog, 0);
    EXPECT_EQ(recorder.notices.size(), 1U);
    for (int c = 0; c < source->getVariableCount(); ++c) {
        const HbdAVariable& original = *source->readValues(source->getVariableAt(c));
        const HbdAVariable& copy = *target->readValues(target->getVariableAt(c));
        if (original.getType() != HbdEVarType::CATEGORY) {
            EXPECT_TRUE(copy.isEqual(original)) << c;
            continue;
        }
        for (int rank = 0; rank < COUNT; ++rank)
            EXPECT_EQ(copy.getVariant(rank), original.getVariant(rank)) << rank;
    }
}

/// What another program reads is what we read from the text, and rows of cells as they are shown.
TEST(KudTableClipboard, IsReadByOtherPrograms)
{
    REQUIRE_PYTHON();
    const auto table = tableOfAll(200, 3, false);
    const auto data = copyAll(*table->getModel());
    const KudTableBlock block = KudTableBlock::fromText(data->text());
    const Rows text = readWithPython(*data, "text");
    const Rows html = readWithPython(*data, "html");
    ASSERT_EQ(block.getRowCount(), 200);
    ASSERT_EQ(text.size(), 200);
    ASSERT_EQ(html.size(), 201);
    for (int c = 0; c < table->getVariableCount(); ++c)
        EXPECT_EQ(html[0][c + 1], table->getVariableAt(c).getFullVariableName());
    for (int row = 0; row < 200; ++row) {
        EXPECT_EQ(html[row + 1][0], QString::number(row + 1));
        ASSERT_EQ(text[row].size(), table->getVariableCount());
        for (int c = 0; c < table->getVariableCount(); ++c) {
            EXPECT_EQ(text[row][c], block.getText(row, c));
            EXPECT_EQ(html[row + 1][c + 1], block.getText(row, c));
        }
    }
}

TEST_F(KudDataTable, CopiesTwoRowsOfThreeColumns)
{
    table.updateValue(t, 1, "<a & \"b\">");
    table.updateValue(x, 1, QVariant());
    const auto data = std::unique_ptr<QMimeData>(KudTableUtils::encodeForClipboard(
        table.getModel(), Ranks(Range(1, 2)), Ranks(Range(0, 9))));
    EXPECT_EQ(data->text(), "\t20\t\"<a & \"\"b\"\">\"\n3\t30\tc\n");
    EXPECT_EQ(data->html(), "<table><tr><td></td><th>x</th><th>n</th><th>t</th></tr>"
                            "<tr><th>2</th><td></td><td>20</td><td>&lt;a &amp; &quot;b&quot;&gt;"
                            "</td></tr><tr><th>3</th><td>3</td><td>30</td><td>c</td></tr></table>");
    const QByteArray own = data->data("application/x-kelvane");
    EXPECT_EQ(own.count('\t'), 4);
    EXPECT_EQ(own.count('\n'), 2);

    QStringListModel foreign({"a\tb", "c"});
    EXPECT_EQ(copyAll(foreign)->text(), "\"a\tb\"\nc\n");
    EXPECT_EQ(KudTableBlock::fromMimeData(*copyAll(foreign)).getCell(0, 0), "a\tb");
}

/// A gap in the selection leaves what it is pasted over.
TEST_F(KudDataTable, CopiesWhatIsSelected)
{
    QItemSelectionModel selection(table.getModel());
    for (const auto& [row, column] : {std::pair{0, 0}, {2, 0}, {2, 2}, {3, 1}})
        selection.select(table.getModel()->index(row, column), QItemSelectionModel::Select);
    const auto data =
        std::unique_ptr<QMimeData>(KudTableUtils::encodeForClipboard(&selection, upTo(3), upTo(3)));
    EXPECT_EQ(data->text(), "1\t\n3\tc\n"); // neither row 3 nor column n

    KudTablePaste::Target place;
    place.byName = true;
    place.firstRank = 1;
    EXPECT_TRUE(KudTablePaste(table).paste(KudTableBlock::fromMimeData(*data), place));
    EXPECT_EQ(cell(x, 1), 1.0);
    EXPECT_EQ(cell(t, 1), "b");
    EXPECT_EQ(cell(x, 2), 3.0);
    EXPECT_EQ(cell(t, 2), "c");
}

/// A selection model in front of the table's own tells only the rows that a view shows.
TEST(KudTableClipboard, CopiesMoreThanAViewShowsOfASelection)
{
    constexpr int COUNT = 30000;
    KudMemoryDataTable table("Points");
    auto column = std::make_unique<HbdVariableReal>(HbdVariableDetails("v"));
    column->resize(COUNT);
    for (int rank = 0; rank < COUNT; ++rank)
        column->setVariant(rank, rank);
    table.addVariable(std::move(column));
    QBitArray odd(COUNT);
    for (int rank = 1; rank < COUNT; rank += 2)
        odd.setBit(rank);
    table.getHighlight()->setBitArray(odd);
    KudTableSortFilterModel descending(table);
    descending.sort(0, Qt::DescendingOrder);

    const auto copy = [](const QItemSelectionModel* selection) {
        const std::unique_ptr<QMimeData> data(
            KudTableUtils::encodeForClipboard(selection, upTo(COUNT), upTo(9)));
        return data->text();
    };
    QString rising, falling;
    for (int rank = 1; rank < COUNT; rank += 2) {
        rising += QString::number(rank) + '\n';
        falling += QString::number(COUNT - rank) + '\n';
    }
    EXPECT_EQ(copy(table.getHighlight()->getSelectionModel()), rising);
    EXPECT_EQ(copy(descending.getSelectionModel(*table.getHighlight())), falling);
}

TEST(KudTableBlock, ReadsTextOfSpreadsheetsAndAnyOther)
{
    const struct {
        const char* name;
        QString text;
        QList<QStringList> rows;
    } cases[] = {
        {"nothing", "", {}},
        {"an empty cell", "\n", {{""}}},
        {"CR LF, last line end missing", "a\tb\r\nc\td", {{"a", "b"}, {"c", "d"}}},
        {"CR", "a\rb\r", {{"a"}, {"b"}}},
        {"empty cells at ends", "\ta\t\n", {{"", "a", ""}}},
        {"quoted", "\"a\tb\r\nc\"\t\"say \"\"hi\"\"\"\n", {{"a\tb\r\nc", "say \"hi\""}}},
        {"quote within", "5\" pipe\tb\n", {{"5\" pipe", "b"}}},
        {"text behind quotes", "\"a\"b\tc\n", {{"ab", "c"}}},
        {"unterminated", "\"a\tb\n\"\"\tc\n", {{"\"a", "b"}, {"", "c"}}},
        {"only a quote", "\"", {{"\""}}},
        {"ragged", "a\nb\tc\n", {{"a"}, {"b", "c"}}},
        {"NUL and byte order mark",
         QString(QChar(0xFEFF)) + QChar(0) + "a",
         {{QString(QChar(0)) + "a"}}},
    };
    for (const auto& c : cases) {
        const KudTableBlock block = KudTableBlock::fromText(c.text);
        QList<QStringList> rows;
        for (const QVector<QVariant>& row : block.toRows(0, {}, {}, {})) {
            rows.append(QStringList());
            for (const QVariant& text : row)
                rows.last().append(text.toString());
        }
        EXPECT_EQ(rows, c.rows) << c.name;
    }
    // As wide as it is long: no step of it may cost a row for each column.
    constexpr int LONG = 1 << 18;
    const QString bomb = QString(LONG, '\t') + QString(LONG, '\n');
    const KudTableBlock ragged = KudTableBlock::fromText(bomb);
    EXPECT_FALSE(ragged.hasCell(500, 1));
    EXPECT_EQ(ragged.toRows(0, {}, {}, {}).size(), LONG);
    KudMemoryDataTable table("Points");
    table.createVariable(HbdVariableDetails("v"));
    for (const bool byName : {false, true}) {
        KudTablePaste::Target target;
        target.byName = byName;
        KudTablePaste paste(table);
        paste.paste(ragged, target);
        EXPECT_EQ(paste.getRefusedCount(), byName ? LONG - 1 : 2 * LONG) << byName;
    }
    QMimeData latin1;
    latin1.setData("text/plain", "\xE9\t\xFF\n");
    EXPECT_EQ(KudTableBlock::fromMimeData(latin1).getColumnCount(), 2);
}

TEST(KudTableBlock, RefusesItsOwnFormWhenItIsDamaged)
{
    const QByteArray real = "\\[v\\,REAL\\,\\,\\,\\,\\]";
    const QByteArray text = "\\[v\\,TEXT\\,\\,\\,\\,\\]";
    EXPECT_TRUE(KudTableBlock::fromOwnForm(real + "1\n\n").has_value());
    EXPECT_TRUE(KudTableBlock::fromOwnForm(text + "\\u0000\n").has_value());
    const struct {
        QByteArray header;
        QByteArrayList cells;
    } damaged[] = {
        {"", {"", "1\n"}},
        {real, {"1", "1\n2\t3\n", "x\n", "1 \n", "nan\n", "1e400\n"}},
        {text, {"\\x\n", "\\\n", "\xFF\n", "\\u00\n", "\\ud8zz\n"}},
        {text, {"a\t" + text + "b\nc\td\te\nf\n"}},
        {real.chopped(2), {"1\n"}},
        {"\\[v\\,FAKE\\,\\,\\,\\,\\]", {"1\n"}},
        {"\\[v\\,REAL\\,LENGTH\\,\\,\\,\\]", {"1\n"}},
        {"\\[v\\,SELECTION\\,\\,\\,\\,\\]", {"2\n"}},
        {"\\[v\\,CATEGORY\\,\\,\\,\\,\\,1\\,a\\,1\\,b\\]", {"1\n"}},
        {"\\[v\\,CATEGORY\\,\\,\\,\\,\\,1\\]", {"1\n"}},
    };
    for (const auto& [header, allCells] : damaged) {
        for (const QByteArray& cells : allCells)
            EXPECT_FALSE(KudTableBlock::fromOwnForm(header + cells)) << (header + cells).data();
    }

    QMimeData both;
    both.setText("from the text");
    both.setData(KudTableUtils::KELVANE_MIME_DATA, "damaged");
    EXPECT_EQ(KudTableBlock::fromMimeData(both).getText(0, 0), "from the text");
}

TEST(KudTablePaste, SaysWhatItRefusedAndWhy)
{
    const struct {
        const char* type;
        QStringList taken;
        QStringList refused;
        const char* reason;
    } cases[] = {
        {"REAL", {"1.5", "", "N/A", "inf"}, {"deep", "1 2"}, "It is not a number."},
        {"REAL_32", {"1.5"}, {"1e200", "x"}, "It is not a number of single precision."},
        {"INTEGER", {"-3", ""}, {"1.5", "x"}, "It is not a whole number."},
        {"TEXT", {"", "N/A", "x"}, {}, ""},
        {"CATEGORY", {"Ag", ""}, {"Au", "0", "ag"}, "It is not one of the categories."},
        {"COLOR", {"#ff0000", "red"}, {"reddish"}, "It is not a colour."},
        {"ALPHA_CHANNEL", {"255"}, {"256", "a"}, "It is not a whole number from 0 to 255."},
        {"SELECTION", {"0", "1"}, {"2", "yes"}, "It is neither 0 nor 1."},
        {"DATE", {"2020-02-29"}, {"2021-02-29", "now"}, "It is not a date."},
    };
    for (const auto& c : cases) {
        KudMemoryDataTable table("Points");
        auto column = HbdAVariable::create(HbdVariableDetails("v", HbdEVarType::fromKey(c.type)));
        HbdEnumCatalog catalog;
        catalog.findOrAdd("Ag");
        if (auto* categories = dynamic_cast<HbdVariableEnum*>(column.get()))
            categories->setCatalog(catalog);
        table.addVariable(std::move(column));
        const QStringList texts = c.taken + c.refused;
        table.setSampleCount(texts.size());
        KudTablePaste paste(table);
        EXPECT_EQ(paste.paste(KudTableBlock::fromText(texts.join('\n') + '\n'), {}),
                  c.refused.isEmpty());
        EXPECT_EQ(paste.getWrittenCount(), c.taken.size()) << c.type;
        ASSERT_EQ(paste.getRefusedCount(), c.refused.size()) << c.type;
        for (int i = 0; i < c.refused.size(); ++i) {
            EXPECT_EQ(paste.getRefusals()[i].text, c.refused[i]);
            EXPECT_EQ(paste.getRefusals()[i].rank, c.taken.size() + i);
            EXPECT_EQ(paste.getRefusals()[i].reason, c.reason) << c.type;
        }
    }
}

TEST_F(KudDataTable, PastesWhereAndAsItIsTold)
{
    using Target = KudTablePaste::Target;
    const auto columns = [this] {
        QStringList texts;
        for (const QVector<QVariant>& row :
             KudTableBlock::fromMimeData(*copyAll(*table.getModel())).toRows(0, {}, {}, {}))
            texts += row[0].toString() + ' ' + row[1].toString() + ' ' + row[2].toString();
        return texts.join('|');
    };
    const auto paste = [this](const char* text, const Target& target) {
        recorder.notices.clear();
        KudTablePaste pasting(table);
        pasting.paste(KudTableBlock::fromText(text), target);
        EXPECT_LE(recorder.notices.size(), 1U);
        return pasting.getSummary();
    };
    Target target;
    target.byName = true;
    EXPECT_EQ(paste("t\tx\nA\t7\nB\tseven\n", target),
              "1 of 4 cells were not pasted.\nx, sample 2: 'seven'. It is not a number.");
    EXPECT_EQ(columns(), "7 10 A|2 20 B|3 30 c|4 40 d");
    EXPECT_EQ(
        paste("y\n1\n", target),
        "1 of 1 cells were not pasted.\ny, sample 1: '1'. There is no variable of this name.");

    target = Target();
    target.ranks = {3, 1};
    target.firstColumn = 1;
    EXPECT_EQ(paste("43\tf\n23\n63\n", target),
              "1 of 4 cells were not pasted.\nn: '63'. There is no sample for it.");
    target.append = true;
    EXPECT_EQ(paste("42\n22\n62\te\n", target), "");
    EXPECT_EQ(columns(), "7 10 A|2 22 B|3 30 c|4 42 f| 62 e");

    target = Target();
    target.fill = true;
    target.ranks = {0, 1, 4};
    target.firstColumn = 1;
    target.columnCount = 2;
    EXPECT_EQ(paste("0\n1\n", target), "");
    EXPECT_EQ(columns(), "7 0 0|2 1 1|3 30 c|4 42 f| 0 0");

    table.addReadonlyRoles(HbdVarRoleFlags(HbdEVarRole::X_COORDINATE));
    EXPECT_EQ(paste("9\t9", Target()),
              "1 of 2 cells were not pasted.\nx, sample 1: '9'. The variable is read-only.");
    table.setFlag(Ku::ReadOnlyValues);
    EXPECT_EQ(paste("8", Target()),
              "1 of 1 cells were not pasted.\nx, sample 1: '8'. The table is read-only.");
    EXPECT_EQ(columns(), "7 9 0|2 1 1|3 30 c|4 42 f| 0 0");
}

/// Many scattered samples are written in one go; those between stay as they are.
TEST(KudTablePaste, WritesScatteredSamplesWithOneNotice)
{
    constexpr int COUNT = 1000;
    Recorder recorder;
    KudMemoryDataTable table("Points");
    auto column = std::make_unique<HbdVariableReal>(HbdVariableDetails("v"));
    column->setValues(std::vector<double>(COUNT, 5.0));
    const KudDatasetVariable v = table.addVariable(std::move(column));
    table.addObserver(&recorder);
    KudTablePaste::Target target;
    target.ranks.emplace();
    QString text;
    for (int rank = COUNT - 2; rank >= 0; rank -= 2) {
        target.ranks->push_back(rank);
        text += QString::number(rank) + '\n';
    }
    KudTablePaste paste(table);
    EXPECT_TRUE(paste.paste(KudTableBlock::fromText(text), target));
    EXPECT_EQ(recorder.notices.size(), 1U);
    for (int rank = 0; rank < COUNT; ++rank)
        EXPECT_EQ(table.readValues(v)->getVariant(rank), rank % 2 == 0 ? double(rank) : 5.0);
}

TEST(KudTablePaste, ConvertsUnitsAndKeepsWhatWasSeenWhereThereIsNone)
{
    const auto unit = [](const HbuEUnitClass& unitClass, const char* key) {
        return *key == 0 ? HbuUnit() : HbuUnitService::getInstance().getUnit(unitClass, key);
    };
    const auto makeTable = [&](const HbuUnit& stored, const HbuUnit& shown,
                               const HbdEVarType& type = HbdEVarType::REAL) {
        HbdVariableDetails details("v", type);
        details.unit = stored;
        details.displayUnit = shown;
        auto table = std::make_unique<KudMemoryDataTable>("Points");
        table->createVariable(details);
        table->createSamples({{1250.0}});
        return table;
    };
    const HbuUnit m = unit(HbuEUnitClass::LENGTH, "m");
    const HbuUnit km = unit(HbuEUnitClass::LENGTH, "km");
    const HbuUnit degC = unit(HbuEUnitClass::TEMPERATURE, "degC");
    ASSERT_TRUE(m.isValid() && km.isValid() && degC.isValid());
    const auto source = makeTable(m, km);
    const auto copied = copyAll(*source->getModel());
    EXPECT_EQ(copied->text(), "1.25\n");
    const struct {
        HbuUnit stored;
        HbuUnit shown;
        double expected;
    } cases[] = {{m, m, 1250.0},
                 {km, m, 1.25},
                 {HbuUnit(), HbuUnit(), 1.25},
                 {HbuUnit::none(), HbuUnit(), 1.25},
                 {degC, degC, 0.0}}; // refused
    for (const auto& c : cases) {
        const auto target = makeTable(c.stored, c.shown);
        target->updateValue(target->getVariableAt(0), 0, 0.0);
        KudTablePaste(*target).paste(KudTableBlock::fromMimeData(*copied), {});
        EXPECT_EQ(target->readValues(target->getVariableAt(0))->getVariant(0), c.expected);
    }
    const auto target = makeTable(degC, degC);
    KudTablePaste paste(*target);
    EXPECT_FALSE(paste.paste(KudTableBlock::fromMimeData(*copied), {}));
    EXPECT_EQ(paste.getSummary(), "1 of 1 cells were not pasted.\nv, sample 1: '1.25'. Its unit "
                                  "does not convert into that of the variable.");

    // Integers, too, are what people see, whatever they are stored in.
    const auto integers = makeTable(m, km, HbdEVarType::INTEGER);
    const auto value = [&] {
        return integers->readValues(integers->getVariableAt(0))->getVariant(0);
    };
    const auto seen = copyAll(*integers->getModel());
    EXPECT_EQ(seen->text(), "1.25\n");
    EXPECT_TRUE(KudTablePaste(*integers).paste(KudTableBlock::fromText("1.5\n"), {}));
    EXPECT_EQ(value(), 1500);
    EXPECT_TRUE(KudTablePaste(*integers).paste(KudTableBlock::fromMimeData(*copied), {}));
    EXPECT_EQ(value(), 1250);
    const auto inKm = makeTable(km, km, HbdEVarType::INTEGER); // 1250 km
    EXPECT_TRUE(KudTablePaste(*integers).paste(
        KudTableBlock::fromMimeData(*copyAll(*inKm->getModel())), {}));
    EXPECT_EQ(value(), 1250000);
    EXPECT_FALSE(KudTablePaste(*inKm).paste(KudTableBlock::fromMimeData(*seen), {})); // 1.25
}

TEST_F(KudDataTable, DecodesTheApplicationsClipboard)
{
    QGuiApplication::clipboard()->setMimeData(copyAll(*table.getModel()).release());
    const QMap<QString, int> positions{{"t", 0}, {"x", 3}};
    EXPECT_EQ(KudTableUtils::decodeClipBoard(4, Ranks(1), {}, positions),
              Rows({{"b", QVariant(), QVariant(), 2.0}}));
    EXPECT_EQ(KudTableUtils::decodeClipBoard(2, Range(3, 9), Range(1, 2), {}), Rows({{40, "d"}}));

    QGuiApplication::clipboard()->setText("t\tx\nb\t2\n");
    EXPECT_EQ(KudTableUtils::decodeClipBoard(0, {}, {}, positions),
              Rows({{"b", QVariant(), QVariant(), "2"}}));
    QGuiApplication::clipboard()->setText("b\t2\n");
    EXPECT_EQ(KudTableUtils::decodeClipBoard(3, {}, {}, positions), Rows({{"b", "2", QVariant()}}));
}
