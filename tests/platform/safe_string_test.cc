#include "zo_tv_support.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace {

// 8 guard bytes on both sides of the destination, which must never change.
struct Guarded {
    char bytes[8 + 16 + 8];
    size_t size;
    explicit Guarded(size_t n) : size(n) { std::memset(bytes, '#', sizeof bytes); }
    char* Dest() { return bytes + 8; }
    bool GuardsIntact() const
    {
        return std::string(bytes, 8) + std::string(bytes + 8 + size, 24 - size) == std::string(32 - size, '#');
    }
};

TEST(SafeString, MemcpyCopiesOrRefusesWithoutTouching)
{
    Guarded g(8);
    const char src[] = "abcdefghijkl";
    EXPECT_EQ(memcpy_s(g.Dest(), 8, src, 8), 0);
    EXPECT_EQ(std::string(g.Dest(), 8), "abcdefgh");
    Guarded refused(8);
    EXPECT_NE(memcpy_s(refused.Dest(), 8, src, 9), 0);
    EXPECT_NE(memcpy_s(nullptr, 8, src, 1), 0);
    EXPECT_NE(memcpy_s(refused.Dest(), 8, nullptr, 1), 0);
    EXPECT_NE(memcpy_s(refused.Dest(), 0, src, 0), 0);
    EXPECT_NE(memcpy_s(refused.Dest(), 8, refused.Dest() + 2, 4), 0);  // overlapping areas
    EXPECT_EQ(std::string(refused.Dest(), 8), "########");
    EXPECT_TRUE(g.GuardsIntact() && refused.GuardsIntact());
}

TEST(SafeString, CopiesNeedRoomForTheTerminator)
{
    Guarded g(8);
    EXPECT_EQ(strncpy_s(g.Dest(), 8, "1234567", 7), 0);
    EXPECT_STREQ(g.Dest(), "1234567");
    EXPECT_EQ(strncpy_s(g.Dest(), 8, "123456789", 3), 0);  // count shorter than the text
    EXPECT_STREQ(g.Dest(), "123");
    EXPECT_NE(strncpy_s(g.Dest(), 8, "12345678", 8), 0);
    EXPECT_STREQ(g.Dest(), "");
    EXPECT_NE(strncpy_s(g.Dest(), 8, "123456789abc", 12), 0);  // count larger than the destination
    EXPECT_NE(strncpy_s(g.Dest(), 8, nullptr, 1), 0);
    EXPECT_NE(strncpy_s(nullptr, 8, "a", 1), 0);
    EXPECT_NE(strncpy_s(g.Dest(), 0, "a", 1), 0);
    EXPECT_NE(strncpy_s(g.Dest(), static_cast<size_t>(-1), "a", 1), 0);  // a negative size converted
    EXPECT_TRUE(g.GuardsIntact());

    Guarded four(4);
    EXPECT_EQ(strcpy_s(four.Dest(), 4, "abc"), 0);
    EXPECT_STREQ(four.Dest(), "abc");
    EXPECT_NE(strcpy_s(four.Dest(), 4, "abcd"), 0);
    EXPECT_STREQ(four.Dest(), "");
    // A source without a terminator within the destination's size is refused, not searched.
    const char unterminated[4] = {'w', 'x', 'y', 'z'};
    EXPECT_NE(strcpy_s(four.Dest(), 4, unterminated), 0);
    EXPECT_TRUE(four.GuardsIntact());
}

TEST(SafeString, FormatsRefuseTextsThatDoNotFit)
{
    Guarded g(8);
    EXPECT_EQ(sprintf_s(g.Dest(), 8, "%d", 1234567), 7);
    EXPECT_STREQ(g.Dest(), "1234567");
    EXPECT_EQ(sprintf_s(g.Dest(), 8, "%d", 12345678), -1);
    EXPECT_STREQ(g.Dest(), "");
    EXPECT_EQ(sprintf_s(nullptr, 8, "%d", 1), -1);
    EXPECT_EQ(sprintf_s(g.Dest(), 0, "%d", 1), -1);
    EXPECT_EQ(snprintf_s(g.Dest(), 8, 8, "%s", "1234567"), 7);
    EXPECT_EQ(snprintf_s(g.Dest(), 8, 8, "%s", "12345678"), -1);
    EXPECT_EQ(snprintf_s(g.Dest(), 8, 3, "%s", "123"), 3);
    EXPECT_EQ(snprintf_s(g.Dest(), 8, 3, "%s", "1234"), -1);  // count is the tighter limit
    EXPECT_STREQ(g.Dest(), "");
    EXPECT_TRUE(g.GuardsIntact());
    char big[256];
    EXPECT_EQ(snprintf_s(big, sizeof big, sizeof big, "%f", 1e300), -1);
}

}  // namespace
