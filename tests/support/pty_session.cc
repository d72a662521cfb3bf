#include "pty_session.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <chrono>

#include "child_program.h"

namespace {

using Clock = std::chrono::steady_clock;

int MsLeft(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

}  // namespace

PtySession::~PtySession()
{
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    close(m_master);
}

bool PtySession::Start(const std::string& program, const std::vector<std::string>& args, const Options& options)
{
    std::vector<std::string> words{program};
    words.insert(words.end(), args.begin(), args.end());
    m_pid = forkpty(&m_master, nullptr, options.initialTermios, nullptr);
    if (m_pid == 0) {
        // As from an engineer's shell: whatever ran the tests (nohup, say) may have set signals to be ignored.
        for (const int signo : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGTSTP}) {
            signal(signo, signo == SIGHUP && options.hangUpIgnored ? SIG_IGN : SIG_DFL);
        }
        const int in = options.stdinPath.empty() ? STDIN_FILENO : open(options.stdinPath.c_str(), O_RDONLY);
        if (in >= 0 && dup2(in, STDIN_FILENO) >= 0) {
            ExecChild(words, options.emulated);
        }
        _exit(127);
    }
    return m_pid > 0;
}

bool PtySession::ReadSome(int timeoutMs)
{
    struct pollfd pfd = {m_master, POLLIN, 0};
    if (m_closed || poll(&pfd, 1, timeoutMs) <= 0) {
        return false;
    }
    char buffer[4096];
    const ssize_t n = read(m_master, buffer, sizeof buffer);
    m_screen.append(buffer, n > 0 ? static_cast<size_t>(n) : 0);
    m_closed = n == 0 || (n < 0 && errno != EINTR);  // EIO once the program is gone
    return !m_closed;
}

bool PtySession::Write(const std::string& bytes)
{
    return write(m_master, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

bool PtySession::WaitFor(const std::string& text, std::string* upTo, int timeoutMs)
{
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    size_t at;
    while ((at = m_screen.find(text, m_consumed)) == std::string::npos) {
        if (!ReadSome(MsLeft(deadline))) {
            return false;
        }
    }
    if (upTo != nullptr) {
        *upTo = m_screen.substr(m_consumed, at + text.size() - m_consumed);
    }
    m_consumed = at + text.size();
    return true;
}

// The terminal closes when the program ends: read up to then, and reap it.
bool PtySession::WaitForExit(int* status)
{
    const auto deadline = Clock::now() + std::chrono::milliseconds(5000);
    while (MsLeft(deadline) > 0 && ReadSome(MsLeft(deadline))) {
    }
    *status = WaitChild(m_pid, MsLeft(deadline));  // kills the program when it has not ended in time
    m_pid = -1;
    return *status != -1;
}

bool PtySession::DefaultTermios(struct termios* settings)
{
    int master = -1;
    int slave = -1;
    const bool ok = openpty(&master, &slave, nullptr, nullptr, nullptr) == 0 && tcgetattr(slave, settings) == 0;
    close(slave);
    close(master);
    return ok;
}
