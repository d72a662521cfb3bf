// Typing at the editor on a real terminal: echo, the key table, Backspace, Enter.
#include <gtest/gtest.h>

#include <string>

#include "driver_run.h"

TEST(ZoStreamKeys, EchoesStoresAndDropsKeys)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error() << pty.Screen();
    EXPECT_EQ("ab cd" + EnteredOnTerminal("ab cd"), Type(pty, "ab cd\n"));
    EXPECT_EQ(EnteredOnTerminal(""), Type(pty, "\n"));
    // DEL and Ctrl-D are plain bytes in raw mode; a typed carriage return still ends the line.
    EXPECT_EQ("x\x7f\x04y" + EnteredOnTerminal("x\x7f\x04y"), Type(pty, "x\x7f\x04y\r"));
    // Lone ESC and '[', the Left and Right arrows, and a typed 'C' or 'D' are never stored.
    EXPECT_EQ("xy" + EnteredOnTerminal("xy"), Type(pty, "\x1bx[\x1b[C\x1b[Dy\x1b" "CD[\n"));
    // Backspace erases one byte per press, nothing on an empty line, and
    // half of a two-byte UTF-8 character.
    EXPECT_EQ("abc" + Erased(2) + EnteredOnTerminal("a"), Type(pty, "\b\babc\b\b\n"));
    EXPECT_EQ("\xc3\xa9" + Erased(1) + EnteredOnTerminal("\xc3"), Type(pty, "\xc3\xa9\b\n"));
}

TEST(ZoStreamKeys, LineOf1023BytesIsReturnedAnd1024IsRefused)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error();
    const std::string longest(1023, 'x');
    EXPECT_EQ(longest + EnteredOnTerminal(longest), Type(pty, longest + "\n"));

    const std::string tooLong(1024, 'y');
    ASSERT_TRUE(pty.Write(tooLong + "\n"));
    int status = 0;
    ASSERT_TRUE(pty.WaitForExit(&status));
    EXPECT_EQ(tooLong + "\r\n\rError:m_strInbuffer too large\r\n<null>\r\nreset 0\r\n", pty.ReadQuiet(0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(ZoStreamKeys, ArbitraryBytesAndLongPastesNeverCrash)
{
    std::string junk;
    for (int byte = 0; byte < 1024; ++byte) {
        junk += static_cast<char>(byte % 512 < 256 ? byte : 511 - byte);
    }
    // A long paste mostly taken back, then pseudo-random bytes with an
    // occasional line end so that the line limit does not end the run early.
    junk += "\n" + std::string(5000, 'p') + std::string(4000, '\b') + "\n";
    unsigned int seed = 12345;
    for (int i = 0; i < 50000; ++i) {
        seed = seed * 1103515245u + 12345u;
        junk += static_cast<char>((seed >> 16) & 0xff);
        junk += i % 300 == 299 ? "\n" : "";
    }
    // Completion runs on junk too: one group matches much, one nothing.
    const DriverRun run = RunDriver(junk, {" all mods =a,ab,\x01\x02,zz,\xff", "none="});
    EXPECT_TRUE(EndedNormally(run)) << run.status;
    EXPECT_EQ(std::string::npos, run.output.find("too large"));
    const std::string tail = "<null>\nreset 0\n";
    ASSERT_GE(run.output.size(), tail.size());
    EXPECT_EQ(tail, run.output.substr(run.output.size() - tail.size()));
}
