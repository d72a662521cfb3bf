// Start-up: a catalogue that fails to load, a page that cannot back the shared
// memory, and a wrong command line.
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

// Each case: the arguments, how the program ends, and the start of what it printed.
TEST(ConsoleStartup, ShortSwapFileOrWrongArgumentsEndTheProgram)
{
    ConsoleRun page;
    page.Dir().Write(".tv", std::string(4095, '\0'));
    const std::string dir = page.Dir().Path();
    const struct { std::vector<std::string> args; const char* exit; std::string screen; } cases[] = {
        {{dir}, "exit 1", "swap file " + dir + "/.tv is 4095 bytes long, it needs at least 4096 bytes: start the "
                          "service first\r\n"},
        {{}, "exit 2", "usage: "},
    };
    for (const auto& c : cases) {
        ConsoleRun run;
        ASSERT_TRUE(run.Pty().Start(ZO_CMD_DEBUG_HOST_PATH, c.args));
        EXPECT_EQ(c.exit, run.Exit());
        EXPECT_EQ(0u, run.Pty().Screen().find(c.screen)) << run.Pty().Screen();
    }
}
