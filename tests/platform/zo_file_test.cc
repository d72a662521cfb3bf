#include "zo_tv_support.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stdout_capture.h"
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
    enum Outcome { kRows, kFails, kRefused };  // kRefused: with a line naming what is not a regular file
    struct Case {
        const char* what;
        std::string (*make)(const TempDir&);  // returns the path to read
        const char* mode;
        Outcome outcome;
        std::vector<std::string> rows;
    };
    const Case cases[] = {
        {"lines", [](const TempDir& d) { return d.Write("f", "one\r\n\ntwo\nlast"); }, "r", kRows,
         {"one\r", "", "two", "last"}},
        {"final line feed", [](const TempDir& d) { return d.Write("f", "x\n"); }, "r", kRows, {"x"}},
        {"one line feed", [](const TempDir& d) { return d.Write("f", "\n"); }, "r", kRows, {""}},
        {"0 bytes", [](const TempDir& d) { return d.Write("f", ""); }, "r", kRows, {}},
        {"binary and over-long",
         [](const TempDir& d) {
             return d.Write("f", std::string("a\0b\xff\n", 5) + std::string(ZoFile::kMaxRowLength + 100, 'x') +
                                     "\nafter");
         },
         "r", kRows, {std::string("a\0b\xff", 4), std::string(ZoFile::kMaxRowLength, 'x'), "after"}},
        {"missing", [](const TempDir& d) { return d.File("nope"); }, "r", kFails, {}},
        {"write mode", [](const TempDir& d) { return d.Write("f", "x\n"); }, "w", kFails, {}},
        {"directory", [](const TempDir& d) { return d.Path(); }, "r", kRefused, {}},
        {"FIFO",
         [](const TempDir& d) {
             mkfifo(d.File("fifo").c_str(), 0600);
             return d.File("fifo");
         },
         "r", kRefused, {}},
        {"device", [](const TempDir&) { return std::string("/dev/urandom"); }, "r", kRefused, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempDir dir;
        const std::string path = c.make(dir);
        ZoFile file;
        StdoutCapture out;
        EXPECT_EQ(file.Init(path, c.mode), c.outcome == kRows ? 0 : -1);
        EXPECT_EQ(out.Text(), c.outcome == kRefused ? path + " is not a regular file\n" : "");
        EXPECT_EQ(file.GetIOExceptionStatus() != 0, c.outcome != kRows);
        EXPECT_EQ(file.IsEmpty(), c.rows.empty());
        EXPECT_EQ(AllRows(file), c.rows);
    }
}

TEST(ZoFile, RollBackPutsBackTheLastRowOnce)
{
    TempDir dir;
    ZoFile file;
    file.Init(dir.Write("a", "1\n2\n"), "r");
    EXPECT_NE(file.RollBack(), 0);  // nothing delivered yet
    EXPECT_EQ(file.NextRow(), "1");
    EXPECT_EQ(file.RollBack(), 0);
    EXPECT_EQ(file.NextRow(), "1");
    EXPECT_EQ(file.NextRow(), "2");
    EXPECT_TRUE(file.IsEOF());
    EXPECT_EQ(file.RollBack(), 0);
    EXPECT_FALSE(file.IsEOF());
    EXPECT_NE(file.RollBack(), 0);  // only once
    EXPECT_EQ(file.NextRow(), "2");
    EXPECT_TRUE(file.IsEOF());
}

// Four million short rows: over 100 MB as strings. The reader takes them all
// in a child whose address space may grow by 32 MB only.
TEST(ZoFile, MemoryIsBoundedByARowNotByTheFile)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer reserves more address space than any such limit";
#endif
    const size_t rowCount = 4000000;
    std::string text;
    for (size_t i = 0; i < rowCount; ++i) {
        text += "ab\n";
    }
    TempDir dir;
    const std::string path = dir.Write("big", text);
    const pid_t pid = fork();
    if (pid == 0) {
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const struct rlimit limit = {static_cast<rlim_t>(pages * sysconf(_SC_PAGESIZE)) + (32u << 20), RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &limit);
        size_t rows = 0;
        try {
            ZoFile file;
            file.Init(path, "r");
            for (; !file.IsEOF(); ++rows) {
                file.NextRow();
            }
        } catch (...) {  // std::bad_alloc from a reader that keeps the rows
        }
        _exit(rows == rowCount ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
