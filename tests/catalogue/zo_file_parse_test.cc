#include "zo_file_parse.h"

#include <string>

#include <gtest/gtest.h>

#include "temp_dir.h"

namespace {

using namespace std::string_literals;

// What the console learns of a catalogue through the lookups: a line per module ("name|word|code|description"),
// then a line per command filed under its code (" word|own code|para format|print format|<tag>...|description").
std::string Tables(const ZoFileParse& parse)
{
    std::string out;
    const Array<std::string> names = parse.GetModNames();
    const Array<std::string> words = parse.GetModCmds();
    for (unsigned int i = 0; i < names.Size(); ++i) {
        const int32_t code = parse.GetModInstruct(names[i]);
        out += names[i] + "|" + words[i] + (parse.GetModToCmd(names[i]) == words[i] ? "|" : "!|") +
               std::to_string(code) + "|" + parse.GetModDescrip(names[i]) + "\n";
        for (const std::string& cmd : parse.GetModHoldCmds(code)) {
            out += " " + cmd + "|" + std::to_string(parse.GetCmdInstruct(code, cmd)) + "|" +
                   parse.GetCmdParaFmt(code, cmd) + "|" + parse.GetCmdPrintFmt(code, cmd) + "|";
            for (const std::string& tag : parse.GetCmdPrintTags(code, cmd)) {
                out += "<" + tag + ">";
            }
            out += "|" + parse.GetCmdDescrip(code, cmd) + "\n";
        }
    }
    return out;
}

const std::string kMissing = "<no file>";
const std::string kM = "[M]\ncommand = m\ninstruction = 0x10\n";  // a module for the commands
const std::string kLong = std::string(256, 'x') + "\n";
const std::string kLongTitle = "str size:256 too large, max len:256\n";
const std::string kLongKey = "str size:259 too large, max len:256\n";
const std::string kV254 = std::string(254, 'v');
const std::string kV255 = std::string(255, 'v');

// Each case: the two files, what Init prints (and returns when it fails), and the tables it leaves.
TEST(ZoFileParse, RowsBecomeTablesAndMessages)
{
    const struct { const char* what; std::string mods, cmds, messages, tables; } cases[] = {
        {"blank-only rows, comments and foreign keys end a block; empty rows do not",
         "# mods\ncommand = x\n[A]\ncommand = a\n\n\ninstruction = 1\n \ndescription = lost\n[B]\ninstruction = 2\n"
         "# note\ndescription = lost\n[C]\ncommand = c\nbelong module = x\ninstruction = 3\n",
         "[x]\ncommand = x\nbelong module = A\n", "", "A|a|1|\n x|-1||||\nB||2|\nC|c|-1|\n"},
        {"CRLF rows, a lone CR ends a block, a last row without line feed",
         "[A]\r\ncommand = a\r\n\r\ninstruction = 1\r\n[B]\r\ninstruction = 2",
         "[x]\r\ncommand = x \r\nbelong module = B\r\nprint tags = p,q\r\n", "", "A|a|-1|\nB||2|\n x|-1|||<p><q>|\n"},
        {"a title as the last row", "[A]\ninstruction = 1\n[Last]", "[c]\nbelong module = A\n[d]\n", "",
         "A||1|\n |-1||||\nLast||-1|\n"},
        {"titles are trimmed, their names are not", "[ tv ]\ninstruction = 1\n  [x]\t\n[]\n[\n[y] z\ninstruction = 2\n",
         "[c]\ncommand = c\nbelong module = tv\n", "", "||-1|\n tv ||1|\nx||-1|\n"},
        {"a title row of 255 characters; a longer one is reported each time it is read",
         kLong + "[A]\ncommand = a\n" + kLong + "instruction = 1\n[" + std::string(253, 't') + "]\n", "[x]\n",
         kLongTitle + kLongTitle + kLongTitle, "A|a|-1|\n" + std::string(253, 't') + "||-1|\n"},
        {"the reader cuts a row at 4096 bytes", std::string(5000, '[') + "\n", "[x]\n",
         "str size:4096 too large, max len:256\n", ""},
        {"key parts of 255 and 256 characters",
         "[A]\n" + std::string(248, ' ') + "command=a\n" + std::string(245, ' ') + "instruction=1\n",
         "[x]\ncommand = x\nbelong module = A\n" + std::string(256, ' ') + "= 1\n",
         "str size:257 too large, max len:256\nstr size:258 too large, max len:256\nIsCommand string str.size(): 256\n"
         "IsInstruction string str.size(): 256\nIsDescription string str.size(): 256\n"
         "str size:258 too large, max len:256\n" + kLongKey + "IsCommand string str.size(): 256\n"
         "IsBelongMod string str.size(): 256]\nIsInstruction string str.size(): 256\n"
         "IsParaFormat string str.size(): 256\nIsPrintFmt string str.size(): 256\nIsPrintTags string str.size(): 256\n"
         "IsDescription string str.size(): 256\n" + kLongKey, "A|a|-1|\n"},
        {"values of 254 and 255 characters", kM,
         "[a]\ncommand = a\nbelong module = M\ndescription=" + kV254 + "\npara format=" + kV255 + "\ninstruction=" +
         kV255 + "\n", "str size:266 too large, max len:256\nstr size:267 too large, max len:256\n"
         "GetParaFormat string size: 256\nstr size:267 too large, max len:256\nGetInstruction string size: 256\n",
         "M|m|16|\n a|0||||" + kV254 + "\n"},
        {"NUL and binary bytes", "[A]\ncommand = a\0junk\ninstruction = 1\n[B\0]\ninstruction = 2\n"s,
         "[x]\ncommand = \xff\x01\xfe\nbelong module = A\n", "", "A|a|1|\n \xff\x01\xfe|-1||||\n"},
        {"keys match up to the equals sign", kM,
         "[a]\ncommand=a\n  belong module   =   M  \ndesc=short\nprint=d\n[b]\n= b\nbelong module = M\ndesc = lost\n"
         "[c]\ncommand = c\nbelong module = M\nCommand = C\n[d]\ncommand = d\nbelong module = M\nbelong  module = x\n"
         "[e]\ncommand = e\nbelong module = M\ndescription = 1\ndescription = 2\n",
         "", "M|m|16|\n a|-1||d||short\n b|-1||||\n c|-1||||\n d|-1||||\n e|-1||||2\n"},
        {"instruction codes are hexadecimal, clamped to 32 bits",
         "[0]\ninstruction = 10\n[1]\ninstruction = 0x1F\n[2]\ninstruction = -1\n[3]\ninstruction = 12zz\n"
         "[4]\ninstruction = zz\n[5]\ninstruction = 0xFFFFFFFF\n[6]\ninstruction = -0x80000001\n[7]\ninstruction =\n",
         "[x]\n", "strtol:zz is not figure\nstrtol: is not figure\n",
         "0||16|\n1||31|\n2||-1|\n3||18|\n4||0|\n5||2147483647|\n6||-2147483648|\n7||0|\n"},
        {"values keep inner equals signs; tags split at every comma", kM,
         "[a]\ncommand = a\nbelong module = M\ndescription = a = b\nprint tags = number,name,\n[b]\ncommand = b\n"
         "belong module = M\nprint tags = a, b,,c\n[c]\ncommand = c\nbelong module = M\nprint tags =  \n",
         "", "M|m|16|\n a|-1|||<number><name><>|a = b\n b|-1|||<a>< b><><c>|\n c|-1|||<>|\n"},
        {"the first module and the first command of a name win; a shared code shares its commands",
         "[Channel]\ncommand = chan\ninstruction = 0x10\n[Channel]\ncommand = other\ninstruction = 0x30\n"
         "[Alias]\ninstruction = 0x10\n[Picture]\ninstruction = 0x20\n",
         "[a]\ncommand = info\nbelong module = Channel\ninstruction = 1\n[b]\ncommand = info\nbelong module = Channel\n"
         "instruction = 2\n[c]\ncommand = list\nbelong module = Alias\n[d]\ncommand = info\nbelong module = Picture\n"
         "instruction = 3\n", "",
         "Alias||16|\n info|1||||\n list|-1||||\nChannel|chan|16|\n info|1||||\n list|-1||||\n"
         "Picture||32|\n info|3||||\n"},
        {"commands need a module with a code; a command without a word is filed under the empty word",
         "[Channel]\ncommand = chan\ninstruction = 0x10\n[Bare]\ncommand = bare\n",
         "[by word]\ncommand = a\nbelong module = chan\n[codeless]\ncommand = b\nbelong module = Bare\n"
         "[no word]\nbelong module = Channel\ndescription = nameless\n",
         "", "Bare|bare|-1|\nChannel|chan|16|\n |-1||||nameless\n"},
        {"without mods.conf every command is dropped, and cmds.conf is still read", kMissing,
         kLong + "[x]\ncommand = x\nbelong module = M\n",
         "file path error or open file failure\nParseModules fail\n" + kLongTitle + "Init -1, status 1\n", ""},
        {"empty files", "", "", "mods.conf is empty!\nParseModules fail\ncmds.conf is empty!\nParseCmds fail\n"
         "Init -1, status 1\n", ""},
    };
    for (const auto& c : cases) {
        TempDir dir;
        for (const auto& file : {std::make_pair("mods.conf", c.mods), std::make_pair("cmds.conf", c.cmds)}) {
            if (file.second != kMissing) {
                dir.Write(file.first, file.second);
            }
        }
        ZoFileParse parse;
        testing::internal::CaptureStdout();
        const int result = parse.Init(dir.Path());
        const int status = parse.GetIOExceptionStatus();
        const std::string failed = "Init " + std::to_string(result) + ", status " + std::to_string(status) + "\n";
        EXPECT_EQ(c.messages, testing::internal::GetCapturedStdout() + (result != 0 || status != 0 ? failed : ""))
            << c.what;
        EXPECT_EQ(c.tables, Tables(parse)) << c.what;
        // Lookups that miss yield empty values and create nothing.
        const unsigned int lists = parse.GetCmdPrintTags(16, "?").Size() + parse.GetModHoldCmds(99).Size();
        EXPECT_EQ("-1 -1 0", parse.GetModToCmd("?") + parse.GetModDescrip("?") + parse.GetCmdPrintFmt(16, "?") +
                                 parse.GetCmdParaFmt(0x99, "?") + parse.GetCmdDescrip(16, "?") +
                                 std::to_string(parse.GetModInstruct("?")) + " " +
                                 std::to_string(parse.GetCmdInstruct(16, "?")) + " " + std::to_string(lists));
        EXPECT_EQ(c.tables, Tables(parse)) << c.what;
    }
}

}  // namespace
