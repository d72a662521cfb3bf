// Loading a catalogue of 100 modules x 100 commands from disk, against merely
// reading the same two files row by row: the load must stay close to the
// reading, since nothing on the load path may grow faster than the rows.
// The same pair at a quarter and at four times the size shows the growth:
// items_per_second (commands a second) must stay flat across the sizes.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include <ftw.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "zo_file_parse.h"

namespace {

constexpr int kCommandsPerModule = 100;

// Writes the two files of a catalogue into a temporary directory, removed at exit.
class Catalogue {
public:
    explicit Catalogue(int modules)
    {
        const char* base = std::getenv("TMPDIR");
        std::string pattern = std::string(base != nullptr ? base : "/tmp") + "/zo_bench_XXXXXX";
        if (mkdtemp(&pattern[0]) == nullptr) {
            std::perror("mkdtemp");
            std::exit(1);
        }
        m_dir = pattern;
        std::ofstream mods(m_dir + "/mods.conf");
        std::ofstream cmds(m_dir + "/cmds.conf");
        for (int m = 0; m < modules; ++m) {
            const std::string name = "Module" + std::to_string(m);
            mods << "[" << name << "]\ncommand = mod" << m << "\ninstruction = 0x" << std::hex << (m + 1) * 0x100
                 << std::dec << "\ndescription = module number " << m << "\n\n";
            for (int c = 0; c < kCommandsPerModule; ++c) {
                cmds << "[" << name << " command " << c << "]\ncommand = cmd" << c << "\nbelong module = " << name
                     << "\ninstruction = 0x" << std::hex << (m + 1) * 0x100 + c + 1 << std::dec
                     << "\npara format = dDfFs\nprint format = dsF\nprint tags = number,name,value\n"
                     << "description = command " << c << " of module " << m << "\n\n";
            }
        }
    }
    ~Catalogue()
    {
        nftw(m_dir.c_str(), [](const char* p, const struct stat*, int, struct FTW*) { return ::remove(p); }, 4,
             FTW_DEPTH | FTW_PHYS);
    }
    const std::string& Dir() const { return m_dir; }

private:
    std::string m_dir;
};

// One catalogue per size, written on first use.
const Catalogue& CatalogueOf(int modules)
{
    static std::map<int, std::unique_ptr<Catalogue>> catalogues;
    std::unique_ptr<Catalogue>& catalogue = catalogues[modules];
    if (!catalogue) {
        catalogue = std::make_unique<Catalogue>(modules);
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
