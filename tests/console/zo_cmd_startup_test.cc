#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console_fixture.h"

namespace {

std::string Word(unsigned int i)
{
    char word[16];
    snprintf(word, sizeof word, "c%03u", i);
    return word;
}

}  // namespace

// The table lends pointers into the module's command list, in the catalogue's
// order, and holds at most ZO_CMD_LIST_SIZE of them.
TEST(ZoCmdDebugStartup, GetSupportCmdsFillsTheTableUpToItsSize)
{
    std::vector<TestCmd> cmds;
    for (unsigned int i = 0; i < ZO_CMD_LIST_SIZE + 44; ++i) {
        cmds.push_back({Word(i), "0x" + std::to_string(0x100 + i), "", "", "", ""});
    }
    ConsoleFixture fixture(cmds);

    const char** table = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(0, fixture.Console().GetSupportCmds(table, count));
    ASSERT_EQ(g_apCmdList, table);
    ASSERT_EQ(ZO_CMD_LIST_SIZE, count);
    for (unsigned int i = 0; i < count; ++i) {
        ASSERT_STREQ(Word(i).c_str(), table[i]) << "entry " << i;
    }
}
