// zo_conf_check run as a program: each catalogue and the diagnostics it gets.
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>

#include <gtest/gtest.h>

#include "child_program.h"
#include "temp_dir.h"

namespace
{

struct Outcome {
    int status;  // exit status, or -1 when the program did not exit
    std::string out;
    std::string err;
};

std::string Slurp(const std::string& path)
{
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

Outcome Check(const TempDir& dir, const std::vector<std::string>& args)
{
    std::vector<std::string> argv{ZO_CONF_CHECK_PATH};
    argv.insert(argv.end(), args.begin(), args.end());
    const int out = open(dir.File("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const int err = open(dir.File("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const int status = WaitChild(SpawnChild(argv, -1, out, err));
    close(out);
    close(err);
    return Outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(dir.File("out")), Slurp(dir.File("err"))};
}

const char kMod[] = "[M]\ncommand = m\ninstruction = 0x10\n";
const char kCmd[] = "[c]\ncommand = c\nbelong module = M\ninstruction = 0x11\n";

}  // namespace

// Each expected line is the start of a diagnostic, "FILE:LINE: kind: text", or the count.
TEST(ZoConfCheck, EachCatalogueGetsItsDiagnostics)
{
    const struct {
        std::string mods;
        std::string cmds;
        std::vector<std::string> report;
    } cases[] = {
        {kMod, kCmd, {"0 errors, 0 warnings"}},
        {Slurp(ZO_EXAMPLES_DIR "/mods.conf"), Slurp(ZO_EXAMPLES_DIR "/cmds.conf"),
         {"cmds.conf:37: warning: \"para format\" 'dS': the letter S is not supported", "0 errors, 1 warning"}},
        // Rows the reader passes over or cuts.
        {std::string("instruction = 0x5\n") + kMod + "# keys end here\ndescription = d\n",
         "[c]\ncommand = c\nbelong module = M\nprint tags = a\nprint tags = b\nInstruction = 0x11\ninstruction = 0x11\n"
         "[d]\ncommand = d\n \nbelong module = M\n[e]\ncommand = e\nbelong module = M\ninstruction = zz\n"
         "description = " + std::string(255, 'x') + "\n[" + std::string(260, 'T') + "]\n" +
             std::string("[f]\ncommand = f\0x\n", 18) + std::string(256, 'k') + "= v\n",
         {"cmds.conf:1: error: command 'c' has no \"instruction\"", "cmds.conf:5: warning: \"print tags\" is given again",
          "cmds.conf:5: warning: \"print tags\" without a", "cmds.conf:6: error: 'Instruction' is no key of cmds.conf",
          "cmds.conf:7: error: \"instruction\" row outside a block is ignored (block 'c' (line 1) ended at line 6)",
          "cmds.conf:8: error: command 'd' has no \"belong", "cmds.conf:10: error: a row of blanks only ends block",
          "cmds.conf:11: error: \"belong module\" row outside", "cmds.conf:15: error: instruction 'zz' is no hex",
          "cmds.conf:16: error: the text after \"=\" of \"description\" is 256 characters long (at most 254)",
          "cmds.conf:17: error: block title of 262 characters is too long (at most 255)",
          "cmds.conf:18: error: command 'f' has no", "cmds.conf:19: error: the value of \"command\" holds a NUL",
          "cmds.conf:20: error: the text before \"=\" is 256 characters long (at most 255)",
          "mods.conf:1: error: \"instruction\" row outside a block is ignored (there is no block title above it)",
          "mods.conf:5: error: this row is no key row and ends", "mods.conf:6: error: \"description\" row outside",
          "15 errors, 2 warnings"}},
        // Blocks the catalogue drops, and why.
        {std::string(kMod) + "[M]\ncommand = other\ninstruction = 0x30\n[Shared]\ncommand = s\ninstruction = 0x10\n"
                             "[Mute]\ncommand = mute\n",
         std::string(kCmd) + "[c2]\ncommand = c\nbelong module = Shared\ninstruction = 0x12\n"
                             "[w]\ncommand = w\nbelong module = m\ninstruction = 0x13\n"
                             "[x]\ncommand = x\nbelong module = Mute\ninstruction = 0x14\n",
         {"cmds.conf:5: error: command 'c' is already defined at line 1 by module 'M', which shares the code 0x10",
          "cmds.conf:11: error: no module 'm' in mods.conf: command 'w' is dropped ('m' is the word of module 'M'",
          "cmds.conf:15: error: module 'Mute' has no instruction code", "mods.conf:4: error: module 'M' is already",
          "mods.conf:7: warning: module 'Shared' holds no", "mods.conf:9: error: module 'Shared' has the instruction",
          "mods.conf:10: error: module 'Mute' has no \"instruction\"", "6 errors, 1 warning"}},
        // Words and codes that collide.
        {std::string(kMod) + "[N]\ncommand = m\ninstruction = 0x20\n[Q]\ncommand = Quit\ninstruction = 0x30\n",
         std::string(kCmd) + "[d]\ncommand = d\nbelong module = M\ninstruction = 0x11\n"
                             "[e]\ncommand = e\nbelong module = N\ninstruction = 0x11\n"
                             "[f]\ncommand = m\nbelong module = N\ninstruction = 0x21\n"
                             "[g]\ncommand = g h\nbelong module = Q\ninstruction = 0x31\n",
         {"cmds.conf:8: error: the instruction code 0x11 of command 'd' is also the code of command 'c' (line 1) in",
          "cmds.conf:12: warning: the instruction code 0x11 of command 'e' is also the code of command 'c' (line 1) of",
          "cmds.conf:14: warning: the command word 'm' is also the word of module 'M'",
          "cmds.conf:14: warning: the command word 'm' is also the word of module 'N'",
          "cmds.conf:18: error: the command word 'g h' holds white",
          "mods.conf:5: error: the word 'm' of module 'N' is also the word of module 'M' (line 1): typing it enters "
          "module 'M'", "mods.conf:8: error: the word 'Quit' of module 'Q'", "4 errors, 3 warnings"}},
        // Format letters and print tags.
        {kMod,
         "[a]\ncommand = a\nbelong module = M\ninstruction = 1\npara format = d d\nprint format = dS\nprint tags = x,y\n"
         "[b]\ncommand = b\nbelong module = M\ninstruction = 2\npara format = dS\nprint format = dqd\nprint tags = x\n"
         "[e]\ncommand = e\nbelong module = M\ninstruction = 4\nprint format = d\nprint tags = x,\n"
         "[f]\ncommand = f\nbelong module = M\ninstruction = 5\nprint format = d\n",
         {"cmds.conf:5: error: \"para format\" 'd d': ' ' is no format letter (d D f F s S)",
          "cmds.conf:6: warning: \"print format\" 'dS': the letter S", "cmds.conf:12: warning: \"para format\" 'dS'",
          "cmds.conf:13: error: \"print format\" 'dqd': 'q' is no format", "cmds.conf:14: error: \"print tags\" has 1 label",
          "cmds.conf:20: warning: \"print tags\" has 2 labels", "cmds.conf:20: warning: \"print tags\": label 2 is",
          "cmds.conf:25: error: \"print format\" 'd' has no \"print tags", "4 errors, 4 warnings"}},
    };
    for (const auto& c : cases) {
        TempDir dir;
        dir.Write("mods.conf", c.mods);
        dir.Write("cmds.conf", c.cmds);
        const Outcome run = Check(dir, {dir.Path()});
        std::istringstream lines(run.out);
        std::string line;
        for (const std::string& expected : c.report) {
            std::getline(lines, line);
            const std::string shown = expected.find(':') < expected.find(' ') ? dir.File(expected) : expected;
            EXPECT_EQ(shown, line.substr(0, shown.size())) << run.out;
        }
        EXPECT_FALSE(std::getline(lines, line)) << run.out;
        EXPECT_EQ(c.report.back().compare(0, 8, "0 errors") == 0 ? 0 : 1, run.status) << run.out;
    }
}

TEST(ZoConfCheck, QuietAndUnreadable)
{
    TempDir dir;
    dir.Write("mods.conf", "");
    dir.Write("cmds.conf", kCmd);
    Outcome run = Check(dir, {"--quiet", dir.Path() + "/"});
    EXPECT_EQ("2 errors, 0 warnings\n", run.out);  // the empty file, and the command it leaves without a module
    EXPECT_EQ(1, run.status);
    run = Check(dir, {dir.File("none")});
    EXPECT_EQ("zo_conf_check: cannot read " + dir.File("none/mods.conf") + ": No such file or directory\n" +
                  "zo_conf_check: cannot read " + dir.File("none/cmds.conf") + ": No such file or directory\n",
              run.err);
    EXPECT_EQ(2, run.status);
    EXPECT_EQ(2, Check(dir, {}).status);
    EXPECT_EQ("usage: zo_conf_check DIR [--quiet]\n", Check(dir, {dir.Path(), "--loud"}).err);
}
