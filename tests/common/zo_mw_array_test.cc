#include "zo_mw_array.h"

#include <string>

#include <gtest/gtest.h>

#include "log_capture.h"

// Each case acts on an Array of one-character elements: what it returned, the elements left, the log records.
TEST(Array, AccessAssignmentAndFrontAsListedAndLogged)
{
    using Strings = Array<std::string>;
    const std::string log = "\n5 ZoMW_Zo_cmd_pri operator[] ";
    const struct { const char* items; std::string (*act)(Strings&); std::string after; } cases[] = {
        {"abc", [](Strings& a) { const Strings& c = a; return (c[1] + c[3]).append(c[7]) + a[9]; }, "bccc abc" + log +
         "136 zo_mw_array: index:3, arry max size:3" + log + "136 zo_mw_array: index:7, arry max size:3"},
        {"", [](Strings& a) { const Strings& c = a; return c[0] + a[0] + "-"; },
         "- " + log + "132 zo_mw_array: remove pos:0, m_list size is 0, operator fail, return null value"},
        {"q", [](Strings& a) { Strings b = a; b.PushBack("r"); b.PushBack("s"); b.PopFront(); a = b; const Strings& same = a;
             std::string grown = a[0] + a[1]; b.PopFront(); a = b; a = same; return grown; }, "rs s"},
        {"ab", [](Strings& a) { a.PushFront("x"); const std::string x = a[0]; a.PopFront(); return x; }, "x ab"},
    };
    for (const auto& c : cases) {
        LogCapture capture;
        Strings array;
        for (const char* item = c.items; *item != '\0'; ++item) {
            array.PushBack(std::string(1, *item));
        }
        std::string after = c.act(array) + " ";
        for (const std::string& item : array) {
            after += item;
        }
        for (const ZoLogRecord& r : capture.Records()) {
            after += "\n" + std::to_string(r.prio) + " " + r.tag + " " + r.function + " " + std::to_string(r.line) + " " +
                     r.message;
        }
        EXPECT_EQ(c.after, after) << c.items;
    }
}
