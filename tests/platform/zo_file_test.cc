#include "zo_tv_support.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "temp_dir.h"

namespace {

std::vector<std::string> AllRows(const ZoFile& file)
{
    std::vector<std::string> rows;
    while (!file.IsEOF()) {
        rows.push_back(file.NextRow());
    }
    return rows;
}

TEST(ZoFile, SplitsAtLineFeedsKeepingCarriageReturns)
{
    TempDir dir;
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"one\r\n\ntwo\nlast", {"one\r", "", "two", "last"}}, {"x\n", {"x"}}, {"\n", {""}}, {"", {}}};
    for (const auto& c : cases) {
        ZoFile file;
        ASSERT_EQ(file.Init(dir.Write("a", c.first), "r"), 0);
        EXPECT_EQ(file.GetIOExceptionStatus(), 0);
        EXPECT_EQ(file.IsEmpty(), c.first.empty());
        EXPECT_EQ(AllRows(file), c.second) << c.first;
    }
}

TEST(ZoFile, RollBackPutsBackTheLastRowOnce)
{
    TempDir dir;
    ZoFile file;
    file.Init(dir.Write("a", "1\n2\n"), "r");
    EXPECT_NE(file.RollBack(), 0);  // nothing delivered yet
    EXPECT_EQ(file.NextRow(), "1");
    EXPECT_EQ(file.NextRow(), "2");
    EXPECT_TRUE(file.IsEOF());
    EXPECT_EQ(file.RollBack(), 0);
    EXPECT_FALSE(file.IsEOF());
    EXPECT_NE(file.RollBack(), 0);  // only once
    EXPECT_EQ(file.NextRow(), "2");
    EXPECT_TRUE(file.IsEOF());
}

TEST(ZoFile, BinaryAndOverlongInputIsBounded)
{
    TempDir dir;
    std::string bytes("a\0b\xff\n", 5);
    bytes += std::string(ZoFile::kMaxRowLength + 100, 'x') + "\nafter";
    ZoFile file;
    file.Init(dir.Write("bin", bytes), "r");
    const auto rows = AllRows(file);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], std::string("a\0b\xff", 4));
    EXPECT_EQ(rows[1], std::string(ZoFile::kMaxRowLength, 'x'));
    EXPECT_EQ(rows[2], "after");
}

TEST(ZoFile, OpenFailuresAreReported)
{
    TempDir dir;
    ZoFile missing;
    EXPECT_NE(missing.Init(dir.File("nope"), "r"), 0);
    EXPECT_NE(missing.GetIOExceptionStatus(), 0);
    EXPECT_TRUE(missing.IsEOF());

    ZoFile directory;
    directory.Init(dir.Path(), "r");
    EXPECT_NE(directory.GetIOExceptionStatus(), 0);

    ZoFile writeMode;
    writeMode.Init(dir.Write("w", "x"), "w");
    EXPECT_NE(writeMode.GetIOExceptionStatus(), 0);
}

}  // namespace
