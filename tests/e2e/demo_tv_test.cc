// The console against the demo TV on a copy of the example catalogue, as an engineer uses them: settings answered and
// refused, state kept from one command to a later one, a reply of many rows, and the TV's request log.
#include "console_run.h"

#include <fcntl.h>
#include <sys/stat.h>

TEST(DemoTv, AnswersTheExampleCatalogueKeepsItsStateAndEndsOnSigterm)
{
    ConsoleRun run(false);
    for (const char* name : {"mods.conf", "cmds.conf"}) {
        run.Dir().Write(name, ReadFile(std::string(ZO_EXAMPLES_DIR "/") + name));
    }
    const int log = OpenForChild(run.Dir().File("tv.log"));
    const pid_t tv = SpawnChild({ZO_DEMO_TV_PATH, run.Dir().Path()}, -1, log);
    close(log);
    struct stat page {};
    ASSERT_TRUE(WaitFor([&] { return stat(run.Page().c_str(), &page) == 0 && page.st_size >= off_t(SHM_SIZE); },
                        std::chrono::milliseconds(10000)));
    ASSERT_EQ("", run.StartConsole());

    const std::string rule = "\n" + std::string(27, '=') + "\n", refused = "\nrequest failure! ret:0x";
    const std::string channel3 = "number:3\tfrequency(kHz):498000\tname:Riverside News\t";
    // Each line typed, the screen up to the next prompt, and the TV's log line for it.
    const struct { std::string keys, screen, logLine; } lines[] = {
        {"snd\n", "snd\nSound@", ""},
        {"vol 30\n", "vol 30" + rule + "volume:30\t" + rule + "Sound@", "vol 30 -> volume 30"},
        {"vol 300\n", "vol 300" + refused + "1\ncall failed\nSound@", "vol 300 -> refused: out of range 0 to 100"},
        {"chan\n", "chan\nChannel@", ""},
        {"tune 99\n", "tune 99" + refused + "2\ncall failed\nChannel@", "tune 99 -> refused: no channel 99"},
        {"tune 4\n", "tune 4" + rule + "result:0\t" + rule + "Channel@", "tune 4 -> channel 4 Tidewater Sport"},
        {"info 3\n", "info 3" + rule + channel3 + rule + "Channel@", "info 3 -> channel 3 498000 kHz Riverside News"},
        {"vid\n", "vid\nVideo@", ""},
        // The channel tuned above, not the first one.
        {"res\n", "res" + rule + "width:1280\theight:720\tframe rate:       50.000000\t" + rule + "Video@",
         "res -> 1280x720 at 50 fps"},
        {"chan\n", "chan\nChannel@", ""},
    };
    std::string expectedLog;
    for (const auto& line : lines) {
        EXPECT_EQ(line.screen, run.Type(line.keys));
        expectedLog += line.logLine.empty() ? "" : line.logLine + "\n";
    }
    // Every channel, a row each.
    const std::string list = run.Type("list\n");
    int rows = 0;
    for (size_t at = 0; (at = list.find("\nnumber:", at + 1)) != std::string::npos; ++rows) {
    }
    EXPECT_EQ(12, rows) << list;
    EXPECT_NE(std::string::npos, list.find("\n" + channel3 + "\n")) << list;
    // Each line is written out before the answer is posted.
    EXPECT_EQ(expectedLog + "list -> 12 channels\n", ReadFile(run.Dir().File("tv.log")));

    ASSERT_EQ(0, kill(tv, SIGTERM));
    EXPECT_EQ(0, WaitChild(tv));  // exit status 0
}
