#include "pty_session.h"

#include "child_program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

int MsLeft(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

Clock::time_point After(int ms) { return Clock::now() + std::chrono::milliseconds(ms); }

}  // namespace

PtySession::~PtySession()
{
    if (m_pid > 0 && !m_reaped) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    if (m_master >= 0) {
        close(m_master);
    }
}

bool PtySession::Start(const std::string& program, const std::vector<std::string>& args, const Options& options)
{
    std::vector<std::string> words{program};
    words.insert(words.end(), args.begin(), args.end());
    int master = -1;
    const pid_t pid = m_pid > 0 ? -1 : forkpty(&master, nullptr, options.initialTermios, nullptr);
    if (pid < 0) {
        m_error = m_pid > 0 ? "session already started" : std::string("forkpty: ") + std::strerror(errno);
        return false;
    }
    if (pid == 0) {
        if (!options.stdinPath.empty()) {
            const int in = open(options.stdinPath.c_str(), O_RDONLY);
            if (in < 0 || dup2(in, STDIN_FILENO) < 0) {
                _exit(126);
            }
        }
        if (options.hostProgram) {
            std::vector<char*> argv;
            for (std::string& word : words) {
                argv.push_back(&word[0]);
            }
            argv.push_back(nullptr);
            execvp(argv[0], argv.data());
        } else {
            ExecChild(words);
        }
        static const char kMessage[] = "exec failed\n";
        (void)!write(STDOUT_FILENO, kMessage, sizeof kMessage - 1);
        _exit(127);
    }
    m_pid = pid;
    m_master = master;
    fcntl(m_master, F_SETFL, fcntl(m_master, F_GETFL) | O_NONBLOCK);
    return true;
}

bool PtySession::ReadSome(int timeoutMs)
{
    if (m_closed) {
        return false;
    }
    struct pollfd pfd = {m_master, POLLIN, 0};
    if (poll(&pfd, 1, timeoutMs) <= 0) {
        return false;
    }
    char buffer[4096];
    const ssize_t n = read(m_master, buffer, sizeof buffer);
    if (n > 0) {
        m_screen.append(buffer, static_cast<size_t>(n));
        return true;
    }
    if (n < 0 && (errno == EAGAIN || errno == EINTR)) {
        return true;
    }
    m_closed = true;  // EOF, or EIO once the program is gone
    return false;
}

bool PtySession::Write(const std::string& bytes, int timeoutMs)
{
    const auto deadline = After(timeoutMs);
    size_t sent = 0;
    while (sent < bytes.size()) {
        struct pollfd pfd = {m_master, POLLIN | POLLOUT, 0};
        if (m_master < 0 || poll(&pfd, 1, MsLeft(deadline)) <= 0) {
            return false;
        }
        if ((pfd.revents & POLLIN) != 0) {
            ReadSome(0);
        }
        if ((pfd.revents & POLLOUT) != 0) {
            const ssize_t n = write(m_master, bytes.data() + sent, bytes.size() - sent);
            if (n > 0) {
                sent += static_cast<size_t>(n);
            } else if (n < 0 && errno != EAGAIN && errno != EINTR) {
                return false;
            }
        }
        if ((pfd.revents & (POLLERR | POLLHUP)) != 0 && (pfd.revents & POLLOUT) == 0) {
            return false;
        }
    }
    return true;
}

bool PtySession::WaitFor(const std::string& text, std::string* upTo, int timeoutMs)
{
    const auto deadline = After(timeoutMs);
    for (;;) {
        const size_t at = m_screen.find(text, m_consumed);
        if (at != std::string::npos) {
            const size_t end = at + text.size();
            if (upTo != nullptr) {
                *upTo = m_screen.substr(m_consumed, end - m_consumed);
            }
            m_consumed = end;
            return true;
        }
        const int left = MsLeft(deadline);
        if (left == 0 || m_closed) {
            return false;
        }
        ReadSome(left);
    }
}

std::string PtySession::ReadQuiet(int quietMs, int timeoutMs)
{
    const auto deadline = After(timeoutMs);
    while (MsLeft(deadline) > 0 && ReadSome(std::min(quietMs, MsLeft(deadline)))) {
    }
    std::string rest = m_screen.substr(m_consumed);
    m_consumed = m_screen.size();
    return rest;
}

bool PtySession::WaitForExit(int* status, int timeoutMs)
{
    const auto deadline = After(timeoutMs);
    while (!m_reaped) {
        if (m_pid <= 0) {
            return false;
        }
        const pid_t done = waitpid(m_pid, &m_exitStatus, WNOHANG);
        if (done == m_pid) {
            m_reaped = true;
            break;
        }
        if (done < 0 || MsLeft(deadline) == 0) {
            return false;
        }
        if (!ReadSome(std::min(10, MsLeft(deadline)))) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    while (ReadSome(0)) {
    }
    if (status != nullptr) {
        *status = m_exitStatus;
    }
    return true;
}

void PtySession::CloseTerminal()
{
    if (m_master >= 0) {
        close(m_master);
        m_master = -1;
        m_closed = true;
    }
}

int PtySession::GetAttr(struct termios* settings) const { return tcgetattr(m_master, settings); }

int PtySession::SetAttr(const struct termios& settings) { return tcsetattr(m_master, TCSANOW, &settings); }

bool PtySession::DefaultTermios(struct termios* settings)
{
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) {
        return false;
    }
    const bool ok = tcgetattr(slave, settings) == 0;
    close(slave);
    close(master);
    return ok;
}
