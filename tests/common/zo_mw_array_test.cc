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

std::string Join(Array<std::string>& array)
{
    std::string out;
    for (unsigned int i = 0; i < array.Size(); ++i) {
        out += array[i] + "|";
    }
    return out;
}

TEST(Array, ConstAccessPastTheEndLogsAndYieldsLast)
{
    LogCapture log;
    const Array<std::string> abc = Make({"a", "b", "c"});

    EXPECT_EQ(abc[1], "b");
    EXPECT_TRUE(log.Records().empty());

    EXPECT_EQ(abc[3], "c");
    EXPECT_EQ(abc[7], "c");
    const auto records = log.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].prio, 5);
    EXPECT_EQ(records[0].tag, "ZoMW_Zo_cmd_pri");
    EXPECT_EQ(records[0].function, "operator[]");
    EXPECT_EQ(records[0].line, 136u);
    EXPECT_EQ(records[0].message, "zo_mw_array: index:3, arry max size:3");
    EXPECT_EQ(records[1].message, "zo_mw_array: index:7, arry max size:3");
}

TEST(Array, ConstAccessOnEmptyLogsOnceAndYieldsEmptyValue)
{
    LogCapture log;
    const Array<std::string> empty;

    EXPECT_EQ(empty[0], "");
    EXPECT_EQ(empty.Size(), 0u);
    const auto records = log.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].prio, 5);
    EXPECT_EQ(records[0].line, 132u);
    EXPECT_EQ(records[0].function, "operator[]");
    EXPECT_EQ(records[0].message, "zo_mw_array: remove pos:0, m_list size is 0, operator fail, return null value");
}

TEST(Array, WritableAccessClampsSilently)
{
    LogCapture log;
    Array<std::string> abc = Make({"a", "b", "c"});
    Array<std::string> empty;

    EXPECT_EQ(abc[1], "b");
    EXPECT_EQ(abc[3], "c");
    EXPECT_EQ(abc[7], "c");
    EXPECT_EQ(empty[0], "");
    abc[0] = "z";
    EXPECT_EQ(Join(abc), "z|b|c|");
    // A write through the empty value is not an element and does not stick.
    empty[0] = "ghost";
    EXPECT_EQ(empty.Size(), 0u);
    EXPECT_EQ(empty[0], "");
    EXPECT_TRUE(log.Records().empty());
}

TEST(Array, AssignmentCopiesExactlyTheSource)
{
    Array<std::string> five = Make({"1", "2", "3", "4", "5"});
    const Array<std::string> two = Make({"x", "y"});
    five = two;
    EXPECT_EQ(five.Size(), 2u);
    EXPECT_EQ(Join(five), "x|y|");

    Array<std::string> one = Make({"q"});
    one = Make({"a", "b", "c"});
    EXPECT_EQ(Join(one), "a|b|c|");

    Array<std::string>& alias = one;
    one = alias;
    EXPECT_EQ(Join(one), "a|b|c|");

    Array<std::string> copy(one);
    one.Clear();
    EXPECT_EQ(Join(copy), "a|b|c|");
    EXPECT_EQ(one.Size(), 0u);
}

TEST(Array, PushFrontAndPopFront)
{
    Array<std::string> array = Make({"a", "b"});
    array.PushFront("x");
    EXPECT_EQ(Join(array), "x|a|b|");
    array.PopFront();
    EXPECT_EQ(Join(array), "a|b|");

    Array<std::string> empty;
    empty.PopFront();
    EXPECT_EQ(empty.Size(), 0u);
}

TEST(Array, DestroyedThroughBasePointer)
{
    Array<std::string>* array = new Array<std::string>(Make({"a"}));
    delete array;  // the sanitizer build checks that nothing leaks or double-frees
}

}  // namespace
