#include "zo_tv_support.h"

#include <atomic>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace {

TEST(IsBlank, NullEmptyAndWhiteSpaceAreBlank)
{
    EXPECT_NE(IsBlank(nullptr), 0);
    EXPECT_NE(IsBlank(""), 0);
    EXPECT_NE(IsBlank("  \t\r\n"), 0);
    EXPECT_EQ(IsBlank(" x "), 0);
    EXPECT_EQ(IsBlank("\xff"), 0);
}

struct ExitCounter : IZoMWThreadEvt {
    std::atomic<int> exits{0};
    void OnThreadExit(const void*) override { ++exits; }
};

TEST(ZoMWThread, RunCallsTheEntryOnceWithItsArgument)
{
    static std::atomic<int> calls{0};
    static std::atomic<const void*> seen{nullptr};
    int marker = 0;
    ExitCounter events;
    ZoMWThread thread(
        [](const void* arg) {
            seen = arg;
            ++calls;
        },
        &marker, &events);
    ASSERT_EQ(thread.Run(2), 0);
    for (int i = 0; i < 500 && events.exits == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen, &marker);
    EXPECT_EQ(events.exits, 1);
}

}  // namespace
