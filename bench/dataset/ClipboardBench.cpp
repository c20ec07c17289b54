// Copying 100,000 samples of 10 variables in the three forms of the clipboard, and pasting them,
// beside loops by hand that write and read one tab-separated text, and beside QString's own
// operations.
#include <RatioLimits.h>

#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudTableBlock.h>
#include <util/dataset/KudTableModel.h>
#include <util/dataset/KudTablePaste.h>
#include <util/dataset/KudTableUtils.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>

#include <QtCore/QMimeData>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QTextStream>
#include <QtGui/QGuiApplication>

#include <benchmark/benchmark.h>

#include <charconv>
#include <random>

namespace
{
constexpr int ROW_COUNT = 100000;
constexpr int REAL_COUNT = 7; // and an integer, a text and a category

KudMemoryDataTable& samples()
{
    static KudMemoryDataTable table(QStringLiteral("Points"));
    if (table.hasVariable())
        return table;
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(0.0, 500000.0);
    for (int c = 0; c < REAL_COUNT; ++c) {
        auto reals =
            std::make_unique<HbdVariableReal>(HbdVariableDetails(QStringLiteral("r%1").arg(c)));
        for (int i = 0; i < ROW_COUNT; ++i)
            reals->append(coordinate(random));
        table.addVariable(std::move(reals));
    }
    auto integers = std::make_unique<HbdVariableInteger>(HbdVariableDetails(QStringLiteral("n")));
    auto texts = std::make_unique<HbdVariableText>(HbdVariableDetails(QStringLiteral("t")));
    auto categories = std::make_unique<HbdVariableEnum>(HbdVariableDetails(QStringLiteral("c")));
    HbdEnumCatalog catalog;
    for (int i = 0; i < 12; ++i)
        catalog.findOrAdd(QStringLiteral("facies %1").arg(i));
    categories->setCatalog(catalog);
    for (int i = 0; i < ROW_COUNT; ++i) {
        integers->append(i);
        texts->append(QStringLiteral("sample-%1").arg(i));
        categories->append(static_cast<quint16>(random() % 12));
    }
    table.addVariable(std::move(integers));
    table.addVariable(std::move(texts));
    table.addVariable(std::move(categories));
    return table;
}

std::unique_ptr<QMimeData> copy(const QAbstractItemModel& model)
{
    return std::unique_ptr<QMimeData>(KudTableUtils::encodeForClipboard(
        &model, HbiIntervalIntSmall(0, ROW_COUNT - 1), HbiIntervalIntSmall(0, REAL_COUNT + 2)));
}

const QMimeData& copied()
{
    static const std::unique_ptr<QMimeData> data = copy(*samples().getModel());
    return *data;
}

KudMemoryDataTable& target()
{
    static KudMemoryDataTable table(QStringLiteral("Points"));
    if (!table.hasVariable())
        table.initTableFrom(samples());
    return table;
}

void copyThreeForms(benchmark::State& state)
{
    const KudTableModel& model = *samples().getModel();
    for (auto _ : state)
        benchmark::DoNotOptimize(copy(model));
}
BENCHMARK(copyThreeForms)->Unit(benchmark::kMillisecond);

void copySortedRows(benchmark::State& state)
{
    QSortFilterProxyModel sorted;
    sorted.setSourceModel(samples().getModel());
    sorted.sort(REAL_COUNT, Qt::DescendingOrder);
    for (auto _ : state)
        benchmark::DoNotOptimize(copy(sorted));
}
BENCHMARK(copySortedRows)->Unit(benchmark::kMillisecond);

/// A pass over typed columns that writes the plain text alone.
void writeTextByHand(benchmark::State& state)
{
    const KudMemoryDataTable& table = samples();
    const auto column = [&table](int c) { return table.readValues(table.getVariableAt(c)); };
    const auto& integers = static_cast<const HbdVariableInteger&>(*column(REAL_COUNT));
    const auto& texts = static_cast<const HbdVariableText&>(*column(REAL_COUNT + 1));
    const auto& categories = static_cast<const HbdVariableEnum&>(*column(REAL_COUNT + 2));
    for (auto _ : state) {
        std::string text;
        char number[32];
        for (int i = 0; i < ROW_COUNT; ++i) {
            for (int c = 0; c < REAL_COUNT; ++c) {
                const double value = static_cast<const HbdVariableReal&>(*column(c)).at(i);
                text.append(number, std::to_chars(number, number + 32, value).ptr);
                text += '\t';
            }
            text.append(number, std::to_chars(number, number + 32, integers.at(i)).ptr);
            text += '\t';
            text += texts.at(i).toStdString();
            text += '\t';
            text += categories.getLabel(i).toStdString();
            text += '\n';
        }
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(writeTextByHand)->Unit(benchmark::kMillisecond);

/// The three forms cell by cell through the model, as a view's own code would have it.
void copyThroughTheModel(benchmark::State& state)
{
    const KudTableModel& model = *samples().getModel();
    for (auto _ : state) {
        QString text, html, own;
        QTextStream textStream(&text), htmlStream(&html), ownStream(&own);
        for (int row = 0; row < ROW_COUNT; ++row) {
            htmlStream << "<tr>";
            for (int c = 0; c < REAL_COUNT + 3; ++c) {
                const QModelIndex index = model.index(row, c);
                const QString shown = model.data(index).toString();
                textStream << shown << '\t';
                htmlStream << "<td>" << shown.toHtmlEscaped() << "</td>";
                ownStream << model.data(index, Qt::EditRole).toString() << '\t';
            }
            textStream << '\n';
            htmlStream << "</tr>";
            ownStream << '\n';
        }
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(copyThroughTheModel)->Unit(benchmark::kMillisecond);

void paste(benchmark::State& state, const QMimeData& data)
{
    KudMemoryDataTable& table = target();
    for (auto _ : state) {
        const KudTableBlock block = KudTableBlock::fromMimeData(data);
        if (!KudTablePaste(table).paste(block, {}))
            state.SkipWithError("cells were refused");
    }
}

void pasteOwnForm(benchmark::State& state)
{
    paste(state, copied());
}
BENCHMARK(pasteOwnForm)->Unit(benchmark::kMillisecond);

void pasteText(benchmark::State& state)
{
    QMimeData text;
    text.setText(copied().text());
    paste(state, text);
}
BENCHMARK(pasteText)->Unit(benchmark::kMillisecond);

/// Into vectors, nothing checked.
void readTextByHand(benchmark::State& state)
{
    const std::string text = copied().text().toStdString();
    for (auto _ : state) {
        std::vector<double> reals[REAL_COUNT];
        std::vector<qint64> integers;
        std::vector<QString> texts;
        std::vector<QString> labels;
        const char* at = text.data();
        const char* const end = at + text.size();
        const auto findEnd = [&](char delimiter) { return std::find(at, end, delimiter); };
        while (at != end) {
            for (std::vector<double>& values : reals) {
                double value = 0.0;
                at = std::from_chars(at, end, value).ptr + 1;
                values.push_back(value);
            }
            qint64 value = 0;
            at = std::from_chars(at, end, value).ptr + 1;
            integers.push_back(value);
            const char* last = findEnd('\t');
            texts.push_back(QString::fromUtf8(at, static_cast<int>(last - at)));
            at = last + 1;
            last = findEnd('\n');
            labels.push_back(QString::fromUtf8(at, static_cast<int>(last - at)));
            at = last + 1;
        }
        benchmark::DoNotOptimize(labels.data());
    }
}
BENCHMARK(readTextByHand)->Unit(benchmark::kMillisecond);

/// As Qt offers it, into the same columns.
void splitText(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<double> reals[REAL_COUNT];
        std::vector<qint64> integers;
        std::vector<QString> texts;
        const QStringList lines = copied().text().split('\n', Qt::SkipEmptyParts);
        for (const QString& line : lines) {
            const QStringList cells = line.split('\t');
            for (int c = 0; c < REAL_COUNT; ++c)
                reals[c].push_back(cells.at(c).toDouble());
            integers.push_back(cells.at(REAL_COUNT).toLongLong());
            texts.push_back(cells.at(REAL_COUNT + 1));
            texts.push_back(cells.at(REAL_COUNT + 2));
        }
        benchmark::DoNotOptimize(texts.data());
    }
}
BENCHMARK(splitText)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return runWithLimits(argc, argv,
                         {{"copyThreeForms", "writeTextByHand", 3.0},
                          {"copyThreeForms", "copyThroughTheModel", 0.5},
                          {"copySortedRows", "copyThreeForms", 1.5},
                          {"pasteOwnForm", "readTextByHand", 3.0},
                          {"pasteText", "splitText", 2.5}});
}
