// Raw mode on a real terminal, and standard input that is no terminal.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "driver_run.h"

namespace {

void ExpectSameSettings(const struct termios& expected, PtySession& pty)
{
    struct termios actual;
    ASSERT_EQ(0, pty.GetAttr(&actual));
    EXPECT_EQ(expected.c_iflag, actual.c_iflag);
    EXPECT_EQ(expected.c_oflag, actual.c_oflag);
    EXPECT_EQ(expected.c_cflag, actual.c_cflag);
    EXPECT_EQ(expected.c_lflag, actual.c_lflag);
    EXPECT_EQ(0, std::memcmp(expected.c_cc, actual.c_cc, sizeof expected.c_cc));
    EXPECT_EQ(cfgetispeed(&expected), cfgetispeed(&actual));
    EXPECT_EQ(cfgetospeed(&expected), cfgetospeed(&actual));
}

// Starts program with "--hold" on a terminal whose VMIN and VTIME differ from
// what raw mode sets, so that a change of them shows.
bool Start(PtySession& pty, const char* program, struct termios* original, const std::string& stdinPath = "")
{
    if (!PtySession::DefaultTermios(original)) {
        return false;
    }
    original->c_cc[VMIN] = 4;
    original->c_cc[VTIME] = 7;
    PtySession::Options options;
    options.initialTermios = original;
    options.stdinPath = stdinPath;
    return pty.Start(program, {"--hold"}, options);
}

}  // namespace

TEST(ZoStreamTerminal, InitSetsExactlyRawModeAndResetRestores)
{
    PtySession pty;
    struct termios original;
    ASSERT_TRUE(Start(pty, LINE_EDITOR_DRIVER, &original) && pty.WaitFor("TV $")) << pty.Error() << pty.Screen();
    struct termios raw = original;
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    ExpectSameSettings(raw, pty);
    EXPECT_NE(0u, raw.c_lflag & ISIG);
    EXPECT_NE(0u, raw.c_oflag & OPOST);

    Type(pty, "quit\n", "reset 0\r\n");
    ExpectSameSettings(original, pty);
    ASSERT_TRUE(pty.Write("\n"));
    int status = 0;
    ASSERT_TRUE(pty.WaitForExit(&status));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(ZoStreamTerminal, UnreadSettingsAreNeverAppliedOrRestored)
{
    PtySession pty;
    struct termios original;
    ASSERT_TRUE(Start(pty, LINE_EDITOR_DRIVER_TCGETATTR_FAILS, &original)) << pty.Error();
    ASSERT_TRUE(pty.WaitFor("error:set tcgetattr fail, ret:)0xffffffff !!! errno = 5\r\nTV $")) << pty.Screen();
    ExpectSameSettings(original, pty);
    // Whatever the terminal holds when the loop ends is left there.
    struct termios changed = original;
    changed.c_cc[VMIN] = 9;
    ASSERT_EQ(0, pty.SetAttr(changed));
    Type(pty, "quit\n", "reset 0\r\n");
    ExpectSameSettings(changed, pty);
}

TEST(ZoStreamTerminal, InputThatIsNoTerminalIsReadByteByByte)
{
    // Output on a terminal, input from a file: the terminal is not touched.
    TempDir dir;
    PtySession pty;
    struct termios original;
    ASSERT_TRUE(Start(pty, LINE_EDITOR_DRIVER, &original, dir.Write("keys", "ab\bc\n"))) << pty.Error();
    std::string screen;
    ASSERT_TRUE(pty.WaitFor("reset 0\r\n", &screen)) << pty.Screen();
    EXPECT_EQ("TV $ab" + Erased(1) + "c" + EnteredOnTerminal("ac") + "<null>\r\nreset 0\r\n", screen);
    ExpectSameSettings(original, pty);

    // A pipe, and /dev/null: the end of input ends the loop.
    const DriverRun piped = RunDriverOn("", "x y\nlast", {});
    EXPECT_TRUE(EndedNormally(piped)) << piped.status;
    EXPECT_EQ("TV $x y\n\r<<x y>>\nTV $last<null>\nreset 0\n", piped.output);
    const DriverRun empty = RunDriverOn("/dev/null", "", {});
    EXPECT_TRUE(EndedNormally(empty)) << empty.status;
    EXPECT_EQ("TV $<null>\nreset 0\n", empty.output);
}
