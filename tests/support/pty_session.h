// PtySession: runs a program on a fresh pseudo-terminal (forkpty) and talks to it like an engineer at a keyboard.
// The terminal translates output, so a "\n" the program writes arrives as "\r\n"; before the program enters raw
// mode the terminal also echoes what Write sends, so wait for the prompt first. Every wait has a time-out, so that
// a hung program fails the test instead of blocking it. WaitFor consumes the screen from the front; Screen() keeps
// all of it. The destructor kills and reaps the program. Link util.
#ifndef ZO_TESTS_SUPPORT_PTY_SESSION_H
#define ZO_TESTS_SUPPORT_PTY_SESSION_H

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>

#include <cerrno>
#include <string>
#include <vector>

#include "child_program.h"

// Outside the class: a default argument cannot use a nested class's member initializers.
struct PtySessionOptions {
    const struct termios* initialTermios = nullptr;  // null: the system's defaults
    std::string stdinPath;                           // when set, standard input is this file, not the terminal
    bool hangUpIgnored = false;                      // the program starts with SIGHUP ignored, as under nohup
    bool emulated = true;                            // false: one of the machine's own programs (see ExecChild)
};

class PtySession {
public:
    using Options = PtySessionOptions;

    ~PtySession()
    {
        WaitChild(m_pid, 0);  // kills and reaps it
        close(m_master);
    }

    // False when the terminal could not be made; a program that cannot be started ends with status 127.
    bool Start(const std::string& program, std::vector<std::string> args, const Options& options = {})
    {
        args.insert(args.begin(), program);
        m_pid = forkpty(&m_master, nullptr, options.initialTermios, nullptr);
        if (m_pid == 0) {
            // As from an engineer's shell: whatever ran the tests (nohup, say) may have set signals to be ignored.
            for (const int signo : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGTSTP}) {
                signal(signo, signo == SIGHUP && options.hangUpIgnored ? SIG_IGN : SIG_DFL);
            }
            const int in = options.stdinPath.empty() ? STDIN_FILENO : open(options.stdinPath.c_str(), O_RDONLY);
            if (in >= 0 && dup2(in, STDIN_FILENO) >= 0) {
                ExecChild(args, options.emulated);
            }
            _exit(127);
        }
        return m_pid > 0;
    }
    // Sends keys. It blocks while the terminal's input buffer (4 KB) is full: keep pastes shorter.
    bool Write(const std::string& s) { return write(m_master, s.data(), s.size()) == ssize_t(s.size()); }
    // Consumes the screen up to and including the first text (stored in *upTo); false on time-out or when the
    // terminal closed first.
    bool WaitFor(const std::string& text, std::string* upTo = nullptr, int timeoutMs = 5000)
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
    // True, with the waitpid() status, when the program ended within 5 s (else it is killed); its last output is
    // then on the screen, read up to the terminal's close. Once only.
    bool WaitForExit(int* status)
    {
        const auto deadline = Clock::now() + std::chrono::milliseconds(5000);
        while (MsLeft(deadline) > 0 && ReadSome(MsLeft(deadline))) {
        }
        *status = WaitChild(m_pid, MsLeft(deadline));
        m_pid = -1;
        return *status != -1;
    }
    // The terminal's settings as the program sees them, and changing them behind its back: 0 or -1.
    int GetAttr(struct termios* settings) const { return tcgetattr(m_master, settings); }
    int SetAttr(const struct termios& settings) { return tcsetattr(m_master, TCSANOW, &settings); }
    // The terminal's foreground process group: a shell's job, for one.
    pid_t ForegroundGroup() const { return tcgetpgrp(m_master); }

    const std::string& Screen() const { return m_screen; }
    pid_t Pid() const { return m_pid; }

    // The settings of a freshly opened terminal: a base for Options::initialTermios.
    static bool DefaultTermios(struct termios* settings)
    {
        int master = -1, slave = -1;
        const bool ok = openpty(&master, &slave, nullptr, nullptr, nullptr) == 0 && tcgetattr(slave, settings) == 0;
        close(slave);
        close(master);
        return ok;
    }

private:
    bool ReadSome(int timeoutMs)  // false on time-out or a closed terminal
    {
        struct pollfd pfd = {m_master, POLLIN, 0};
        if (m_closed || poll(&pfd, 1, timeoutMs) <= 0) {
            return false;
        }
        char buffer[4096];
        const ssize_t n = read(m_master, buffer, sizeof buffer);
        m_screen.append(buffer, n > 0 ? size_t(n) : 0);
        m_closed = n == 0 || (n < 0 && errno != EINTR);  // EIO once the program is gone
        return !m_closed;
    }

    pid_t m_pid = -1;
    int m_master = -1;
    bool m_closed = false;
    size_t m_consumed = 0;
    std::string m_screen;
};

#endif  // ZO_TESTS_SUPPORT_PTY_SESSION_H
