// The real zo_service_sim as a second process on the directory `dir`, which
// holds the catalogue a test writes. Start waits until the simulator has made
// the page and maps it as the console does; ReadLine takes its standard
// output line by line; its standard error goes to dir/sim.err. The process is
// killed when the object goes, or when the next one starts. Every wait has a
// deadline.
#ifndef ZO_TESTS_SUPPORT_SIM_PROCESS_H
#define ZO_TESTS_SUPPORT_SIM_PROCESS_H

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>

#include "child_program.h"
#include "hex_words.h"
#include "temp_dir.h"
#include "zo_shm_page.h"

class SimProcess {
public:
    using Ms = std::chrono::milliseconds;

    ~SimProcess() { Stop(); }

    // Starts the simulator on dir with these options; true once it says it answers (a request posted before it
    // opened the page would be stale) and the page is mapped.
    bool Start(const std::vector<std::string>& options = {})
    {
        std::vector<std::string> args = options;
        args.insert(args.begin(), dir.Path());
        Spawn(args);
        m_options = options;
        if (WaitFor([&] { return Errors().find("zo_service_sim: answering ") != std::string::npos; }, Ms(10000))) {
            const int fd = open(ShmSwapFilePath(dir.Path()).c_str(), O_RDWR | O_CLOEXEC);
            void* page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
            close(fd);
            m_page = page == MAP_FAILED ? nullptr : page;
        }
        return m_page != nullptr;
    }
    // Starts it unless it runs with these options already.
    bool Use(const std::vector<std::string>& options)
    {
        return (m_page != nullptr && m_options == options) || Start(options);
    }
    // The wait status of a whole run with exactly these arguments.
    int Run(const std::vector<std::string>& args)
    {
        Spawn(args);
        return Signal(0);
    }
    // Sends sig (none for 0) and returns the wait status once the simulator has ended.
    int Signal(int sig)
    {
        const int status = sig == 0 || kill(m_pid, sig) == 0 ? WaitChild(m_pid, 3000) : -1;
        m_pid = -1;
        return status;
    }

    // The next line of standard output without its line end; "<timeout>" when none comes in time.
    std::string ReadLine(Ms timeout = Ms(3000))
    {
        const auto deadline = Clock::now() + timeout;
        size_t eol;
        while ((eol = m_out.find('\n')) == std::string::npos) {
            struct pollfd p = {m_pipe, POLLIN, 0};
            char chunk[512];
            ssize_t n = 0;
            if (poll(&p, 1, MsLeft(deadline)) <= 0 || (n = read(m_pipe, chunk, sizeof chunk)) <= 0) {
                return "<timeout>";
            }
            m_out.append(chunk, size_t(n));
        }
        const std::string line = m_out.substr(0, eol);
        m_out.erase(0, eol + 1);
        return line;
    }
    std::string Errors() const { return ReadFile(dir.File("sim.err")); }

    // The console's side of the page: posts a request (hex words) as the console does, with size in u32Size (its
    // length by default), and returns the line the simulator prints for it.
    void* Page() const { return m_page; }
    std::string Ask(const std::string& hex, uint32_t size = 0)
    {
        const std::vector<uint8_t> request = FromHex(hex);
        std::memcpy(ShmPayloadOf(m_page), request.data(), request.size());
        ShmStoreSize(m_page, size != 0 ? size : uint32_t(request.size()));
        ShmStoreFlag(m_page, SHM_FLAG_REQUEST);
        return ReadLine();
    }
    // The reply as hex words once bit 1 is set, by u32Size cut to the page; empty when none comes in time.
    std::string Reply(Ms timeout = Ms(3000)) const
    {
        const bool replied = WaitFor([this] { return (ShmLoadFlag(m_page) & SHM_FLAG_REPLY) != 0; }, timeout);
        return replied ? HexWords(ShmPayloadOf(m_page), std::min<uint32_t>(ShmLoadSize(m_page), SHM_DATA_SIZE)) : "";
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
            m_pipe = out[0];
        }
    }
    void Stop()
    {
        WaitChild(m_pid, 0);  // kills and reaps it
        if (m_page != nullptr) {
            munmap(m_page, SHM_SIZE);
        }
        close(m_pipe);
        m_pid = m_pipe = -1;
        m_page = nullptr;
        m_out.clear();
    }

    pid_t m_pid = -1;
    int m_pipe = -1;
    void* m_page = nullptr;
    std::vector<std::string> m_options;
    std::string m_out;
};

#endif  // ZO_TESTS_SUPPORT_SIM_PROCESS_H
