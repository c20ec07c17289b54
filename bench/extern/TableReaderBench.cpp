// Reading 1,000,000 rows of 8 reals with 6 decimals, 1 integer and 1 category. The peer is a plain
// loop with std::from_chars over the mapped file that fills vectors, and maps its categories
// through a hash. The limits: its time twice over, and three times the memory of the columns.
#include "RatioLimits.h"

#include <util/extern/KueTableReader.h>

#include <basic/base/HbbStringFormat.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <benchmark/benchmark.h>

#include <sys/wait.h>

#include <sys/resource.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace
{
constexpr int ROWS = 1000000;
constexpr int REALS = 8;
constexpr const char* ROCKS[] = {"granite", "gneiss", "schist", "limestone", "basalt"};

/// The file; it lives as long as the program.
const QString& getPath()
{
    static const QTemporaryDir directory;
    static const QString path = [] {
        const QString file = directory.filePath(QStringLiteral("rows.csv"));
        std::ofstream out(file.toStdString(), std::ios::binary);
        out << "a,b,c,d,e,f,g,h,count,rock\n";
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> real(-1000, 100000);
        std::string row;
        char text[HbbStringFormat::CAPACITY];
        for (int i = 0; i < ROWS; ++i) {
            row.clear();
            for (int k = 0; k < REALS; ++k) {
                const char* end =
                    HbbStringFormat::write(text, real(random), HbbEFormat::E_DECIMAL, 6);
                row.append(text, static_cast<std::size_t>(end - text));
                row += ',';
            }
            row += std::to_string(random() % 1000000) + ',' + ROCKS[random() % 5] + '\n';
            out << row;
        }
        return file;
    }();
    return path;
}

void fromChars(benchmark::State& state)
{
    const QString& path = getPath();
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        const char* at = reinterpret_cast<const char*>(file.map(0, file.size()));
        const char* const end = at + file.size();
        std::vector<double> reals[REALS];
        std::vector<long long> integers;
        std::vector<unsigned short> codes;
        std::unordered_map<std::string_view, unsigned short> labels;
        at =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at))) + 1;
        while (at < end) {
            for (std::vector<double>& column : reals) {
                double value = 0;
                at = std::from_chars(at, end, value).ptr + 1;
                column.push_back(value);
            }
            long long integer = 0;
            at = std::from_chars(at, end, integer).ptr + 1;
            integers.push_back(integer);
            const void* const stop = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
            const std::string_view label(
                at, static_cast<std::size_t>(static_cast<const char*>(stop) - at));
            codes.push_back(
                labels.emplace(label, static_cast<unsigned short>(labels.size())).first->second);
            at += label.size() + 1;
        }
        benchmark::DoNotOptimize(reals);
        benchmark::DoNotOptimize(codes);
    }
    state.SetItemsProcessed(state.iterations() * ROWS);
}
BENCHMARK(fromChars)->Unit(benchmark::kMillisecond);

void tableReader(benchmark::State& state)
{
    const QString& path = getPath();
    for (auto _ : state) {
        const KueTableResult result = KueTableReader().read(path);
        benchmark::DoNotOptimize(result.table.getSampleCount());
    }
    state.SetItemsProcessed(state.iterations() * ROWS);
}
BENCHMARK(tableReader)->Unit(benchmark::kMillisecond);

/// What a process of its own needs at most to read the file, beyond what it needs to start.
int measureMemory()
{
    getPath();
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        // The peak of a child begins with its parent's pages that it touches.
        rusage before{};
        getrusage(RUSAGE_SELF, &before);
        const KueTableResult result = KueTableReader().read(getPath());
        rusage after{};
        getrusage(RUSAGE_SELF, &after);
        const double columns = ROWS * (REALS * 8.0 + 8.0 + 2.0);
        const double used = static_cast<double>(after.ru_maxrss - before.ru_maxrss) * 1024;
        std::printf("memory: %.0f MB for columns of %.0f MB, ratio %.2f, limit 3\n", used / 1e6,
                    columns / 1e6, used / columns);
        std::fflush(stdout);
        _exit(result.table.getSampleCount() == ROWS && used <= 3 * columns ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}
} // namespace

int main(int argc, char** argv)
{
    const bool isMemoryFine = measureMemory() == 0;
    const int answer = runWithLimits(argc, argv, {{"tableReader", "fromChars", 2.0}});
    return isMemoryFine ? answer : 1;
}
