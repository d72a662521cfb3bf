// The prompt loop as an engineer meets it, against the simulator: help, modules, the lines the console refuses, a
// command of each format letter, quitting; input from a file; and a catalogue that fails to load.
#include "console_run.h"

static const std::string kHelp = "======= Command ============== Description ============\n";
static const std::string kFormatsHelp =
    kHelp + "\tdouble\t\tthe double\n\tfloat\t\tthe float\n\tint\t\tthe int\n\tlong\t\tthe long\n\tstr\t\tthe str\n";

// Each line typed, the screen up to the next prompt, and the request line the service decoded, if one reached it.
// The simulator answers d 42, D 9000000000, f 1.5, F 2.25, s "sim".
TEST(ConsolePrompt, HelpModulesRefusalsRequestsAndQuit)
{
    const std::string illegal = "Error:Illegal Command.\n", bar(34, '='), longWord(300, 'x');
    const std::string topHelp = kHelp + "\tfmt\t\tone per letter\n\ttun\t\ttuner state\n";
    const std::string longArgs = "int " + std::string(254, '7'), rule = "\n" + std::string(27, '=') + "\n";
    const struct { std::string keys, screen, request; } lines[] = {
        {"help\n", "help\n" + topHelp, ""},
        {"?\n", "?\n" + topHelp, ""},
        {"bogus\n", "bogus\n" + illegal, ""},
        {"FMT\n", "FMT\n" + illegal, ""},  // module words are matched whole and with their case
        {"fmt 1\n", "fmt 1\n" + illegal, ""},
        {"   \n", "   \n", ""},
        {"fmt\n", "fmt\nFormats@", ""},
        {"HELP\n", "HELP\n" + kFormatsHelp + "Formats@", ""},
        {"bogus 1\n", "bogus 1\n" + illegal + "Formats@", ""},
        {longWord + " 1\n", longWord + " 1\n" + illegal + "Formats@", ""},  // longer than the word buffer
        // The argument text starts with the blank after the word: 255 characters in all.
        {longArgs + "\n", longArgs + "\nError:arg size:255 too large\nFormats@", ""},
        {"int\n", "int\nparse para err. int help info: \n\tthe int\ncall failed\nFormats@", ""},
        {"int -7\n", "int -7" + rule + "int:42\t" + rule + "Formats@", "int -7"},
        {"long -9000000001\n", "long -9000000001" + rule + "long:9000000000\t" + rule + "Formats@", "long -9000000001"},
        {"float 0.5\n", "float 0.5" + rule + "float:1.500000\t" + rule + "Formats@", "float 0.5"},
        {"double -2.5\n", "double -2.5" + rule + "double:        2.250000\t" + rule + "Formats@", "double -2.5"},
        {"str hello\n", "str hello" + rule + "str:sim\t" + rule + "Formats@", "str \"hello\""},
        // Tab offers the module words and the current module's commands.
        {"\t", "\n" + bar + " all mods " + bar + "\nfmt\ttun\n" + bar + "Formats cmds" + bar +
                   "\ndouble\tfloat\tint\tlong\tstr\nFormats@", ""},
        {"tun\n", "tun\nTuner@", ""},  // another module's word switches directly
        {"quit\n", "quit\n", ""},
    };
    ConsoleRun run;
    ASSERT_TRUE(run.StartSim());
    ASSERT_EQ("", run.StartConsole());
    for (const auto& line : lines) {
        EXPECT_EQ(line.screen, run.Type(line.keys));
        EXPECT_EQ(line.request, line.request.empty() ? "" : run.SimLine());
    }
    ASSERT_TRUE(run.Pty().Write("Q\n"));
    EXPECT_EQ("exit 0", run.Exit());
}

// Lines from a pipe, as the demo script types them, are scripts/test-demo's.
TEST(ConsoleInput, LinesFromAFileRunUntilItsEndThenExit0)
{
    ConsoleRun run;
    run.WritePage();
    ASSERT_EQ("", run.StartConsole({nullptr, /*stdinPath=*/run.Dir().Write("keys", "fmt\nhelp\n")}));
    EXPECT_EQ("fmt\nFormats@", run.Type(""));  // each prompt shows before the next line is read
    EXPECT_EQ("help\n" + kFormatsHelp + "Formats@", run.Type(""));
    EXPECT_EQ("exit 0", run.Exit());
}

TEST(ConsolePrompt, MissingCatalogueIsReportedAndTheConsoleStillRuns)
{
    ConsoleRun run(false);
    run.WritePage();
    EXPECT_EQ("file path error or open file failure\nParseModules fail\nfile path error or open file failure\n"
              "ParseCmds fail\nParseModules fail or ParseCmds fail.\n",
              run.StartConsole());
    // The complaint follows every prompt; lines are still read and dispatched.
    EXPECT_EQ("Error:modCount+cmdCount=0\nfmt\nError:Illegal Command.\n", run.Type("fmt\n"));
}
