// PtySession: runs a program on a fresh pseudo-terminal (forkpty) and talks to it like an engineer at a keyboard.
// The terminal translates output, so a "\n" the program writes arrives as "\r\n"; before the program enters raw
// mode the terminal also echoes what Write sends, so wait for the prompt first. Every wait has a time-out, so that
// a hung program fails the test instead of blocking it. WaitFor consumes the screen from the front; Screen() keeps
// all of it. The destructor kills and reaps the program. Build tests/support/pty_session.cc in and link util.
#ifndef ZO_TESTS_SUPPORT_PTY_SESSION_H
#define ZO_TESTS_SUPPORT_PTY_SESSION_H

#include <sys/types.h>
#include <termios.h>
#include <unistd.h>

#include <string>
#include <vector>

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

    PtySession() = default;
    ~PtySession();
    PtySession(const PtySession&) = delete;
    PtySession& operator=(const PtySession&) = delete;

    // False when the terminal could not be made; a program that cannot be started ends with status 127.
    bool Start(const std::string& program, const std::vector<std::string>& args, const Options& options = {});
    // Sends keys. It blocks while the terminal's input buffer (4 KB) is full: keep pastes shorter.
    bool Write(const std::string& bytes);
    // Consumes the screen up to and including the first text (stored in *upTo); false on time-out or when the
    // terminal closed first.
    bool WaitFor(const std::string& text, std::string* upTo = nullptr, int timeoutMs = 5000);
    // True, with the waitpid() status, when the program ended within 5 s (else it is killed); its last output is
    // then on the screen. Once only.
    bool WaitForExit(int* status);
    // The terminal's settings as the program sees them, and changing them behind its back: 0 or -1.
    int GetAttr(struct termios* settings) const { return tcgetattr(m_master, settings); }
    int SetAttr(const struct termios& settings) { return tcsetattr(m_master, TCSANOW, &settings); }

    // The terminal's foreground process group: a shell's job, for one.
    pid_t ForegroundGroup() const { return tcgetpgrp(m_master); }

    const std::string& Screen() const { return m_screen; }
    pid_t Pid() const { return m_pid; }

    // The settings of a freshly opened terminal: a base for Options::initialTermios.
    static bool DefaultTermios(struct termios* settings);

private:
    bool ReadSome(int timeoutMs);  // false on time-out or a closed terminal

    pid_t m_pid = -1;
    int m_master = -1;
    bool m_closed = false;
    size_t m_consumed = 0;
    std::string m_screen;
};

#endif  // ZO_TESTS_SUPPORT_PTY_SESSION_H
