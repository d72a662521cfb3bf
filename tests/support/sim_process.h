// The real zo_service_sim as a second process on the directory `dir`, which holds the catalogue a test writes. Start
// waits until the simulator has made the page and maps it as the console does; ReadLine takes its standard output
// (dir/sim.out) line by line, its standard error goes to dir/sim.err. It is killed when the object goes or the next
// one starts. Every wait has a deadline.
#ifndef ZO_TESTS_SUPPORT_SIM_PROCESS_H
#define ZO_TESTS_SUPPORT_SIM_PROCESS_H

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
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
    bool Use(const std::vector<std::string>& options) { return (m_page && m_options == options) || Start(options); }
    // The wait status of a whole run with exactly these arguments.
    int Run(const std::vector<std::string>& args) { return Spawn(args), Signal(0); }
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
        std::string out;
        size_t eol = std::string::npos;
        const auto lineEnds = [&] {
            return (eol = (out = ReadFile(dir.File("sim.out"))).find('\n', m_read)) != std::string::npos;
        };
        if (!WaitFor(lineEnds, timeout)) {
            return "<timeout>";
        }
        const std::string line = out.substr(m_read, eol - m_read);
        m_read = eol + 1;
        return line;
    }
    std::string Errors() const { return ReadFile(dir.File("sim.err")); }

    // The console's side of the page: posts a request (hex words) as the console does and returns the line the
    // simulator prints for it.
    void* Page() const { return m_page; }
    std::string Ask(const std::string& hex)
    {
        const std::vector<uint8_t> request = FromHex(hex);
        std::memcpy(ShmPayloadOf(m_page), request.data(), request.size());
        ShmStoreSize(m_page, uint32_t(request.size()));
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
        const int out = OpenForChild(dir.File("sim.out")), err = OpenForChild(dir.File("sim.err"));
        m_pid = SpawnChild(args, -1, out, err);
        close(out);
        close(err);
    }
    void Stop()
    {
        WaitChild(m_pid, 0);  // kills and reaps it
        if (m_page != nullptr) {
            munmap(m_page, SHM_SIZE);
        }
        m_pid = -1;
        m_page = nullptr;
        m_read = 0;
    }

    pid_t m_pid = -1;
    void* m_page = nullptr;
    std::vector<std::string> m_options;
    size_t m_read = 0;  // what ReadLine has taken of standard output
};
#endif  // ZO_TESTS_SUPPORT_SIM_PROCESS_H
