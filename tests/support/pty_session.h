// PtySession: runs a program on a fresh pseudo-terminal (forkpty) and talks to
// it like an engineer at a keyboard. The terminal translates output, so a "\n"
// the program writes arrives as "\r\n"; before the program enters raw mode the
// terminal also echoes what Write sends, so wait for the prompt first.
//
// Every read has a time-out, so a hung program fails the test instead of
// blocking it. WaitFor consumes the transcript from the front; Screen() keeps
// all of it for failure messages. The destructor kills and reaps the child.
// One session belongs to one thread; sessions are independent.
//
// Use from a test target: add tests/support/pty_session.cc to the SOURCES and
// link util.
#ifndef ZO_TESTS_SUPPORT_PTY_SESSION_H
#define ZO_TESTS_SUPPORT_PTY_SESSION_H

#include <sys/types.h>
#include <termios.h>

#include <string>
#include <vector>

struct PtySessionOptions {
    const struct termios* initialTermios = nullptr;  // null: the system's defaults
    std::string stdinPath;  // when set, standard input is this file instead of the terminal
    bool hostProgram = false;  // a host program (/bin/sleep) starts without the cross build's emulator
};

class PtySession {
public:
    static constexpr int kDefaultTimeoutMs = 5000;
    using Options = PtySessionOptions;

    PtySession() = default;
    ~PtySession();
    PtySession(const PtySession&) = delete;
    PtySession& operator=(const PtySession&) = delete;

    // False, with Error() set, when the terminal or process could not be made.
    // A program that cannot be executed writes "exec failed" and exits with 127.
    bool Start(const std::string& program, const std::vector<std::string>& args, const Options& options = Options());
    // Sends keys, collecting screen output meanwhile so long pastes cannot dead-lock.
    bool Write(const std::string& bytes, int timeoutMs = kDefaultTimeoutMs);
    // Consumes the output up to and including the first text (stored in *upTo);
    // false, consuming nothing, on time-out or when the terminal closed.
    bool WaitFor(const std::string& text, std::string* upTo = nullptr, int timeoutMs = kDefaultTimeoutMs);
    // Reads until quietMs pass without output (timeoutMs in all); consumes and returns the rest.
    std::string ReadQuiet(int quietMs = 100, int timeoutMs = kDefaultTimeoutMs);
    // True with the waitpid() status when the program ended within timeoutMs.
    bool WaitForExit(int* status, int timeoutMs = kDefaultTimeoutMs);
    // The program sees a hang-up.
    void CloseTerminal();
    // The terminal's settings as the program sees them, and changing them behind its back. 0 or -1.
    int GetAttr(struct termios* settings) const;
    int SetAttr(const struct termios& settings);

    const std::string& Screen() const { return m_screen; }
    const std::string& Error() const { return m_error; }
    pid_t Pid() const { return m_pid; }
    int MasterFd() const { return m_master; }

    // The settings of a freshly opened terminal: a base for Options::initialTermios.
    static bool DefaultTermios(struct termios* settings);

private:
    bool ReadSome(int timeoutMs);  // false on time-out or a closed terminal

    pid_t m_pid = -1;
    int m_master = -1;
    bool m_closed = false;
    int m_exitStatus = 0;
    bool m_reaped = false;
    std::string m_screen;
    size_t m_consumed = 0;
    std::string m_error;
};

#endif  // ZO_TESTS_SUPPORT_PTY_SESSION_H
