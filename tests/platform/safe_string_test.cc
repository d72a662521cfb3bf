#include "zo_tv_support.h"

#include <algorithm>
#include <functional>
#include <string>

#include <gtest/gtest.h>

using namespace std::string_literals;

// Each call gets an 8-byte destination between guard bytes that no call may change. 'call' tells whether every
// result was the expected one; 'dest' is the destination afterwards ('?': any byte).
TEST(SafeString, CopiesAndFormatsFitOrAreRefusedInsideTheDestination)
{
    const char unterminated[4] = {'w', 'x', 'y', 'z'};
    const struct { std::function<bool(char*)> call; std::string dest; } cases[] = {
        {[](char* d) { return memcpy_s(d, 8, "abcdefghi", 8) == 0; }, "abcdefgh"},
        {[](char* d) { return memcpy_s(d, 8, "abcdefghi", 9) != 0 && memcpy_s(d, 8, d + 2, 4) != 0 &&
                              memcpy_s(nullptr, 8, "a", 1) != 0 && memcpy_s(d, 8, nullptr, 1) != 0; }, "########"},
        {[](char* d) { return strncpy_s(d, 8, "1234567", 7) == 0; }, "1234567\0"s},
        {[](char* d) { return strncpy_s(d, 8, "123456789", 3) == 0; }, "123\0####"s},
        {[](char* d) { return strncpy_s(d, 8, "12345678", 8) != 0 && strncpy_s(d, 8, nullptr, 1) != 0; }, "\0#######"s},
        {[](char* d) { return strncpy_s(d, static_cast<size_t>(-1), "a", 1) != 0; }, "########"},  // a negative size
        {[](char* d) { return strcpy_s(d, 4, "abc") == 0; }, "abc\0####"s},
        // A source without a terminator within the destination's size is refused, not searched.
        {[&](char* d) { return strcpy_s(d, 4, "abcd") != 0 && strcpy_s(d, 4, unterminated) != 0; }, "\0#######"s},
        {[](char* d) { return sprintf_s(d, 8, "%d", 1234567) == 7; }, "1234567\0"s},
        {[](char* d) { return sprintf_s(d, 8, "%d", 12345678) == -1; }, "\0???????"s},
        {[](char* d) { return snprintf_s(d, 8, 3, "%s", "123") == 3; }, "123\0####"s},
        {[](char* d) { return snprintf_s(d, 8, 3, "%s", "1234") == -1; }, "\0???????"s},      // the count is tighter
        {[](char* d) { return snprintf_s(d, 8, 9, "%s", "12345678") == -1; }, "\0???????"s},  // the size is tighter
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        std::string bytes(24, '#');
        const std::string expected = "########" + cases[i].dest + "########";
        EXPECT_TRUE(cases[i].call(&bytes[8])) << "case " << i;
        std::transform(bytes.begin(), bytes.end(), expected.begin(), bytes.begin(),
                       [](char byte, char want) { return want == '?' ? want : byte; });
        EXPECT_EQ(expected, bytes) << "case " << i;
    }
}
