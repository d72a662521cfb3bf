#include "zo_printer.h"

#include <cstdint>
#include <string>

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

TEST(Printer, EveryLetterHasItsText)
{
    android::Parcel reply;
    reply.writeInt32(-5);
    reply.writeInt64(-9000000000LL);
    reply.writeFloat(1.5f);
    reply.writeDouble(1.5);
    reply.writeString16(android::String16("abc"));
    int result = 1;
    const std::string text = Render(reply, "dDfFs", Tags({"a", "b", "c", "d", "e"}), &result);
    EXPECT_EQ(0, result);
    EXPECT_EQ(kSep + "a:-5\tb:-9000000000\tc:1.500000\td:        1.500000\te:abc\t\n" + kSep, text);
}

TEST(Printer, OnePassPerRowWhileDataRemains)
{
    android::Parcel reply;
    reply.writeInt32(5);
    reply.writeString16(android::String16("abc"));
    reply.writeDouble(1.5);
    reply.writeInt32(6);
    reply.writeString16(android::String16("x"));
    reply.writeDouble(2.25);
    int result = 1;
    const std::string text = Render(reply, "dsF", Tags({"id", "name", "val"}), &result);
    EXPECT_EQ(0, result);
    EXPECT_EQ(kSep + "id:5\tname:abc\tval:        1.500000\t\n" + "id:6\tname:x\tval:        2.250000\t\n" + kSep, text);
}

TEST(Printer, EmptyReplyPrintsTheSeparatorsOnly)
{
    android::Parcel reply;
    int result = 1;
    EXPECT_EQ(kSep + kSep, Render(reply, "d", Tags({"a"}), &result));
    EXPECT_EQ(0, result);
}

TEST(Printer, MissingFormatOrTagsReadsAndPrintsNothing)
{
    android::Parcel reply;
    reply.writeInt32(1);
    int result = 0;
    EXPECT_EQ("", Render(reply, nullptr, Tags({"a"}), &result));
    EXPECT_EQ(-1, result);
    EXPECT_EQ("", Render(reply, "", Tags({"a"}), &result));
    EXPECT_EQ(-1, result);
    EXPECT_EQ("", Render(reply, "d", Tags({}), &result));
    EXPECT_EQ(-1, result);
    EXPECT_EQ(0u, reply.dataPosition());
}

TEST(Printer, TagsLimitTheLettersOfAPass)
{
    android::Parcel reply;
    reply.writeInt32(1);
    reply.writeInt32(2);
    reply.writeInt32(3);
    int result = 1;
    // Fewer tags than letters: the second 'd' is never read, so each row takes one value.
    EXPECT_EQ(kSep + "n:1\t\nn:2\t\nn:3\t\n" + kSep, Render(reply, "dd", Tags({"n"}), &result));

    reply.setDataPosition(0);
    // More tags than letters: the extra tags are never printed.
    EXPECT_EQ(kSep + "n:1\t\nn:2\t\nn:3\t\n" + kSep, Render(reply, "d", Tags({"n", "unused"}), &result));
    EXPECT_EQ(0, result);
}

TEST(Printer, DataEndingInsideAPassShowsZeros)
{
    android::Parcel reply;
    reply.writeInt32(7);
    int result = 1;
    EXPECT_EQ(kSep + "a:7\tb:0\tc:0.000000\td:        0.000000\te:\t\n" + kSep,
              Render(reply, "dDfFs", Tags({"a", "b", "c", "d", "e"}), &result));
}

TEST(Printer, InvalidLetterStopsWithItsMessage)
{
    android::Parcel reply;
    reply.writeInt32(1);
    int result = 0;
    EXPECT_EQ("invalid fmt info!\n", Render(reply, "dx", Tags({"a", "b"}), &result));
    EXPECT_EQ(-1, result);
    reply.setDataPosition(0);
    EXPECT_EQ("invalid fmt info!\n", Render(reply, "d d", Tags({"a", "b", "c"}), &result));
}

TEST(Printer, CapitalSPrintsItsMessageOncePerPass)
{
    android::Parcel reply;
    reply.writeInt32(1);
    reply.writeInt32(2);
    int result = 1;
    EXPECT_EQ(kNoS + kNoS + kSep + "a:1\t\na:2\t\n" + kSep, Render(reply, "dS", Tags({"a", "b"}), &result));
    EXPECT_EQ(0, result);
}

TEST(Printer, PassThatReadsNothingEndsTheReply)
{
    android::Parcel reply;
    reply.writeInt32(1);
    int result = 1;
    // Only 'S' is handled: the data never shrinks, so one pass is all there is.
    EXPECT_EQ(kNoS + kSep + kSep, Render(reply, "Sd", Tags({"a"}), &result));
    EXPECT_EQ(0, result);

    // A tail too short for any value is not shown as a row of zeros.
    const uint8_t bytes[] = {9, 0, 0, 0, 0xAB, 0xCD};
    reply.setData(bytes, sizeof bytes);
    EXPECT_EQ(kSep + "a:9\t\n" + kSep, Render(reply, "d", Tags({"a"}), &result));
    EXPECT_EQ(0, result);
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

TEST(Printer, HostileStringCountsGiveEmptyText)
{
    android::Parcel reply;
    reply.writeInt32(-1);
    reply.writeInt32(0x7ffffff0);
    reply.writeInt32(2);  // claims two units, but only 4 bytes follow
    reply.writeInt32(0x00410041);
    int result = 1;
    const std::string text = Render(reply, "s", Tags({"t"}), &result);
    EXPECT_EQ(0, result);
    EXPECT_EQ(kSep + "t:\t\nt:\t\nt:\t\nt:\t\n" + kSep, text);
}
