// Starting the project's own programs from a test. In a cross build they run under the emulator whose command line
// CTest passes in ZO_TEST_EMULATOR (the build machines have no binfmt handler); natively it is unset.
#ifndef ZO_TESTS_SUPPORT_CHILD_PROGRAM_H
#define ZO_TESTS_SUPPORT_CHILD_PROGRAM_H

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using Clock = std::chrono::steady_clock;

// Polls cond every millisecond; false when the deadline passes first.
template <typename Cond>
bool WaitFor(Cond cond, std::chrono::milliseconds timeout = std::chrono::milliseconds(3000))
{
    const auto deadline = Clock::now() + timeout;
    for (; !cond(); std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
        if (Clock::now() >= deadline) {
            return false;
        }
    }
    return true;
}

// Milliseconds until the deadline, 0 once it has passed.
inline int MsLeft(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return int(std::max<long long>(0, left));
}

// For a forked child: replaces the process with the program, behind the emulator's words if any (unless it is one of
// the machine's own programs, a shell say: not emulated). Returns only if exec failed.
inline void ExecChild(const std::vector<std::string>& argv, bool emulated = true)
{
    const char* emulator = emulated ? std::getenv("ZO_TEST_EMULATOR") : nullptr;
    std::istringstream words(emulator != nullptr ? emulator : "");
    std::vector<std::string> command{std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
    command.insert(command.end(), argv.begin(), argv.end());
    std::vector<char*> args;
    for (std::string& word : command) {
        args.push_back(&word[0]);
    }
    args.push_back(nullptr);
    execvp(args[0], args.data());
}

// For SpawnChild: the program starts with this descriptor closed.
constexpr int kClosedFd = -2;

// Starts the program with in, out and err (when not -1) as its descriptors 0, 1 and 2; it is killed if the test
// dies. Pass descriptors opened with O_CLOEXEC, so that the child holds no other copy (a pipe would never end).
inline pid_t SpawnChild(const std::vector<std::string>& argv, int in = -1, int out = -1, int err = -1)
{
    const pid_t pid = fork();
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int fds[] = {in, out, err};
        for (int target = 0; target < 3; ++target) {
            if (fds[target] == kClosedFd) {
                close(target);
            } else if (fds[target] >= 0 && dup2(fds[target], target) < 0) {
                _exit(126);
            }
        }
        ExecChild(argv);
        _exit(127);
    }
    return pid;
}

// The child's wait status, or -1 (and the child killed) when it has not ended within timeoutMs.
inline int WaitChild(pid_t pid, int timeoutMs = 10000)
{
    int status = -1;
    const auto ended = [&] { return waitpid(pid, &status, WNOHANG) != 0; };
    if (pid > 0 && !WaitFor(ended, std::chrono::milliseconds(timeoutMs))) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        return -1;
    }
    return status;
}

// A file for a child's output, emptied first.
inline int OpenForChild(const std::string& path)
{
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

// Runs the program to its end with descriptors 0, 1 and 2 on these files (the first read, the others written
// afresh; an empty name leaves the descriptor closed); its wait status.
inline int RunChild(const std::vector<std::string>& argv, const std::vector<std::string>& files)
{
    int fds[3];
    for (int i = 0; i < 3; ++i) {
        const char* file = files[i].c_str();
        fds[i] = files[i].empty() ? kClosedFd : i == 0 ? open(file, O_RDONLY | O_CLOEXEC) : OpenForChild(file);
    }
    const int status = WaitChild(SpawnChild(argv, fds[0], fds[1], fds[2]));
    for (const int fd : fds) {
        close(fd);
    }
    return status;
}

#endif  // ZO_TESTS_SUPPORT_CHILD_PROGRAM_H
