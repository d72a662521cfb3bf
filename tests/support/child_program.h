// Starting the project's own programs from a test. In a cross build they must
// run under the test's emulator (no binfmt handler on the build machines);
// CTest passes its command line in ZO_TEST_EMULATOR, unset in a native build.
#ifndef ZO_TESTS_SUPPORT_CHILD_PROGRAM_H
#define ZO_TESTS_SUPPORT_CHILD_PROGRAM_H

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

// The emulator's words, if any, in front of argv.
inline std::vector<std::string> ChildCommand(const std::vector<std::string>& argv)
{
    std::vector<std::string> command;
    if (const char* emulator = std::getenv("ZO_TEST_EMULATOR")) {
        std::istringstream words(emulator);
        for (std::string word; words >> word;) {
            command.push_back(word);
        }
    }
    command.insert(command.end(), argv.begin(), argv.end());
    return command;
}

// For a forked child: replaces the process with the program. Returns only if exec failed.
inline void ExecChild(const std::vector<std::string>& argv)
{
    const std::vector<std::string> command = ChildCommand(argv);
    std::vector<char*> args;
    for (const std::string& word : command) {
        args.push_back(const_cast<char*>(word.c_str()));
    }
    args.push_back(nullptr);
    execvp(args[0], args.data());
}

// Starts the program with in, out and err (when not -1) as its descriptors 0, 1
// and 2; it is killed if the test dies. Pass descriptors opened with O_CLOEXEC
// so that the child holds no other copy (a pipe's writer would never see EOF).
inline pid_t SpawnChild(const std::vector<std::string>& argv, int in = -1, int out = -1, int err = -1)
{
    const pid_t pid = fork();
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int fds[] = {in, out, err};
        for (int target = 0; target < 3; ++target) {
            if (fds[target] >= 0 && dup2(fds[target], target) < 0) {
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
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    int status = -1;
    while (pid > 0 && waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return status;
}

#endif  // ZO_TESTS_SUPPORT_CHILD_PROGRAM_H
