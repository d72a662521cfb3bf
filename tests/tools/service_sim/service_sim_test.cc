// zo_service_sim as a real second process on a real mapped page.
#include <cstring>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "sim_harness.h"
#include "temp_dir.h"

namespace {

const char kMods[] =
    "[Channel]\ncommand = chan\ninstruction = 0x10\n"
    "[Picture]\ncommand = pic\ninstruction = 0x20\n";
// 'rename' shares the code 0x11 with 'count' and loses: Channel comes first.
const char kCmds[] =
    "[count]\ncommand = count\nbelong module = Channel\ninstruction = 0x11\nprint format = d\nprint tags = n\n"
    "[info]\ncommand = info\nbelong module = Channel\ninstruction = 0x12\npara format = dDfFsS\n"
    "print format = dDfFsS\nprint tags = a,b,c,d,e,f\n"
    "[rename]\ncommand = rename\nbelong module = Picture\ninstruction = 0x11\npara format = s\n";

// A test directory holding the catalogue; Start runs the simulator on it.
struct SimFixture {
    SimFixture()
    {
        dir.Write("mods.conf", kMods);
        dir.Write("cmds.conf", kCmds);
    }
    void Start(std::vector<std::string> options = {})
    {
        options.insert(options.begin(), dir.Path());
        sim.reset(new SimProcess(options, dir.File("sim.err")));
    }
    std::string Errors() const
    {
        std::ifstream in(dir.File("sim.err"));
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    TempDir dir;
    std::unique_ptr<SimProcess> sim;
};

android::Parcel* Request(int32_t code)
{
    auto* p = new android::Parcel;
    p->writeInt32(code);
    return p;
}

std::vector<uint8_t> Bytes(const android::Parcel& p)
{
    return std::vector<uint8_t>(p.data(), p.data() + p.dataSize());
}

std::vector<uint8_t> StatusOnly(int32_t status)
{
    android::Parcel p;
    p.writeInt32(status);
    return Bytes(p);
}

}  // namespace

TEST(ServiceSim, DecodesEachLetterAndAnswersBuiltInValues)
{
    SimFixture f;
    f.Start();
    ConsolePage page(f.dir.File(".tv"));
    ASSERT_TRUE(page.Mapped()) << "the simulator did not create .tv at 4096 bytes";

    std::unique_ptr<android::Parcel> info(Request(0x12));
    info->writeInt32(-5);
    info->writeInt64(-9000000000);
    info->writeFloat(0.1f);
    info->writeDouble(2.25);
    info->writeString16(android::String16("a\"b\tc"));
    page.Post(*info);
    ASSERT_TRUE(page.WaitReply());
    EXPECT_EQ(f.sim->ReadLine(), "info -5 -9000000000 0.1 2.25 \"a\\\"b\\x09c\"");
    EXPECT_EQ(page.Flag() & 3u, 3u) << "the request bit stays, the reply bit is set";

    android::Parcel expected;
    expected.writeInt32(0);
    expected.writeInt32(42);
    expected.writeInt64(9000000000);
    expected.writeFloat(1.5f);
    expected.writeDouble(2.25);
    expected.writeString16(android::String16("sim"));
    EXPECT_EQ(page.Size(), expected.dataSize());
    EXPECT_EQ(page.Reply(), Bytes(expected));

    // The next request clears the old reply bit; the shared code goes to the first command.
    std::unique_ptr<android::Parcel> count(Request(0x11));
    page.Post(*count);
    ASSERT_TRUE(page.WaitReply());
    EXPECT_EQ(f.sim->ReadLine(), "count");
    android::Parcel countReply;
    countReply.writeInt32(0);
    countReply.writeInt32(42);
    EXPECT_EQ(page.Reply(), Bytes(countReply));
    EXPECT_NE(f.Errors().find("instruction 0x11 of 'rename' (Picture) is taken by 'count' (Channel)"),
              std::string::npos);
}

TEST(ServiceSim, RefusesUnknownCodesAndMalformedRequests)
{
    SimFixture f;
    f.Start();
    ConsolePage page(f.dir.File(".tv"));
    ASSERT_TRUE(page.Mapped());

    std::unique_ptr<android::Parcel> unknown(Request(0x99));
    page.Post(*unknown);
    ASSERT_TRUE(page.WaitReply());
    EXPECT_EQ(f.sim->ReadLine(), "unknown instruction 0x99 (4 bytes)");
    EXPECT_EQ(page.Reply(), StatusOnly(-1));

    std::unique_ptr<android::Parcel> shortInfo(Request(0x12));
    shortInfo->writeInt32(7);
    page.Post(*shortInfo);
    ASSERT_TRUE(page.WaitReply());
    EXPECT_EQ(f.sim->ReadLine(), "info 7 [bad request: nothing left for 'D']");
    EXPECT_EQ(page.Reply(), StatusOnly(-2));

    std::unique_ptr<android::Parcel> surplus(Request(0x11));
    surplus->writeInt32(1);
    page.Post(*surplus);
    ASSERT_TRUE(page.WaitReply());
    EXPECT_EQ(f.sim->ReadLine(), "count [bad request: 4 bytes left over]");
    EXPECT_EQ(page.Reply(), StatusOnly(-2));

    page.PostBytes({0x11, 0, 0, 0}, 5000);
    ASSERT_TRUE(page.WaitReply());
    EXPECT_EQ(f.sim->ReadLine(), "bad request: u32Size 5000 is more than 4088");
    EXPECT_EQ(page.Reply(), StatusOnly(-2));
}

TEST(ServiceSim, AnswersFromRepliesFileAndGrowsShortPage)
{
    SimFixture f;
    const std::string replies = f.dir.Write("replies", "# code status values\n0x11 0 7 8\n0x12 0x80000001\n");
    f.dir.Write(".tv", "short");
    f.Start({"--replies", replies});
    ConsolePage page(f.dir.File(".tv"));
    ASSERT_TRUE(page.Mapped()) << "a short .tv is grown to 4096 bytes";

    std::unique_ptr<android::Parcel> count(Request(0x11));
    page.Post(*count);
    ASSERT_TRUE(page.WaitReply());
    android::Parcel expected;
    expected.writeInt32(0);
    expected.writeInt32(7);
    expected.writeInt32(8);
    EXPECT_EQ(page.Reply(), Bytes(expected));

    std::unique_ptr<android::Parcel> info(Request(0x12));
    info->writeInt32(1);
    info->writeInt64(2);
    info->writeFloat(3);
    info->writeDouble(4);
    info->writeString16(android::String16(""));
    page.Post(*info);
    ASSERT_TRUE(page.WaitReply());
    EXPECT_EQ(f.sim->ReadLine(), "count");
    EXPECT_EQ(f.sim->ReadLine(), "info 1 2 3 4 \"\"");
    EXPECT_EQ(page.Reply(), StatusOnly(static_cast<int32_t>(0x80000001u)));
}

TEST(ServiceSim, DelayHoldsTheAnswerBack)
{
    SimFixture f;
    f.Start({"--delay", "300"});
    ConsolePage page(f.dir.File(".tv"));
    ASSERT_TRUE(page.Mapped());
    std::unique_ptr<android::Parcel> count(Request(0x11));
    const auto posted = Clock::now();
    page.Post(*count);
    EXPECT_EQ(f.sim->ReadLine(), "count") << "the line comes before the delay";
    ASSERT_TRUE(page.WaitReply());
    EXPECT_GE(Clock::now() - posted, milliseconds(300));
}

TEST(ServiceSim, NoReplyTakesRequestsButNeverAnswers)
{
    SimFixture f;
    f.Start({"--no-reply"});
    ConsolePage page(f.dir.File(".tv"));
    ASSERT_TRUE(page.Mapped());
    std::unique_ptr<android::Parcel> count(Request(0x11));
    page.Post(*count);
    EXPECT_EQ(f.sim->ReadLine(), "count");
    EXPECT_FALSE(page.WaitReply(milliseconds(200)));
    EXPECT_EQ(page.Flag(), 0u) << "the request bit is cleared so a new request stands out";
    // A second console's request is still seen, once.
    page.Post(*count);
    EXPECT_EQ(f.sim->ReadLine(), "count");
    EXPECT_EQ(f.sim->ReadLine(milliseconds(100)), "<timeout>");
}

TEST(ServiceSim, StatusSizeAndGarbageFaults)
{
    std::unique_ptr<android::Parcel> count(Request(0x11));
    {
        SimFixture f;
        f.Start({"--status", "0x80000001"});
        ConsolePage page(f.dir.File(".tv"));
        ASSERT_TRUE(page.Mapped());
        page.Post(*count);
        ASSERT_TRUE(page.WaitReply());
        EXPECT_EQ(page.Reply(), StatusOnly(static_cast<int32_t>(0x80000001u)));
        // An unknown code keeps its own status.
        std::unique_ptr<android::Parcel> unknown(Request(0x99));
        page.Post(*unknown);
        ASSERT_TRUE(page.WaitReply());
        EXPECT_EQ(page.Reply(), StatusOnly(-1));
    }
    {
        SimFixture f;
        f.Start({"--size", "4294967295"});
        ConsolePage page(f.dir.File(".tv"));
        ASSERT_TRUE(page.Mapped());
        page.Post(*count);
        ASSERT_TRUE(page.WaitReply());
        EXPECT_EQ(page.Size(), 0xffffffffu);
        const std::vector<uint8_t> reply = page.Reply();
        EXPECT_EQ(std::vector<uint8_t>(reply.begin(), reply.begin() + 8), (std::vector<uint8_t>{0, 0, 0, 0, 42, 0, 0, 0}))
            << "the payload is the real reply";
    }
    {
        SimFixture f;
        f.Start({"--garbage", "16"});
        ConsolePage page(f.dir.File(".tv"));
        ASSERT_TRUE(page.Mapped());
        page.Post(*count);
        ASSERT_TRUE(page.WaitReply());
        const std::vector<uint8_t> reply = page.Reply();
        ASSERT_EQ(reply.size(), 20u);
        EXPECT_EQ(std::vector<uint8_t>(reply.begin(), reply.begin() + 4), StatusOnly(0));
        EXPECT_NE(std::vector<uint8_t>(reply.begin() + 4, reply.end()), std::vector<uint8_t>(16, 0));
    }
}

TEST(ServiceSim, EndsWithZeroOnSigtermAndSigint)
{
    SimFixture f;
    f.Start();
    ConsolePage page(f.dir.File(".tv"));
    ASSERT_TRUE(page.Mapped());
    const int status = f.sim->Signal(SIGTERM);
    ASSERT_TRUE(WIFEXITED(status)) << "wait status " << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);

    // Also in the middle of a long delay.
    f.Start({"--delay", "60000"});
    std::unique_ptr<android::Parcel> count(Request(0x11));
    page.Post(*count);
    EXPECT_EQ(f.sim->ReadLine(), "count");
    const int interrupted = f.sim->Signal(SIGINT);
    ASSERT_TRUE(WIFEXITED(interrupted)) << "wait status " << interrupted;
    EXPECT_EQ(WEXITSTATUS(interrupted), 0);
}

TEST(ServiceSim, BadArgumentsGiveUsageAndExitTwo)
{
    SimFixture f;
    const std::string badReplies = f.dir.Write("replies", "0x99 0\n");
    const std::vector<std::vector<std::string>> cases = {
        {},
        {f.dir.Path(), "--bogus"},
        {f.dir.Path(), "--delay"},
        {f.dir.Path(), "--no-reply", "--status", "1"},
        {f.dir.File("missing")},
        {f.dir.Path(), "--replies", badReplies},
    };
    for (const auto& args : cases) {
        SimProcess sim(args, f.dir.File("sim.err"));
        const int status = sim.WaitExit();
        ASSERT_TRUE(WIFEXITED(status)) << args.size() << " arguments: wait status " << status;
        EXPECT_EQ(WEXITSTATUS(status), 2) << f.Errors();
        EXPECT_NE(f.Errors().find(args.size() == 3 && args[1] == "--replies" ? "line 1:" : "usage:"),
                  std::string::npos)
            << f.Errors();
    }
}
