#include "replies_file.h"

#include <gtest/gtest.h>

#include "sim_harness.h"

namespace {

CommandIndex Catalogue()
{
    CommandIndex index;
    index.Add({"Channel", "info", 0x12, "", "dsS"});
    index.Add({"Channel", "reset", 0x13, "", "S"});
    return index;
}

}  // namespace

TEST(RepliesFile, EncodesValuesRowByRowWithQuotedStrings)
{
    RepliesFile replies;
    std::string error;
    ASSERT_TRUE(replies.Parse("  # comment with \"unclosed\n\n0x12 0 1 \"BBC \\\"One\\\" \\\\\" 2 News\r\n0x13 -7\n",
                              Catalogue(), error))
        << error;
    ASSERT_NE(replies.Find(0x12), nullptr);
    EXPECT_EQ(*replies.Find(0x12), Encode([](android::Parcel& p) {
        p.writeInt32(0);
        p.writeInt32(1);
        p.writeString16(android::String16("BBC \"One\" \\"));
        p.writeInt32(2);
        p.writeString16(android::String16("News"));
    }));
    ASSERT_NE(replies.Find(0x13), nullptr);
    EXPECT_EQ(*replies.Find(0x13), Ints({-7}));
    EXPECT_EQ(replies.Find(0x11), nullptr);
}

TEST(RepliesFile, RefusesBadLinesWithTheirNumber)
{
    std::string tooLong = "0x12 0";
    for (int i = 0; i < 200; ++i) {
        tooLong += " 1 abcdefgh";  // 4 + 24 bytes a row
    }
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"0x11 0", "line 1: instruction 0x11 is not a command of the catalogue"},
        {"0x12", "line 1: a status must follow the instruction code"},
        {"zz 0", "line 1: 'zz' is not an instruction code"},
        {"0x12 0x100000000", "line 1: a status must follow the instruction code"},
        {"0x12 0\n0x12 1", "line 2: instruction 0x12 has a reply already"},
        {"0x12 0 1.5", "line 1: '1.5' is not a value for 'd' of 'info'"},
        {"0x12 0 2147483648", "line 1: '2147483648' is not a value for 'd' of 'info'"},
        {"0x12 0 1 \"open", "line 1: a quoted text has no closing quote"},
        {"0x12 0 1 \"a\"b", "line 1: text right after a closing quote"},
        {"0x13 0 1", "line 1: the print format of 'reset' takes no values"},
        {tooLong, "line 1: the reply takes 5604 bytes, more than 4088"},
    };
    for (const auto& c : cases) {
        RepliesFile replies;
        std::string error;
        EXPECT_FALSE(replies.Parse(c.first, Catalogue(), error)) << c.first;
        EXPECT_EQ(error, c.second);
    }
}
