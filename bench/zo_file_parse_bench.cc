// Loading a catalogue of 100 modules x 100 commands from disk, against merely
// reading the same two files row by row: the load must stay close to the
// reading, since nothing on the load path may grow faster than the rows.
// The same pair at a quarter and at four times the size shows the growth:
// items_per_second (commands a second) must stay flat across the sizes.
#include <map>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "bench_catalogue.h"
#include "zo_file_parse.h"

namespace {

constexpr int kCommandsPerModule = 100;

// One catalogue per size, written on first use.
const BenchCatalogue& CatalogueOf(int modules)
{
    static std::map<int, std::unique_ptr<BenchCatalogue>> catalogues;
    std::unique_ptr<BenchCatalogue>& catalogue = catalogues[modules];
    if (!catalogue) {
        catalogue = std::make_unique<BenchCatalogue>(modules, kCommandsPerModule);
    }
    return *catalogue;
}

void BM_ZoFileParseInit(benchmark::State& state)
{
    const int modules = static_cast<int>(state.range(0));
    const std::string& dir = CatalogueOf(modules).Dir();
    for (auto _ : state) {
        auto parse = std::make_unique<ZoFileParse>();
        parse->Init(dir);
        // Checking and freeing the catalogue is no part of the load.
        state.PauseTiming();
        if (parse->GetIOExceptionStatus() != 0 || parse->GetModHoldCmds(0x100).Size() != kCommandsPerModule) {
            state.SkipWithError("catalogue did not load");
            state.ResumeTiming();
            break;
        }
        parse.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * modules * kCommandsPerModule);
}
BENCHMARK(BM_ZoFileParseInit)->Arg(100)->Arg(25)->Arg(400)->Unit(benchmark::kMillisecond);

// The floor of a load: the platform reader delivering every row of both files.
void BM_ReadBothFilesRowByRow(benchmark::State& state)
{
    const int modules = static_cast<int>(state.range(0));
    const std::string& dir = CatalogueOf(modules).Dir();
    for (auto _ : state) {
        size_t bytes = 0;
        for (const char* name : {"/mods.conf", "/cmds.conf"}) {
            ZoFile file;
            file.Init(dir + name, "r");
            while (!file.IsEOF()) {
                bytes += file.NextRow().size();
            }
        }
        benchmark::DoNotOptimize(bytes);
    }
    state.SetItemsProcessed(state.iterations() * modules * kCommandsPerModule);
}
BENCHMARK(BM_ReadBothFilesRowByRow)->Arg(100)->Arg(25)->Arg(400)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
