// zo_conf_check run as a program on small catalogues, one kind of fault per
// test, checking the exact report and the exit status.
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

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
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

Outcome Check(const std::vector<std::string>& args)
{
    TempDir scratch;
    std::vector<std::string> argv{ZO_CONF_CHECK_PATH};
    argv.insert(argv.end(), args.begin(), args.end());
    const pid_t pid = fork();
    if (pid == 0) {
        const int out = open(scratch.File("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err = open(scratch.File("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        ExecChild(argv);
        _exit(127);
    }
    int wstatus = 0;
    waitpid(pid, &wstatus, 0);
    return Outcome{WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1, Slurp(scratch.File("out")),
                   Slurp(scratch.File("err"))};
}

// Checks a catalogue of these two files; diagnostics name them "D/mods.conf"
// and "D/cmds.conf".
Outcome CheckFiles(const std::string& mods, const std::string& cmds)
{
    TempDir dir;
    dir.Write("mods.conf", mods);
    dir.Write("cmds.conf", cmds);
    Outcome run = Check({dir.Path()});
    for (size_t at; (at = run.out.find(dir.Path())) != std::string::npos;) {
        run.out.replace(at, dir.Path().size(), "D");
    }
    return run;
}

const char kOneModule[] = "[M]\ncommand = m\ninstruction = 0x10\n";
const char kOneCommand[] = "[c]\ncommand = c\nbelong module = M\ninstruction = 0x11\n";

}  // namespace

TEST(ZoConfCheck, ExampleCatalogueHasOnlyItsDeliberateSWarning)
{
    const Outcome run = Check({ZO_EXAMPLES_DIR});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, std::string(ZO_EXAMPLES_DIR) +
                           "/cmds.conf:37: warning: \"para format\" 'dS': the letter S is not supported: the console "
                           "sends no value for it\n0 errors, 1 warning\n");
}

TEST(ZoConfCheck, ExitStatusAndQuietCount)
{
    EXPECT_EQ(CheckFiles(kOneModule, kOneCommand).out, "0 errors, 0 warnings\n");
    const Outcome warned =
        CheckFiles(std::string(kOneModule) + "[Idle]\ncommand = i\ninstruction = 0x20\n", kOneCommand);
    EXPECT_EQ(warned.status, 0);
    EXPECT_EQ(warned.out, "D/mods.conf:4: warning: module 'Idle' holds no command\n0 errors, 1 warning\n");

    TempDir dir;
    dir.Write("mods.conf", "");
    dir.Write("cmds.conf", kOneCommand);
    const Outcome quiet = Check({"--quiet", dir.Path() + "/"});
    EXPECT_EQ(quiet.status, 1);
    EXPECT_EQ(quiet.out, "2 errors, 0 warnings\n");  // the empty file, and the command it leaves without a module

    const Outcome missing = Check({dir.File("nowhere")});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "zo_conf_check: cannot read " + dir.File("nowhere") +
                               "/mods.conf: No such file or directory\nzo_conf_check: cannot read " +
                               dir.File("nowhere") + "/cmds.conf: No such file or directory\n");
    EXPECT_EQ(Check({}).status, 2);
    EXPECT_EQ(Check({dir.Path(), dir.Path()}).status, 2);
    EXPECT_EQ(Check({dir.Path(), "--loud"}).err, "usage: zo_conf_check DIR [--quiet]\n");
}

TEST(ZoConfCheck, RowsTheReaderPassesOverOrCuts)
{
    const std::string longValue(255, 'x');
    const Outcome run =
        CheckFiles(std::string("instruction = 0x5\n") + kOneModule + "# keys end here\ndescription = d\n",
                   "[c]\ncommand = c\nbelong module = M\nprint tags = a\nprint tags = b\n"
                   "Instruction = 0x11\ninstruction = 0x11\n"
                   "[d]\ncommand = d\n \nbelong module = M\n"
                   "[e]\ncommand = e\nbelong module = M\ninstruction = zz\ndescription = " +
                       longValue + "\n[" + std::string(260, 'T') + "]\n" +
                                   std::string("[f]\ncommand = f\0x\n", 18) + std::string(256, 'k') + "= v\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "D/cmds.conf:1: error: command 'c' has no \"instruction\": the console sends the code -1\n"
              "D/cmds.conf:5: warning: \"print tags\" is given again in block 'c': this row replaces line 4\n"
              "D/cmds.conf:5: warning: \"print tags\" without a \"print format\": the console prints nothing of the "
              "reply\n"
              "D/cmds.conf:6: error: 'Instruction' is no key of cmds.conf: the row ends block 'c' (line 1) and is "
              "ignored\n"
              "D/cmds.conf:7: error: \"instruction\" row outside a block is ignored (block 'c' (line 1) ended at "
              "line 6)\n"
              "D/cmds.conf:8: error: command 'd' has no \"belong module\": it is dropped\n"
              "D/cmds.conf:10: error: a row of blanks only ends block 'd' (line 8): the key rows after it up to the "
              "next block title are ignored\n"
              "D/cmds.conf:11: error: \"belong module\" row outside a block is ignored (block 'd' (line 8) ended at "
              "line 10)\n"
              "D/cmds.conf:15: error: instruction 'zz' is no hexadecimal number: the console takes 0\n"
              "D/cmds.conf:16: error: the text after \"=\" of \"description\" is 256 characters long (at most "
              "254): the console takes an empty value\n"
              "D/cmds.conf:17: error: block title of 262 characters is too long (at most 255): no block opens here\n"
              "D/cmds.conf:18: error: command 'f' has no \"belong module\": it is dropped\n"
              "D/cmds.conf:19: error: the value of \"command\" holds a NUL byte: the console takes only the text "
              "before it\n"
              "D/cmds.conf:20: error: the text before \"=\" is 256 characters long (at most 255), so the row is no "
              "key row: it ends block 'f' (line 18)\n"
              "D/mods.conf:1: error: \"instruction\" row outside a block is ignored (there is no block title above "
              "it)\n"
              "D/mods.conf:5: error: this row is no key row and ends block 'M' (line 2): the key rows after it up to "
              "the next block title are ignored\n"
              "D/mods.conf:6: error: \"description\" row outside a block is ignored (block 'M' (line 2) ended at "
              "line 5)\n"
              "15 errors, 2 warnings\n");
}

TEST(ZoConfCheck, DroppedBlocksNameTheirCause)
{
    const Outcome run = CheckFiles(std::string(kOneModule) +
                                       "[M]\ncommand = other\ninstruction = 0x30\n[Shared]\ncommand = s\n"
                                       "instruction = 0x10\n[Mute]\ncommand = mute\n",
                                   std::string(kOneCommand) +
                                       "[c again]\ncommand = c\nbelong module = Shared\ninstruction = 0x12\n"
                                       "[by word]\ncommand = w\nbelong module = m\ninstruction = 0x13\n"
                                       "[muted]\ncommand = x\nbelong module = Mute\ninstruction = 0x14\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "D/cmds.conf:5: error: command 'c' is already defined at line 1 by module 'M', which shares the code "
              "0x10: this block is ignored\n"
              "D/cmds.conf:11: error: no module 'm' in mods.conf: command 'w' is dropped ('m' is the word of module "
              "'M'; \"belong module\" takes the module's name)\n"
              "D/cmds.conf:15: error: module 'Mute' has no instruction code: command 'x' is dropped\n"
              "D/mods.conf:4: error: module 'M' is already defined at line 1: this block is ignored\n"
              "D/mods.conf:7: warning: module 'Shared' holds no command\n"
              "D/mods.conf:9: error: module 'Shared' has the instruction code 0x10 of module 'M' (line 1): their "
              "commands are filed together\n"
              "D/mods.conf:10: error: module 'Mute' has no \"instruction\": it can hold no command\n"
              "6 errors, 1 warning\n");
}

TEST(ZoConfCheck, WordsAndCodesThatCollide)
{
    const Outcome run = CheckFiles(std::string(kOneModule) +
                                       "[N]\ncommand = m\ninstruction = 0x20\n[Q]\ncommand = "
                                       "Quit\ninstruction = 0x30\n",
                                   std::string(kOneCommand) +
                                       "[d]\ncommand = d\nbelong module = M\ninstruction = 0x11\n"
                                       "[e]\ncommand = e\nbelong module = N\ninstruction = 0x11\n"
                                       "[f]\ncommand = m\nbelong module = N\ninstruction = 0x21\n"
                                       "[g]\ncommand = g h\nbelong module = Q\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "D/cmds.conf:8: error: the instruction code 0x11 of command 'd' is also the code of command 'c' (line "
              "1) in the same module\n"
              "D/cmds.conf:12: warning: the instruction code 0x11 of command 'e' is also the code of command 'c' "
              "(line 1) of module 'M': the service receives the same code for both\n"
              "D/cmds.conf:14: warning: the command word 'm' is also the word of module 'M': typed alone it enters "
              "that module\n"
              "D/cmds.conf:14: warning: the command word 'm' is also the word of module 'N': typed alone it enters "
              "that module\n"
              "D/cmds.conf:17: error: command 'g h' has no \"instruction\": the console sends the code -1\n"
              "D/cmds.conf:18: error: the command word 'g h' holds white space: it cannot be typed\n"
              "D/mods.conf:5: error: the word 'm' of module 'N' is also the word of module 'M' (line 1): typing it "
              "enters module 'M'\n"
              "D/mods.conf:8: error: the word 'Quit' of module 'Q' is the console's own (help, ?, q, quit): the "
              "module cannot be entered\n"
              "5 errors, 3 warnings\n");
}

TEST(ZoConfCheck, FormatLettersAndPrintTags)
{
    std::string cmds;
    for (const char* keys :
         {"para format = d d\nprint format = dS\nprint tags = x,y\n",
          "para format = dS\nprint format = dq\nprint tags = x,y\n", "print format = ddd\nprint tags = x,y\n",
          "print format = d\nprint tags = x,\n", "print format = d\n"}) {
        const std::string n = std::to_string(cmds.size() / 10);  // a word and a code of its own
        cmds += "[" + n + "]\ncommand = c" + n + "\nbelong module = M\ninstruction = 0x" + n + "\n" + keys;
    }
    const Outcome run = CheckFiles(kOneModule, cmds);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "D/cmds.conf:5: error: \"para format\" 'd d': ' ' is no format letter (d D f F s S): the console "
              "refuses the command with \"para format err.\"\n"
              "D/cmds.conf:6: warning: \"print format\" 'dS': the letter S is not supported: no value is read for "
              "it\n"
              "D/cmds.conf:12: warning: \"para format\" 'dS': the letter S is not supported: the console sends no "
              "value for it\n"
              "D/cmds.conf:13: error: \"print format\" 'dq': 'q' is no format letter (d D f F s S): the console "
              "prints \"invalid fmt info!\" instead of the reply\n"
              "D/cmds.conf:20: error: \"print tags\" has 2 labels for the 3 letters of \"print format\" 'ddd': the "
              "letters beyond the labels are never read\n"
              "D/cmds.conf:26: warning: \"print tags\" has 2 labels for the 1 letter of \"print format\" 'd': the "
              "labels beyond the letters are never shown\n"
              "D/cmds.conf:26: warning: \"print tags\": label 2 is empty\n"
              "D/cmds.conf:31: error: \"print format\" 'd' has no \"print tags\": the console prints nothing of the "
              "reply\n"
              "4 errors, 4 warnings\n");
}
