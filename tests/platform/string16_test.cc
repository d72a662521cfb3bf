#include <utils/String16.h>
#include <utils/String8.h>

#include <string>

#include <gtest/gtest.h>

using android::String16;
using android::String8;

namespace {

std::u16string Units(const String16& text)
{
    return std::u16string(text.c_str(), text.size());
}

TEST(String16, ValidUtf8RoundTripsExactly)
{
    const char* samples[] = {
        "",
        "plain ascii",
        "caf\xC3\xA9",                       // 2-byte sequence
        "\xE4\xB8\xAD\xE6\x96\x87",          // 3-byte sequences
        "\xF0\x9F\x93\xBA tv",               // 4-byte sequence: a surrogate pair
        "\xF4\x8F\xBF\xBF",                  // U+10FFFF, the last code point
    };
    for (const char* sample : samples) {
        EXPECT_STREQ(String8(String16(sample)).c_str(), sample) << sample;
    }
    EXPECT_EQ(Units(String16("\xF0\x9F\x93\xBA")), std::u16string(u"\xD83D\xDCFA"));
    EXPECT_EQ(String16("caf\xC3\xA9").size(), 4u);
}

TEST(String16, InvalidUtf8YieldsEmpty)
{
    const char* samples[] = {
        "\xFF",                  // a byte that starts nothing
        "ok\xC3",                // truncated at the terminator
        "\xE4\xB8",              // truncated 3-byte sequence
        "\xC3\x28",              // wrong continuation byte
        "\xC0\xAF",              // overlong '/'
        "\xED\xA0\x80",          // an encoded surrogate
        "\xF4\x90\x80\x80",      // above U+10FFFF
        "\x80",                  // a lone continuation byte
    };
    for (const char* sample : samples) {
        EXPECT_EQ(String16(sample).size(), 0u) << sample;
    }
    // With an explicit length the converter stops there, even before a valid tail.
    EXPECT_EQ(String16("\xE4\xB8\xAD", 2).size(), 0u);
    EXPECT_EQ(Units(String16("abc", 2)), std::u16string(u"ab"));
    EXPECT_EQ(String16(static_cast<const char*>(nullptr)).size(), 0u);
}

TEST(String8, UnpairedSurrogatesYieldEmpty)
{
    const char16_t loneHigh[] = {u'a', 0xD83D};
    const char16_t loneLow[] = {0xDCFA, u'b'};
    const char16_t reversed[] = {0xDCFA, 0xD83D};
    EXPECT_EQ(String8(String16(loneHigh, 2)).size(), 0u);
    EXPECT_EQ(String8(String16(loneLow, 2)).size(), 0u);
    EXPECT_EQ(String8(String16(reversed, 2)).size(), 0u);
    const char16_t pair[] = {0xD83D, 0xDCFA};
    EXPECT_STREQ(String8(String16(pair, 2)).c_str(), "\xF0\x9F\x93\xBA");
}

}  // namespace
