// A project of some 500 MB packed into an archive, unpacked and listed: whole processes by the
// clock, beside GNU tar with zstd and bsdtar on the same tree, and the memory that ours take at
// most. The environment variable KELVANE_BENCH_ARCHIVE_MB sets another size.
#include "ProjectTree.h"

#include <RatioLimits.h>

#include <QtCore/QTemporaryDir>
#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>

#include <spawn.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>

extern char** environ;

namespace
{
constexpr int DEFAULT_SIZE = 500; // MB
constexpr int SMOKE_SIZE = 8;
constexpr double MEMORY_LIMIT = 64; // MiB
constexpr int REPETITIONS = 5;      // the disk has slow moments

struct Outcome {
    double seconds = 0;
    double peakMemory = 0; // MiB, of the largest process
};

/// Runs a command line of the shell; what it writes to standard output is of no interest.
Outcome runCommand(const std::string& command)
{
    const std::string line = "exec >/dev/null; " + command;
    const char* const arguments[] = {"sh", "-c", line.c_str(), nullptr};
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = -1;
    int status = 0;
    rusage usage{};
    if (posix_spawn(&child, "/bin/sh", nullptr, nullptr, const_cast<char**>(arguments), environ) !=
            0 ||
        wait4(child, &status, 0, &usage) != child || status != 0)
        throw std::runtime_error("failed: " + command);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    return {passed.count(), double(usage.ru_maxrss) / 1024};
}

/// A process to be measured, in the temporary directory; what it makes goes to "made".
struct Process {
    std::string name;
    std::string command;
    double peakMemory = 0; // MiB; 0: was not measured

    /// Times it with the disk at rest. What was made before stays, a single file aside: where many
    /// files were just removed, file systems are slow to make new ones.
    double run()
    {
        static int count = 0;
        if (std::filesystem::exists("made"))
            std::filesystem::rename("made", "made" + std::to_string(count++));
        std::filesystem::create_directory("made");
        sync();
        const Outcome outcome = runCommand(command);
        peakMemory = std::max(peakMemory, outcome.peakMemory);
        std::filesystem::remove("made/a.tar.zst");
        return outcome.seconds;
    }
};

const std::string TOOL = "\"" KELVANE_TOOL "\" ";

Process processes[] = {
    {"pack", TOOL + "pack project made/a.tar.zst"},
    {"tarZstd2", "tar c project | zstd -q -1 -T2 -o made/a.tar.zst"},
    {"packOneThread", TOOL + "pack --threads 1 project made/a.tar.zst"},
    {"tarZstd", "tar c project | zstd -q -1 -o made/a.tar.zst"},
    {"unpack", TOOL + "unpack a.tar.zst made"},
    {"bsdtar", "bsdtar -xf a.tar.zst -C made"},
    {"zstdTar", "zstd -dc a.tar.zst | tar x -C made"},
    {"list", TOOL + "archive list a.tar.zst >made/list"},
    {"tarList", "tar --zstd -tf a.tar.zst >made/list"},
    {"verify", TOOL + "archive verify a.tar.zst"},
};

/// The program that a peer cannot do without and that is missing here; null: none.
const char* findMissing(const std::string& command)
{
    for (const char* program : {"bsdtar", "zstd", "tar"})
        if ((" " + command).find(std::string(" ") + program + " ") != std::string::npos &&
            std::system((std::string("command -v >/dev/null ") + program).c_str()) != 0)
            return program;
    return nullptr;
}

void measure(benchmark::State& state, Process& process)
{
    const char* const missing = findMissing(process.command);
    if (missing)
        state.SkipWithError((std::string(missing) + " is missing").c_str());
    for (auto _ : state)
        state.SetIterationTime(process.run());
}

/// A fast archive of something else would prove nothing. What is unpacked for that stays until the
/// end: see Process::run.
void checkSameTrees()
{
    runCommand(TOOL + "pack project a.tar.zst");
    runCommand("mkdir by-us by-tar && " + TOOL + "unpack a.tar.zst by-us");
    runCommand("diff -r project by-us/project");
    runCommand("tar xf a.tar.zst -C by-tar && diff -r project by-tar/project");
}

/// Of the same process with the tables of the higher levels, on the part where they fill.
double measureMemoryOfLevel(const std::string& level)
{
    return runCommand(TOOL + "pack --level " + level + " project/import made/" + level + ".tar.zst")
        .peakMemory;
}

bool reportMemory()
{
    bool isFine = true;
    const auto report = [&isFine](const std::string& name, double peak) {
        isFine &= reportRatio("memory/" + name, peak / MEMORY_LIMIT, 1);
    };
    for (const char* name : {"pack", "unpack", "list", "verify"})
        for (const Process& process : processes)
            if (process.name == name && process.peakMemory > 0)
                report(name, process.peakMemory);
    if (processes[0].peakMemory > 0)
        for (const char* level : {"9", "19"})
            report(std::string("packLevel") + level, measureMemoryOfLevel(level));
    return isFine;
}

int sizeOfTree(int argc, char** argv)
{
    if (const char* const size = std::getenv("KELVANE_BENCH_ARCHIVE_MB"))
        return std::max(1, std::atoi(size));
    const bool isSmoke = std::any_of(argv, argv + argc, [](const char* argument) {
        return std::strcmp(argument, "--benchmark_min_time=0.001") == 0;
    });
    return isSmoke ? SMOKE_SIZE : DEFAULT_SIZE;
}

int runBenchmarks(int argc, char** argv)
{
    for (Process& process : processes)
        benchmark::RegisterBenchmark(process.name.c_str(), measure, std::ref(process))
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1)
            ->Repetitions(REPETITIONS)
            ->UseManualTime();
    const int answer = runWithLimits(argc, argv,
                                     {{"pack", "tarZstd2", 0.8},
                                      {"packOneThread", "tarZstd", 1.0},
                                      {"unpack", "bsdtar", 1.0},
                                      {"unpack", "zstdTar", 0.8},
                                      {"list", "tarList", 1.0}});
    return reportMemory() ? answer : std::max(answer, 1);
}
} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir directory;
    if (chdir(directory.path().toLocal8Bit().constData()) != 0)
        return 2;
    ProjectTree::create("project", std::int64_t(sizeOfTree(argc, argv)) * 1000000);
    checkSameTrees();
    // What the machine does besides hits all of them alike when they take turns.
    std::vector<char*> arguments(argv, argv + argc);
    std::string takeTurns = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, takeTurns.data());
    arguments.push_back(nullptr);
    return runBenchmarks(argc + 1, arguments.data());
}
