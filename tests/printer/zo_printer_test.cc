#include "zo_printer.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <utils/String16.h>

#include "log_capture.h"
#include "stdout_capture.h"

namespace {

const std::string kSep = "===========================\n";
const std::string kNoS = "current is no support 'S' format\n";

Array<std::string> Tags(std::initializer_list<const char*> names)
{
    Array<std::string> tags;
    for (const char* name : names) {
        tags.PushBack(name);
    }
    return tags;
}

// Runs Fmt and Flush over the reply as the exchange does; returns what was printed.
std::string Render(const android::Parcel& reply, const char* fmt, const Array<std::string>& tags, int* fmtResult)
{
    StdoutCapture out;
    Printer printer(reply);
    *fmtResult = printer.Fmt(fmt, tags);
    printer.Flush();
    return out.Text();
}

}  // namespace

TEST(Printer, EveryLetterHasItsTextOneRowPerPass)
{
    android::Parcel reply;
    reply.writeInt32(-5);
    reply.writeInt64(-9000000000LL);
    reply.writeFloat(1.5f);
    reply.writeDouble(1.5);
    reply.writeString16(android::String16("abc"));
    reply.writeInt32(6);
    int result = 1;
    // The data ends inside the second pass: the rest of the row shows zeros.
    EXPECT_EQ(kSep + "a:-5\tb:-9000000000\tc:1.500000\td:        1.500000\te:abc\t\n" +
                  "a:6\tb:0\tc:0.000000\td:        0.000000\te:\t\n" + kSep,
              Render(reply, "dDfFs", Tags({"a", "b", "c", "d", "e"}), &result));
    EXPECT_EQ(0, result);
}

TEST(Printer, FormatTagsAndDataDecideWhatIsPrinted)
{
    const struct {
        std::vector<int32_t> words;  // the reply
        const char* fmt;
        Array<std::string> tags;
        int result;
        std::string printed;
    } cases[] = {
        {{}, "d", Tags({"a"}), 0, kSep + kSep},
        // A missing format or tags read and print nothing.
        {{1}, nullptr, Tags({"a"}), -1, ""},
        {{1}, "", Tags({"a"}), -1, ""},
        {{1}, "d", Tags({}), -1, ""},
        // Fewer tags than letters: the second 'd' is never read. More: the extra tags are never printed.
        {{1, 2, 3}, "dd", Tags({"n"}), 0, kSep + "n:1\t\nn:2\t\nn:3\t\n" + kSep},
        {{1, 2, 3}, "d", Tags({"n", "unused"}), 0, kSep + "n:1\t\nn:2\t\nn:3\t\n" + kSep},
        {{1}, "dx", Tags({"a", "b"}), -1, "invalid fmt info!\n"},
        {{1}, "d d", Tags({"a", "b", "c"}), -1, "invalid fmt info!\n"},
        // 'S' prints its message once per pass.
        {{1, 2}, "dS", Tags({"a", "b"}), 0, kNoS + kNoS + kSep + "a:1\t\na:2\t\n" + kSep},
        // A pass that reads nothing ends the reply.
        {{1}, "Sd", Tags({"a"}), 0, kNoS + kSep + kSep},
        // Hostile string counts give empty text; the last claims two units with only 4 bytes left.
        {{-1, 0x7ffffff0, 2, 0x00410041}, "s", Tags({"t"}), 0, kSep + "t:\t\nt:\t\nt:\t\nt:\t\n" + kSep},
    };
    for (const auto& c : cases) {
        android::Parcel reply;
        for (int32_t word : c.words) {
            reply.writeInt32(word);
        }
        int result = 100;
        EXPECT_EQ(c.printed, Render(reply, c.fmt, c.tags, &result)) << (c.fmt ? c.fmt : "null");
        EXPECT_EQ(c.result, result) << (c.fmt ? c.fmt : "null");
        if (c.printed.empty()) {
            EXPECT_EQ(0u, reply.dataPosition()) << "nothing is read";
        }
    }
    // A tail too short for any value is not shown as a row of zeros.
    const uint8_t bytes[] = {9, 0, 0, 0, 0xAB, 0xCD};
    android::Parcel tail;
    tail.setData(bytes, sizeof bytes);
    int result = 1;
    EXPECT_EQ(kSep + "a:9\t\n" + kSep, Render(tail, "d", Tags({"a"}), &result));
}

TEST(Printer, OversizedNumberIsLoggedAndLeftOut)
{
    LogCapture log;
    android::Parcel reply;
    reply.writeDouble(1e300);
    reply.writeInt32(3);
    int result = 1;
    EXPECT_EQ(kSep + "y:3\t\n" + kSep, Render(reply, "Fd", Tags({"x", "y"}), &result));
    const auto records = log.Records();
    ASSERT_EQ(1u, records.size());
    EXPECT_EQ(ATV_LOG_PRIO_ERROR, records[0].prio);
    EXPECT_EQ("ZoMW_Zo_cmd_pri", records[0].tag);
    EXPECT_EQ("ParseDecimalfmt", records[0].function);
    EXPECT_EQ("snprintf_s failed, ret = -1", records[0].message);
}
