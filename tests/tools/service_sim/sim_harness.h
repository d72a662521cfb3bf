// The console's side of a test against the real zo_service_sim: the program
// as a second process, and the page as the console maps it.
#ifndef ZO_TESTS_TOOLS_SERVICE_SIM_SIM_HARNESS_H
#define ZO_TESTS_TOOLS_SERVICE_SIM_SIM_HARNESS_H

#include <chrono>
#include <cstdint>
#include <algorithm>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <binder/Parcel.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "child_program.h"
#include "temp_dir.h"

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using Bytes = std::vector<uint8_t>;

// The bytes of a parcel that fill writes.
template <typename Fill>
Bytes Encode(Fill fill)
{
    android::Parcel p;
    fill(p);
    return Bytes(p.data(), p.data() + p.dataSize());
}
inline Bytes Ints(std::initializer_list<int32_t> values)
{
    return Encode([&](android::Parcel& p) {
        for (int32_t v : values) {
            p.writeInt32(v);
        }
    });
}

// Polls cond every millisecond; false when the deadline passes first.
template <typename Cond>
bool WaitFor(Cond cond, milliseconds timeout = milliseconds(3000))
{
    for (const auto deadline = Clock::now() + timeout; !cond(); std::this_thread::sleep_for(milliseconds(1))) {
        if (Clock::now() >= deadline) {
            return false;
        }
    }
    return true;
}

// A directory with the catalogue files given; the simulator runs with its
// standard output on a pipe and its standard error in the file sim.err.
class Sim {
public:
    Sim() = default;
    Sim(const std::string& mods, const std::string& cmds)
    {
        dir.Write("mods.conf", mods);
        dir.Write("cmds.conf", cmds);
    }
    ~Sim() { Stop(); }

    // Starts the simulator on the directory and maps the page once it is 4096 bytes long.
    bool Start(std::vector<std::string> options = {})
    {
        options.insert(options.begin(), dir.Path());
        Spawn(options);
        struct stat st {};
        const std::string path = dir.File(".tv");
        const int fd = WaitFor([&] { return stat(path.c_str(), &st) == 0 && st.st_size >= 4096; }, milliseconds(10000))
                           ? open(path.c_str(), O_RDWR)
                           : -1;
        void* base = fd < 0 ? MAP_FAILED : mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        m_base = base == MAP_FAILED ? nullptr : static_cast<uint8_t*>(base);
        close(fd);
        return m_base != nullptr;
    }
    // The wait status of a run with exactly these arguments.
    int Run(std::vector<std::string> args)
    {
        Spawn(args);
        return WaitExit();
    }
    int WaitExit()
    {
        const int status = WaitChild(m_pid, 3000);
        m_pid = -1;
        return status;
    }
    int Signal(int sig) { return kill(m_pid, sig) == 0 ? WaitExit() : -1; }

    // The next output line without its line end; "<timeout>" when none comes in time.
    std::string ReadLine(milliseconds timeout = milliseconds(3000))
    {
        const auto deadline = Clock::now() + timeout;
        size_t eol;
        while ((eol = m_buffer.find('\n')) == std::string::npos) {
            const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now()).count();
            struct pollfd p = {m_out, POLLIN, 0};
            char chunk[512];
            ssize_t n = 0;
            if (left <= 0 || poll(&p, 1, static_cast<int>(left)) <= 0 || (n = read(m_out, chunk, sizeof chunk)) <= 0) {
                return "<timeout>";
            }
            m_buffer.append(chunk, static_cast<size_t>(n));
        }
        std::string line = m_buffer.substr(0, eol);
        m_buffer.erase(0, eol + 1);
        return line;
    }

    // Payload, size, then the flag with the request bit alone, as the console posts.
    void Post(const Bytes& bytes, uint32_t size)
    {
        std::memcpy(m_base + 8, bytes.data(), bytes.size());
        std::memcpy(m_base + 4, &size, 4);
        __atomic_store_n(reinterpret_cast<uint32_t*>(m_base), 1u, __ATOMIC_RELEASE);
    }
    // Posts a request and returns the simulator's line for it.
    std::string Ask(const Bytes& request)
    {
        Post(request, static_cast<uint32_t>(request.size()));
        return ReadLine();
    }
    uint32_t Flag() const { return __atomic_load_n(reinterpret_cast<const uint32_t*>(m_base), __ATOMIC_ACQUIRE); }
    uint32_t Size() const
    {
        uint32_t size = 0;
        std::memcpy(&size, m_base + 4, 4);
        return size;
    }
    bool WaitReply(milliseconds timeout = milliseconds(3000)) const
    {
        return WaitFor([this] { return (Flag() & 2u) != 0; }, timeout);
    }
    // The reply by u32Size, cut to the page when it claims more; empty when none comes.
    Bytes Reply() const { return WaitReply() ? Bytes(m_base + 8, m_base + 8 + std::min(Size(), 4088u)) : Bytes(); }

    std::string Errors() const
    {
        std::stringstream text;
        text << std::ifstream(dir.File("sim.err")).rdbuf();
        return text.str();
    }

    TempDir dir;

private:
    void Spawn(std::vector<std::string> args)
    {
        Stop();
        args.insert(args.begin(), ZO_SERVICE_SIM_PATH);
        int out[2];
        if (pipe2(out, O_CLOEXEC) == 0) {
            const int err = open(dir.File("sim.err").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            m_pid = SpawnChild(args, -1, out[1], err);
            close(err);
            close(out[1]);
            m_out = out[0];
        }
    }
    void Stop()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        if (m_base != nullptr) {
            munmap(m_base, 4096);
        }
        close(m_out);
        m_pid = m_out = -1;
        m_base = nullptr;
        m_buffer.clear();
    }

    pid_t m_pid = -1;
    int m_out = -1;
    uint8_t* m_base = nullptr;
    std::string m_buffer;
};

#endif  // ZO_TESTS_TOOLS_SERVICE_SIM_SIM_HARNESS_H
