// Creating samples, many at once and one by one, beside a loop over plain vectors and beside a
// database in memory.
#include <RatioLimits.h>

#include <util/dataset/KudMemoryDataTable.h>
#include <util/observable/KuoIObserver.h>

#include <QtCore/QCoreApplication>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <random>

namespace
{
constexpr int MANY = 1000000;
constexpr int ONE_BY_ONE = 200000;

using Rows = QList<QVector<QVariant>>;

Rows makeRows(int count)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> real(0.0, 1000.0);
    Rows rows;
    rows.reserve(count);
    for (int i = 0; i < count; ++i)
        rows.append({real(random), real(random), real(random), qint64(i), real(random)});
    return rows;
}

const Rows& manyRows()
{
    static const Rows rows = makeRows(MANY);
    return rows;
}

std::unique_ptr<KudMemoryDataTable> makeTable()
{
    auto table = std::make_unique<KudMemoryDataTable>(QStringLiteral("Points"));
    for (const char* name : {"x", "y", "z", "n", "v"}) {
        table->createVariable(HbdVariableDetails(
            QLatin1String(name), *name == 'n' ? HbdEVarType::INTEGER : HbdEVarType::REAL));
    }
    return table;
}

class Counter : public KuoIObserver<KudDataTableModif>
{
public:
    void update(const KudDataTableModif& notice) override { changes += notice.getNumberOfModif(); }
    qint64 changes = 0;
};

void createSamplesAtOnce(benchmark::State& state)
{
    const Rows& rows = manyRows();
    for (auto _ : state) {
        const auto table = makeTable();
        benchmark::DoNotOptimize(table->createSamples(rows));
    }
}
BENCHMARK(createSamplesAtOnce)->Unit(benchmark::kMillisecond);

void fillFiveVectors(benchmark::State& state)
{
    const Rows& rows = manyRows();
    for (auto _ : state) {
        std::vector<double> x, y, z, v;
        std::vector<qint64> n;
        for (const QVector<QVariant>& row : rows) {
            x.push_back(row.at(0).toDouble());
            y.push_back(row.at(1).toDouble());
            z.push_back(row.at(2).toDouble());
            n.push_back(row.at(3).toLongLong());
            v.push_back(row.at(4).toDouble());
        }
        benchmark::DoNotOptimize(v.data());
        benchmark::DoNotOptimize(n.data());
    }
}
BENCHMARK(fillFiveVectors)->Unit(benchmark::kMillisecond);

void createSampleOneByOne(benchmark::State& state)
{
    const Rows& rows = manyRows();
    for (auto _ : state) {
        const auto table = makeTable();
        Counter observer;
        table->addObserver(&observer);
        for (int i = 0; i < ONE_BY_ONE; ++i)
            table->createSample(rows.at(i));
        benchmark::DoNotOptimize(observer.changes);
        table->removeObserver(&observer);
    }
}
BENCHMARK(createSampleOneByOne)->Unit(benchmark::kMillisecond);

void insertOneByOneIntoSqlite(benchmark::State& state)
{
    const Rows& rows = manyRows();
    for (auto _ : state) {
        sqlite3* database = nullptr;
        sqlite3_open(":memory:", &database);
        sqlite3_exec(database, "create table t (x real, y real, z real, n integer, v real)",
                     nullptr, nullptr, nullptr);
        sqlite3_exec(database, "begin", nullptr, nullptr, nullptr);
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(database, "insert into t values (?,?,?,?,?)", -1, &insert, nullptr);
        for (int i = 0; i < ONE_BY_ONE; ++i) {
            const QVector<QVariant>& row = rows.at(i);
            for (int c = 0; c < 5; ++c) {
                if (c == 3)
                    sqlite3_bind_int64(insert, c + 1, row.at(c).toLongLong());
                else
                    sqlite3_bind_double(insert, c + 1, row.at(c).toDouble());
            }
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_exec(database, "commit", nullptr, nullptr, nullptr);
        sqlite3_finalize(insert);
        sqlite3_close(database);
    }
}
BENCHMARK(insertOneByOneIntoSqlite)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return runWithLimits(argc, argv,
                         {{"createSamplesAtOnce", "fillFiveVectors", 3.0},
                          {"createSampleOneByOne", "insertOneByOneIntoSqlite", 0.4}});
}
