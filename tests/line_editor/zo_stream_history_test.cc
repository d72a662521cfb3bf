// History recall with Up and Down, and the limit of 10000 remembered lines.
#include <gtest/gtest.h>

#include <string>

#include "driver_run.h"
#include "pty_session.h"

namespace {

const char kUp[] = "\x1b[A";
const char kDown[] = "\x1b[B";

// Lines "l0", "l1", ... each ended by Enter.
std::string NumberedLines(int count)
{
    std::string keys;
    for (int i = 0; i < count; ++i) {
        keys += "l" + std::to_string(i) + "\n";
    }
    return keys;
}

// The last framed line the driver printed.
std::string LastLine(const std::string& output)
{
    const size_t end = output.rfind(">>");
    const size_t start = output.rfind("<<", end);
    return end == std::string::npos || start == std::string::npos ? "" : output.substr(start + 2, end - start - 2);
}

}  // namespace

TEST(ZoStreamHistory, UpAndDownWalkTheEnteredLines)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error();
    std::string screen;

    // Up with an empty history shows nothing.
    ASSERT_TRUE(pty.Write(std::string(kUp) + "x\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("x" + EnteredOnTerminal("x"), screen);
    ASSERT_TRUE(pty.Write("one\n"));
    ASSERT_TRUE(pty.WaitFor("TV $")) << pty.Screen();

    // The partial line is erased first; Up stops at the oldest line; the
    // Down past the newest leaves the newest on the line.
    ASSERT_TRUE(pty.Write(std::string("zz") + kUp + kUp + kUp + kDown + kDown + "\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("zz" + Erased(2) + "one" + Erased(3) + "x" + Erased(1) + "one" + EnteredOnTerminal("one"), screen);

    // A typed 'A' is Up too. The edited line becomes a new entry and the
    // recalled one is unchanged.
    ASSERT_TRUE(pty.Write("A\bo\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("one" + Erased(1) + "o" + EnteredOnTerminal("ono"), screen);
    ASSERT_TRUE(pty.Write("AA\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("ono" + Erased(3) + "one" + EnteredOnTerminal("one"), screen);
}

TEST(ZoStreamHistory, KeepsOnlyTheLast10000Lines)
{
    // After 10001 lines the oldest reachable with Up is the second.
    const DriverRun run = RunDriver(NumberedLines(10001) + std::string(10005, 'A') + "\n");
    ASSERT_TRUE(EndedNormally(run)) << run.status;
    EXPECT_EQ("l1", LastLine(run.output));
}

TEST(ZoStreamHistory, EmptyEnterOnAFullHistoryDropsTheOldest)
{
    const DriverRun full = RunDriver(NumberedLines(10000) + std::string(10005, 'A') + "\n");
    ASSERT_TRUE(EndedNormally(full)) << full.status;
    EXPECT_EQ("l0", LastLine(full.output));

    const DriverRun trimmed = RunDriver(NumberedLines(10000) + "\n" + std::string(10005, 'A') + "\n");
    ASSERT_TRUE(EndedNormally(trimmed)) << trimmed.status;
    EXPECT_EQ("l1", LastLine(trimmed.output));
}
