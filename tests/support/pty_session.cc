#include "pty_session.h"

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

#include "child_program.h"

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point After(int ms) { return Clock::now() + std::chrono::milliseconds(ms); }

int MsLeft(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

}  // namespace

PtySession::~PtySession()
{
    if (m_pid > 0 && !m_reaped) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    CloseTerminal();
}

bool PtySession::Start(const std::string& program, const std::vector<std::string>& args, const Options& options)
{
    std::vector<std::string> words{program};
    words.insert(words.end(), args.begin(), args.end());
    const pid_t pid = m_pid > 0 ? -1 : forkpty(&m_master, nullptr, options.initialTermios, nullptr);
    if (pid < 0) {
        m_error = m_pid > 0 ? "session already started" : std::string("forkpty: ") + std::strerror(errno);
        return false;
    }
    if (pid == 0) {
        const int in = options.stdinPath.empty() ? STDIN_FILENO : open(options.stdinPath.c_str(), O_RDONLY);
        if (in < 0 || dup2(in, STDIN_FILENO) < 0) {
            _exit(126);
        }
        if (options.hostProgram) {
            unsetenv("ZO_TEST_EMULATOR");
        }
        ExecChild(words);
        static const char kMessage[] = "exec failed\n";
        (void)!write(STDOUT_FILENO, kMessage, sizeof kMessage - 1);
        _exit(127);
    }
    m_pid = pid;
    fcntl(m_master, F_SETFL, fcntl(m_master, F_GETFL) | O_NONBLOCK);
    return true;
}

bool PtySession::ReadSome(int timeoutMs)
{
    struct pollfd pfd = {m_master, POLLIN, 0};
    if (m_closed || poll(&pfd, 1, timeoutMs) <= 0) {
        return false;
    }
    char buffer[4096];
    const ssize_t n = read(m_master, buffer, sizeof buffer);
    if (n > 0) {
        m_screen.append(buffer, static_cast<size_t>(n));
    }
    m_closed = n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR);  // EIO once the program is gone
    return !m_closed;
}

bool PtySession::Write(const std::string& bytes, int timeoutMs)
{
    const auto deadline = After(timeoutMs);
    for (size_t sent = 0; sent < bytes.size();) {
        struct pollfd pfd = {m_master, POLLIN | POLLOUT, 0};
        if (m_master < 0 || poll(&pfd, 1, MsLeft(deadline)) <= 0 || (pfd.revents & POLLOUT) == 0) {
            if ((pfd.revents & POLLIN) != 0 && ReadSome(0)) {
                continue;
            }
            return false;
        }
        ReadSome(0);
        const ssize_t n = write(m_master, bytes.data() + sent, bytes.size() - sent);
        if (n < 0 && errno != EAGAIN && errno != EINTR) {
            return false;
        }
        sent += n > 0 ? static_cast<size_t>(n) : 0;
    }
    return true;
}

bool PtySession::WaitFor(const std::string& text, std::string* upTo, int timeoutMs)
{
    const auto deadline = After(timeoutMs);
    size_t at;
    while ((at = m_screen.find(text, m_consumed)) == std::string::npos) {
        if (MsLeft(deadline) == 0 || m_closed) {
            return false;
        }
        ReadSome(MsLeft(deadline));
    }
    if (upTo != nullptr) {
        *upTo = m_screen.substr(m_consumed, at + text.size() - m_consumed);
    }
    m_consumed = at + text.size();
    return true;
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
    while (!m_reaped && m_pid > 0) {
        const pid_t done = waitpid(m_pid, &m_exitStatus, WNOHANG);
        m_reaped = done == m_pid;
        if (done < 0 || (!m_reaped && MsLeft(deadline) == 0)) {
            return false;
        }
        if (!m_reaped && !ReadSome(std::min(10, MsLeft(deadline)))) {
            poll(nullptr, 0, 2);  // a closed terminal: keep from spinning
        }
    }
    while (ReadSome(0)) {
    }
    if (status != nullptr) {
        *status = m_exitStatus;
    }
    return m_reaped;
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
