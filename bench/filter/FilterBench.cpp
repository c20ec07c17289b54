// Three rules over ten million samples (a range, an equality within a tolerance, a category) into a
// bit array, against a loop written by hand, and against the package for Python, which evaluates
// the filter's own expression over NumPy, with integer codes for categories. It times itself in a
// child process. The length of the categories' names costs neither of them anything.
#include "RatioLimits.h"

#include <util/dataset/KudMemoryDataTable.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/filter/KufSampleFilter.h>
#include <util/filter/KufSampleFilterPythonVisitor.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterRuleEnum.h>
#include <util/filter/KufSampleFilterRuleNumeric.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableReal.h>

#include <benchmark/benchmark.h>

#include <QtCore/QProcess>

#include <random>

namespace
{
constexpr int COUNT = 10000000;
constexpr int CATEGORIES = 15;

/// The name of a category but for its code, which ends it.
QString labelOf(bool isLong)
{
    return QString(isLong ? 1000 : 2, QChar(u'c'));
}

QString labelOf(int code, bool isLong)
{
    return labelOf(isLong) + QString::number(code);
}

struct Survey {
    explicit Survey(bool isLong)
        : hasLongNames(isLong)
        , points(QStringLiteral("survey"))
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

    bool hasLongNames;
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

const char PYTHON[] = R"(
import sys, time
import numpy as np
import kelvane
text = sys.stdin.read()
count, categories, label = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3]
rng = np.random.default_rng(5)
def grades():
    values = rng.uniform(0, 1000, count)
    values[rng.integers(0, 100, count) == 0] = np.nan
    return values
codes = rng.integers(0, categories, count).astype(np.uint16)
labels = {code: label + str(code) for code in range(categories)}
data = {'zinc': grades(), 'lead': grades(), 'landuse': kelvane.Categories(codes, labels)}
kelvane.evaluate(text, data)
rounds = 30
start = time.perf_counter()
for _ in range(rounds):
    kelvane.evaluate(text, data)
print((time.perf_counter() - start) / rounds)
)";

/// Seconds that Python takes, on average like the others; 0 when a package is missing.
double secondsOfPython(const Survey& from)
{
    const QString text = KufSampleFilterPythonVisitor(&from.filter, &from.points,
                                                      from.filter.getVariables(), QString())
                             .getPythonString();
    const QString label = labelOf(from.hasLongNames);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PYTHONPATH"), QStringLiteral(KELVANE_PYTHON_PACKAGES));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KELVANE_PYTHON),
                  {QStringLiteral("-B"), QStringLiteral("-c"), QLatin1String(PYTHON),
                   QString::number(COUNT), QString::number(CATEGORIES), label});
    process.write(text.toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        return 0.0;
    return process.readAllStandardOutput().trimmed().toDouble();
}

void timePython(benchmark::State& state, const Survey& from)
{
    for (auto _ : state) {
        const double seconds = secondsOfPython(from);
        if (seconds == 0.0)
            return state.SkipWithError("python3 with NumPy and zstandard is not installed");
        state.SetIterationTime(seconds);
    }
    state.SetItemsProcessed(state.iterations() * COUNT);
}

void numPy(benchmark::State& state)
{
    timePython(state, survey());
}

void numPyWithLongNames(benchmark::State& state)
{
    const Survey other(true);
    timePython(state, other);
}
} // namespace

// By the clock: all cores work on them.
BENCHMARK(filterToBits)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(filterWithLongNames)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(loopByHand)->Unit(benchmark::kMillisecond);
BENCHMARK(numPy)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);
BENCHMARK(numPyWithLongNames)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"filterToBits", "loopByHand", 3},
                          {"filterToBits", "numPy", 0.6},
                          {"filterWithLongNames", "filterToBits", 1.3},
                          {"numPyWithLongNames", "numPy", 1.3}});
}
