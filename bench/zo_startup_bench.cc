// Start-up to the first prompt with a catalogue of 100 modules x 100
// commands, against merely reading its two files, each in a fresh process.
//
// The console (zo_cmd_debug_host) runs with standard input at its end: it
// loads the catalogue, maps the page, prints its first prompt and, finding no
// input, ends. The reader (zo_read_rows) takes every row of both files with
// the same platform reader and ends. `cat` of both files is the raw floor.
// Each repetition is one process, timed from spawn to reaped; the median is
// the figure; cpu_ms (user and system time of the child) is steadier than
// the wall time on a busy machine. peak_rss_kb is the largest resident size a
// run reached.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench_catalogue.h"

extern char** environ;

namespace {

const BenchCatalogue& Catalogue()
{
    static const BenchCatalogue catalogue(100, 100);
    return catalogue;
}

// Runs the program with standard input and output on /dev/null; false unless
// it exited with 0. Its resources go to usage.
bool RunOnce(std::vector<std::string> args, struct rusage& usage)
{
    std::vector<char*> argv;
    for (std::string& arg : args) {
        argv.push_back(&arg[0]);
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t pid;
    const int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) {
        return false;
    }
    int status = 0;
    if (wait4(pid, &status, 0, &usage) != pid) {
        return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

double Seconds(const struct timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

void TimeProcess(benchmark::State& state, const std::vector<std::string>& args)
{
    long peakKb = 0;
    double cpuSeconds = 0;
    for (auto _ : state) {
        struct rusage usage {};
        const auto start = std::chrono::steady_clock::now();
        const bool ok = RunOnce(args, usage);
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        if (!ok) {
            state.SkipWithError(("cannot run " + args[0]).c_str());
            break;
        }
        state.SetIterationTime(elapsed.count());
        peakKb = std::max(peakKb, usage.ru_maxrss);
        cpuSeconds += Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    }
    state.counters["peak_rss_kb"] = static_cast<double>(peakKb);
    state.counters["cpu_ms"] = cpuSeconds * 1e3 / static_cast<double>(state.iterations());
}

void BM_ConsoleStartup(benchmark::State& state)
{
    TimeProcess(state, {ZO_CONSOLE_PROGRAM, Catalogue().Dir()});
}

void BM_ReadRows(benchmark::State& state)
{
    TimeProcess(state, {ZO_READ_ROWS_PROGRAM, Catalogue().Dir()});
}

void BM_CatFiles(benchmark::State& state)
{
    TimeProcess(state, {"cat", Catalogue().Dir() + "/mods.conf", Catalogue().Dir() + "/cmds.conf"});
}

BENCHMARK(BM_ConsoleStartup)
    ->Iterations(1)->Repetitions(41)->ReportAggregatesOnly()->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadRows)
    ->Iterations(1)->Repetitions(41)->ReportAggregatesOnly()->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CatFiles)
    ->Iterations(1)->Repetitions(41)->ReportAggregatesOnly()->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
