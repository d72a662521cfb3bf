// Ctrl-Z, bg and fg under the engineer's own interactive shell. While the console is stopped or runs in the
// background the terminal is as the shell left it, also under a shell that does not put back its own settings
// (dash); back in the foreground the console reads key by key again, also under one that does not give a job back
// its settings (bash).
#include <unistd.h>

#include "console_run.h"

namespace {

// The shell's command line: interactive (job control on), no start-up files. bash reads lines without readline,
// which would put the terminal in its own settings at every prompt.
class JobControl : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(JobControl, TheShellOwnsTheTerminalWhileTheConsoleIsStoppedOrInTheBackgroundAndFgGoesBackToRaw)
{
    if (access(GetParam()[0].c_str(), X_OK) != 0) {
        GTEST_SKIP() << GetParam()[0] << " is not installed";
    }
    const std::string prompt = "shell> ";
    std::vector<std::string> shell{"-u", "ENV", "PS1=" + prompt};
    shell.insert(shell.end(), GetParam().begin(), GetParam().end());
    PtySession::Options native;
    native.emulated = false;
    ConsoleRun run;
    run.WritePage();  // no service yet: a request waits for the simulator
    PtySession& pty = run.Pty();
    ASSERT_TRUE(pty.Start("env", shell, native) && pty.WaitFor(prompt)) << pty.Screen();
    // The shell starts the console behind the emulator's words, as ExecChild does.
    ASSERT_TRUE(pty.Write("$ZO_TEST_EMULATOR " ZO_CMD_DEBUG_HOST_PATH " " + run.Dir().Path() + "\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", nullptr, 10000)) << pty.Screen();

    ASSERT_TRUE(pty.Write("\x1a") && pty.WaitFor(prompt)) << pty.Screen();
    EXPECT_EQ("cooked", run.TerminalMode());
    ASSERT_TRUE(pty.Write("fg\n") && pty.WaitFor(run.Dir().Path())) << pty.Screen();  // the shell names the job
    EXPECT_TRUE(WaitFor([&] { return run.TerminalMode() == "raw"; })) << run.TerminalMode();
    ASSERT_TRUE(pty.Write("fm\t") && pty.WaitFor("fmt")) << pty.Screen();  // completed at once, without Enter

    // Stopped during a request and continued in the background, where it keeps sending itself SIGCONT, it prints
    // the reply when it comes, and leaves the terminal to the shell.
    ASSERT_TRUE(pty.Write("\nint 5\n") && pty.WaitFor("int 5\r\n") && pty.Write("\x1a") && pty.WaitFor(prompt));
    ASSERT_TRUE(pty.Write("bg\n") && pty.WaitFor(prompt) && run.StartSim()) << pty.Screen();
    ASSERT_TRUE(pty.WaitFor("int:42", nullptr, 10000)) << pty.Screen();
    EXPECT_EQ("cooked", run.TerminalMode());
    // Stopped as it reads in the background, the console could outlive its shell.
    ASSERT_TRUE(pty.Write("kill -9 %1\n") && pty.WaitFor(prompt)) << pty.Screen();
}

INSTANTIATE_TEST_SUITE_P(Shells, JobControl,
                         testing::Values(std::vector<std::string>{"/bin/bash", "--norc", "--noediting", "-i"},
                                         std::vector<std::string>{"/bin/dash", "-i"}),
                         [](const testing::TestParamInfo<std::vector<std::string>>& info) {
                             return info.param[0].substr(5);
                         });

}  // namespace
