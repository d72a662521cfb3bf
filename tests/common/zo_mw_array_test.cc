#include "zo_mw_array.h"

#include <string>

#include <gtest/gtest.h>

#include "log_capture.h"

namespace {

Array<std::string> Make(std::initializer_list<const char*> items)
{
    Array<std::string> array;
    for (const char* item : items) {
        array.PushBack(item);
    }
    return array;
}

std::string Join(const Array<std::string>& array)
{
    std::string out;
    for (unsigned int i = 0; i < array.Size(); ++i) {
        out += array[i] + "|";
    }
    return out;
}

TEST(Array, ConstAccessPastTheEndLogsAndYieldsLastOrEmpty)
{
    LogCapture log;
    const Array<std::string> abc = Make({"a", "b", "c"});
    const Array<std::string> empty;
    EXPECT_EQ(abc[2], "c");
    EXPECT_TRUE(log.Records().empty());
    EXPECT_EQ(abc[3], "c");
    EXPECT_EQ(abc[7], "c");
    EXPECT_EQ(empty[0], "");
    const auto records = log.Records();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].prio, 5);
    EXPECT_EQ(records[0].tag, "ZoMW_Zo_cmd_pri");
    EXPECT_EQ(records[0].function, "operator[]");
    EXPECT_EQ(records[0].line, 136u);
    EXPECT_EQ(records[0].message, "zo_mw_array: index:3, arry max size:3");
    EXPECT_EQ(records[1].message, "zo_mw_array: index:7, arry max size:3");
    EXPECT_EQ(records[2].line, 132u);
    EXPECT_EQ(records[2].message, "zo_mw_array: remove pos:0, m_list size is 0, operator fail, return null value");
}

TEST(Array, WritableAccessClampsSilently)
{
    LogCapture log;
    Array<std::string> abc = Make({"a", "b", "c"});
    Array<std::string> empty;
    EXPECT_EQ(abc[3], "c");
    EXPECT_EQ(abc[7], "c");
    abc[0] = "z";
    EXPECT_EQ(Join(abc), "z|b|c|");
    // A write through the empty value is not an element and does not stick.
    empty[0] = "ghost";
    EXPECT_EQ(empty.Size(), 0u);
    EXPECT_EQ(empty[0], "");
    EXPECT_TRUE(log.Records().empty());
}

TEST(Array, CopiesAndEndsEditedInPlace)
{
    Array<std::string> five = Make({"1", "2", "3", "4", "5"});
    five = Make({"x", "y"});
    EXPECT_EQ(Join(five), "x|y|");
    Array<std::string> one = Make({"q"});
    one = Make({"a", "b", "c"});
    Array<std::string>& alias = one;
    one = alias;
    EXPECT_EQ(Join(one), "a|b|c|");
    Array<std::string> copy(one);
    one.Clear();
    EXPECT_EQ(Join(copy), "a|b|c|");
    EXPECT_EQ(one.Size(), 0u);

    copy.PushFront("x");
    EXPECT_EQ(Join(copy), "x|a|b|c|");
    copy.PopFront();
    EXPECT_EQ(Join(copy), "a|b|c|");
    one.PopFront();
    EXPECT_EQ(one.Size(), 0u);
    // Destroyed through the base pointer: the sanitizer build checks nothing leaks or double-frees.
    delete new Array<std::string>(copy);
}

}  // namespace
