// The console's side of a test against the real zo_service_sim: starts the
// program as a second process, reads its output lines, and posts requests on
// the mapped page. Every wait has a deadline.
#ifndef ZO_TESTS_TOOLS_SERVICE_SIM_SIM_HARNESS_H
#define ZO_TESTS_TOOLS_SERVICE_SIM_SIM_HARNESS_H

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <binder/Parcel.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The simulator as a child process: standard output through a pipe,
// standard error into a file.
class SimProcess {
public:
    SimProcess(const std::vector<std::string>& args, const std::string& errPath)
    {
        std::vector<char*> argv{const_cast<char*>(ZO_SERVICE_SIM_PATH)};
        for (const std::string& a : args) {
            argv.push_back(const_cast<char*>(a.c_str()));
        }
        argv.push_back(nullptr);
        int out[2];
        if (pipe(out) != 0) {
            return;
        }
        m_pid = fork();
        if (m_pid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);  // never outlive a crashed test
            dup2(out[1], STDOUT_FILENO);
            const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(err, STDERR_FILENO);
            execv(argv[0], argv.data());
            _exit(127);
        }
        close(out[1]);
        m_out = out[0];
    }
    ~SimProcess()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        if (m_out >= 0) {
            close(m_out);
        }
    }

    // The next output line without its line end; "<timeout>" when none came in time.
    std::string ReadLine(milliseconds timeout = milliseconds(3000))
    {
        const auto deadline = Clock::now() + timeout;
        for (;;) {
            const size_t eol = m_buffer.find('\n');
            if (eol != std::string::npos) {
                std::string line = m_buffer.substr(0, eol);
                m_buffer.erase(0, eol + 1);
                return line;
            }
            const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now()).count();
            struct pollfd p = {m_out, POLLIN, 0};
            if (left <= 0 || poll(&p, 1, static_cast<int>(left)) <= 0) {
                return "<timeout>";
            }
            char chunk[512];
            const ssize_t n = read(m_out, chunk, sizeof chunk);
            if (n <= 0) {
                return "<timeout>";
            }
            m_buffer.append(chunk, static_cast<size_t>(n));
        }
    }

    // Sends sig and waits for the exit; the wait status, or -1 after the deadline.
    int Signal(int sig) { return kill(m_pid, sig) == 0 ? WaitExit() : -1; }

    int WaitExit(milliseconds timeout = milliseconds(3000))
    {
        const auto deadline = Clock::now() + timeout;
        while (Clock::now() < deadline) {
            int status = 0;
            if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
                m_pid = -1;
                return status;
            }
            std::this_thread::sleep_for(milliseconds(2));
        }
        return -1;
    }

private:
    pid_t m_pid = -1;
    int m_out = -1;
    std::string m_buffer;
};

// The page as the console maps it.
class ConsolePage {
public:
    // Waits until the simulator has made the file 4096 bytes long, then maps it.
    explicit ConsolePage(const std::string& path)
    {
        const auto deadline = Clock::now() + milliseconds(3000);
        struct stat st {};
        while ((stat(path.c_str(), &st) != 0 || st.st_size < 4096) && Clock::now() < deadline) {
            std::this_thread::sleep_for(milliseconds(2));
        }
        const int fd = open(path.c_str(), O_RDWR);
        if (fd >= 0 && st.st_size >= 4096) {
            void* base = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
            m_base = base == MAP_FAILED ? nullptr : static_cast<uint8_t*>(base);
        }
        if (fd >= 0) {
            close(fd);
        }
    }
    ~ConsolePage()
    {
        if (m_base != nullptr) {
            munmap(m_base, 4096);
        }
    }
    bool Mapped() const { return m_base != nullptr; }

    // Payload first, then size, then the flag (request set, reply clear).
    void PostBytes(const std::vector<uint8_t>& bytes, uint32_t size)
    {
        std::memcpy(m_base + 8, bytes.data(), bytes.size());
        std::memcpy(m_base + 4, &size, 4);
        __atomic_store_n(reinterpret_cast<uint32_t*>(m_base), 1u, __ATOMIC_RELEASE);
    }
    void Post(const android::Parcel& request)
    {
        PostBytes(std::vector<uint8_t>(request.data(), request.data() + request.dataSize()),
                  static_cast<uint32_t>(request.dataSize()));
    }

    uint32_t Flag() const { return __atomic_load_n(reinterpret_cast<const uint32_t*>(m_base), __ATOMIC_ACQUIRE); }
    uint32_t Size() const
    {
        uint32_t size = 0;
        std::memcpy(&size, m_base + 4, 4);
        return size;
    }

    // True once the reply bit is set, false after the deadline.
    bool WaitReply(milliseconds timeout = milliseconds(3000)) const
    {
        const auto deadline = Clock::now() + timeout;
        while ((Flag() & 2u) == 0) {
            if (Clock::now() >= deadline) {
                return false;
            }
            std::this_thread::sleep_for(milliseconds(1));
        }
        return true;
    }

    // The reply's bytes, by u32Size (cut to the page when it claims more).
    std::vector<uint8_t> Reply() const
    {
        const uint32_t n = Size() < 4088 ? Size() : 4088;
        return std::vector<uint8_t>(m_base + 8, m_base + 8 + n);
    }

private:
    uint8_t* m_base = nullptr;
};

#endif  // ZO_TESTS_TOOLS_SERVICE_SIM_SIM_HARNESS_H
