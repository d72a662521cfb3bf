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

// Encodes "cmd ARGS" for a command of instruction 0x12 with the given
// parameter format, with the argument text as the dispatcher hands it over
// (one blank appended).
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

TEST(ParseCmd, WritesInstructionThenOneValuePerLetter)
{
    const Encoded e = Encode("dDfFs", "5 -9000000000 1.5 2.25 hello");
    EXPECT_EQ(0, e.result);
    EXPECT_EQ("12000000 05000000 00e68ee7 fdffffff 0000c03f 00000000 00000240 05000000 68006500 6c006c00 6f000000",
              e.request);
    EXPECT_EQ("", e.printed);

    // A string whose units need padding, and the empty format that takes no arguments.
    EXPECT_EQ("12000000 02000000 68006900 00000000", Encode("s", "hi").request);
    const Encoded none = Encode("", "1 2 3");
    EXPECT_EQ(0, none.result);
    EXPECT_EQ("12000000", none.request);
}

TEST(ParseCmd, IntegerWordRules)
{
    // Hex after 0x/0X, decimal otherwise, junk after the number dropped,
    // no number gives 0, overflow clamps, a leading zero is not octal.
    EXPECT_EQ("12000000 01000000 1f000000", Encode("dd", "1 0x1F").request);
    EXPECT_EQ("12000000 ff000000", Encode("d", "0XfF").request);
    EXPECT_EQ("12000000 fbffffff", Encode("d", "-5").request);
    EXPECT_EQ("12000000 0c000000", Encode("d", "12abc").request);
    EXPECT_EQ("12000000 ffffff7f", Encode("d", "0xFFFFFFFF").request);
    EXPECT_EQ("12000000 ffffff7f", Encode("d", "4294967295").request);
    EXPECT_EQ("12000000 00000080", Encode("d", "-4294967295").request);
    EXPECT_EQ("12000000 00000000", Encode("d", "-0x5").request);
    EXPECT_EQ("12000000 0a000000 07000000", Encode("dd", "010 7").request);
    const Encoded junk = Encode("d", "abc");
    EXPECT_EQ(0, junk.result);
    EXPECT_EQ("12000000 00000000", junk.request);
    EXPECT_EQ("", junk.printed);
}

TEST(ParseCmd, WideIntegerTakesDigitsOnly)
{
    EXPECT_EQ("12000000 00e68ee7 fdffffff", Encode("D", "-9000000000").request);
    // The digits stop at the 'x'; the rest of the word is the next argument.
    const Encoded split = Encode("Ds", "0x10");
    EXPECT_EQ(0, split.result);
    EXPECT_EQ("12000000 00000000 00000000 03000000 78003100 30000000", split.request);
    for (const char* bad : {"abc", "99999999999999999999"}) {
        const Encoded e = Encode("D", bad);
        EXPECT_EQ(-1, e.result) << bad;
        EXPECT_EQ(kHelp, e.printed) << bad;
        EXPECT_EQ("12000000", e.request) << bad;
    }
}

TEST(ParseCmd, FloatingPointNeedsANumberInRange)
{
    EXPECT_EQ("12000000 0000c03f 00000000 00000240", Encode("fF", "1.5 2.25").request);
    EXPECT_EQ("12000000 00007ac4", Encode("f", "-1e3").request);
    for (const char* bad : {"", "abc", "1e50"}) {
        const Encoded e = Encode("f", bad);
        EXPECT_EQ(-1, e.result) << bad;
        EXPECT_EQ(kHelp, e.printed) << bad;
    }
    EXPECT_EQ(kHelp, Encode("F", "x").printed);
}

TEST(ParseCmd, StringTakesOneWord)
{
    const Encoded surplus = Encode("s", "hello world");
    EXPECT_EQ(0, surplus.result);
    EXPECT_EQ("12000000 05000000 68006500 6c006c00 6f000000", surplus.request);

    // The string is already written when the missing integer ends the walk.
    const Encoded missing = Encode("sd", "name");
    EXPECT_EQ(-1, missing.result);
    EXPECT_EQ("12000000 04000000 6e006100 6d006500 00000000", missing.request);
    EXPECT_EQ(kHelp, missing.printed);
}

TEST(ParseCmd, MissingArgumentPrintsTheHelpText)
{
    const Encoded e = Encode("d", "");
    EXPECT_EQ(-1, e.result);
    EXPECT_EQ(kHelp, e.printed);
    EXPECT_EQ("parse para err. cmd help info: \n\t\n", Encode("dd", "1", "").printed);
}

TEST(ParseCmd, CapitalSIsPassedOver)
{
    const Encoded e = Encode("dS", "5");
    EXPECT_EQ(0, e.result);
    EXPECT_EQ("12000000 05000000", e.request);
    EXPECT_EQ(kNoS, e.printed);
    // Nothing is read for it: the argument goes to the letter after it.
    EXPECT_EQ("12000000 07000000", Encode("Sd", "7").request);

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

TEST(ParseCmd, InvalidFormatLetterStops)
{
    const Encoded blank = Encode("d d", "1 2");
    EXPECT_EQ(-1, blank.result);
    EXPECT_EQ("12000000 01000000", blank.request);
    EXPECT_EQ("para format err.\n", blank.printed);
    const Encoded letter = Encode("x", "1");
    EXPECT_EQ(-1, letter.result);
    EXPECT_EQ("12000000", letter.request);
    EXPECT_EQ("para format err.\n", letter.printed);
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
