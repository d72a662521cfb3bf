// Running the line editor's driver on a terminal, a file or a pipe, and the
// screen bytes the editor writes.
#ifndef ZO_TESTS_LINE_EDITOR_DRIVER_RUN_H
#define ZO_TESTS_LINE_EDITOR_DRIVER_RUN_H

#include <fcntl.h>
#include <signal.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "child_program.h"
#include "pty_session.h"
#include "temp_dir.h"

// "\b \b": the editor erasing n bytes left of the cursor.
inline std::string Erased(size_t n)
{
    std::string out;
    for (size_t i = 0; i < n; ++i) {
        out += "\b \b";
    }
    return out;
}

// A terminal after Enter on line: the editor's "\n\r", the framed line and the next prompt.
inline std::string EnteredOnTerminal(const std::string& line)
{
    return "\r\n\r<<" + line + ">>\r\nTV $";
}

// Starts the driver on a fresh terminal and waits for its first prompt.
inline bool StartDriver(PtySession& pty, const std::vector<std::string>& args,
                        const PtySession::Options& options = PtySession::Options())
{
    return pty.Start(LINE_EDITOR_DRIVER, args, options) && pty.WaitFor("TV $");
}

// Types keys and returns the screen up to and including the next until.
inline std::string Type(PtySession& pty, const std::string& keys, const std::string& until = "TV $")
{
    std::string screen;
    return pty.Write(keys) && pty.WaitFor(until, &screen) ? screen : "<timed out> " + pty.Screen();
}

struct DriverRun {
    int status = -1;     // waitpid() status, -1 when it did not end in time
    std::string output;  // standard output and error, byte for byte
};

// Runs the driver with standard input from stdinPath, or from a pipe fed with
// pipeInput when stdinPath is empty.
inline DriverRun RunDriverOn(const std::string& stdinPath, const std::string& pipeInput,
                             const std::vector<std::string>& args)
{
    TempDir dir;
    std::vector<std::string> argv = {LINE_EDITOR_DRIVER};
    argv.insert(argv.end(), args.begin(), args.end());
    int fds[2] = {-1, -1};
    if (stdinPath.empty() ? pipe2(fds, O_CLOEXEC) != 0 : (fds[0] = open(stdinPath.c_str(), O_RDONLY | O_CLOEXEC)) < 0) {
        return DriverRun();
    }
    const int out = open(dir.File("screen").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const pid_t pid = SpawnChild(argv, fds[0], out, out);
    close(fds[0]);
    close(out);
    if (fds[1] >= 0) {
        signal(SIGPIPE, SIG_IGN);  // a driver that died early must fail the test, not kill it
        for (size_t sent = 0; sent < pipeInput.size();) {
            const ssize_t n = write(fds[1], pipeInput.data() + sent, pipeInput.size() - sent);
            if (n <= 0) {
                break;
            }
            sent += static_cast<size_t>(n);
        }
        close(fds[1]);
    }
    DriverRun run;
    run.status = WaitChild(pid, 20000);
    std::ifstream screen(dir.File("screen"), std::ios::binary);
    std::ostringstream bytes;
    bytes << screen.rdbuf();
    run.output = bytes.str();
    return run;
}

// Runs the driver on a file holding input.
inline DriverRun RunDriver(const std::string& input, const std::vector<std::string>& args = {})
{
    TempDir dir;
    return RunDriverOn(dir.Write("keys", input), "", args);
}

inline bool EndedNormally(const DriverRun& run)
{
    return run.status != -1 && WIFEXITED(run.status) && WEXITSTATUS(run.status) == 0;
}

#endif  // ZO_TESTS_LINE_EDITOR_DRIVER_RUN_H
