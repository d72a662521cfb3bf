// ParseCmd: the bytes an argument text becomes, and what is printed on the way.
#include <gtest/gtest.h>

#include "console_peer.h"
#include "hex_words.h"

namespace {

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
        {"", "1 2 3", 0, "12000000", ""},
        // How each letter reads its word is the format table's (tests/format, and the encoder fuzz harness checks
        // the request against it); here: an argument that cannot be read ends the walk with the help text.
        {"D", "abc", -1, "12000000", kHelp},
        // Values before a missing argument are already written.
        {"sd", "name", -1, "12000000 04000000 6e006100 6d006500 00000000", kHelp},
        // S reads nothing: the argument goes to the letter after it.
        {"Sd", "7", 0, "12000000 07000000", kNoS},
        // An invalid letter stops the walk after the values before it.
        {"d d", "1 2", -1, "12000000 01000000", "para format err.\n"},
    };
    TestConsole console;
    for (const auto& c : cases) {
        console.Load({{"cmd", "0x12", c.paraFmt, "", "", "show one channel"}});
        android::Parcel request;
        std::istringstream args(std::string(c.args) + " ");
        testing::internal::CaptureStdout();
        EXPECT_EQ(c.result, console.Get().ParseCmd("cmd", request, args)) << c.paraFmt << " " << c.args;
        EXPECT_EQ(c.request, HexWords(request.data(), request.dataSize())) << c.paraFmt << " " << c.args;
        EXPECT_EQ(c.printed, testing::internal::GetCapturedStdout()) << c.paraFmt << " " << c.args;
    }
}
