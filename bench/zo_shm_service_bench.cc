// What the service library costs a TV, at its default poll period:
// - one request served, CPU: posted and served in one thread (ServeOne), by a
//   handler at the page level and by one at the catalogue level, which also
//   decodes the argument and checks the reply against the formats ("vol 30");
// - the idle service: the CPU time of a thread that serves an unused page for
//   10 s, as a share of one core (target: well under 0.5%);
// - an answer: the time from a request posted to its reply flag on the page,
//   as the console would see it if it looked continuously (target: every
//   answer, the slowest included, well before the console's first look at
//   100 ms). Requests are posted at random moments of the poll period.
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <random>
#include <thread>

#include <benchmark/benchmark.h>

#include "temp_dir.h"
#include "zo_shm_catalogue_service.h"
#include "zo_shm_console.h"
#include "zo_shm_service.h"

namespace {

using Clock = std::chrono::steady_clock;

// A service on DIR/.tv in a thread of its own, answering code 1 with 42.
class ServiceThread {
public:
    explicit ServiceThread(const TempDir& dir)
    {
        m_ok = m_service.Open(ShmSwapFilePath(dir.Path()), nullptr) == 0;
        m_service.Register(1, [](const android::Parcel&, android::Parcel& values) { return values.writeInt32(42); });
        m_thread = std::thread([this] {
            while (!m_stop) {
                m_service.Serve(100);
            }
        });
    }
    ~ServiceThread()
    {
        m_stop = true;
        m_thread.join();
    }
    bool Ok() const { return m_ok; }
    // The thread's CPU time so far, in seconds.
    double CpuSeconds()
    {
        clockid_t clock;
        struct timespec used {};
        pthread_getcpuclockid(m_thread.native_handle(), &clock);
        clock_gettime(clock, &used);
        return used.tv_sec + used.tv_nsec / 1e9;
    }

private:
    ZoShmService m_service;
    bool m_ok = false;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

void BM_IdleServiceCpu(benchmark::State& state)
{
    TempDir dir;
    for (auto _ : state) {
        ServiceThread service(dir);
        const double before = service.CpuSeconds();
        std::this_thread::sleep_for(std::chrono::seconds(state.range(0)));
        state.counters["cpu_percent"] = (service.CpuSeconds() - before) / state.range(0) * 100;
    }
}
BENCHMARK(BM_IdleServiceCpu)->Arg(10)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();

void BM_RequestToReply(benchmark::State& state)
{
    TempDir dir;
    ServiceThread service(dir);
    const int fd = open(ShmSwapFilePath(dir.Path()).c_str(), O_RDWR);
    void* page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    if (!service.Ok() || page == MAP_FAILED) {
        state.SkipWithError("cannot open the swap file");
        return;
    }
    std::mt19937 random(7);
    std::uniform_int_distribution<int> phase(0, ZoShmService::kDefaultPollMs * 1000);
    android::Parcel request;
    request.writeInt32(1);
    double slowest = 0;
    for (auto _ : state) {
        std::this_thread::sleep_for(std::chrono::microseconds(phase(random)));
        const Clock::time_point posted = Clock::now();
        ShmPostRequest(page, request);
        while ((ShmLoadFlag(page) & SHM_FLAG_REPLY) == 0) {
            std::this_thread::sleep_for(std::chrono::microseconds(20));
        }
        const double took = std::chrono::duration<double>(Clock::now() - posted).count();
        state.SetIterationTime(took);
        slowest = std::max(slowest, took);
    }
    state.counters["slowest_ms"] = slowest * 1000;
    munmap(page, SHM_SIZE);
}
BENCHMARK(BM_RequestToReply)->Iterations(300)->UseManualTime()->Unit(benchmark::kMillisecond);

// "vol 30" posted and served, state.range(0) == 1 through the catalogue level.
void BM_ServeOne(benchmark::State& state)
{
    TempDir dir;
    dir.Write("mods.conf", "[Sound]\ncommand = snd\ninstruction = 0x30\n");
    dir.Write("cmds.conf", "[v]\ncommand = vol\nbelong module = Sound\ninstruction = 0x31\npara format = d\n"
                           "print format = d\n");
    ZoShmCatalogueService service;
    int32_t volume = 0;
    bool ok = false;
    if (state.range(0) == 1) {
        ok = service.Load(dir.Path(), nullptr) == 0 &&
             service.Register("Sound", "vol", [&volume](const ZoShmArgs& args, ZoShmReply& reply) {
                 volume = args.Int32(0);
                 reply.PutInt32(volume);
                 return 0;
             }, nullptr) == 0;
    } else {
        service.Register(0x31, [&volume](const android::Parcel& args, android::Parcel& values) {
            volume = args.readInt32();
            return values.writeInt32(volume);
        });
        ok = true;
    }
    if (!ok || service.Open(ShmSwapFilePath(dir.Path()), nullptr) != 0) {
        state.SkipWithError("cannot load the catalogue or open the swap file");
        return;
    }
    void* page = const_cast<void*>(service.Page());
    android::Parcel request;
    request.writeInt32(0x31);
    request.writeInt32(30);
    for (auto _ : state) {
        ShmPostRequest(page, request);
        if (service.ServeOne().status != 0) {
            state.SkipWithError("not answered");
            return;
        }
    }
}
BENCHMARK(BM_ServeOne)->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
