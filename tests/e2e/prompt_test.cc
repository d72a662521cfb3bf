// The prompt loop as an engineer meets it: prompts, help, quitting, the
// lines the console refuses, and the line editor's Tab and history keys.
// None of these lines reaches the service, so the page is a plain file.
#include "console_run.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace {

const std::string kHelpHeader = "======= Command ============== Description ============\n";
const std::string kTopHelp = kHelpHeader + "\tfmt\t\tone command per format letter\n\ttun\t\ttuner state\n";
const std::string kFormatsHelp = kHelpHeader +
                                 "\tdouble\t\tthe double command\n\tfloat\t\tthe float command\n"
                                 "\tint\t\tthe int command\n\tlong\t\tthe long command\n"
                                 "\tstr\t\tthe str command\n\twide\t\tthe wide command\n";
const std::string kIllegal = "Error:Illegal Command.\n";
const std::string kBar(34, '=');

bool SameSettings(const struct termios& a, const struct termios& b)
{
    return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_cflag == b.c_cflag && a.c_lflag == b.c_lflag &&
           std::equal(std::begin(a.c_cc), std::end(a.c_cc), std::begin(b.c_cc));
}

}  // namespace

TEST(ConsolePrompt, HelpAtBothLevelsThenQuitRestoresTheTerminal)
{
    struct termios initial {};
    ASSERT_TRUE(PtySession::DefaultTermios(&initial));
    PtySession::Options options;
    options.initialTermios = &initial;
    ConsoleRun run;
    run.WritePage();
    std::string banner;
    ASSERT_TRUE(run.StartConsole(options, &banner));
    EXPECT_EQ("", banner);

    // Raw input while the prompt loop runs, with the signal keys still live.
    struct termios raw {};
    ASSERT_EQ(0, run.Pty().GetAttr(&raw));
    EXPECT_EQ(0u, raw.c_lflag & (ICANON | ECHO));
    EXPECT_NE(0u, raw.c_lflag & ISIG);

    EXPECT_EQ("help\n" + kTopHelp, run.Type("help\n"));
    EXPECT_EQ("?\n" + kTopHelp, run.Type("?\n"));
    EXPECT_EQ("fmt\nFormats@", run.Type("fmt\n"));
    EXPECT_EQ("HELP\n" + kFormatsHelp + "Formats@", run.Type("HELP\n"));
    // Another module's word switches directly; quitting a module goes back to the top.
    EXPECT_EQ("tun\nTuner@", run.Type("tun\n"));
    EXPECT_EQ("Q\n", run.Type("Q\n"));
    EXPECT_EQ("fmt\nFormats@", run.Type("fmt\n"));
    EXPECT_EQ("quit\n", run.Type("quit\n"));

    ASSERT_TRUE(run.Pty().Write("QUIT\n"));
    EXPECT_EQ("exit 0", run.Exit());
    struct termios after {};
    ASSERT_EQ(0, run.Pty().GetAttr(&after));
    EXPECT_TRUE(SameSettings(initial, after));
}

TEST(ConsoleDispatch, RefusesUnknownOverlongAndIncompleteLines)
{
    ConsoleRun run;
    run.WritePage();
    ASSERT_TRUE(run.StartConsole());

    EXPECT_EQ("bogus\n" + kIllegal, run.Type("bogus\n"));
    // Module words are matched whole and with their case.
    EXPECT_EQ("FMT\n" + kIllegal, run.Type("FMT\n"));
    EXPECT_EQ("   \n", run.Type("   \n"));
    EXPECT_EQ("fmt\nFormats@", run.Type("fmt\n"));
    EXPECT_EQ("bogus 1\n" + kIllegal + "Formats@", run.Type("bogus 1\n"));
    // A first word longer than the 255-character word buffer names no command.
    const std::string longWord(300, 'x');
    EXPECT_EQ(longWord + " 1\n" + kIllegal + "Formats@", run.Type(longWord + " 1\n"));
    // The argument text starts with the blank after the word: 255 characters in all.
    const std::string longArgs = "int " + std::string(254, '7');
    EXPECT_EQ(longArgs + "\nError:arg size:255 too large\nFormats@", run.Type(longArgs + "\n"));
    EXPECT_EQ("int\nparse para err. int help info: \n\tthe int command\ncall failed\nFormats@", run.Type("int\n"));

    ASSERT_TRUE(run.Pty().Write("q\nq\n"));
    EXPECT_EQ("exit 0", run.Exit());
}

TEST(ConsoleLineEditing, TabListsAndCompletesAtBothLevelsAndUpRecallsHistory)
{
    ConsoleRun run;
    run.WritePage();
    ASSERT_TRUE(run.StartConsole());

    const std::string modules = "\n" + kBar + " all mods " + kBar + "\nfmt\ttun";
    EXPECT_EQ(modules + "\n", run.Type("\t"));
    // One name begins with "f": completed in place, and Enter takes the whole word.
    EXPECT_EQ("fmt\nFormats@", run.Type("f\t\n"));
    EXPECT_EQ("tun\nTuner@", run.Type("tun\n"));
    EXPECT_EQ(modules + "\n" + kBar + "Tuner cmds" + kBar + "\nscan\tseek\nTuner@", run.Type("\t"));
    // Only the module's commands begin with "s"; the typed "s" is kept and redrawn.
    EXPECT_EQ("s\n" + kBar + "Tuner cmds" + kBar + "\nscan\tseek\nTuner@", run.Type("s\t"));
    EXPECT_EQ("s", run.Pty().ReadQuiet());
    EXPECT_EQ("\b \bq\n", run.Type("\bq\n"));  // Backspace drops the kept "s"
    EXPECT_EQ("fmt\nFormats@", run.Type("fmt\n"));
    // "in" completes to "int"; the word dispatched is the completed one.
    EXPECT_EQ("int\nparse para err. int help info: \n\tthe int command\ncall failed\nFormats@",
              run.Type("in\t\n"));

    // Up recalls the last line; Enter runs it again.
    EXPECT_EQ("q\n", run.Type("q\n"));
    EXPECT_EQ("help\n" + kTopHelp, run.Type("help\n"));
    EXPECT_EQ("help\n" + kTopHelp, run.Type("\x1b[A\n"));

    ASSERT_TRUE(run.Pty().Write("q\n"));
    EXPECT_EQ("exit 0", run.Exit());
}

TEST(ConsoleInput, LinesFromAPipeRunUntilItsEndThenExit0)
{
    ConsoleRun run;
    run.WritePage();
    const std::string fifo = run.Dir().File("keys");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    // Read and write, so that opening never blocks; closed on exec, so that
    // the console does not hold a writer and its input can end.
    const int keys = open(fifo.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(keys, 0);
    PtySession::Options options;
    options.stdinPath = fifo;
    ASSERT_TRUE(run.StartConsole(options));

    const std::string lines = "fmt\nhelp\n";
    ASSERT_EQ(static_cast<ssize_t>(lines.size()), write(keys, lines.data(), lines.size()));
    EXPECT_EQ("fmt\nFormats@", run.Type(""));
    EXPECT_EQ("help\n" + kFormatsHelp + "Formats@", run.Type(""));
    close(keys);
    EXPECT_EQ("exit 0", run.Exit());
}
