#include <sys/mman.h>

#include <cstdio>

#include <gtest/gtest.h>

#include "console_fixture.h"

TEST(ZoCmdDebug, FileLevelStateBeforeFirstUse)
{
    EXPECT_EQ("/atv/dbg/.tv", g_strSwapFile);
    EXPECT_EQ(MAP_FAILED, g_pShareMem);
    EXPECT_EQ(SIGNAL_STATE_IDLE, g_enSignalState);
    for (unsigned int i = 0; i < ZO_CMD_LIST_SIZE; ++i) {
        ASSERT_EQ(nullptr, g_apModList[i]);
        ASSERT_EQ(nullptr, g_apCmdList[i]);
    }
}

TEST(ZoCmdDebug, GetInstanceMakesOneObject)
{
    // In a child process with standard input off the terminal, so the line
    // editor's raw mode never reaches the terminal running the tests.
    EXPECT_EXIT(
        {
            if (freopen("/dev/null", "r", stdin) == nullptr) {
                _exit(2);
            }
            ZoCmdDebug* first = ZoCmdDebug::GetInstance();
            _exit(first != nullptr && first == ZoCmdDebug::GetInstance() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
