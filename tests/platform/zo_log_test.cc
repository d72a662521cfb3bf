#include "zo_tv_support.h"

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "log_capture.h"

namespace {

TEST(ZoLog, RecordsReachTheSinkFormattedAndNeverStdout)
{
    LogCapture log;
    testing::internal::CaptureStdout();
    ZoLog::PrintLog(ATV_LOG_PRIO_ERROR, "ZoMW_Zo_cmd_pri", "Print", 42, "value %d of %s", 7, "x");
    ZoLog::PrintLog(ATV_LOG_PRIO_WARN, "tag", "fn", 1, "no arguments");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

    const auto records = log.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].prio, 6);
    EXPECT_EQ(records[0].tag, "ZoMW_Zo_cmd_pri");
    EXPECT_EQ(records[0].function, "Print");
    EXPECT_EQ(records[0].line, 42u);
    EXPECT_EQ(records[0].message, "value 7 of x");
    EXPECT_EQ(records[1].prio, 5);
    EXPECT_EQ(records[1].message, "no arguments");
}

TEST(ZoLog, DefaultSinkWritesNothingToStdout)
{
    testing::internal::CaptureStdout();
    ZoLog::PrintLog(ATV_LOG_PRIO_WARN, "ZoMW_Zo_cmd_pri", "Test", 1, "to syslog %s", std::string(5000, 'x').c_str());
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
