#include "zo_tv_support.h"

#include <malloc.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "temp_dir.h"

namespace {

// At most 100 rows: a reader that wrongly reads a device would go on for ever.
std::vector<std::string> AllRows(const ZoFile& file)
{
    std::vector<std::string> rows;
    while (!file.IsEOF() && rows.size() < 100) {
        rows.push_back(file.NextRow());
    }
    return rows;
}

TEST(ZoFile, RowsOfAFileAndRefusals)
{
    const std::string longLine(ZoFile::kMaxRowLength + 1, 'x');
    enum Outcome { kRows, kFails, kRefused };  // kRefused: with a line naming what is not a regular file
    struct Case {
        const char* what;
        std::string path;  // DIR stands for the test's directory; empty: DIR/f holding bytes
        std::string bytes;
        const char* mode;
        Outcome outcome;
        std::vector<std::string> rows;
    };
    const Case cases[] = {
        {"lines", "", "one\r\n\ntwo\nlast", "r", kRows, {"one\r", "", "two", "last"}},
        {"final line feed", "", "x\n", "r", kRows, {"x"}},
        {"one line feed", "", "\n", "r", kRows, {""}},
        {"0 bytes", "", "", "r", kRows, {}},
        {"binary and over-long", "", std::string("a\0b\xff\n", 5) + longLine + "\nafter", "r", kRows,
         {std::string("a\0b\xff", 4), longLine.substr(1), "after"}},
        {"write mode", "", "x\n", "w", kFails, {}},
        {"missing", "DIR/nope", "", "r", kFails, {}},
        {"directory", "DIR", "", "r", kRefused, {}},
        {"FIFO", "DIR/fifo", "", "r", kRefused, {}},
        {"device", "/dev/urandom", "", "r", kRefused, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempDir dir;
        mkfifo(dir.File("fifo").c_str(), 0600);
        std::string path = c.path.empty() ? dir.Write("f", c.bytes) : c.path;
        if (path.compare(0, 3, "DIR") == 0) {
            path.replace(0, 3, dir.Path());
        }
        ZoFile file;
        testing::internal::CaptureStdout();
        EXPECT_EQ(file.Init(path, c.mode), c.outcome == kRows ? 0 : -1);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  c.outcome == kRefused ? path + " is not a regular file\n" : "");
        EXPECT_EQ(file.GetIOExceptionStatus() != 0, c.outcome != kRows);
        EXPECT_EQ(file.IsEmpty(), c.rows.empty());
        EXPECT_EQ(AllRows(file), c.rows);
    }
}

// Each step: R rolls back ("R" when it did, "-" when refused), N reads a row ("<row>"), E tells the end ("E" or ".").
TEST(ZoFile, RollBackPutsBackTheLastRowOnce)
{
    TempDir dir;
    ZoFile file;
    file.Init(dir.Write("a", "1\n2\n"), "r");
    std::string seen;
    for (char step : std::string("RNRNNERERNE")) {
        seen += step == 'R' ? (file.RollBack() == 0 ? "R" : "-") : step == 'E' ? (file.IsEOF() ? "E" : ".")
                                                                             : "<" + file.NextRow() + ">";
    }
    EXPECT_EQ("-<1>R<1><2>ER.-<2>E", seen);
}

// Four million empty rows, over 100 MB as strings: reading them all may take no more than a few rows' worth of heap.
TEST(ZoFile, MemoryIsBoundedByARowNotByTheFile)
{
    const size_t rowCount = 4000000;
    TempDir dir;
    const std::string path = dir.Write("big", std::string(rowCount, '\n'));
    const struct mallinfo2 before = mallinfo2();
    ZoFile file;
    file.Init(path, "r");
    size_t rows = 0;
    for (; !file.IsEOF(); ++rows) {
        file.NextRow();
    }
    const struct mallinfo2 after = mallinfo2();
    EXPECT_EQ(rowCount, rows);
    EXPECT_LT(after.uordblks + after.hblkhd, before.uordblks + before.hblkhd + (1u << 20));
}

}  // namespace
