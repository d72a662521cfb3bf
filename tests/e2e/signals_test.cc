// Ctrl-C, Ctrl-Z and resumption, typed on the console's terminal: the
// terminal raises the signals, the console's own thread acts on them.
#include "console_run.h"

#include <chrono>

namespace {

// Waits for the process to stop, without reaping it should it end instead.
bool WaitStopped(pid_t pid)
{
    return WaitFor(
        [pid] {
            siginfo_t info {};
            return waitid(P_PID, static_cast<id_t>(pid), &info, WSTOPPED | WNOHANG | WNOWAIT) == 0 &&
                   info.si_pid == pid && info.si_code == CLD_STOPPED;
        },
        std::chrono::milliseconds(5000));
}

}  // namespace

TEST(ConsoleSignals, CtrlCKillsTheConsoleWithSignal9)
{
    ConsoleRun run;
    run.WritePage();
    ASSERT_TRUE(run.StartConsole());
    ASSERT_TRUE(run.Pty().Write("\x03"));
    EXPECT_EQ("signal 9", run.Exit());
}

TEST(ConsoleSignals, CtrlZStopsTheConsoleAndSigcontResumesIt)
{
    ConsoleRun run;
    run.WritePage();
    ASSERT_TRUE(run.StartConsole());
    ASSERT_TRUE(run.Pty().Write("\x1a"));
    ASSERT_TRUE(WaitStopped(run.Pty().Pid()));

    ASSERT_EQ(0, kill(run.Pty().Pid(), SIGCONT));
    // It reads and answers again, although it now sends itself SIGCONT every 10 ms.
    EXPECT_EQ("fmt\nFormats@", run.Type("fmt\n"));
    EXPECT_EQ("q\n", run.Type("q\n"));
    ASSERT_TRUE(run.Pty().Write("q\n"));
    EXPECT_EQ("exit 0", run.Exit());
}

TEST(ConsoleSignals, CtrlCEndsTheWaitForAServiceThatNeverAnswers)
{
    ConsoleRun run;
    ASSERT_TRUE(run.StartSim({"--no-reply"}));
    ASSERT_TRUE(run.StartConsole());
    ASSERT_EQ("tun\nTuner@", run.Type("tun\n"));
    ASSERT_TRUE(run.Pty().Write("scan\n"));
    ASSERT_EQ("scan", run.SimLine());
    // Still waiting: nothing but the echo comes back.
    EXPECT_EQ("scan\r\n\r", run.Pty().ReadQuiet(300));

    const auto start = Clock::now();
    ASSERT_TRUE(run.Pty().Write("\x03"));
    EXPECT_EQ("signal 9", run.Exit());
    EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(1000));
}
