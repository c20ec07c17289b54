// Three rules over ten million samples (a range, an equality within a tolerance, a category) into a
// bit array, against a loop written by hand, and against NumPy, which evaluates the same expression
// on the same values with integer codes for categories. NumPy times itself in a child process.
#include "RatioLimits.h"

#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/filter/KufSampleFilter.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>

#include <benchmark/benchmark.h>

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>

#include <random>

namespace
{
constexpr int COUNT = 10000000;
constexpr int CATEGORIES = 15;

QString labelOf(int code, bool isLong)
{
    return QString(isLong ? 1000 : 2, QChar(u'c')) + QString::number(code);
}

struct Survey {
    explicit Survey(bool hasLongNames)
        : points(QStringLiteral("survey"))
    {
        std::mt19937 engine(5);
        std::uniform_real_distribution<double> grade(0.0, 1000.0);
        HbdDataTable table;
        for (const char* name : {"zinc", "lead"}) {
            std::vector<double> values(COUNT);
            for (double& value : values)
                value = engine() % 100 == 0 ? HbbGlobal::D_FFFF : grade(engine);
            auto column =
                std::make_unique<HbdVariableReal>(HbdVariableDetails(QLatin1String(name)));
            column->setValues(std::move(values));
            table.addVariable(std::move(column));
        }
        auto column = std::make_unique<HbdVariableEnum>(
            HbdVariableDetails(QStringLiteral("landuse"), HbdEVarType::CATEGORY));
        HbdEnumCatalog catalog;
        for (int code = 0; code < CATEGORIES; ++code)
            catalog.addCategory(static_cast<quint16>(code), labelOf(code, hasLongNames));
        column->setCatalog(catalog);
        std::vector<quint16> codes(COUNT);
        for (quint16& code : codes)
            code = static_cast<quint16>(engine() % CATEGORIES);
        column->setValues(std::move(codes));
        table.addVariable(std::move(column));
        points.setDataTable(std::move(table));

        using Rule = KufSampleFilterRuleNumeric;
        using Bound = Rule::IntervalOperator;
        const QString support = points.getPointTable()->getName();
        const auto variable = [&](const char* name) {
            return KudDatasetVariable::createVariable(support, QLatin1String(name));
        };
        filter.addRule(variable("zinc"),
                       Rule(100.0, Bound::ITV_LESS_OR_EQUAL_TO, 500.0, Bound::ITV_LESS_THAN));
        filter.addRule(variable("lead"), Rule(Rule::CompareOperator::EQUAL, 300.0, 250.0));
        filter.addRule(variable("landuse"),
                       KufSampleFilterRuleEnum({labelOf(3, hasLongNames), labelOf(7, hasLongNames),
                                                labelOf(11, hasLongNames)}));
    }

    template <class Column>
    const Column& column(int index) const
    {
        return dynamic_cast<const Column&>(*points.readValues(filter.getVariable(index)));
    }

    KudMemoryDatasetPoint points;
    KufSampleFilter filter;
};

const Survey& survey()
{
    static const Survey shared(false);
    return shared;
}

void select(benchmark::State& state, const Survey& from)
{
    const QList<KudDatasetVariable> variables = from.filter.getVariables();
    for (auto _ : state) {
        const KufSampleFilterQBitArrayVisitor visitor(&from.filter, &from.points, variables);
        benchmark::DoNotOptimize(visitor.getSelection().bits());
    }
    state.SetItemsProcessed(state.iterations() * COUNT);
}

void filterToBits(benchmark::State& state)
{
    select(state, survey());
}

void filterWithLongNames(benchmark::State& state)
{
    const Survey other(true);
    select(state, other);
}

void loopByHand(benchmark::State& state)
{
    const double* zinc = survey().column<HbdVariableReal>(0).getValues().data();
    const double* lead = survey().column<HbdVariableReal>(1).getValues().data();
    const quint16* landuse = survey().column<HbdVariableEnum>(2).getValues().data();
    for (auto _ : state) {
        std::vector<quint64> words((COUNT + 63) / 64);
        for (int i = 0; i < COUNT; ++i) {
            const bool passes = zinc[i] >= 100.0 && zinc[i] < 500.0 && lead[i] >= 50.0 &&
                                lead[i] <= 550.0 &&
                                (landuse[i] == 3 || landuse[i] == 7 || landuse[i] == 11);
            words[static_cast<std::size_t>(i) / 64] |= quint64(passes) << (i % 64);
        }
        benchmark::DoNotOptimize(words.data());
    }
    state.SetItemsProcessed(state.iterations() * COUNT);
}

/// Seconds that NumPy takes, best of several; 0 when there is no NumPy.
double secondsOfNumPy()
{
    const QString program = QStringLiteral(R"(
import time
import numpy as np
rng = np.random.default_rng(5)
n = %1
zinc, lead = rng.uniform(0, 1000, n), rng.uniform(0, 1000, n)
zinc[rng.integers(0, 100, n) == 0] = np.nan
lead[rng.integers(0, 100, n) == 0] = np.nan
landuse = rng.integers(0, %2, n).astype(np.uint16)
best = 1e9
for _ in range(7):
    start = time.process_time()
    bits = ((((100.0 <= zinc) & (zinc < 500.0)) & ((lead >= 50.0) & (lead <= 550.0)))
            & ((landuse == 3) | (landuse == 7) | (landuse == 11)))
    best = min(best, time.process_time() - start)
print(best)
)")
                                .arg(QString::number(COUNT), QString::number(CATEGORIES));
    for (const QString& python : {QStandardPaths::findExecutable(QStringLiteral("python3")),
                                  QStringLiteral("/usr/bin/python3")}) {
        QProcess process;
        process.start(python, {QStringLiteral("-c"), program});
        if (process.waitForFinished(-1) && process.exitCode() == 0)
            return process.readAllStandardOutput().trimmed().toDouble();
    }
    return 0.0;
}

void numPy(benchmark::State& state)
{
    for (auto _ : state) {
        const double seconds = secondsOfNumPy();
        if (seconds == 0.0)
            return state.SkipWithError("python3 with NumPy is not installed");
        state.SetIterationTime(seconds);
    }
    state.SetItemsProcessed(state.iterations() * COUNT);
}
} // namespace

BENCHMARK(filterToBits)->Unit(benchmark::kMillisecond);
BENCHMARK(filterWithLongNames)->Unit(benchmark::kMillisecond);
BENCHMARK(loopByHand)->Unit(benchmark::kMillisecond);
BENCHMARK(numPy)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"filterToBits", "loopByHand", 3},
                          {"filterToBits", "numPy", 0.6},
                          {"filterWithLongNames", "filterToBits", 1.3}});
}
