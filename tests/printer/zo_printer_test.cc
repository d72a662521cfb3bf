#include "zo_printer.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <utils/String16.h>

#include "log_capture.h"

using Reply = std::function<void(android::Parcel&)>;

static const std::string kSep = "===========================\n";
static const std::string kNoS = "current is no support 'S' format\n";

static Reply Ints(std::vector<int32_t> words)
{
    return [words](android::Parcel& reply) {
        for (int32_t word : words) {
            reply.writeInt32(word);
        }
    };
}

// Each case: the reply behind the status, the print format and the tags (one character each); what Fmt returns,
// what Fmt and Flush print (as the exchange calls them). Only the number too long for its text is logged.
TEST(Printer, PrintsOneRowPerPassBetweenSeparators)
{
    const struct { Reply reply; const char* fmt; const char* tags; int result; std::string printed; } cases[] = {
        // The data ends inside the second pass: the rest of the row shows zeros and empty text.
        {[](android::Parcel& p) { p.writeInt32(-5), p.writeInt64(-9000000000LL), p.writeFloat(1.5f), p.writeDouble(1.5),
                                  p.writeString16(android::String16("abc")), p.writeInt32(6); },
         "dDfFs", "abcde", 0, kSep + "a:-5\tb:-9000000000\tc:1.500000\td:        1.500000\te:abc\t\n" +
                                  "a:6\tb:0\tc:0.000000\td:        0.000000\te:\t\n" + kSep},
        {Ints({}), "d", "a", 0, kSep + kSep},
        // A missing format or tags read and print nothing.
        {Ints({1}), nullptr, "a", -1, ""},
        {Ints({1}), "", "a", -1, ""},
        {Ints({1}), "d", "", -1, ""},
        // Fewer tags than letters: the second 'd' is never read. More: the extra tags are never printed.
        {Ints({1, 2, 3}), "dd", "n", 0, kSep + "n:1\t\nn:2\t\nn:3\t\n" + kSep},
        {Ints({1, 2, 3}), "d", "nu", 0, kSep + "n:1\t\nn:2\t\nn:3\t\n" + kSep},
        {Ints({1}), "dx", "ab", -1, "invalid fmt info!\n"},
        // 'S' prints its message once per pass; a pass that reads nothing ends the reply.
        {Ints({1, 2}), "dS", "ab", 0, kNoS + kNoS + kSep + "a:1\t\na:2\t\n" + kSep},
        {Ints({1}), "Sd", "a", 0, kNoS + kSep + kSep},
        // Hostile string counts give empty text; the last claims two units with only 4 bytes left.
        {Ints({-1, 0x7ffffff0, 2, 0x00410041}), "s", "t", 0, kSep + "t:\t\nt:\t\nt:\t\nt:\t\n" + kSep},
        // A tail too short for any value is not shown as a row of zeros.
        {[](android::Parcel& p) { p.setData(reinterpret_cast<const uint8_t*>("\x09\0\0\0\xab\xcd"), 6); }, "d", "a", 0,
         kSep + "a:9\t\n" + kSep},
        {[](android::Parcel& p) { p.writeDouble(1e300), p.writeInt32(3); }, "Fd", "xy", 0, kSep + "y:3\t\n" + kSep},
    };
    LogCapture log;
    for (const auto& c : cases) {
        android::Parcel reply;
        c.reply(reply);
        reply.setDataPosition(0);  // written, then read from the start as the console's setData leaves it
        Array<std::string> tags;
        for (const char* tag = c.tags; *tag != '\0'; ++tag) {
            tags.PushBack(std::string(1, *tag));
        }
        testing::internal::CaptureStdout();
        Printer printer(reply);
        EXPECT_EQ(c.result, printer.Fmt(c.fmt, tags)) << c.printed;
        printer.Flush();
        EXPECT_EQ(c.printed, testing::internal::GetCapturedStdout());
    }
    std::string records;
    for (const ZoLogRecord& r : log.Records()) {
        records += std::to_string(r.prio) + " " + r.tag + " " + r.function + " " + r.message + "\n";
    }
    EXPECT_EQ("6 ZoMW_Zo_cmd_pri ParseDecimalfmt snprintf_s failed, ret = -1\n", records);
}
