// What one change notice costs, beside one emission of a Qt signal to one slot (direct connection)
// in the same run.

#include <util/dataset/KudDataTableModif.h>
#include <util/observable/KuoAObservable.h>

#include <QtCore/QSignalMapper>

#include <RatioLimits.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace
{
long g_allocations = 0; // one thread
}

// Counts for every library of the program: Qt's containers and operator new end here.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* malloc(std::size_t size) noexcept
{
    ++g_allocations;
    return __libc_malloc(size);
}

namespace
{
class Table : public KuoAObservable<KudDataTableModif>
{
public:
    Table()
        : KuoAObservable(QStringLiteral("Table"))
    {
    }
    void notifyValueChanged(const KudDatasetVariable& variable,
                            const HbiIntervalIntSmallDisjoint& ranks) const
    {
        notify(KudDataTableModif(KudTableModif::ValuesChanged, variable, ranks));
    }
};

class Listener : public KuoIObserver<KudDataTableModif>
{
public:
    void update(const KudDataTableModif& notice) override
    {
        benchmark::DoNotOptimize(notice.data().reasons());
        ++m_heard;
    }

private:
    long m_heard = 0;
};

KudDatasetVariable variable(int i)
{
    return KudDatasetVariable::createVariable(QStringLiteral("Samples"),
                                              QStringLiteral("Grade %1").arg(i));
}

/// Runs `operation` and reports how often one allocates.
template <class Operation>
void measure(benchmark::State& state, Operation&& operation)
{
    const long before = g_allocations;
    for (auto _ : state) {
        operation();
    }
    const double allocations = static_cast<double>(g_allocations - before);
    state.counters["allocations"] =
        benchmark::Counter(allocations, benchmark::Counter::kAvgIterations);
}

/// One signal of a QObject, heard by so many slots.
void qtSignal(benchmark::State& state, int slotCount)
{
    QSignalMapper sender;
    long heard = 0;
    for (int i = 0; i < slotCount; ++i) {
        QObject::connect(
            &sender, &QSignalMapper::mappedInt, &sender, [&heard](int rank) { heard += rank; },
            Qt::DirectConnection);
    }
    measure(state, [&] { Q_EMIT sender.mappedInt(1); });
    benchmark::DoNotOptimize(heard);
}

void deliver(benchmark::State& state, int observers)
{
    std::vector<Listener> listeners(static_cast<std::size_t>(observers));
    const Table table;
    for (Listener& listener : listeners) {
        table.addObserver(&listener);
    }
    const KudDatasetVariable grade = variable(1);
    int rank = 0;
    measure(state, [&] {
        table.notifyValueChanged(grade, HbiIntervalIntSmallDisjoint(rank++ & 0xFFFFF));
    });
}

/// Ranks in order, or scattered by a step that visits each of 2^20 ranks once.
void mergeUnderLock(benchmark::State& state, int step, int variables)
{
    Listener listener;
    const Table table;
    table.addObserver(&listener);
    table.lock(true);
    std::vector<KudDatasetVariable> grades;
    for (int i = 0; i < variables; ++i) {
        grades.push_back(variable(i));
        table.notifyValueChanged(grades.back(), HbiIntervalIntSmallDisjoint(0));
    }
    int i = 0;
    measure(state, [&] {
        const int rank = (i * step) & 0xFFFFF;
        table.notifyValueChanged(grades[static_cast<std::size_t>(i % variables)],
                                 HbiIntervalIntSmallDisjoint(rank));
        i = (i + 1) & 0xFFFFF;
    });
    table.commit();
}

/// The notice of a new sample: so many variables, in order as they come from a map, one rank.
void noticeOfRow(benchmark::State& state, int columns)
{
    Listener listener;
    const Table table;
    table.addObserver(&listener);
    std::vector<KudDatasetVariable> grades;
    for (int i = 0; i < columns; ++i) {
        grades.push_back(variable(i));
    }
    std::sort(grades.begin(), grades.end());
    measure(state, [&] {
        const HbiIntervalIntSmallDisjoint rank(7);
        KudTableModif modif;
        modif.reserve(static_cast<int>(grades.size()));
        for (const KudDatasetVariable& grade : grades) {
            modif.addChangedValues(grade, rank);
        }
        table.notify(KudDataTableModif(std::move(modif)));
    });
}
} // namespace

BENCHMARK_CAPTURE(qtSignal, oneSlot, 1);
BENCHMARK_CAPTURE(qtSignal, hundredSlots, 100);
BENCHMARK_CAPTURE(deliver, oneObserver, 1);
BENCHMARK_CAPTURE(deliver, hundredObservers, 100);
BENCHMARK_CAPTURE(mergeUnderLock, ranksInOrder, 1, 1);
BENCHMARK_CAPTURE(mergeUnderLock, scatteredRanks, 611953, 1);
BENCHMARK_CAPTURE(mergeUnderLock, hundredVariables, 1, 100);
BENCHMARK_CAPTURE(noticeOfRow, fiveColumns, 5);
BENCHMARK_CAPTURE(noticeOfRow, hundredColumns, 100);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"deliver/oneObserver", "qtSignal/oneSlot", 4},
                          {"deliver/hundredObservers", "qtSignal/hundredSlots", 1},
                          {"mergeUnderLock/ranksInOrder", "qtSignal/oneSlot", 4},
                          {"mergeUnderLock/scatteredRanks", "qtSignal/oneSlot", 4},
                          {"mergeUnderLock/hundredVariables", "qtSignal/oneSlot", 4},
                          {"noticeOfRow/fiveColumns", "qtSignal/oneSlot", 10},
                          {"noticeOfRow/hundredColumns", "qtSignal/oneSlot", 150}});
}
