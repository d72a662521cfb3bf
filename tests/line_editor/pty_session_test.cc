// The terminal harness itself: a silent or missing program fails in time.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <chrono>

#include "pty_session.h"

TEST(PtySession, WaitForTimesOutOnASilentProgram)
{
    PtySession pty;
    PtySession::Options host;
    host.hostProgram = true;
    ASSERT_TRUE(pty.Start("/bin/sleep", {"30"}, host)) << pty.Error();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(pty.WaitFor("never", nullptr, 200));
    EXPECT_FALSE(pty.WaitForExit(nullptr, 100));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(PtySession, ReportsAProgramThatCannotRun)
{
    PtySession pty;
    PtySession::Options host;
    host.hostProgram = true;
    ASSERT_TRUE(pty.Start("/nonexistent/program", {}, host)) << pty.Error();
    int status = 0;
    ASSERT_TRUE(pty.WaitForExit(&status));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 127) << status;
    EXPECT_NE(std::string::npos, pty.Screen().find("exec failed"));
}
