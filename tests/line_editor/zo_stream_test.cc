// The line editor on a real terminal: a driver program runs it like the console's prompt loop and the tests type.
#include <termios.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "pty_session.h"
#include "temp_dir.h"

namespace {

const std::string kBs = "\b \b";  // the editor erasing one byte
const std::string kRule(34, '=');

// After Enter on line: the editor's line end, the driver's framed line and its next prompt.
std::string Entered(const std::string& line) { return "\n\r<<" + line + ">>\nTV $"; }

// What the terminal shows of what the program writes: each "\n" as "\r\n".
std::string OnTerminal(std::string text)
{
    for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) {
        text.insert(at, 1, '\r');
    }
    return text;
}

// Each case: the completion groups registered before every prompt, the keys typed after the first prompt, and what
// the screen shows up to the driver's end; "quit" is typed last, unless the keys end the driver themselves.
TEST(ZoStream, KeysHistoryAndCompletionOnTheScreenAndInTheLine)
{
    const std::string up = "\x1b[A", down = "\x1b[B";
    const std::string mods = "\n" + kRule + " all mods " + kRule + "\n";
    const std::string video = "\n" + kRule + "video cmds" + kRule + "\n";
    const std::vector<std::string> vaGroups = {" all mods =video,audio,vi,set", "video cmds=view,set"};
    const struct { std::vector<std::string> groups; std::string keys, screen; } cases[] = {
        // An empty Enter returns an empty line and remembers nothing: Up recalls the line before it.
        {{}, "one\n\nA\n", "one" + Entered("one") + Entered("") + "one" + Entered("one")},
        // DEL and Ctrl-D are plain bytes in raw mode; a typed carriage return still ends the line; the Left and Right
        // arrows and a typed 'C' or 'D' are neither stored nor shown. (What each key does to the line is checked
        // on every input of fuzz/line_editor_fuzz.cc; here, what the screen shows.)
        {{}, "x\x7f\x1b[C\x1b[DCD\x04y\r", "x\x7f\x04y" + Entered("x\x7f\x04y")},
        // Backspace erases one byte a press (half of a UTF-8 character), nothing on an empty line.
        {{}, "\b\babc\b\b\n\xc3\xa9\b\n", "abc" + kBs + kBs + Entered("a") + "\xc3\xa9" + kBs + Entered("\xc3")},
        // Up stops at the oldest line and erases the typed one first; Down past the newest leaves it on the line;
        // a typed 'A' is Up; an edited recall is a new entry and the recalled one stays.
        {{}, up + "x\none\nzz" + up + up + up + down + down + "\nA\bo\nAA\n",
         "x" + Entered("x") + "one" + Entered("one") + "zz" + kBs + kBs + "one" + kBs + kBs + kBs + "x" + kBs + "one" +
             Entered("one") + "one" + kBs + "o" + Entered("ono") + "ono" + kBs + kBs + kBs + "one" + Entered("one")},
        {{}, std::string(1024, 'y') + "\n",
         std::string(1024, 'y') + "\n\rError:m_strInbuffer too large\n<null>\nreset 0\n"},
        // One match in all groups is completed in place; after a blank the whole line matches nothing.
        {{" all mods =video,audio,vi", "video cmds=view,set"}, "au\t\nset\t 1\t\n",
         "audio" + Entered("audio") + "set 1" + Entered("set 1")},
        // Several matches, or one in each of two groups, are listed; the typed text is shown again after the prompt.
        {vaGroups, "v\tiew\nse\t\n",
         "v" + mods + "video\tvi" + video + "view\nTV $view" + Entered("view") + "se" + mods + "set" + video +
             "set\nTV $se" + Entered("se")},
        {{" all mods =m0,m1,m2,m3,m4,m5,m6,m7,m8,m9,m10"}, "\t\n",
         mods + "m0\tm1\tm2\tm3\tm4\tm5\tm6\tm7\tm8\tm9\nm10\nTV $" + Entered("")},
    };
    for (const auto& c : cases) {
        PtySession pty;
        std::string screen;
        ASSERT_TRUE(pty.Start(LINE_EDITOR_DRIVER, c.groups) && pty.WaitFor("TV $")) << pty.Screen();
        ASSERT_TRUE(pty.Write(c.keys + "quit\n") && pty.WaitFor("reset 0\r\n", &screen)) << pty.Screen();
        const bool ends = c.screen.find("reset 0\n") != std::string::npos;
        EXPECT_EQ(OnTerminal(c.screen + (ends ? "" : "quit\n\r<<quit>>\nreset 0\n")), screen) << c.keys;
    }
}

// The line framed last after count lines "l0", "l1"... and the extra keys, then Up pressed more often than there
// are lines, and Enter: the oldest line remembered. The keys come from a file, as fast as the editor takes them.
std::string OldestAfter(int count, const std::string& extra)
{
    std::string keys;
    for (int i = 0; i < count; ++i) {
        keys += "l" + std::to_string(i) + "\n";
    }
    TempDir dir;
    PtySession::Options options;
    options.stdinPath = dir.Write("keys", keys + extra + std::string(10005, 'A') + "\n");
    PtySession pty;
    std::string screen;
    if (!pty.Start(LINE_EDITOR_DRIVER, {}, options) || !pty.WaitFor(">>\r\nTV $<null>", &screen, 60000)) {
        return "<no end>";
    }
    const size_t start = screen.rfind("<<");
    return screen.substr(start + 2, screen.size() - start - 16);
}

TEST(ZoStream, HistoryKeepsTheLast10000Lines)
{
    EXPECT_EQ("l0", OldestAfter(10000, ""));
    EXPECT_EQ("l1", OldestAfter(10001, ""));
    EXPECT_EQ("l1", OldestAfter(10000, "\n"));  // an empty Enter on a full history drops the oldest
}

std::string Settings(const struct termios& t)
{
    return std::to_string(t.c_iflag) + " " + std::to_string(t.c_oflag) + " " + std::to_string(t.c_cflag) + " " +
           std::to_string(t.c_lflag) + " " + std::string(t.c_cc, t.c_cc + NCCS) + std::to_string(cfgetospeed(&t));
}

// Each case starts a driver on a terminal whose VMIN and VTIME differ from raw mode's, its standard input the
// terminal or a file of keys. The settings it reads under, and those it leaves when the terminal was changed behind
// its back, must be as listed: only settings it has read are restored.
TEST(ZoStream, RawModeIsExactlyThatAndOnlyReadSettingsAreRestored)
{
    struct termios original, raw, changed;
    ASSERT_TRUE(PtySession::DefaultTermios(&original));
    original.c_cc[VMIN] = 4, original.c_cc[VTIME] = 7;
    raw = changed = original;
    raw.c_cc[VMIN] = 1, raw.c_cc[VTIME] = 0, raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    changed.c_cc[VMIN] = 9, changed.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    const std::string quit = "quit\n\r<<quit>>\nreset 0\n";
    const struct { const char* driver; std::string file, first, rest; const termios &reading, &after; } cases[] = {
        {LINE_EDITOR_DRIVER, "", "", quit, raw, original},
        {LINE_EDITOR_DRIVER_TCGETATTR_FAILS, "", "error:set tcgetattr fail, ret:)0xffffffff !!! errno = 5\n", quit,
         original, changed},
        {LINE_EDITOR_DRIVER, "ab\bc\n", "", "ab" + kBs + "c" + Entered("ac") + "<null>\nreset 0\n", original, changed},
    };
    for (const auto& c : cases) {
        TempDir dir;
        PtySession::Options options;
        options.initialTermios = &original;
        options.stdinPath = c.file.empty() ? "" : dir.Write("keys", c.file);
        PtySession pty;
        std::string screen;
        ASSERT_TRUE(pty.Start(c.driver, {}, options) && pty.WaitFor("TV $", &screen)) << pty.Screen();
        EXPECT_EQ(OnTerminal(c.first + "TV $"), screen);
        struct termios now;
        ASSERT_EQ(0, pty.GetAttr(&now));
        EXPECT_EQ(Settings(c.reading), Settings(now)) << c.first << c.file;
        ASSERT_EQ(0, pty.SetAttr(changed));
        ASSERT_TRUE(pty.Write(c.file.empty() ? "quit\n" : "") && pty.WaitFor("reset 0\r\n", &screen)) << pty.Screen();
        EXPECT_EQ(OnTerminal(c.rest), screen);
        ASSERT_EQ(0, pty.GetAttr(&now));
        EXPECT_EQ(Settings(c.after), Settings(now)) << c.first << c.file;
    }
}

}  // namespace
