#include "sim_options.h"

#include <gtest/gtest.h>

namespace {

bool Parse(std::vector<const char*> args, SimOptions& opts, std::string& error)
{
    args.insert(args.begin(), "zo_service_sim");
    return ParseSimOptions(static_cast<int>(args.size()), const_cast<char* const*>(args.data()), opts, error);
}

}  // namespace

TEST(SimOptions, NumbersAndRanges)
{
    SimOptions opts;
    std::string error;
    ASSERT_TRUE(Parse({"d", "--status", "-1", "--size", "0x1000", "--delay", "250"}, opts, error)) << error;
    EXPECT_EQ(opts.dir, "d");
    EXPECT_EQ(opts.status, -1);
    EXPECT_EQ(opts.sizeValue, 4096u);
    EXPECT_EQ(opts.delayMs, 250u);
    ASSERT_TRUE(Parse({"d", "--garbage", "4084"}, opts, error)) << error;
    EXPECT_EQ(opts.garbageBytes, 4084u);

    for (const auto& bad : std::vector<std::vector<const char*>>{
             {"d", "--garbage", "4085"},
             {"d", "--size", "4294967296"},
             {"d", "--size", "-1"},
             {"d", "--delay", "1x"},
             {"d", "--status", "0x100000000"},
             {"d", "e"},
             {"d", "--garbage", "1", "--status", "2"},
         }) {
        EXPECT_FALSE(Parse(bad, opts, error)) << bad[1];
        EXPECT_FALSE(error.empty());
    }
    EXPECT_TRUE(Parse({"--help"}, opts, error));
    EXPECT_TRUE(opts.help);
}
