// Start-up: a catalogue that fails to load, and a wrong command line. The swap
// files the console refuses are the hostile-exit test's.
#include "console_run.h"

TEST(ConsoleStartup, MissingCatalogueIsReportedAndTheConsoleStillRuns)
{
    ConsoleRun run(false);
    run.WritePage();
    EXPECT_EQ("file path error or open file failure\nParseModules fail\nfile path error or open file failure\n"
              "ParseCmds fail\nParseModules fail or ParseCmds fail.\n",
              run.StartConsole());
    // The complaint follows every prompt; lines are still read and dispatched.
    EXPECT_EQ("Error:modCount+cmdCount=0\nfmt\nError:Illegal Command.\n", run.Type("fmt\n"));
}

TEST(ConsoleStartup, MissingOrExtraArgumentPrintsUsageAndExits2)
{
    for (const std::vector<std::string>& args : {std::vector<std::string>{}, std::vector<std::string>{"a", "b"}}) {
        ConsoleRun run;
        ASSERT_TRUE(run.StartProgram(args));
        EXPECT_EQ("exit 2", run.Exit());
        EXPECT_EQ(0u, run.Pty().Screen().find("usage: ")) << run.Pty().Screen();
    }
}
