// Raw mode on a real terminal, and standard input that is no terminal.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "driver_run.h"
#include "pty_session.h"
#include "temp_dir.h"

namespace {

void ExpectSameSettings(const struct termios& expected, const struct termios& actual)
{
    EXPECT_EQ(expected.c_iflag, actual.c_iflag);
    EXPECT_EQ(expected.c_oflag, actual.c_oflag);
    EXPECT_EQ(expected.c_cflag, actual.c_cflag);
    EXPECT_EQ(expected.c_lflag, actual.c_lflag);
    EXPECT_EQ(0, std::memcmp(expected.c_cc, actual.c_cc, sizeof expected.c_cc));
    EXPECT_EQ(cfgetispeed(&expected), cfgetispeed(&actual));
    EXPECT_EQ(cfgetospeed(&expected), cfgetospeed(&actual));
}

// A terminal whose VMIN and VTIME differ from what raw mode sets, so that a
// change of them shows.
bool StartingSettings(struct termios* settings)
{
    if (!PtySession::DefaultTermios(settings)) {
        return false;
    }
    settings->c_cc[VMIN] = 4;
    settings->c_cc[VTIME] = 7;
    return true;
}

}  // namespace

TEST(ZoStreamTerminal, InitSetsExactlyRawModeAndResetRestores)
{
    struct termios original;
    ASSERT_TRUE(StartingSettings(&original));
    PtySession::Options options;
    options.initialTermios = &original;
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {"--hold"}, options)) << pty.Error() << pty.Screen();

    struct termios raw = original;
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    struct termios seen;
    ASSERT_EQ(0, pty.GetAttr(&seen));
    ExpectSameSettings(raw, seen);
    EXPECT_NE(0u, seen.c_lflag & ISIG);
    EXPECT_NE(0u, seen.c_oflag & OPOST);

    ASSERT_TRUE(pty.Write("quit\n"));
    ASSERT_TRUE(pty.WaitFor("reset 0\r\n")) << pty.Screen();
    ASSERT_EQ(0, pty.GetAttr(&seen));
    ExpectSameSettings(original, seen);

    ASSERT_TRUE(pty.Write("\n"));
    int status = 0;
    ASSERT_TRUE(pty.WaitForExit(&status));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(ZoStreamTerminal, UnreadSettingsAreNeverAppliedOrRestored)
{
    struct termios original;
    ASSERT_TRUE(StartingSettings(&original));
    PtySession::Options options;
    options.initialTermios = &original;
    PtySession pty;
    ASSERT_TRUE(pty.Start(LINE_EDITOR_DRIVER_TCGETATTR_FAILS, {"--hold"}, options)) << pty.Error();
    ASSERT_TRUE(pty.WaitFor("error:set tcgetattr fail, ret:)0xffffffff !!! errno = 5\r\nTV $")) << pty.Screen();

    struct termios seen;
    ASSERT_EQ(0, pty.GetAttr(&seen));
    ExpectSameSettings(original, seen);

    // Whatever the terminal holds when the loop ends is left there.
    struct termios changed = original;
    changed.c_cc[VMIN] = 9;
    ASSERT_EQ(0, pty.SetAttr(changed));
    ASSERT_TRUE(pty.Write("quit\n"));
    ASSERT_TRUE(pty.WaitFor("reset 0\r\n")) << pty.Screen();
    ASSERT_EQ(0, pty.GetAttr(&seen));
    ExpectSameSettings(changed, seen);
    ASSERT_TRUE(pty.Write("\n"));
    EXPECT_TRUE(pty.WaitForExit(nullptr));
}

TEST(ZoStreamTerminal, InputThatIsNoTerminalIsReadByteByByte)
{
    // Output on a terminal, input from a file: the terminal is not touched.
    TempDir dir;
    struct termios original;
    ASSERT_TRUE(StartingSettings(&original));
    PtySession::Options options;
    options.initialTermios = &original;
    options.stdinPath = dir.Write("keys", "ab\bc\n");
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {"--hold"}, options)) << pty.Error();
    std::string screen;
    ASSERT_TRUE(pty.WaitFor("reset 0\r\n", &screen)) << pty.Screen();
    EXPECT_EQ("ab" + Erased(1) + "c" + EnteredOnTerminal("ac") + "<null>\r\nreset 0\r\n", screen);
    struct termios seen;
    ASSERT_EQ(0, pty.GetAttr(&seen));
    ExpectSameSettings(original, seen);
    EXPECT_TRUE(pty.WaitForExit(nullptr));

    // A pipe, and /dev/null: the end of input ends the loop.
    const DriverRun piped = RunDriverOn("", "x y\nlast", {});
    EXPECT_TRUE(EndedNormally(piped)) << piped.status;
    EXPECT_EQ("TV $x y\n\r<<x y>>\nTV $last<null>\nreset 0\n", piped.output);
    const DriverRun empty = RunDriverOn("/dev/null", "", {});
    EXPECT_TRUE(EndedNormally(empty)) << empty.status;
    EXPECT_EQ("TV $<null>\nreset 0\n", empty.output);
}
