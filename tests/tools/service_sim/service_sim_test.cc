// zo_service_sim as a real second process on a real mapped page.
#include <fstream>
#include <memory>
#include <sstream>

#include <gtest/gtest.h>

#include "sim_harness.h"
#include "temp_dir.h"

namespace {

// 'rename' shares the code 0x11 with 'count' and loses: Channel sorts first.
const char kMods[] = "[Channel]\ninstruction = 0x10\n[Picture]\ninstruction = 0x20\n";
const char kCmds[] =
    "[a]\ncommand = count\nbelong module = Channel\ninstruction = 0x11\nprint format = d\n"
    "[b]\ncommand = info\nbelong module = Channel\ninstruction = 0x12\npara format = dDfFsS\nprint format = dDfFsS\n"
    "[c]\ncommand = rename\nbelong module = Picture\ninstruction = 0x11\npara format = s\n";

// A directory with the catalogue; Start runs the simulator on it and maps the page.
struct Sim {
    Sim()
    {
        dir.Write("mods.conf", kMods);
        dir.Write("cmds.conf", kCmds);
    }
    bool Start(std::vector<std::string> options = {})
    {
        options.insert(options.begin(), dir.Path());
        process.reset(new SimProcess(options, dir.File("sim.err")));
        page.reset(new ConsolePage(dir.File(".tv")));
        return page->Mapped();
    }
    // Posts a request and returns the simulator's line for it.
    std::string Ask(const Bytes& request)
    {
        page->Post(request);
        return process->ReadLine();
    }
    // The reply once the answer bit is set; nothing when it never is.
    Bytes Reply() { return page->WaitReply() ? page->Reply() : Bytes(); }
    std::string Errors() const
    {
        std::stringstream text;
        text << std::ifstream(dir.File("sim.err")).rdbuf();
        return text.str();
    }
    TempDir dir;
    std::unique_ptr<SimProcess> process;
    std::unique_ptr<ConsolePage> page;
};

}  // namespace

TEST(ServiceSim, DecodesEachLetterAndAnswersBuiltInValues)
{
    Sim sim;
    ASSERT_TRUE(sim.Start()) << "no .tv of 4096 bytes";
    EXPECT_EQ(sim.Ask(Encode([](android::Parcel& p) {
                  p.writeInt32(0x12);
                  p.writeInt32(-5);
                  p.writeInt64(-9000000000);
                  p.writeFloat(0.1f);
                  p.writeDouble(2.25);
                  p.writeString16(android::String16("a\"b\tc"));
              })),
              "info -5 -9000000000 0.1 2.25 \"a\\\"b\\x09c\"");
    ASSERT_TRUE(sim.page->WaitReply());
    EXPECT_EQ(sim.page->Flag(), 3u) << "the request bit stays";
    EXPECT_EQ(sim.page->Reply(), Encode([](android::Parcel& p) {
                  p.writeInt32(0);
                  p.writeInt32(42);
                  p.writeInt64(9000000000);
                  p.writeFloat(1.5f);
                  p.writeDouble(2.25);
                  p.writeString16(android::String16("sim"));
              }));

    // The next request clears the old reply bit; the shared code goes to the first command.
    EXPECT_EQ(sim.Ask(Ints({0x11})), "count");
    EXPECT_EQ(sim.Reply(), Ints({0, 42}));
    EXPECT_NE(sim.Errors().find("instruction 0x11 of 'rename' (Picture) is taken by 'count' (Channel)"),
              std::string::npos);
}

TEST(ServiceSim, RefusesUnknownCodesAndOversizedRequests)
{
    Sim sim;
    ASSERT_TRUE(sim.Start());
    EXPECT_EQ(sim.Ask(Ints({0x99})), "unknown instruction 0x99 (4 bytes)");
    EXPECT_EQ(sim.Reply(), Ints({-1}));
    sim.page->Post(Ints({0x11}), 5000);
    EXPECT_EQ(sim.process->ReadLine(), "bad request: u32Size 5000 is more than 4088");
    EXPECT_EQ(sim.Reply(), Ints({-2}));
}

TEST(ServiceSim, AnswersFromRepliesFileAndGrowsShortPage)
{
    Sim sim;
    const std::string replies = sim.dir.Write("replies", "# code status values\n0x11 0 7 8\n0x12 0x80000001\n");
    sim.dir.Write(".tv", "short");
    ASSERT_TRUE(sim.Start({"--replies", replies})) << "a short .tv is grown to 4096 bytes";
    EXPECT_EQ(sim.Ask(Ints({0x11})), "count");
    EXPECT_EQ(sim.Reply(), Ints({0, 7, 8}));
    EXPECT_EQ(sim.Ask(Encode([](android::Parcel& p) {
                  p.writeInt32(0x12);
                  p.writeInt32(1);
                  p.writeInt64(2);
                  p.writeFloat(3);
                  p.writeDouble(4);
                  p.writeString16(android::String16(""));
              })),
              "info 1 2 3 4 \"\"");
    EXPECT_EQ(sim.Reply(), Ints({static_cast<int32_t>(0x80000001u)}));
}

TEST(ServiceSim, DelayHoldsTheAnswerBack)
{
    Sim sim;
    ASSERT_TRUE(sim.Start({"--delay", "300"}));
    const auto posted = Clock::now();
    EXPECT_EQ(sim.Ask(Ints({0x11})), "count") << "the line comes before the delay";
    ASSERT_TRUE(sim.page->WaitReply());
    EXPECT_GE(Clock::now() - posted, milliseconds(300));
}

TEST(ServiceSim, NoReplyTakesRequestsButNeverAnswers)
{
    Sim sim;
    ASSERT_TRUE(sim.Start({"--no-reply"}));
    EXPECT_EQ(sim.Ask(Ints({0x11})), "count");
    EXPECT_FALSE(sim.page->WaitReply(milliseconds(200)));
    EXPECT_EQ(sim.page->Flag(), 0u) << "the request bit is cleared so a new request stands out";
    EXPECT_EQ(sim.Ask(Ints({0x11})), "count");
    EXPECT_EQ(sim.process->ReadLine(milliseconds(100)), "<timeout>") << "each request is taken once";
}

TEST(ServiceSim, StatusSizeAndGarbageFaults)
{
    Sim status;
    ASSERT_TRUE(status.Start({"--status", "0x80000001"}));
    status.Ask(Ints({0x11}));
    EXPECT_EQ(status.Reply(), Ints({static_cast<int32_t>(0x80000001u)}));
    status.Ask(Ints({0x99}));
    EXPECT_EQ(status.Reply(), Ints({-1})) << "an unknown code keeps its own status";

    Sim size;
    ASSERT_TRUE(size.Start({"--size", "4294967295"}));
    size.Ask(Ints({0x11}));
    ASSERT_TRUE(size.page->WaitReply());
    EXPECT_EQ(size.page->Size(), 0xffffffffu);
    const Bytes claimed = size.page->Reply();
    EXPECT_EQ(Bytes(claimed.begin(), claimed.begin() + 8), Ints({0, 42})) << "the payload is the real reply";

    Sim garbage;
    ASSERT_TRUE(garbage.Start({"--garbage", "16"}));
    garbage.Ask(Ints({0x11}));
    ASSERT_TRUE(garbage.page->WaitReply());
    const Bytes reply = garbage.page->Reply();
    ASSERT_EQ(reply.size(), 20u);
    EXPECT_EQ(Bytes(reply.begin(), reply.begin() + 4), Ints({0}));
    EXPECT_NE(Bytes(reply.begin() + 4, reply.end()), Bytes(16, 0));
}

TEST(ServiceSim, EndsWithZeroOnSigtermAndSigint)
{
    Sim sim;
    ASSERT_TRUE(sim.Start());
    const int status = sim.process->Signal(SIGTERM);
    ASSERT_TRUE(WIFEXITED(status)) << "wait status " << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);

    // Also in the middle of a long delay.
    ASSERT_TRUE(sim.Start({"--delay", "60000"}));
    EXPECT_EQ(sim.Ask(Ints({0x11})), "count");
    const int interrupted = sim.process->Signal(SIGINT);
    ASSERT_TRUE(WIFEXITED(interrupted)) << "wait status " << interrupted;
    EXPECT_EQ(WEXITSTATUS(interrupted), 0);
}

TEST(ServiceSim, BadArgumentsGiveUsageAndExitTwo)
{
    Sim sim;
    const std::string d = sim.dir.Path();
    const std::string badReplies = sim.dir.Write("replies", "0x99 0\n");
    const std::vector<std::vector<std::string>> cases = {
        {},  {d, "--bogus"}, {d, "--delay"}, {d, "--delay", "1x"}, {d, "--garbage", "4085"}, {d, "--size", "-1"},
        {d, "--no-reply", "--status", "1"}, {d, "extra"}, {sim.dir.File("missing")}, {d, "--replies", badReplies},
    };
    for (const auto& args : cases) {
        SimProcess process(args, sim.dir.File("sim.err"));
        const int status = process.WaitExit();
        ASSERT_TRUE(WIFEXITED(status)) << args.size() << " arguments: wait status " << status;
        EXPECT_EQ(WEXITSTATUS(status), 2) << sim.Errors();
        EXPECT_NE(sim.Errors().find(!args.empty() && args.back() == badReplies ? "line 1:" : "usage:"), std::string::npos)
            << sim.Errors();
    }
}
