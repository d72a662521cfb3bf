// Ctrl-Z and Ctrl-C typed on the console's terminal: the terminal raises the
// signals, the console's own thread acts on them.
#include "console_run.h"

#include <poll.h>

TEST(ConsoleSignals, CtrlZStopsAndFgResumesCtrlCKillsWithSignal9AlsoDuringAWait)
{
    ConsoleRun run;
    ASSERT_TRUE(run.StartSim({"--no-reply"}));
    ASSERT_EQ("", run.StartConsole());
    ASSERT_TRUE(run.Pty().Write("\x1a"));
    siginfo_t info{};
    for (int ms = 0; ms < 5000 && info.si_code != CLD_STOPPED && poll(nullptr, 0, 2) == 0; ms += 2) {
        waitid(P_PID, static_cast<id_t>(run.Pty().Pid()), &info, WSTOPPED | WNOHANG | WNOWAIT);
    }
    ASSERT_EQ(CLD_STOPPED, info.si_code);
    ASSERT_EQ(0, kill(run.Pty().Pid(), SIGCONT));
    // It reads and answers again, although it now sends itself SIGCONT every 10 ms.
    EXPECT_EQ("tun\nTuner@", run.Type("tun\n"));
    ASSERT_TRUE(run.Pty().Write("scan\n"));
    ASSERT_EQ("scan", run.SimLine());  // a request the service never answers
    ASSERT_TRUE(run.Pty().Write("\x03"));
    EXPECT_EQ("signal 9, terminal raw", run.Exit());
}
