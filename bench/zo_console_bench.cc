// What one command and one prompt cost the console.
//
// Exchange overhead: CopyCmdToBuf against a service that answers at once (a
// responder thread on its own mapping of a real swap file), from posting the
// request to the reply printed, less the 100 ms the console must sleep before
// it first looks. Each repetition is one exchange; the median is the figure.
// The same 100 ms nanosleep alone shows what the operating system's timer
// adds, and the two pieces around the exchange (encoding the request,
// printing the reply) are timed on their own.
//
// Prompt refresh: what the prompt loop does before every line inside a
// module (GetSupportCmds, the registration list, DoWorkSub), for modules of
// 250 to 2000 commands; the time per command must stay flat.
//
// The console's printing goes to /dev/null (line-buffered, as on a terminal);
// the benchmark's own report still reaches standard output.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <sstream>
#include <thread>

#include <benchmark/benchmark.h>

#include "console_peer.h"
#include "zo_printer.h"
#include "zo_shm_page.h"
#include "zo_shm_service.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr double kMandatedSleep = 0.1;
const char* const kArgs = " 7 -8 3.5 4.25 text ";

// The console's stdio output goes to /dev/null while it lives; std::cout,
// which the report uses, keeps the real standard output.
class QuietStdout {
public:
    QuietStdout() : m_saved(stdout), m_null(std::fopen("/dev/null", "w"))
    {
        setvbuf(m_null, nullptr, _IOLBF, 0);
        stdout = m_null;
    }
    ~QuietStdout()
    {
        stdout = m_saved;
        std::fclose(m_null);
    }
    QuietStdout(const QuietStdout&) = delete;
    QuietStdout& operator=(const QuietStdout&) = delete;

private:
    FILE* m_saved;
    FILE* m_null;
};

// A console inside a module of commands "cmd0", "cmd1", ... (para format
// dDfFs, print format dsF), with a zero-filled swap file in its directory.
class BenchConsole : public TestConsole {
public:
    explicit BenchConsole(int commands)
    {
        std::vector<TestCmd> cmds;
        for (int c = 0; c < commands; ++c) {
            cmds.push_back({"cmd" + std::to_string(c), std::to_string(c + 1), "dDfFs", "dsF", "number,name,value"});
        }
        Load(cmds);
        Dir().Write(kShmSwapFileName, std::string(SHM_SIZE, '\0'));
    }
    std::string SwapFile() const { return ShmSwapFilePath(Dir().Path()); }
};

void* MapPage(const std::string& path)
{
    const int fd = open(path.c_str(), O_RDWR);
    void* page = fd < 0 ? MAP_FAILED : mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (fd >= 0) {
        close(fd);
    }
    return page;
}

// The values of a dsF reply: 42, "sim", 2.25.
int32_t WriteValues(const android::Parcel&, android::Parcel& values)
{
    values.writeInt32(42);
    values.writeString16(android::String16("sim"));
    values.writeDouble(2.25);
    return 0;
}

// The service: the service library on its own mapping of the file, in a
// thread, answering cmd0 (code 1) with 42, "sim", 2.25 and looking every
// 1 ms, well inside the console's 100 ms sleep.
class Responder {
public:
    explicit Responder(const std::string& path)
    {
        m_service.Open(path, nullptr);
        m_service.Register(1, WriteValues);
        m_service.SetPollMs(1);
        m_thread = std::thread([this] {
            while (!m_stop) {
                if (m_service.WaitForRequest(10)) {
                    m_service.ServeOne();
                }
            }
        });
    }
    ~Responder()
    {
        m_stop = true;
        m_thread.join();
    }
    Responder(const Responder&) = delete;
    Responder& operator=(const Responder&) = delete;

private:
    ZoShmService m_service;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

void BM_ExchangeOverhead(benchmark::State& state)
{
    BenchConsole console(4);
    g_pShareMem = MapPage(console.SwapFile());
    if (g_pShareMem == MAP_FAILED) {
        state.SkipWithError("cannot map the swap file");
        return;
    }
    Responder service(console.SwapFile());
    QuietStdout quiet;
    for (auto _ : state) {
        android::Parcel request;
        std::istringstream args(kArgs);
        console.Get().ParseCmd("cmd0", request, args);
        const Clock::time_point start = Clock::now();
        const int ret = console.Get().CopyCmdToBuf("cmd0", request);
        const std::chrono::duration<double> elapsed = Clock::now() - start;
        if (ret != 0) {
            state.SkipWithError("the exchange failed");
            break;
        }
        state.SetIterationTime(elapsed.count() - kMandatedSleep);
    }
    munmap(g_pShareMem, SHM_SIZE);
    g_pShareMem = MAP_FAILED;
}
BENCHMARK(BM_ExchangeOverhead)
    ->Iterations(1)->Repetitions(31)->ReportAggregatesOnly()->UseManualTime()->Unit(benchmark::kMicrosecond);

// What the operating system adds to the console's one 100 ms nanosleep.
void BM_SleepOvershoot(benchmark::State& state)
{
    const struct timespec step = {0, 100000000};
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        nanosleep(&step, nullptr);
        const std::chrono::duration<double> elapsed = Clock::now() - start;
        state.SetIterationTime(elapsed.count() - kMandatedSleep);
    }
}
BENCHMARK(BM_SleepOvershoot)
    ->Iterations(1)->Repetitions(21)->ReportAggregatesOnly()->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_EncodeRequest(benchmark::State& state)
{
    BenchConsole console(4);
    QuietStdout quiet;
    for (auto _ : state) {
        android::Parcel request;
        std::istringstream args(kArgs);
        benchmark::DoNotOptimize(console.Get().ParseCmd("cmd0", request, args));
    }
}
BENCHMARK(BM_EncodeRequest)->Unit(benchmark::kMicrosecond);

void BM_PrintReply(benchmark::State& state)
{
    android::Parcel source;
    source.writeInt32(0);
    WriteValues(source, source);
    Array<std::string> tags;
    for (const char* tag : {"number", "name", "value"}) {
        tags.PushBack(tag);
    }
    QuietStdout quiet;
    for (auto _ : state) {
        android::Parcel reply;
        reply.setData(source.data(), source.dataSize());
        reply.readInt32();
        Printer printer(reply);
        printer.Fmt("dsF", tags);
        printer.Flush();
    }
}
BENCHMARK(BM_PrintReply)->Unit(benchmark::kMicrosecond);

// One prompt inside a module of range(0) commands, as DoWork does it.
void BM_PromptRefresh(benchmark::State& state)
{
    const unsigned int commands = static_cast<unsigned int>(state.range(0));
    BenchConsole console(static_cast<int>(commands));
    const unsigned int modCount = 1;
    g_apModList[0] = "mod0";
    for (auto _ : state) {
        const char** cmdTable = nullptr;
        unsigned int cmdCount = 0;
        console.Get().GetSupportCmds(cmdTable, cmdCount);
        const char** regList = static_cast<const char**>(calloc(cmdCount + modCount, sizeof(const char*)));
        if (console.Get().DoWorkSub(cmdCount, modCount, regList, cmdTable, g_apModList) != 0) {
            state.SkipWithError("registration failed");
            break;
        }
        free(regList);
    }
}
BENCHMARK(BM_PromptRefresh)->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
