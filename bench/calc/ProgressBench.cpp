// What a row of a job pays for being counted and cancellable: the limit beside it is a plain
// atomic addition.
#include "RatioLimits.h"

#include <basic/calc/HbcAProgress.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <functional>

namespace
{
constexpr int ROWS = 1000000;

class Job : public HbcAProgress
{
public:
    explicit Job(std::function<void(Job&)> work)
        : m_work(std::move(work))
    {
    }

protected:
    void _run() override { m_work(*this); }

private:
    std::function<void(Job&)> m_work;
};

template <class Row>
void run(benchmark::State& state, Row row)
{
    Job job([row](Job& self) {
        self.initCounter(ROWS);
        for (int i = 0; i < ROWS; ++i)
            row(self);
    });
    for (auto _ : state)
        benchmark::DoNotOptimize(job.runInCurrentThread());
    state.SetItemsProcessed(state.iterations() * ROWS);
}

void atomicAddition(benchmark::State& state)
{
    std::atomic<qint64> count{0};
    for (auto _ : state) {
        for (int i = 0; i < ROWS; ++i)
            count.fetch_add(1, std::memory_order_relaxed);
    }
    state.SetItemsProcessed(state.iterations() * ROWS);
}

void advance(benchmark::State& state)
{
    run(state, [](Job& job) { job.advance(); });
}

void advanceAndCheck(benchmark::State& state)
{
    run(state, [](Job& job) {
        job.checkCancelled();
        job.advance();
    });
}
} // namespace

BENCHMARK(atomicAddition);
BENCHMARK(advance);
BENCHMARK(advanceAndCheck);

int main(int argc, char** argv)
{
    return runWithLimits(
        argc, argv,
        {{"advance", "atomicAddition", 1.5}, {"advanceAndCheck", "atomicAddition", 2.5}});
}
