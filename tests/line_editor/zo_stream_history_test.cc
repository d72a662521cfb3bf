// History recall with Up and Down, and the limit of 10000 remembered lines.
#include <gtest/gtest.h>

#include <string>

#include "driver_run.h"

namespace {

const std::string kUp = "\x1b[A";
const std::string kDown = "\x1b[B";

// The last line the driver framed after `count` lines "l0", "l1"... (and the
// extra keys) were entered, and Up pressed more often than there are lines.
std::string OldestAfter(int count, const std::string& extra)
{
    std::string keys;
    for (int i = 0; i < count; ++i) {
        keys += "l" + std::to_string(i) + "\n";
    }
    const DriverRun run = RunDriver(keys + extra + std::string(10005, 'A') + "\n");
    const size_t end = run.output.rfind(">>");
    const size_t start = run.output.rfind("<<", end);
    if (!EndedNormally(run) || end == std::string::npos || start == std::string::npos) {
        return "<no line>";
    }
    return run.output.substr(start + 2, end - start - 2);
}

}  // namespace

TEST(ZoStreamHistory, UpAndDownWalkTheEnteredLines)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error();
    // Up with an empty history shows nothing.
    EXPECT_EQ("x" + EnteredOnTerminal("x"), Type(pty, kUp + "x\n"));
    Type(pty, "one\n");
    // The partial line is erased first; Up stops at the oldest line; Down past
    // the newest leaves the newest on the line.
    EXPECT_EQ("zz" + Erased(2) + "one" + Erased(3) + "x" + Erased(1) + "one" + EnteredOnTerminal("one"),
              Type(pty, "zz" + kUp + kUp + kUp + kDown + kDown + "\n"));
    // A typed 'A' is Up too. The edited line becomes a new entry; the recalled one is unchanged.
    EXPECT_EQ("one" + Erased(1) + "o" + EnteredOnTerminal("ono"), Type(pty, "A\bo\n"));
    EXPECT_EQ("ono" + Erased(3) + "one" + EnteredOnTerminal("one"), Type(pty, "AA\n"));
}

TEST(ZoStreamHistory, KeepsOnlyTheLast10000Lines)
{
    EXPECT_EQ("l0", OldestAfter(10000, ""));
    EXPECT_EQ("l1", OldestAfter(10001, ""));
    // An empty Enter on a full history still drops the oldest.
    EXPECT_EQ("l1", OldestAfter(10000, "\n"));
}
