#include <gtest/gtest.h>

#include "console_peer.h"

// The completion table lends pointers into the module's command list, in the
// catalogue's order, and holds at most ZO_CMD_LIST_SIZE of them.
TEST(ZoCmdDebugStartup, GetSupportCmdsFillsTheTableUpToItsSize)
{
    std::vector<TestCmd> cmds;
    for (unsigned int i = 0; i < ZO_CMD_LIST_SIZE + 44; ++i) {
        cmds.push_back({"c" + std::to_string(1000 + i), std::to_string(1000 + i)});
    }
    TestConsole console;
    console.Load(cmds);
    const char** table = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(0, console.Get().GetSupportCmds(table, count));
    ASSERT_EQ(g_apCmdList, table);
    ASSERT_EQ(ZO_CMD_LIST_SIZE, count);
    for (unsigned int i = 0; i < count; ++i) {
        ASSERT_EQ(cmds[i].word, table[i]) << "entry " << i;
    }
}
