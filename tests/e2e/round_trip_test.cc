// Commands that travel to the simulator through the shared page and back:
// what the service decodes, and what the console prints of its answer.
#include "console_run.h"

TEST(ConsoleRoundTrip, EveryFormatLetterReachesTheServiceAndPrintsItsReply)
{
    ConsoleRun run;
    ASSERT_TRUE(run.StartSim());
    ASSERT_TRUE(run.StartConsole());
    ASSERT_EQ("fmt\nFormats@", run.Type("fmt\n"));

    // Each reply read by the wrong letter, or an earlier reply taken again,
    // would show here. The simulator's built-in answers: d 42, D 9000000000, f 1.5, F 2.25, s "sim".
    EXPECT_EQ("int -7\n" + Reply("int:42\t\n") + "Formats@", run.Type("int -7\n"));
    EXPECT_EQ("int -7", run.SimLine());
    EXPECT_EQ("long -9000000001\n" + Reply("long:9000000000\t\n") + "Formats@", run.Type("long -9000000001\n"));
    EXPECT_EQ("long -9000000001", run.SimLine());
    EXPECT_EQ("float 0.5\n" + Reply("float:1.500000\t\n") + "Formats@", run.Type("float 0.5\n"));
    EXPECT_EQ("float 0.5", run.SimLine());
    EXPECT_EQ("double -2.5\n" + Reply("double:        2.250000\t\n") + "Formats@", run.Type("double -2.5\n"));
    EXPECT_EQ("double -2.5", run.SimLine());
    EXPECT_EQ("str hello\n" + Reply("str:sim\t\n") + "Formats@", run.Type("str hello\n"));
    EXPECT_EQ("str \"hello\"", run.SimLine());
    // S is announced on the way out (it sends nothing) and on the way back (it reads nothing).
    const std::string noS = "current is no support 'S' format\n";
    EXPECT_EQ("wide 3 x\n" + noS + noS + Reply("num:42\t\n") + "Formats@", run.Type("wide 3 x\n"));
    EXPECT_EQ("wide 3", run.SimLine());

    ASSERT_TRUE(run.Pty().Write("q\nq\n"));
    EXPECT_EQ("exit 0", run.Exit());
}

TEST(ConsoleRoundTrip, FailedStatusIsReportedAsCallFailed)
{
    ConsoleRun run;
    ASSERT_TRUE(run.StartSim({"--status", "0x80000001"}));
    ASSERT_TRUE(run.StartConsole());
    ASSERT_EQ("tun\nTuner@", run.Type("tun\n"));

    EXPECT_EQ("scan\nrequest failure! ret:0x80000001\ncall failed\nTuner@", run.Type("scan\n"));
    EXPECT_EQ("scan", run.SimLine());

    ASSERT_TRUE(run.Pty().Write("q\nq\n"));
    EXPECT_EQ("exit 0", run.Exit());
}
