// Ten million samples sorted by a column, and a million by texts, against std::stable_sort of pairs
// of a value and a rank.
#include <RatioLimits.h>

#include <util/dataset/KudSampleOrder.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableText.h>

#include <QtCore/QCollator>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace
{
constexpr int COUNT = 10000000;
constexpr int TEXT_COUNT = 1000000;

std::vector<int> allRanks(int count)
{
    std::vector<int> ranks(static_cast<std::size_t>(count));
    std::iota(ranks.begin(), ranks.end(), 0);
    return ranks;
}

/// Ours.
void sortColumn(benchmark::State& state, const HbdAVariable& column)
{
    const std::vector<int> ranks = allRanks(column.getCount());
    for (auto _ : state) {
        std::vector<int> sorted = ranks;
        KudSampleOrder::sort(sorted, column);
        benchmark::DoNotOptimize(sorted.data());
    }
    state.SetItemsProcessed(state.iterations() * column.getCount());
}

/// The peer: what compares fast, made by `toKey` from each value.
template <class Values, class ToKey>
void sortPairs(benchmark::State& state, const Values& values, ToKey toKey)
{
    using Pair = std::pair<decltype(toKey(values[0])), int>;
    for (auto _ : state) {
        std::vector<Pair> pairs;
        pairs.reserve(static_cast<std::size_t>(values.size()));
        for (int rank = 0; rank < values.size(); ++rank)
            pairs.emplace_back(toKey(values[rank]), rank);
        std::stable_sort(pairs.begin(), pairs.end(), [](const Pair& left, const Pair& right) {
            return left.first < right.first;
        });
        std::vector<int> sorted(pairs.size());
        std::transform(pairs.begin(), pairs.end(), sorted.begin(),
                       [](const Pair& pair) { return pair.second; });
        benchmark::DoNotOptimize(sorted.data());
    }
    state.SetItemsProcessed(state.iterations() * values.size());
}

template <class Column, class Make>
Column makeColumn(const HbdEVarType& type, int count, Make make)
{
    std::mt19937_64 random(7);
    std::vector<typename Column::Value> values(static_cast<std::size_t>(count));
    for (auto& value : values)
        value = make(random);
    Column column{HbdVariableDetails(QStringLiteral("v"), type)};
    column.setValues(std::move(values));
    return column;
}

/// Grades as they are measured, one in 64 undefined; and values that differ late in their digits.
const HbdVariableReal& reals(bool isClustered)
{
    static const auto make = [](bool clustered) {
        return makeColumn<HbdVariableReal>(
            HbdEVarType::REAL, COUNT, [clustered](std::mt19937_64& random) {
                if (random() % 64 == 0)
                    return HbbGlobal::D_FFFF;
                const double value = std::lognormal_distribution<double>(3.0, 1.5)(random);
                return clustered ? 652000.0 + 1e-6 * value : value;
            });
    };
    static const HbdVariableReal spread = make(false);
    static const HbdVariableReal clustered = make(true);
    return isClustered ? clustered : spread;
}

const HbdVariableInteger& integers()
{
    static const auto column = makeColumn<HbdVariableInteger>(
        HbdEVarType::INTEGER, COUNT, [](std::mt19937_64& random) { return qint64(random()); });
    return column;
}

/// Names of bore holes, all different, or those of a thousand.
const HbdVariableText& texts(bool areDistinct)
{
    static const auto make = [](int modulus) {
        return makeColumn<HbdVariableText>(
            HbdEVarType::TEXT, TEXT_COUNT, [modulus](std::mt19937_64& random) {
                return QStringLiteral("Bore-%1").arg(random() % quint64(modulus));
            });
    };
    static const HbdVariableText distinct = make(2000000000);
    static const HbdVariableText repeated = make(1000);
    return areDistinct ? distinct : repeated;
}

const HbdVariableEnum& categories()
{
    static const HbdVariableEnum column = [] {
        auto made =
            makeColumn<HbdVariableEnum>(HbdEVarType::CATEGORY, COUNT, [](std::mt19937_64& random) {
                return quint16(random() % 300);
            });
        HbdEnumCatalog catalog;
        for (int code = 0; code < 300; ++code)
            catalog.addCategory(quint16(code), QStringLiteral("rock %1").arg(code * 7919 % 1000));
        made.setCatalog(catalog);
        return made;
    }();
    return column;
}

double sameValue(double value)
{
    return value;
}

QCollatorSortKey collatedText(const QString& text)
{
    static const QCollator collator = [] {
        QCollator english{QLocale(QLocale::English)};
        english.setNumericMode(true);
        return english;
    }();
    return collator.sortKey(text);
}

#define KELVANE_BENCH(name, call)                                                                  \
    void name(benchmark::State& state)                                                             \
    {                                                                                              \
        call;                                                                                      \
    }                                                                                              \
    BENCHMARK(name)->Unit(benchmark::kMillisecond)

KELVANE_BENCH(sortReals, sortColumn(state, reals(false)));
KELVANE_BENCH(stableSortReals, sortPairs(state, reals(false).getValues(), sameValue));
KELVANE_BENCH(sortClusteredReals, sortColumn(state, reals(true)));
KELVANE_BENCH(stableSortClusteredReals, sortPairs(state, reals(true).getValues(), sameValue));
KELVANE_BENCH(sortIntegers, sortColumn(state, integers()));
KELVANE_BENCH(stableSortIntegers,
              sortPairs(state, integers().getValues(), [](qint64 value) { return value; }));
KELVANE_BENCH(sortCategories, sortColumn(state, categories()));
KELVANE_BENCH(stableSortCategories,
              sortPairs(state, categories().getValues(), [](quint16 code) { return code; }));
KELVANE_BENCH(sortDistinctTexts, sortColumn(state, texts(true)));
KELVANE_BENCH(stableSortDistinctTexts, sortPairs(state, texts(true).getValues(), collatedText));
KELVANE_BENCH(sortRepeatedTexts, sortColumn(state, texts(false)));
KELVANE_BENCH(stableSortRepeatedTexts, sortPairs(state, texts(false).getValues(), collatedText));
} // namespace

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"sortReals", "stableSortReals", 0.8},
                          {"sortClusteredReals", "stableSortClusteredReals", 0.8},
                          {"sortIntegers", "stableSortIntegers", 0.8},
                          {"sortCategories", "stableSortCategories", 0.8},
                          {"sortDistinctTexts", "stableSortDistinctTexts", 1.5},
                          {"sortRepeatedTexts", "stableSortRepeatedTexts", 0.2}});
}
