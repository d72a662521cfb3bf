// zo_service_sim as a real second process on a real mapped page.
#include <gtest/gtest.h>

#include "sim_harness.h"

namespace {

// 'rename' shares the code 0x11 with 'count' and loses: Channel sorts first.
struct ExampleSim : Sim {
    ExampleSim()
        : Sim("[Channel]\ninstruction = 0x10\n[Picture]\ninstruction = 0x20\n",
              "[a]\ncommand = count\nbelong module = Channel\ninstruction = 0x11\nprint format = d\n"
              "[b]\ncommand = info\nbelong module = Channel\ninstruction = 0x12\npara format = dDfFsS\n"
              "print format = dDfFsS\n"
              "[c]\ncommand = rename\nbelong module = Picture\ninstruction = 0x11\npara format = s\n")
    {
    }
};

const Bytes kCount = Ints({0x11});

}  // namespace

TEST(ServiceSim, DecodesEachLetterAndAnswersBuiltInValues)
{
    ExampleSim sim;
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
    EXPECT_EQ(sim.Reply(), Encode([](android::Parcel& p) {
                  p.writeInt32(0);
                  p.writeInt32(42);
                  p.writeInt64(9000000000);
                  p.writeFloat(1.5f);
                  p.writeDouble(2.25);
                  p.writeString16(android::String16("sim"));
              }));
    EXPECT_EQ(sim.Flag(), 3u) << "the request bit stays";

    // The next request clears the old reply bit; the shared code goes to the first command.
    EXPECT_EQ(sim.Ask(kCount), "count");
    EXPECT_EQ(sim.Reply(), Ints({0, 42}));
    EXPECT_NE(sim.Errors().find("instruction 0x11 of 'rename' (Picture) is taken by 'count' (Channel)"),
              std::string::npos);
    EXPECT_EQ(sim.Ask(Ints({0x99})), "unknown instruction 0x99 (4 bytes)");
    EXPECT_EQ(sim.Reply(), Ints({-1}));
    sim.Post(kCount, 5000);
    EXPECT_EQ(sim.ReadLine(), "bad request: u32Size 5000 is more than 4088");
    EXPECT_EQ(sim.Reply(), Ints({-2}));
}

TEST(ServiceSim, AnswersFromRepliesFileAndGrowsShortPage)
{
    ExampleSim sim;
    const std::string replies = sim.dir.Write("replies", "# code status values\n0x11 0 7 8\n0x12 0x80000001\n");
    sim.dir.Write(".tv", "short");
    ASSERT_TRUE(sim.Start({"--replies", replies})) << "a short .tv is grown to 4096 bytes";
    EXPECT_EQ(sim.Ask(kCount), "count");
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

TEST(ServiceSim, DelayAndNoReplyHoldTheAnswerBack)
{
    ExampleSim sim;
    ASSERT_TRUE(sim.Start({"--delay", "300"}));
    const auto posted = Clock::now();
    EXPECT_EQ(sim.Ask(kCount), "count") << "the line comes before the delay";
    ASSERT_TRUE(sim.WaitReply());
    EXPECT_GE(Clock::now() - posted, milliseconds(300));

    ASSERT_TRUE(sim.Start({"--no-reply"}));
    EXPECT_EQ(sim.Ask(kCount), "count");
    EXPECT_FALSE(sim.WaitReply(milliseconds(200)));
    EXPECT_EQ(sim.Flag(), 0u) << "the request bit is cleared so a new request stands out";
    EXPECT_EQ(sim.Ask(kCount), "count");
    EXPECT_EQ(sim.ReadLine(milliseconds(100)), "<timeout>") << "each request is taken once";
}

TEST(ServiceSim, StatusSizeAndGarbageFaults)
{
    ExampleSim sim;
    ASSERT_TRUE(sim.Start({"--status", "0x80000001"}));
    sim.Ask(kCount);
    EXPECT_EQ(sim.Reply(), Ints({static_cast<int32_t>(0x80000001u)}));
    sim.Ask(Ints({0x99}));
    EXPECT_EQ(sim.Reply(), Ints({-1})) << "an unknown code keeps its own status";

    ASSERT_TRUE(sim.Start({"--size", "4294967295"}));
    sim.Ask(kCount);
    const Bytes claimed = sim.Reply();
    EXPECT_EQ(sim.Size(), 0xffffffffu);
    ASSERT_EQ(claimed.size(), 4088u);
    EXPECT_EQ(Bytes(claimed.begin(), claimed.begin() + 8), Ints({0, 42})) << "the payload is the real reply";

    ASSERT_TRUE(sim.Start({"--garbage", "16"}));
    sim.Ask(kCount);
    const Bytes reply = sim.Reply();
    ASSERT_EQ(reply.size(), 20u);
    EXPECT_EQ(Bytes(reply.begin(), reply.begin() + 4), Ints({0}));
    EXPECT_NE(Bytes(reply.begin() + 4, reply.end()), Bytes(16, 0));
}

TEST(ServiceSim, EndsWithZeroOnSigtermAndSigint)
{
    ExampleSim sim;
    ASSERT_TRUE(sim.Start());
    const int status = sim.Signal(SIGTERM);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "wait status " << status;
    // Also in the middle of a long delay.
    ASSERT_TRUE(sim.Start({"--delay", "60000"}));
    EXPECT_EQ(sim.Ask(kCount), "count");
    const int interrupted = sim.Signal(SIGINT);
    EXPECT_TRUE(WIFEXITED(interrupted) && WEXITSTATUS(interrupted) == 0) << "wait status " << interrupted;
}

TEST(ServiceSim, BadArgumentsGiveUsageAndExitTwo)
{
    ExampleSim sim;
    const std::string d = sim.dir.Path();
    const std::string badReplies = sim.dir.Write("replies", "0x99 0\n");
    const std::vector<std::vector<std::string>> cases = {
        {},  {d, "--bogus"}, {d, "--delay"}, {d, "--delay", "1x"}, {d, "--garbage", "4085"}, {d, "--size", "-1"},
        {d, "--no-reply", "--status", "1"}, {d, "extra"}, {sim.dir.File("missing")}, {d, "--replies", badReplies},
    };
    for (const auto& args : cases) {
        const int status = sim.Run(args);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << args.size() << " arguments: " << sim.Errors();
        EXPECT_NE(sim.Errors().find(!args.empty() && args.back() == badReplies ? "line 1:" : "usage:"), std::string::npos)
            << sim.Errors();
    }
}
