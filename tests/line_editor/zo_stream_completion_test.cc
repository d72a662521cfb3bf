// Tab completion: the match list, completion in place and the listings.
#include <gtest/gtest.h>

#include <list>
#include <string>

#include "driver_run.h"
#include "zo_stream.h"

namespace {

const std::string kRule(34, '=');

// The screen form of a text the editor writes: the terminal turns "\n" into "\r\n".
std::string OnTerminal(const std::string& text)
{
    std::string out;
    for (char c : text) {
        out += c == '\n' ? std::string("\r\n") : std::string(1, c);
    }
    return out;
}

}  // namespace

TEST(ZoStreamCompletion, EmptyLineListsEveryGroupTenToALine)
{
    const char* mods[] = {"m0", "m1", "m2", "m3", "m4", "m5", "m6", "m7", "m8", "m9", "m10"};
    const char* cmds[] = {"view", "set"};
    ZoStream stream;
    stream.RegistTab(" all mods ", 11, mods, true);
    stream.RegistTab("video cmds", 0, cmds, false);  // a count of 0 never shows a banner
    stream.RegistTab("video cmds", 2, cmds, false);
    stream.RegistTab("broken", 3, nullptr, false);   // a null list is passed over

    std::list<std::string> matches;
    stream.ParseModeInfo(matches);
    const std::list<std::string> expected = {
        "\n" + kRule + " all mods " + kRule + "\n",
        "m0", "\tm1", "\tm2", "\tm3", "\tm4", "\tm5", "\tm6", "\tm7", "\tm8", "\tm9\n",
        "m10",
        "\n" + kRule + "video cmds" + kRule + "\n",
        "view", "\tset"};
    EXPECT_EQ(expected, matches);

    // A clearing registration drops every earlier one.
    stream.RegistTab("video cmds", 1, cmds, true);
    matches.clear();
    stream.ParseModeInfo(matches);
    EXPECT_EQ((std::list<std::string>{"\n" + kRule + "video cmds" + kRule + "\n", "view"}), matches);
}

TEST(ZoStreamCompletion, SingleMatchIsCompletedInPlace)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {" all mods =video,audio,vi", "video cmds=view,set"})) << pty.Error();
    EXPECT_EQ("audio" + EnteredOnTerminal("audio"), Type(pty, "au\t\n"));
    // Already complete: nothing changes. After a blank the whole line no longer matches.
    EXPECT_EQ("set 1" + EnteredOnTerminal("set 1"), Type(pty, "set\t 1\t\n"));
}

TEST(ZoStreamCompletion, SeveralMatchesAreListedAndTheLineRedrawn)
{
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {" all mods =video,audio,vi,set", "video cmds=view,set"})) << pty.Error();
    const std::string allMods = kRule + " all mods " + kRule + "\n";
    const std::string videoCmds = kRule + "video cmds" + kRule + "\n";
    EXPECT_EQ(OnTerminal("v\n" + allMods + "video\tvi\n" + videoCmds + "view\nTV $v"), Type(pty, "v\t", "TV $v"));
    EXPECT_EQ("iew" + EnteredOnTerminal("view"), Type(pty, "iew\n"));
    // One match in each group is a listing, not a completion.
    EXPECT_EQ(OnTerminal("se\n" + allMods + "set\n" + videoCmds + "set\nTV $se"), Type(pty, "se\t", "TV $se"));
}

TEST(ZoStreamCompletion, TabWithNothingToMatchWritesNothing)
{
    for (const std::vector<std::string>& groups : {std::vector<std::string>{}, {"empty="}, {"g=x"}}) {
        PtySession pty;
        ASSERT_TRUE(StartDriver(pty, groups)) << pty.Error();
        EXPECT_EQ("abc" + EnteredOnTerminal("abc"), Type(pty, "ab\tc\n"));
    }
}

TEST(ZoStreamCompletion, HundredsOfCandidatesAreListedTenToALine)
{
    std::string group = "many cmds=";
    std::string listing = "\n" + kRule + "many cmds" + kRule + "\n";
    for (int i = 0; i < 300; ++i) {
        char name[8];
        std::snprintf(name, sizeof name, "n%03d", i);
        group += std::string(i == 0 ? "" : ",") + name;
        listing += std::string(i % 10 == 0 ? "" : "\t") + name + (i % 10 == 9 ? "\n" : "");
    }
    PtySession pty;
    ASSERT_TRUE(StartDriver(pty, {group})) << pty.Error();
    // 300 is a multiple of ten: the last name ends its line, and the listing's
    // own line end leaves an empty line before the prompt.
    EXPECT_EQ(OnTerminal(listing + "\nTV $"), Type(pty, "\t"));
    EXPECT_EQ(OnTerminal("n15\n" + kRule + "many cmds" + kRule +
                         "\nn150\tn151\tn152\tn153\tn154\tn155\tn156\tn157\tn158\tn159\n\nTV $n15"),
              Type(pty, "n15\t", "TV $n15"));
}

TEST(ZoStreamCompletion, NulByteInTheLineStopsTheComparison)
{
    // "a\0x" compares equal to "a" up to the NUL: "a" is the one match and
    // replaces the line, with nothing of it left to show.
    const DriverRun run = RunDriver(std::string("a\0x\t\n", 5), {"g=a,ab"});
    ASSERT_TRUE(EndedNormally(run)) << run.status;
    EXPECT_EQ(std::string("TV $a\0x\n\r<<a>>\nTV $<null>\nreset 0\n", 34), run.output);
}
