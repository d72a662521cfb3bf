// A test must be able to start a program of this build, through a pipe and in
// a pseudo-terminal, natively and under the cross build's emulator. The
// program started is this test binary itself, listing its own tests.
#include "child_program.h"

#include <string>

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const std::vector<std::string> kListSelf = {ZO_SELF_PATH, "--gtest_list_tests", "--gtest_filter=ChildProgram.*"};

// Everything fd delivers until end of file or error, waiting at most 30 s for each read.
std::string ReadAll(int fd)
{
    std::string out;
    char buf[256];
    pollfd pfd{fd, POLLIN, 0};
    while (poll(&pfd, 1, 30000) > 0) {
        const ssize_t n = read(fd, buf, sizeof buf);
        if (n <= 0) {
            break;  // a pseudo-terminal reports the child's exit as EIO
        }
        out.append(buf, static_cast<size_t>(n));
    }
    return out;
}

int ExitCode(pid_t pid)
{
    int status = 0;
    if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

TEST(ChildProgram, StartsThroughAPipe)
{
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        dup2(fds[1], STDOUT_FILENO);
        ExecChild(kListSelf);
        _exit(127);
    }
    close(fds[1]);
    const std::string out = ReadAll(fds[0]);
    close(fds[0]);
    EXPECT_EQ(ExitCode(pid), 0);
    EXPECT_NE(out.find("ChildProgram.\n  StartsThroughAPipe\n"), std::string::npos) << out;
}

TEST(ChildProgram, StartsInAPseudoTerminal)
{
    int master = -1;
    const pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        ExecChild(kListSelf);
        _exit(127);
    }
    const std::string out = ReadAll(master);
    close(master);
    EXPECT_EQ(ExitCode(pid), 0);
    // The terminal turns each line feed the program writes into CR LF.
    EXPECT_NE(out.find("ChildProgram.\r\n  StartsThroughAPipe\r\n"), std::string::npos) << out;
}

}  // namespace
