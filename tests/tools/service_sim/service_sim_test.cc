// zo_service_sim as a real second process on a real mapped page.

#include <algorithm>

#include <gtest/gtest.h>

#include "sim_process.h"

namespace {

// 'rename' shares the code 0x11 with 'count' and loses: Channel sorts first. The request lines and every decoding
// fault (no handler, a request too long, values missing) are the service library's (tests/service); here, what the
// simulator adds.
void WriteCatalogue(const TempDir& dir)
{
    dir.Write("mods.conf", "[Channel]\ninstruction = 0x10\n[Picture]\ninstruction = 0x20\n");
    dir.Write("cmds.conf",
              "[a]\ncommand = count\nbelong module = Channel\ninstruction = 0x11\nprint format = d\n"
              "[b]\ncommand = info\nbelong module = Channel\ninstruction = 0x12\npara format = dDfFsS\n"
              "print format = dDfFsS\n[c]\ncommand = rename\nbelong module = Picture\ninstruction = 0x11\n"
              "[d]\ncommand = bad\nbelong module = Channel\ninstruction = 0x13\npara format = dx\n"
              "[e]\ncommand = name\nbelong module = Channel\ninstruction = 0x14\npara format = sSs\n");
}

const char kCount[] = "11000000";

}  // namespace

TEST(ServiceSim, DecodesEachRequestAndAnswersIt)
{
    SimProcess sim;
    WriteCatalogue(sim.dir);
    const std::string replies = sim.dir.Write("replies", "# code status values\n0x11 0 7 010\n0x12 0x80000001\n");
    sim.dir.Write(kShmSwapFileName, "short");  // grown to a page
    // claimed: u32Size of the reply; 0 for its length.
    const struct { std::vector<std::string> options; std::string request, line, reply; uint32_t claimed; } cases[] = {
        {{}, "12000000 fbffffff 00e68ee7 fdffffff cdcccc3d 00000000 00000240 05000000 61002200 62000900 63000000",
         "info -5 -9000000000 0.1 2.25 \"a\\\"b\\x09c\"",
         "00000000 2a000000 001a7118 02000000 0000c03f 00000000 00000240 03000000 73006900 6d000000", 0},
        {{"--replies", replies}, kCount, "count", "00000000 07000000 0a000000", 0},  // 010 is ten
        {{"--replies", replies}, "12000000 01000000 02000000 00000000 00004040 00000000 00001040 00000000 00000000",
         "info 1 2 3 4 \"\"", "01000080", 0},
        {{"--status", "0x80000001"}, kCount, "count", "01000080", 0},
        {{"--status", "0x80000001"}, "99000000", "no handler for instruction 0x99", "ffffffff", 0},
        {{"--size", "4294967295"}, kCount, "count", "00000000 2a000000", 0xffffffff},
        {{"--garbage", "8"}, kCount, "count", "00000000 f74affd8 1ee5d665", 0},  // the same bytes every run
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(sim.Use(c.options)) << sim.Errors();
        EXPECT_EQ(c.line, sim.Ask(c.request));
        EXPECT_EQ(c.reply, sim.Reply().substr(0, c.reply.size())) << c.line;
        EXPECT_EQ(c.claimed != 0 ? c.claimed : uint32_t(FromHex(c.reply).size()), ShmLoadSize(sim.Page())) << c.line;
        EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, ShmLoadFlag(sim.Page())) << "the request bit stays";
    }
    EXPECT_NE(sim.Errors().find("'rename' (Picture) shares instruction 0x11 with 'count' (Channel), which answers it"),
              std::string::npos);
}

TEST(ServiceSim, DelayAndNoReplyHoldTheAnswerBackSignalsAndALostPageEndIt)
{
    SimProcess sim;
    WriteCatalogue(sim.dir);
    ASSERT_TRUE(sim.Start({"--delay", "0300"}));  // decimal: octal would be 192
    const auto posted = Clock::now();
    EXPECT_EQ("count", sim.Ask(kCount)) << "the line comes before the delay";
    // Another console's request replaces it during the wait; that one waits its own delay.
    EXPECT_EQ("no handler for instruction 0x99", sim.Ask("99000000"));
    EXPECT_EQ("ffffffff", sim.Reply()) << "the answer to the first one is dropped";
    EXPECT_GE(Clock::now() - posted, SimProcess::Ms(600));
    EXPECT_NE(sim.Errors().find("holds another request now: the answer to 'count' is dropped"), std::string::npos);
    EXPECT_EQ(0, sim.Signal(SIGTERM));
    ASSERT_TRUE(sim.Start({"--no-reply"}));
    for (int repeat = 0; repeat < 2; ++repeat) {  // an identical repeat is seen again
        EXPECT_EQ("count", sim.Ask(kCount));
        EXPECT_EQ("", sim.Reply(SimProcess::Ms(200)));
        EXPECT_EQ(0u, ShmLoadFlag(sim.Page())) << "the request bit is cleared so a new request stands out";
    }
    EXPECT_EQ("<timeout>", sim.ReadLine(SimProcess::Ms(100))) << "each request is taken once";
    ASSERT_TRUE(sim.Start({"--delay", "60000"}));
    EXPECT_EQ("count", sim.Ask(kCount));
    EXPECT_EQ(0, sim.Signal(SIGINT)) << "also in the middle of a delay";
    ASSERT_TRUE(sim.Start());
    EXPECT_EQ("count", sim.Ask(kCount)) << "serving, its guard in place";
    int status = sim.Signal(SIGBUS);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGBUS) << "a bus error sent, not raised on the page";

    // The swap file cut to nothing under the mapping, while polling and while waiting to answer.
    if (std::getenv("ZO_TEST_EMULATOR") != nullptr) {
        GTEST_SKIP() << "qemu-arm dies of the bus error itself instead of passing it to the program";
    }
    const std::string page = ShmSwapFilePath(sim.dir.Path());
    for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--delay", "200"}}) {
        ASSERT_TRUE(sim.Start(options));
        if (!options.empty()) {
            EXPECT_EQ("count", sim.Ask(kCount));
        }
        ASSERT_EQ(0, truncate(page.c_str(), 0));
        status = sim.Signal(0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
        EXPECT_NE(sim.Errors().find("swap file " + page + " was truncated while mapped"), std::string::npos)
            << sim.Errors();
    }
}

// A bad option or replies file stops the simulator at start-up with status 2, a page that cannot be used with 1 and a
// message naming the swap file (the library's refusals have their own tests).
TEST(ServiceSim, BadArgumentsRepliesFilesAndPagesStopItAtStartUp)
{
    SimProcess sim;
    WriteCatalogue(sim.dir);
    const std::string d = sim.dir.Path();
    std::string tooLong = "0x12 0";
    for (int i = 0; i < 93; ++i) {
        tooLong += " 1 2 3 4 xxxxxx";  // 44 bytes a row
    }
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{}, "usage:"}, {{d, "--delay", "1x"}, "usage:"}, {{d, "--garbage", "4085"}, "usage:"},
        {{d, "--no-reply", "--status", "1"}, "usage:"}, {{d, "extra"}, "usage:"}, {{d + "/none"}, "usage:"},
        {{"0x99 0"}, "line 1: instruction 0x99 is not a command"}, {{"zz 0"}, "line 1: 'zz' is not an instruction"},
        {{"0x11 0x100000000"}, "line 1: a status must follow"}, {{"#\n0x11 0\n0x11 1"}, "line 3: instruction 0x11 has"},
        {{"0x11 0 4294967296"}, "line 1: '4294967296' is not a value for 'd' of 'count'"},
        {{"0x12 0 1 2 3 4 \"open"}, "no closing quote"}, {{"0x12 0 1 2 3 4 \"a\"b"}, "text right after a closing"},
        {{"0x14 0 1"}, "line 1: the print format of 'name' takes no values"},
        {{tooLong}, "line 1: the reply takes 4096 bytes, more than 4088"},
        {{std::string("#\n0x12 0 1 2 3 4 \"a") + '\0' + "b\""}, "line 2: word 7 holds a NUL byte"},
        {{d, "--replies", d}, "replies file " + d + ": cannot be read: Is a directory"},
    };
    for (const auto& c : cases) {
        const bool replies = c.first.size() == 1 && c.second != "usage:";
        const int status = sim.Run(replies ? std::vector<std::string>{d, "--replies", sim.dir.Write("r", c.first[0])}
                                           : c.first);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << c.second << ": " << status;
        // The reason and the usage line or the pointer to --help, not the whole help.
        const std::string errors = sim.Errors();
        EXPECT_NE(errors.find(c.second), std::string::npos) << errors;
        EXPECT_EQ(2, std::count(errors.begin(), errors.end(), '\n')) << errors;
    }
    const std::string page = ShmSwapFilePath(d);
    mkfifo(page.c_str(), 0600);
    const int status = sim.Run({d});
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
    EXPECT_NE(sim.Errors().find(page + " is a FIFO, not a regular file"), std::string::npos) << sim.Errors();
}

// The replies file that --help shows runs on the example catalogue, as it says.
TEST(ServiceSim, HelpsRepliesExampleAnswersTheExamples)
{
    SimProcess sim;
    const int status = sim.Run({"--help"});
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    std::string line;
    while ((line = sim.ReadLine()).find("Example,") == std::string::npos && line != "<timeout>") {
    }
    sim.ReadLine();  // "for the catalogue in examples/ ..."
    std::string example;
    while ((line = sim.ReadLine()).compare(0, 2, "  ") == 0) {
        example += line + "\n";
    }
    sim.dir.Write("mods.conf", ReadFile(ZO_EXAMPLES_DIR "/mods.conf"));
    sim.dir.Write("cmds.conf", ReadFile(ZO_EXAMPLES_DIR "/cmds.conf"));
    ASSERT_TRUE(sim.Start({"--replies", sim.dir.Write("replies", example)})) << example << sim.Errors();
    const struct { const char* request; const char* reply; } cases[] = {
        {"11000000", "00000000 03000000"},
        {"15000000", "00000000 01000000 903b0700 0d000000 4e006f00 72007400 68006700 61007400 65002000 4f006e00 "
                     "65000000 02000000 903b0700 04000000 4e006500 77007300 00000000"},
        {"13000000 01000000", "01000080"},
    };
    for (const auto& c : cases) {
        sim.Ask(c.request);
        EXPECT_EQ(c.reply, sim.Reply()) << example;
    }
    EXPECT_EQ(0u, sim.Errors().find("zo_service_sim: answering 15 commands")) << sim.Errors();
}
