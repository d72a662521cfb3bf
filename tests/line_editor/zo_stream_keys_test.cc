// Typing at the editor on a real terminal: echo, the key table, Backspace, Enter.
#include <gtest/gtest.h>

#include <string>

#include "driver_run.h"
#include "pty_session.h"

TEST(ZoStreamKeys, EchoesAndStoresOrdinaryBytes)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error() << pty.Screen();
    std::string screen;

    ASSERT_TRUE(pty.Write("ab cd\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("ab cd" + EnteredOnTerminal("ab cd"), screen);

    ASSERT_TRUE(pty.Write("\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ(EnteredOnTerminal(""), screen);

    // DEL and Ctrl-D are plain bytes in raw mode; the terminal still turns a
    // typed carriage return into the line feed that ends the line.
    ASSERT_TRUE(pty.Write("x\x7f\x04y\r"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("x\x7f\x04y" + EnteredOnTerminal("x\x7f\x04y"), screen);
}

TEST(ZoStreamKeys, EscapeBracketLeftAndRightAreNeverStored)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error();
    std::string screen;
    // Lone ESC and '[', the Left and Right arrows, and a typed 'C' or 'D'.
    ASSERT_TRUE(pty.Write("\x1bx[\x1b[C\x1b[Dy\x1b" "CD[\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("xy" + EnteredOnTerminal("xy"), screen);
}

TEST(ZoStreamKeys, BackspaceErasesOneBytePerPress)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error();
    std::string screen;

    // On an empty line Backspace writes nothing.
    ASSERT_TRUE(pty.Write("\b\babc\b\b\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("abc" + Erased(2) + EnteredOnTerminal("a"), screen);

    // A two-byte UTF-8 character loses one byte per Backspace.
    ASSERT_TRUE(pty.Write("\xc3\xa9\b\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ("\xc3\xa9" + Erased(1) + EnteredOnTerminal("\xc3"), screen);
}

TEST(ZoStreamKeys, LineOf1023BytesIsReturnedAnd1024IsRefused)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {})) << pty.Error();
    std::string screen;

    const std::string longest(1023, 'x');
    ASSERT_TRUE(pty.Write(longest + "\n"));
    ASSERT_TRUE(pty.WaitFor("TV $", &screen)) << pty.Screen();
    EXPECT_EQ(longest + EnteredOnTerminal(longest), screen);

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
    for (int round = 0; round < 4; ++round) {
        for (int byte = 0; byte < 256; ++byte) {
            junk += static_cast<char>(round % 2 == 0 ? byte : 255 - byte);
        }
    }
    // A long paste, mostly taken back again before Enter.
    junk += "\n" + std::string(5000, 'p') + std::string(4000, '\b') + "\n";
    // Pseudo-random bytes, with a line end now and then so that the line
    // limit does not end the run early.
    unsigned int seed = 12345;
    for (int i = 0; i < 50000; ++i) {
        seed = seed * 1103515245u + 12345u;
        junk += static_cast<char>((seed >> 16) & 0xff);
        if (i % 300 == 299) {
            junk += '\n';
        }
    }
    // Completion runs on junk too: one group matches much, one nothing.
    const DriverRun run = RunDriver(junk, {" all mods =a,ab,\x01\x02,zz,\xff", "none="});
    EXPECT_TRUE(EndedNormally(run)) << run.status;
    EXPECT_EQ(std::string::npos, run.output.find("too large"));
    const std::string tail = "<null>\nreset 0\n";
    ASSERT_GE(run.output.size(), tail.size());
    EXPECT_EQ(tail, run.output.substr(run.output.size() - tail.size()));
}
