// What the dataset registry costs: look-ups, borrowings and returns by key beside a plain map of
// shared pointers, and each of them, and a notice, with 1,000 datasets beside the same with 10.

#include <util/dataset/KudDatasetRegistry.h>
#include <util/dataset/KudMemoryDatasetPoint.h>

#include <RatioLimits.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

namespace
{
constexpr int MANY = 1000;
constexpr int FEW = 10;
constexpr int OBSERVERS = 10;
constexpr int CALLS = 100000;

class Listener : public KuoIObserver<KudDatasetModif>
{
public:
    void update(const KudDatasetModif&) override { ++m_heard; }

private:
    long m_heard = 0;
};

/// So many datasets, each borrowed and observed by ten views, and the keys as callers ask for them.
class Session
{
public:
    explicit Session(int datasetCount)
        : m_listeners(OBSERVERS)
    {
        for (int i = 0; i < datasetCount; ++i) {
            auto pointer =
                KudDatasetRegistry::add(std::make_unique<KudMemoryDatasetPoint>("d"), "session");
            for (int view = 0; view < OBSERVERS; ++view) {
                pointer->addObserver(&m_listeners[static_cast<std::size_t>(view)]);
                m_pointers.emplace_back(pointer, QStringLiteral("view %1").arg(view));
            }
            m_datasets.push_back(pointer.get());
        }
        std::mt19937 random(1);
        for (int i = 0; i < CALLS; ++i) {
            const QString key = m_datasets[random() % m_datasets.size()]->getId();
            m_keys.emplace_back(key.constData(), key.size()); // a text of its own, as from a file
        }
    }

    const std::vector<QString>& keys() const { return m_keys; }
    const std::vector<KudADataset*>& datasets() const { return m_datasets; }

private:
    std::vector<Listener> m_listeners; // outlive what they observe
    std::vector<KudDatasetPointer<KudADataset>> m_pointers;
    std::vector<KudADataset*> m_datasets;
    std::vector<QString> m_keys;
};

void lookUp(benchmark::State& state, int datasetCount)
{
    const Session session(datasetCount);
    for (auto _ : state) {
        for (const QString& key : session.keys())
            benchmark::DoNotOptimize(KudDatasetRegistry::getDataset(key));
    }
}

void keyOfDataset(benchmark::State& state, int datasetCount)
{
    const Session session(datasetCount);
    for (auto _ : state) {
        for (int i = 0; i < CALLS; ++i) {
            const std::size_t place = static_cast<std::size_t>(i) % session.datasets().size();
            benchmark::DoNotOptimize(KudDatasetRegistry::getKey(session.datasets()[place]));
        }
    }
}

/// Borrowed by key and returned.
void borrow(benchmark::State& state, int datasetCount)
{
    const Session session(datasetCount);
    const QString borrower = QStringLiteral("bench");
    for (auto _ : state) {
        for (const QString& key : session.keys()) {
            const KudDatasetPointer<KudADataset> pointer(key, borrower);
            benchmark::DoNotOptimize(pointer.get());
        }
    }
}

void mapOfSharedPointers(benchmark::State& state, int datasetCount, bool borrows)
{
    const Session session(datasetCount);
    QMap<QString, std::shared_ptr<int>> map;
    for (const KudADataset* dataset : session.datasets())
        map.insert(dataset->getId(), std::make_shared<int>());
    for (auto _ : state) {
        for (const QString& key : session.keys()) {
            const auto found = map.constFind(key);
            if (borrows) {
                const std::shared_ptr<int> pointer = *found;
                benchmark::DoNotOptimize(pointer.get());
            } else {
                benchmark::DoNotOptimize(found->get());
            }
        }
    }
}

/// From the dataset to its ten observers and through the registry to ten observers of all.
void notice(benchmark::State& state, int datasetCount)
{
    class All : public KuoIObserver<KudDatasetRegistryModif>
    {
    public:
        All() { KudDatasetRegistry::getInstance().addObserver(this); }
        ~All() override { KudDatasetRegistry::getInstance().removeObserver(this); }
        void update(const KudDatasetRegistryModif& modif) override
        {
            benchmark::DoNotOptimize(modif.getNumberOfModif());
        }
    };
    const Session session(datasetCount);
    const std::vector<All> observers(OBSERVERS);
    std::size_t i = 0;
    for (auto _ : state) {
        session.datasets()[i]->notifyReset();
        i = (i + 1) % session.datasets().size();
    }
}
} // namespace

BENCHMARK_CAPTURE(lookUp, few, FEW);
BENCHMARK_CAPTURE(lookUp, many, MANY);
BENCHMARK_CAPTURE(keyOfDataset, few, FEW);
BENCHMARK_CAPTURE(keyOfDataset, many, MANY);
BENCHMARK_CAPTURE(borrow, few, FEW);
BENCHMARK_CAPTURE(borrow, many, MANY);
BENCHMARK_CAPTURE(notice, few, FEW);
BENCHMARK_CAPTURE(notice, many, MANY);
BENCHMARK_CAPTURE(mapOfSharedPointers, lookUp, MANY, false);
BENCHMARK_CAPTURE(mapOfSharedPointers, borrow, MANY, true);

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"lookUp/many", "mapOfSharedPointers/lookUp", 0.5},
                          {"borrow/many", "mapOfSharedPointers/borrow", 1},
                          {"lookUp/many", "lookUp/few", 3},
                          {"keyOfDataset/many", "keyOfDataset/few", 2},
                          {"borrow/many", "borrow/few", 2},
                          {"notice/many", "notice/few", 2}});
}
