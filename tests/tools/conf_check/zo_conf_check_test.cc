// zo_conf_check run as a program: each catalogue and the diagnostics it gets.
#include <algorithm>
#include <sstream>

#include <sys/stat.h>
#include <gtest/gtest.h>

#include "child_program.h"
#include "temp_dir.h"

namespace {

// Runs the checker with args; its exit status (-1 when it did not exit), and out and err in dir.
int Check(const TempDir& dir, std::vector<std::string> args)
{
    args.insert(args.begin(), ZO_CONF_CHECK_PATH);
    const int status = RunChild(args, {"/dev/null", dir.File("out"), dir.File("err")});
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string Mod(const std::string& name, const std::string& word, const std::string& code)
{
    return "[" + name + "]\ncommand = " + word + "\ninstruction = " + code + "\n";
}

std::string Cmd(const std::string& word, const std::string& module, const std::string& code, const char* keys = "")
{
    return "[" + word + "]\ncommand = " + word + "\nbelong module = " + module + "\ninstruction = " + code + "\n" +
           keys;
}

const std::string kMod = Mod("M", "m", "0x10");
const std::string kCmd = Cmd("c", "M", "0x11");

}  // namespace

// Each expected line is the start of a diagnostic, "FILE:LINE: kind: text", or the count.
TEST(ZoConfCheck, EachCatalogueGetsItsDiagnostics)
{
    const struct { std::string mods, cmds; std::vector<std::string> report; } cases[] = {
        {kMod, kCmd, {"0 errors, 0 warnings"}},
        // Rows the reader passes over or cuts.
        {"instruction = 0x5\n" + kMod + "# keys end here\ndescription = d\n[" + std::string(5000, 'T') + "]\n",
         "[c]\ncommand = c\nbelong module = M\nprint tags = a\nprint tags = b\nInstruction = 0x11\ninstruction = 0x11\n"
         "[d]\ncommand = d\n \nbelong module = M\n[e]\ncommand = e\nbelong module = M\ninstruction = zz\n"
         "description = " + std::string(255, 'x') + "\n[" + std::string(260, 'T') + "]\n" +
             std::string("[f]\ncommand = f\0x\n", 18) + std::string(256, 'k') + "= v\n",
         {"cmds.conf:1: error: command 'c' has no \"instruction\"", "cmds.conf:5: warning: \"print tags\" is given",
          "cmds.conf:5: warning: \"print tags\" without a", "cmds.conf:6: error: 'Instruction' is no key of cmds.conf",
          "cmds.conf:7: error: \"instruction\" row outside a block is ignored (block 'c' (line 1) ended at line 6)",
          "cmds.conf:8: error: command 'd' has no \"belong", "cmds.conf:10: error: a row of only blanks ends block",
          "cmds.conf:11: error: \"belong module\" row outside", "cmds.conf:15: error: instruction 'zz' is no hex",
          "cmds.conf:16: error: the text after \"=\" of \"description\" is 256 characters long (at most 254)",
          "cmds.conf:17: error: block title of 262 characters is too long (at most 255)",
          "cmds.conf:18: error: command 'f' has no", "cmds.conf:19: error: the value of \"command\" holds a NUL",
          "cmds.conf:20: error: the text before \"=\" is 256 characters long (at most 255)",
          "mods.conf:1: error: \"instruction\" row outside a block is ignored (there is no block title above it)",
          "mods.conf:5: error: this row is no key row and ends", "mods.conf:6: error: \"description\" row outside",
          "mods.conf:7: error: block title of 4096 characters or more is too long", "16 errors, 2 warnings"}},
        // Blocks the catalogue drops, and why.
        {kMod + Mod("M", "other", "0x30") + Mod("Shared", "s", "0x10") + "[Mute]\ncommand = mute\n" +
             Mod("", "e", "0x"),
         kCmd + "[c2]\ncommand = c\nbelong module = Shared\ninstruction = 0x12\n" + Cmd("w", "m", "0x13") +
             Cmd("x", "Mute", "0x14"),
         {"cmds.conf:5: error: command 'c' is already defined at line 1 by module 'M', which shares the code 0x10",
          "cmds.conf:11: error: no module 'm' in mods.conf: command 'w' is dropped ('m' is the word of module 'M'",
          "cmds.conf:15: error: module 'Mute' has no instruction code", "mods.conf:4: error: module 'M' is already",
          "mods.conf:7: warning: module 'Shared' holds no", "mods.conf:9: error: module 'Shared' has the instruction",
          "mods.conf:10: error: module 'Mute' has no \"instruction\"",
          "mods.conf:12: error: the block title '[]' gives the module an empty name, which the console takes for",
          "mods.conf:14: error: instruction '0x' is no hexadecimal number: the console takes 0",
          "8 errors, 1 warning"}},
        // Words and codes that collide.
        {kMod + Mod("N", "m", "0x20") + Mod("Q", "Quit", "0x30") + Mod("A", "m", "0x40"),
         kCmd + Cmd("d", "M", "0x11") + Cmd("e", "N", "0x11") + "[f]\ncommand = m\nbelong module = N\n" +
             Cmd("g h", "Q", "0x-11") + Cmd("e2", "N", "0x11"),
         {"cmds.conf:8: error: the instruction code 0x11 of command 'd' is also the code of command 'c' (line 1) in",
          "cmds.conf:12: warning: the instruction code 0x11 of command 'e' is also the code of command 'c' (line 1) of",
          "cmds.conf:13: error: command 'm' has no \"instruction\"",
          "cmds.conf:14: warning: the command word 'm' is also the word of module 'A'",
          "cmds.conf:14: warning: the command word 'm' is also the word of module 'M'",
          "cmds.conf:14: warning: the command word 'm' is also the word of module 'N'",
          "cmds.conf:17: error: the command word 'g h' holds white", "cmds.conf:19: error: instruction '0x-11' is no",
          "cmds.conf:23: error: the instruction code 0x11 of command 'e2' is also the code of command 'e' (line 9) in",
          "mods.conf:2: error: the word 'm' of module 'M' is also the word of module 'A' (line 10), whose name sorts "
          "first: typing it enters module 'A'", "mods.conf:5: error: the word 'm' of module 'N' is also the word of "
          "module 'A'", "mods.conf:8: error: the word 'Quit' of module 'Q'", "mods.conf:10: warning: module 'A' holds",
          "8 errors, 5 warnings"}},
        // Words holding a byte the prompt takes as a key; DEL is typed as it is. Files with no block.
        {kMod + Mod("N", "setBA", "0x20"),
         Cmd("getCfg", "M", "0x11") + Cmd("e\x7f", "M", "0x12") + Cmd("x\x1b", "M", "0x13") + Cmd("y\x03", "N", "0x21"),
         {"cmds.conf:2: error: the command word 'getCfg' holds 'C', which the line editor drops: it cannot be typed",
          "cmds.conf:10: error: the command word 'x\\x1b' holds '\\x1b', which the line editor drops",
          "cmds.conf:14: error: the command word 'y\\x03' holds '\\x03', which the terminal turns into SIGINT",
          "mods.conf:5: error: the word 'setBA' of module 'N' holds 'B', which recalls the next line of the history: "
          "the module cannot be entered", "4 errors, 0 warnings"}},
        {std::string("# no block\n\na") + '\0' + "b\\ = 1\n", "\ncommand = c\n",
         {"cmds.conf:1: error: the file holds no block (no \"[title]\" row): the console loads nothing from it",
          "cmds.conf:2: error: \"command\" row outside", "mods.conf:1: error: the file holds no block",
          "mods.conf:3: warning: 'a\\x00b\\\\' is no key of mods.conf", "3 errors, 1 warning"}},
        // A byte-order mark: one diagnostic, whatever it hides.
        {"\xef\xbb\xbf" + kMod + "description = x\n" + Mod("N", "n", "0x20"),
         "\xef\xbb\xbf# commands\n" + Cmd("c", "N", "0x21") + Cmd("d", "M", "0x12"),
         {"cmds.conf:1: warning: the file starts with a UTF-8 byte-order mark (\\xef\\xbb\\xbf), which the console "
          "reads as text: harmless here", "cmds.conf:8: error: no module 'M' in mods.conf",
          "mods.conf:1: error: the file starts with a UTF-8 byte-order mark (\\xef\\xbb\\xbf), which the console "
          "reads as text: line 1 is no block title, and every row up to the next block title is ignored",
          "2 errors, 1 warning"}},
        // Format letters and print tags.
        {kMod,
         Cmd("a", "M", "1", "para format = d d\nprint format = dS\nprint tags = x,y\n") +
             Cmd("b", "M", "2", "para format = dS\nprint format = dqd\nprint tags = x\n") +
             Cmd("e", "M", "4", "print format = d\nprint tags = x,\n") + Cmd("f", "M", "5", "print format = d\n"),
         {"cmds.conf:5: error: \"para format\" 'd d': ' ' is no format letter (d D f F s S)",
          "cmds.conf:6: warning: \"print format\" 'dS': the letter S", "cmds.conf:12: warning: \"para format\" 'dS'",
          "cmds.conf:13: error: \"print format\" 'dqd': 'q' is no", "cmds.conf:14: error: \"print tags\" has 1 label",
          "cmds.conf:20: warning: \"print tags\" has 2 labels", "cmds.conf:20: warning: \"print tags\": label 2 is",
          "cmds.conf:25: error: \"print format\" 'd' has no \"print tags", "4 errors, 4 warnings"}},
    };
    for (const auto& c : cases) {
        TempDir dir;
        dir.Write("mods.conf", c.mods);
        dir.Write("cmds.conf", c.cmds);
        const int status = Check(dir, {dir.Path()});
        std::istringstream lines(ReadFile(dir.File("out")));
        std::string line;
        for (const std::string& expected : c.report) {
            std::getline(lines, line);
            const std::string shown = expected.find(':') < expected.find(' ') ? dir.File(expected) : expected;
            EXPECT_EQ(shown, line.substr(0, shown.size()));
        }
        EXPECT_FALSE(std::getline(lines, line)) << line;
        EXPECT_EQ(c.report.back().compare(0, 8, "0 errors") == 0 ? 0 : 1, status) << c.report.back();
    }
}

TEST(ZoConfCheck, QuietLimitedUnreadableAndUsage)
{
    TempDir dir;
    dir.Write("mods.conf", "");
    dir.Write("cmds.conf", kCmd);
    EXPECT_EQ(1, Check(dir, {"--quiet", dir.Path() + "/"}));
    EXPECT_EQ("2 errors, 0 warnings\n", ReadFile(dir.File("out")));  // the empty file, and a command without module
    // The first 100 in printing order, the one of cmds.conf found last included; the others counted.
    std::string rows;
    for (int i = 0; i < 150; ++i) {
        rows += "a=b\n";  // no key, outside a block: a warning each
    }
    dir.Write("mods.conf", rows + kMod);
    dir.Write("cmds.conf", "[c]\n");
    EXPECT_EQ(1, Check(dir, {dir.Path()}));
    const std::string report = ReadFile(dir.File("out"));
    const std::string end = "\n52 more diagnostics not shown (only the first 100 are printed)\n1 error, 151 warnings\n";
    EXPECT_EQ(0u, report.find(dir.File("cmds.conf:1: error")));
    EXPECT_NE(std::string::npos, report.find(dir.File("mods.conf:99: warning")));
    EXPECT_EQ(report.size() - end.size(), report.find(end));
    EXPECT_EQ(102, std::count(report.begin(), report.end(), '\n'));
    unlink(dir.File("mods.conf").c_str());
    mkfifo(dir.File("mods.conf").c_str(), 0600);  // opening it would wait for a writer for ever
    const std::string cannot = "zo_conf_check: cannot read " + dir.Path() + "/";
    const std::string usage = "\nusage: zo_conf_check DIR [--quiet] (zo_conf_check --help tells more)\n";
    const struct { std::vector<std::string> args; int status; std::string err; } runs[] = {
        {{dir.File("none")}, 2, cannot + "none/mods.conf: No such file or directory\n" + cannot +
                                    "none/cmds.conf: No such file or directory\n"},
        {{dir.Path()}, 2, cannot + "mods.conf: not a regular file\n"},
        {{}, 2, "zo_conf_check: missing DIR" + usage},
        {{dir.Path(), "--loud"}, 2, "zo_conf_check: unknown option --loud" + usage},
        {{"a", "b"}, 2, "zo_conf_check: unexpected argument 'b'" + usage},
        {{dir.Path(), "--help"}, 0, ""},  // last: its output is checked below
    };
    for (const auto& run : runs) {
        EXPECT_EQ(run.status, Check(dir, run.args));
        EXPECT_EQ(run.err, ReadFile(dir.File("err")));
    }
    EXPECT_EQ(0u, ReadFile(dir.File("out")).find("usage: zo_conf_check DIR [--quiet]\n"));
}
