// A test must be able to start a program of this build through a pipe and in
// a pseudo-terminal, natively and under the cross build's emulator. The
// program started is this test binary, listing its own tests.
#include "child_program.h"

#include <fcntl.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "pty_session.h"

namespace {

const std::vector<std::string> kListSelf = {ZO_SELF_PATH, "--gtest_list_tests", "--gtest_filter=ChildProgram.*"};

TEST(ChildProgram, StartsThroughAPipe)
{
    int fds[2];
    ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
    const pid_t pid = SpawnChild(kListSelf, -1, fds[1]);
    close(fds[1]);
    std::string out;
    char buf[256];
    for (ssize_t n; (n = read(fds[0], buf, sizeof buf)) > 0;) {
        out.append(buf, static_cast<size_t>(n));
    }
    close(fds[0]);
    const int status = WaitChild(pid, 30000);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_NE(out.find("ChildProgram.\n  StartsThroughAPipe\n"), std::string::npos) << out;
}

TEST(ChildProgram, StartsInAPseudoTerminal)
{
    PtySession pty;
    ASSERT_TRUE(pty.Start(kListSelf[0], {kListSelf.begin() + 1, kListSelf.end()})) << pty.Error();
    int status = 0;
    ASSERT_TRUE(pty.WaitForExit(&status, 30000)) << pty.Screen();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    // The terminal turns each line feed the program writes into CR LF.
    EXPECT_NE(pty.Screen().find("ChildProgram.\r\n  StartsThroughAPipe\r\n"), std::string::npos) << pty.Screen();
}

TEST(PtySession, SilentOrMissingProgramFailsInTime)
{
    PtySession::Options host;
    host.hostProgram = true;
    PtySession silent;
    ASSERT_TRUE(silent.Start("/bin/sleep", {"30"}, host)) << silent.Error();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(silent.WaitFor("never", nullptr, 200));
    EXPECT_FALSE(silent.WaitForExit(nullptr, 100));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));

    PtySession missing;
    ASSERT_TRUE(missing.Start("/nonexistent/program", {}, host)) << missing.Error();
    int status = 0;
    ASSERT_TRUE(missing.WaitForExit(&status));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 127) << status;
    EXPECT_NE(std::string::npos, missing.Screen().find("exec failed"));
}

}  // namespace
