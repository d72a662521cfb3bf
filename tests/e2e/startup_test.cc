// Start-up: a catalogue that fails to load, a page that cannot back the
// shared memory, and a wrong command line.
#include "console_run.h"

TEST(ConsoleStartup, EmptyOrMissingCatalogueIsReportedAndTheConsoleStillRuns)
{
    const std::string noList = "Error:modCount+cmdCount=0\n";
    struct Case {
        bool write;
        std::string messages;
    };
    const Case cases[] = {
        {true, "mods.conf is empty!\nParseModules fail\ncmds.conf is empty!\nParseCmds fail\n"},
        {false, "file path error or open file failure\nParseModules fail\n"
                "file path error or open file failure\nParseCmds fail\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.write ? "empty files" : "no files");
        ConsoleRun run(false);
        if (c.write) {
            run.Dir().Write("mods.conf", "");
            run.Dir().Write("cmds.conf", "");
        }
        run.WritePage();
        std::string banner;
        ASSERT_TRUE(run.StartConsole(PtySession::Options(), &banner));
        EXPECT_EQ(c.messages + "ParseModules fail or ParseCmds fail.\n", banner);
        // The complaint follows every prompt; lines are still read and dispatched.
        EXPECT_EQ(noList + "help\n======= Command ============== Description ============\n", run.Type("help\n"));
        EXPECT_EQ(noList + "fmt\nError:Illegal Command.\n", run.Type("fmt\n"));
        ASSERT_TRUE(run.Pty().Write("q\n"));
        EXPECT_EQ("exit 0", run.Exit());
        EXPECT_EQ(noList + "q\n", ConsoleRun::NoCr(run.Pty().ReadQuiet(50)));
    }
}

TEST(ConsoleStartup, SwapFileShorterThanAPageEndsWithStatus1)
{
    for (const int size : {-1, 100}) {
        SCOPED_TRACE(size);
        ConsoleRun run;
        if (size >= 0) {
            run.Dir().Write(".tv", std::string(static_cast<size_t>(size), '\0'));
        }
        ASSERT_TRUE(run.StartProgram({run.Dir().Path()}));
        EXPECT_EQ("exit 1", run.Exit());
        // A missing file is created by the console, empty.
        EXPECT_EQ("swap file " + run.PagePath() + " is " + std::to_string(size < 0 ? 0 : size) +
                      " bytes long, it needs at least 4096 bytes: start the service first\n",
                  ConsoleRun::NoCr(run.Pty().Screen()));
    }
}

TEST(ConsoleStartup, MissingOrExtraArgumentPrintsUsageAndExits2)
{
    for (const std::vector<std::string>& args : {std::vector<std::string>{}, std::vector<std::string>{"a", "b"}}) {
        SCOPED_TRACE(args.size());
        ConsoleRun run;
        ASSERT_TRUE(run.StartProgram(args));
        EXPECT_EQ("exit 2", run.Exit());
        EXPECT_EQ(0u, run.Pty().Screen().find("usage: ")) << run.Pty().Screen();
    }
}
