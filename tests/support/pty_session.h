// PtySession: runs a program on a fresh pseudo-terminal and talks to it like
// an engineer at a keyboard.
//
// Start forks the program with forkpty(): the child's standard input, output
// and error are the terminal's slave side and the terminal is its controlling
// terminal; the session keeps the master side. Write sends keys (bytes as a
// keyboard would), the Wait and Read calls collect what the program writes to
// the screen. Output translation is the terminal's: a "\n" the program writes
// normally arrives as "\r\n". Before the program puts the terminal into raw
// mode the terminal also echoes what Write sends, so wait for the prompt first.
//
// Every read has a time-out: a program that hangs or stays silent makes a call
// return false instead of blocking the test. The whole screen transcript is
// kept (Screen) for failure messages; WaitFor consumes it from the front, so a
// test can check the output piece by piece:
//
//     PtySession pty;
//     ASSERT_TRUE(pty.Start(program, {"arg"})) << pty.Error();
//     ASSERT_TRUE(pty.WaitFor("TV $")) << pty.Screen();
//     ASSERT_TRUE(pty.Write("help\n"));
//     std::string reply;
//     ASSERT_TRUE(pty.WaitFor("TV $", &reply)) << pty.Screen();
//     EXPECT_EQ("help\r\n...TV $", reply);
//
// The destructor kills (SIGKILL) and reaps a child that is still running.
// One session belongs to one thread. Sessions are independent, so tests using
// them can run in parallel.
//
// Use from a test target: add tests/support/pty_session.cc to the SOURCES, the
// include directory ${CMAKE_SOURCE_DIR}/tests/support, and link util (forkpty
// lives there on older C libraries).
#ifndef ZO_TESTS_SUPPORT_PTY_SESSION_H
#define ZO_TESTS_SUPPORT_PTY_SESSION_H

#include <sys/types.h>
#include <termios.h>

#include <string>
#include <vector>

// How PtySession::Start sets up the program's terminal.
struct PtySessionOptions {
    // Settings of the terminal before the program starts; the system's
    // defaults when null.
    const struct termios* initialTermios = nullptr;
    // When set, the program's standard input is this file instead of the
    // terminal (its output and controlling terminal stay the terminal).
    std::string stdinPath;
    // A program of the host system (such as /bin/sleep) starts directly; the
    // project's own programs start under the cross build's emulator, if any.
    bool hostProgram = false;
};

class PtySession {
public:
    static constexpr int kDefaultTimeoutMs = 5000;

    using Options = PtySessionOptions;

    PtySession() = default;
    ~PtySession();
    PtySession(const PtySession&) = delete;
    PtySession& operator=(const PtySession&) = delete;

    // Starts program (a path) with args (argv[1]...). False, with Error() set,
    // when the terminal or the process could not be made or a session was
    // already started. A program that cannot be executed exits with status 127
    // after writing "exec failed" to the screen.
    bool Start(const std::string& program, const std::vector<std::string>& args, const Options& options = Options());

    // Sends bytes to the program's input. Screen output arriving meanwhile is
    // collected, so long pastes cannot dead-lock against a full screen buffer.
    // False when not all bytes were taken within timeoutMs.
    bool Write(const std::string& bytes, int timeoutMs = kDefaultTimeoutMs);

    // Waits until the unconsumed screen output contains text. On success
    // consumes everything up to and including the first occurrence and, when
    // upTo is given, stores that consumed piece there. False (nothing consumed)
    // when text has not appeared within timeoutMs or the terminal closed first.
    bool WaitFor(const std::string& text, std::string* upTo = nullptr, int timeoutMs = kDefaultTimeoutMs);

    // Collects screen output for quietMs after the last byte arrived (bounded
    // by timeoutMs in all), then consumes and returns everything unconsumed.
    // For checking that a key wrote nothing, or reading a tail of unknown end.
    std::string ReadQuiet(int quietMs = 100, int timeoutMs = kDefaultTimeoutMs);

    // Waits for the program to end, collecting its output meanwhile. True with
    // the waitpid() status in *status when it ended within timeoutMs.
    bool WaitForExit(int* status, int timeoutMs = kDefaultTimeoutMs);

    // Closes the master side: the program sees a hang-up and reads fail.
    void CloseTerminal();

    // The terminal's current settings as the program sees them (tcgetattr on
    // the master, which Linux answers with the slave's settings). 0 or -1.
    int GetAttr(struct termios* settings) const;
    // Changes the terminal's settings behind the program's back. 0 or -1.
    int SetAttr(const struct termios& settings);

    // Everything the program has written to the screen so far.
    const std::string& Screen() const { return m_screen; }
    const std::string& Error() const { return m_error; }
    pid_t Pid() const { return m_pid; }
    int MasterFd() const { return m_master; }

    // The settings of a freshly opened terminal on this system: a base for
    // Options::initialTermios. False when no terminal could be opened.
    static bool DefaultTermios(struct termios* settings);

private:
    // Reads whatever arrives within timeoutMs into m_screen; false on time-out
    // or when the terminal is closed (EOF or EIO once the program is gone).
    bool ReadSome(int timeoutMs);

    pid_t m_pid = -1;
    int m_master = -1;
    bool m_closed = false;     // the program's side has gone away
    int m_exitStatus = 0;      // valid once m_pid is reaped
    bool m_reaped = false;
    std::string m_screen;      // every byte read from the master
    size_t m_consumed = 0;     // bytes of m_screen already handed to the test
    std::string m_error;
};

#endif  // ZO_TESTS_SUPPORT_PTY_SESSION_H
