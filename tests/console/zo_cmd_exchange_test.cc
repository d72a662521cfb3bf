// CopyCmdToBuf against the real service simulator, a second process on the
// same mapped page; its fault options play a failing service.
#include <sys/mman.h>

#include <gtest/gtest.h>

#include "console_peer.h"
#include "sim_process.h"

namespace {

const std::string kSep = "===========================\n";
const std::vector<TestCmd> kCmds = {
    {"info", "0x12", "d", "ds", "number,name", ""}, {"count", "0x11", "", "d", "n", ""}, {"name", "0x13", "s"}};

}  // namespace

TEST(CopyCmdToBuf, EachRequestGetsItsOwnReplyPrintedOrRefused)
{
    SimProcess sim;
    TestConsole console;
    console.Load(sim.dir, kCmds);
    std::string fullPage = "0x11 0", fullPrinted = kSep;  // the status and 1021 values fill the page
    for (int i = 0; i < int(SHM_DATA_SIZE / 4) - 1; ++i) {
        fullPage += " " + std::to_string(i);
        fullPrinted += "n:" + std::to_string(i) + "\t\n";
    }
    const std::string replies = sim.dir.Write("replies", "0x12 0 5 abc 6 x\n" + fullPage + "\n");
    const std::string word(2038, 'w');  // code, count and 2039 units fill the page
    const struct {
        std::vector<std::string> options;
        std::string line;  // command word and arguments
        int result;
        std::string printed;
        std::string simLine;  // what the service decoded; none for a request never posted
    } cases[] = {
        {{}, "info 5", 0, kSep + "number:42\tname:sim\t\n" + kSep, "info 5"},
        {{}, "name " + word + "ww", -1, "", ""},
        {{}, "name " + word, 0, "", "name \"" + word + "\""},
        {{"--replies", replies}, "info 7", 0, kSep + "number:5\tname:abc\t\nnumber:6\tname:x\t\n" + kSep, "info 7"},
        {{"--replies", replies}, "count", 0, fullPrinted + kSep, "count"},
        {{"--status", "0xffffffff"}, "count", -1, "request failure! ret:0xffffffff\n", "count"},
        {{"--size", "4089"}, "count", -1, "", "count"},
        {{"--size", "0xffffffff"}, "count", -1, "", "count"},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(sim.Use(c.options)) << sim.Errors();
        g_pShareMem = sim.Page();
        const std::string cmd = c.line.substr(0, c.line.find(' '));
        android::Parcel request;
        std::istringstream args(c.line.substr(cmd.size()) + " ");
        ASSERT_EQ(0, console.Get().ParseCmd(cmd.c_str(), request, args));
        testing::internal::CaptureStdout();
        EXPECT_EQ(c.result, console.Get().CopyCmdToBuf(cmd.c_str(), request)) << c.line;
        EXPECT_EQ(c.printed, testing::internal::GetCapturedStdout()) << c.line;
        EXPECT_EQ(c.simLine, c.simLine.empty() ? "" : sim.ReadLine());
    }
    // The console leaves the page as the service left it.
    EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, ShmLoadFlag(sim.Page()));
    g_pShareMem = MAP_FAILED;
}

TEST(CopyCmdToBuf, NothingIsSentWithoutCatalogueRequestOrPage)
{
    alignas(8) static uint8_t page[SHM_SIZE];
    ZoCmdDebug bare;
    TestConsole console;
    console.Load(kCmds);
    android::Parcel empty, request;
    request.writeInt32(0x11);
    std::istringstream args(" ");
    testing::internal::CaptureStdout();
    EXPECT_EQ(-1, bare.ParseCmd("count", empty, args));
    EXPECT_EQ(-1, bare.CopyCmdToBuf("count", request));
    EXPECT_EQ(-1, console.Get().CopyCmdToBuf("count", request));  // no page mapped
    g_pShareMem = page;
    EXPECT_EQ(-1, console.Get().CopyCmdToBuf("count", empty));
    g_pShareMem = MAP_FAILED;
    EXPECT_EQ("please load cfg before call <ParseCmd>.\nplease load cfg before call <CopyCmdToBuf>.\n"
              "requestData is the null\n", testing::internal::GetCapturedStdout());
    EXPECT_EQ(0u, ShmLoadFlag(page));
}
