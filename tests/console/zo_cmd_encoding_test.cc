#include <string>

#include <gtest/gtest.h>

#include "console_fixture.h"
#include "stdout_capture.h"

namespace {

// What ParseCmd left: its result, the request bytes and the printed text.
struct Encoded {
    int result;
    std::string request;
    std::string printed;
};

// Encodes "cmd ARGS" for a command of instruction 0x12, the arguments as the
// dispatcher hands them over (one blank appended).
Encoded Encode(const std::string& paraFmt, const std::string& args, const std::string& descrip = "show one channel")
{
    ConsoleFixture fixture({{"cmd", "0x12", paraFmt, "", "", descrip}});
    android::Parcel request;
    std::istringstream stream(args + " ");
    StdoutCapture out;
    Encoded encoded;
    encoded.result = fixture.Console().ParseCmd("cmd", request, stream);
    encoded.request = HexWords(request.data(), request.dataSize());
    encoded.printed = out.Text();
    return encoded;
}

const char* const kHelp = "parse para err. cmd help info: \n\tshow one channel\n";
const char* const kNoS = "current is no support 'S' format\n";

}  // namespace

TEST(ParseCmd, EncodesInstructionThenOneValuePerLetter)
{
    const struct {
        const char* paraFmt;
        const char* args;
        int result;
        const char* request;
        const char* printed;
    } cases[] = {
        {"dDfFs", "5 -9000000000 1.5 2.25 hello", 0,
         "12000000 05000000 00e68ee7 fdffffff 0000c03f 00000000 00000240 05000000 68006500 6c006c00 6f000000", ""},
        {"s", "hi", 0, "12000000 02000000 68006900 00000000", ""},  // units padded to a word
        {"", "1 2 3", 0, "12000000", ""},
        // Integers: hex after 0x/0X, decimal otherwise, junk after the number
        // dropped, no number gives 0, overflow clamps, a leading zero is not octal.
        {"dd", "1 0x1F", 0, "12000000 01000000 1f000000", ""},
        {"d", "0XfF", 0, "12000000 ff000000", ""},
        {"d", "-5", 0, "12000000 fbffffff", ""},
        {"d", "12abc", 0, "12000000 0c000000", ""},
        {"d", "0xFFFFFFFF", 0, "12000000 ffffff7f", ""},
        {"d", "4294967295", 0, "12000000 ffffff7f", ""},
        {"d", "-4294967295", 0, "12000000 00000080", ""},
        {"d", "-0x5", 0, "12000000 00000000", ""},
        {"dd", "010 7", 0, "12000000 0a000000 07000000", ""},
        {"d", "abc", 0, "12000000 00000000", ""},
        {"d", "", -1, "12000000", kHelp},
        // Wide integers take digits only; the rest of the word is the next argument.
        {"D", "-9000000000", 0, "12000000 00e68ee7 fdffffff", ""},
        {"Ds", "0x10", 0, "12000000 00000000 00000000 03000000 78003100 30000000", ""},
        {"D", "abc", -1, "12000000", kHelp},
        {"D", "99999999999999999999", -1, "12000000", kHelp},
        // Floating point needs a number in range.
        {"f", "-1e3", 0, "12000000 00007ac4", ""},
        {"f", "", -1, "12000000", kHelp},
        {"f", "abc", -1, "12000000", kHelp},
        {"f", "1e50", -1, "12000000", kHelp},
        {"F", "x", -1, "12000000", kHelp},
        // A string takes one word; it is already written when a missing integer ends the walk.
        {"s", "hello world", 0, "12000000 05000000 68006500 6c006c00 6f000000", ""},
        {"sd", "name", -1, "12000000 04000000 6e006100 6d006500 00000000", kHelp},
        // 'S' reads nothing: the argument goes to the letter after it.
        {"dS", "5", 0, "12000000 05000000", kNoS},
        {"Sd", "7", 0, "12000000 07000000", kNoS},
        // An invalid letter stops the walk.
        {"d d", "1 2", -1, "12000000 01000000", "para format err.\n"},
        {"x", "1", -1, "12000000", "para format err.\n"},
    };
    for (const auto& c : cases) {
        const Encoded e = Encode(c.paraFmt, c.args);
        EXPECT_EQ(c.result, e.result) << c.paraFmt << " " << c.args;
        EXPECT_EQ(c.request, e.request) << c.paraFmt << " " << c.args;
        EXPECT_EQ(c.printed, e.printed) << c.paraFmt << " " << c.args;
    }
    EXPECT_EQ("parse para err. cmd help info: \n\t\n", Encode("dd", "1", "").printed);
}

TEST(ParseCmd, StringCmdPassesOverCapitalS)
{
    ConsoleFixture fixture({});
    android::Parcel request;
    std::istringstream stream("word ");
    ZO_BOOL ok = ZO_TRUE;
    StdoutCapture out;
    const int result = fixture.Console().ParseStringCmd(ZO_TRUE, ok, stream, request);
    EXPECT_EQ(kNoS, out.Text());
    EXPECT_EQ(0, result);
    EXPECT_TRUE(ok);
    EXPECT_EQ(0u, request.dataSize());
}

TEST(ParseCmd, NeedsALoadedCatalogue)
{
    ZoCmdDebug console;
    android::Parcel request;
    std::istringstream stream(" ");
    StdoutCapture out;
    const int result = console.ParseCmd("cmd", request, stream);
    EXPECT_EQ("please load cfg before call <ParseCmd>.\n", out.Text());
    EXPECT_EQ(-1, result);
    EXPECT_EQ(0u, request.dataSize());
}
