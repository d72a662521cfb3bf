// Helpers shared by the line editor's tests: running the driver program on a
// file or a pipe instead of a terminal, and the screen bytes the editor writes.
#ifndef ZO_TESTS_LINE_EDITOR_DRIVER_RUN_H
#define ZO_TESTS_LINE_EDITOR_DRIVER_RUN_H

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
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

// What a terminal shows after Enter on line: the editor's "\n\r" and the
// driver's framed line, each "\n" turned into "\r\n", then the next prompt.
inline std::string EnteredOnTerminal(const std::string& line)
{
    return "\r\n\r<<" + line + ">>\r\nTV $";
}

// Starts the driver on a fresh terminal and waits for its first prompt.
inline bool StartDriver(PtySession& pty, const std::vector<std::string>& args,
                        const PtySession::Options& options = PtySession::Options(),
                        const char* program = LINE_EDITOR_DRIVER)
{
    return pty.Start(program, args, options) && pty.WaitFor("TV $");
}

struct DriverRun {
    bool finished = false;  // ended on its own within the time-out
    int status = -1;        // waitpid() status
    std::string output;     // standard output and error, byte for byte
};

// Runs the driver with standard input taken from stdinPath, or from a pipe
// fed with pipeInput when stdinPath is empty; standard output goes to a file.
inline DriverRun RunDriverOn(const std::string& stdinPath, const std::string& pipeInput,
                             const std::vector<std::string>& args, int timeoutMs = 20000)
{
    TempDir dir;
    const std::string outPath = dir.File("screen");
    std::vector<std::string> words = {LINE_EDITOR_DRIVER};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(&word[0]);
    }
    argv.push_back(nullptr);

    int fds[2] = {-1, -1};
    if (stdinPath.empty() && pipe(fds) != 0) {
        return DriverRun();
    }
    const pid_t pid = fork();
    if (pid == 0) {
        const int in = stdinPath.empty() ? fds[0] : open(stdinPath.c_str(), O_RDONLY);
        const int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (in < 0 || out < 0 || dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(out, 2) < 0) {
            _exit(126);
        }
        if (stdinPath.empty()) {
            close(fds[1]);
        }
        ExecChild(std::vector<std::string>(argv.begin(), argv.end() - 1));
        _exit(127);
    }
    DriverRun run;
    if (stdinPath.empty()) {
        close(fds[0]);
        signal(SIGPIPE, SIG_IGN);  // a driver that died early must fail the test, not kill it
        // The driver writes only to its file, so it always drains the pipe.
        size_t sent = 0;
        while (pid > 0 && sent < pipeInput.size()) {
            const ssize_t n = write(fds[1], pipeInput.data() + sent, pipeInput.size() - sent);
            if (n <= 0) {
                break;
            }
            sent += static_cast<size_t>(n);
        }
        close(fds[1]);
    }
    if (pid < 0) {
        return run;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (waitpid(pid, &run.status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, &run.status, 0);
            return run;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    run.finished = true;
    std::ifstream screen(outPath, std::ios::binary);
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
    return run.finished && WIFEXITED(run.status) && WEXITSTATUS(run.status) == 0;
}

#endif  // ZO_TESTS_LINE_EDITOR_DRIVER_RUN_H
