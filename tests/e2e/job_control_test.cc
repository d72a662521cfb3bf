// Job control under the engineer's own interactive shell, in every stop: Ctrl-Z while the catalogue loads and at
// the prompt, a SIGSTOP from elsewhere, a read in the background. While the console is stopped or in the background
// the terminal is as the shell left it, also under a shell that does not put back its own settings (dash); back in
// the foreground the console reads key by key again, also under one that does not give a job back its settings
// (bash); kill %1 ends it, stopped or in the background.
#include <signal.h>
#include <unistd.h>

#include "console_run.h"

namespace {

// Interactive (job control on), no start-up files. bash reads lines without readline, which would put the terminal
// in its own settings at every prompt. bash's kill continues a stopped job, so that the signal acts at once; dash's
// leaves it stopped, the signal pending until fg: so it is for every program.
const std::vector<std::string> kShells[] = {{"/bin/bash", "--norc", "--noediting", "-i"}, {"/bin/dash", "-i"}};

// Whether the process's state letter is one of these: 'T' stopped, 'Z' ended but not reaped, ' ' reaped.
bool InState(pid_t pid, const std::string& letters)
{
    const std::string stat = ReadFile("/proc/" + std::to_string(pid) + "/stat");
    const size_t end = stat.rfind(") ");
    return letters.find(end == std::string::npos ? ' ' : stat[end + 2]) != std::string::npos;
}

class JobControl : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(JobControl, EveryStopLeavesTheTerminalToTheShellFgTakesRawModeUpAgainKillEnds)
{
    if (access(GetParam()[0].c_str(), X_OK) != 0) {
        GTEST_SKIP() << GetParam()[0] << " is not installed";
    }
    ConsoleRun run;
    run.WritePage();  // no service yet: a request waits for the simulator
    // A catalogue of 20 MB that takes a while to load, for Ctrl-Z to come in the middle: the small one, then twenty
    // million empty rows that the reader passes over.
    const TempDir big;
    big.Write("mods.conf", ReadFile(run.Dir().File("mods.conf")));
    big.Write("cmds.conf", ReadFile(run.Dir().File("cmds.conf")) + std::string(20000000, '\n'));
    big.Write(kShmSwapFileName, std::string(SHM_SIZE, '\0'));  // never answered

    const std::string prompt = "shell> ";
    std::vector<std::string> shell{"-u", "ENV", "PS1=" + prompt};
    shell.insert(shell.end(), GetParam().begin(), GetParam().end());
    PtySession& pty = run.Pty();
    const PtySession::Options native{nullptr, "", false, /*emulated=*/false};
    ASSERT_TRUE(pty.Start("env", shell, native) && pty.WaitFor(prompt)) << pty.Screen();
    // The screen up to now, for a failure seen by a condition rather than by the screen.
    const auto screen = [&] { return pty.WaitFor(std::string(1, '\0'), nullptr, 500), pty.Screen(); };
    const auto mode = [&](const std::string& wanted) {
        return WaitFor([&] { return run.TerminalMode() == wanted; }, std::chrono::milliseconds(10000));
    };
    // The shell starts the console behind the emulator's words, as ExecChild does; raw once it has started.
    const auto start = [&](const std::string& dir) {
        return pty.Write("$ZO_TEST_EMULATOR " ZO_CMD_DEBUG_HOST_PATH " " + dir + "\n") && mode("raw");
    };

    // Ctrl-Z while the catalogue loads stops the console at once, before its first prompt.
    ASSERT_TRUE(start(big.Path())) << screen();
    std::string seen;
    ASSERT_TRUE(pty.Write("\x1a") && pty.WaitFor(prompt, &seen)) << pty.Screen();
    EXPECT_EQ(std::string::npos, seen.find("TV $")) << "loaded before the stop: " << pty.Screen();
    EXPECT_EQ("cooked", run.TerminalMode());
    ASSERT_TRUE(pty.Write("fg\n") && pty.WaitFor("TV $", nullptr, 60000)) << pty.Screen();
    const pid_t first = pty.ForegroundGroup();
    EXPECT_TRUE(mode("raw")) << screen();
    ASSERT_TRUE(pty.Write("fm\t") && pty.WaitFor("fmt")) << pty.Screen();  // completed at once, without Enter

    // A SIGSTOP from elsewhere (bash takes its settings back), then fg: raw again, the typed line kept.
    ASSERT_EQ(0, kill(first, SIGSTOP));
    ASSERT_TRUE(pty.WaitFor(prompt) && pty.Write("fg\n") && pty.WaitFor(big.Path())) << pty.Screen();
    EXPECT_TRUE(mode("raw")) << screen();
    ASSERT_TRUE(pty.Write("\n") && pty.WaitFor("Formats@TV $")) << pty.Screen();

    // Stopped during a request and continued in the background, where it waits on: kill -HUP %1 ends it.
    ASSERT_TRUE(pty.Write("int 5\n") && pty.WaitFor("int 5\r\n") && pty.Write("\x1a") && pty.WaitFor(prompt)) << screen();
    EXPECT_EQ("cooked", run.TerminalMode());
    ASSERT_TRUE(pty.Write("bg\n") && pty.WaitFor(prompt) && pty.Write("kill -HUP %1\n")) << pty.Screen();
    EXPECT_TRUE(WaitFor([&] { return InState(first, " Z"); }, std::chrono::milliseconds(10000))) << screen();

    // Stopped during a request and continued in the background, a console prints the reply when it comes and leaves
    // the terminal to the shell; reading the next line stops it.
    ASSERT_TRUE(start(run.Dir().Path()) && pty.WaitFor("TV $", nullptr, 10000)) << screen();
    const pid_t second = pty.ForegroundGroup();
    ASSERT_TRUE(pty.Write("fmt\nint 5\n") && pty.WaitFor("int 5\r\n") && pty.Write("\x1a") && pty.WaitFor(prompt)) << screen();
    ASSERT_TRUE(pty.Write("bg\n") && pty.WaitFor(prompt) && run.StartSim()) << pty.Screen();
    ASSERT_TRUE(pty.WaitFor("int:42", nullptr, 10000)) << pty.Screen();
    EXPECT_EQ("cooked", run.TerminalMode());
    // Back with fg (after the stop: a shell does not continue a job it thinks running), then stopped by Ctrl-Z at
    // the prompt: kill ends it, under dash at the fg. (%% is this job, whether or not the shell has noticed yet
    // that job 1 ended.)
    ASSERT_TRUE(WaitFor([&] { return InState(second, "T"); }, std::chrono::milliseconds(10000))) << screen();
    ASSERT_TRUE(pty.Write("fg\n") && mode("raw")) << screen();
    ASSERT_TRUE(pty.Write("\x1a") && pty.WaitFor(prompt)) << pty.Screen();
    EXPECT_EQ("cooked", run.TerminalMode());
    ASSERT_TRUE(pty.Write(GetParam()[0] == "/bin/bash" ? "kill %%\n" : "kill %%; fg\n"));
    EXPECT_TRUE(WaitFor([&] { return InState(second, " Z"); }, std::chrono::milliseconds(10000))) << screen();
    EXPECT_TRUE(mode("cooked")) << screen();
}

INSTANTIATE_TEST_SUITE_P(Shells, JobControl, testing::ValuesIn(kShells),
                         [](const auto& info) { return info.param[0].substr(5); });

}  // namespace
