#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "child_program.h"
#include "console_fixture.h"
#include "stdout_capture.h"
#include "zo_shm_page.h"

extern char** environ;

namespace {

const std::string kSep = "===========================\n";

// The test's own swap file, 4096 bytes, mapped as Exec maps it.
class SharedPage {
public:
    explicit SharedPage(const TempDir& dir) : m_path(dir.File(".tv"))
    {
        dir.Write(".tv", std::string(SHM_SIZE, '\0'));
        const int fd = open(m_path.c_str(), O_RDWR);
        m_page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        close(fd);
        g_strSwapFile = m_path;
        g_pShareMem = m_page;
    }
    ~SharedPage()
    {
        g_pShareMem = MAP_FAILED;
        if (m_page != MAP_FAILED) {
            munmap(m_page, SHM_SIZE);
        }
    }
    SharedPage(const SharedPage&) = delete;
    SharedPage& operator=(const SharedPage&) = delete;

    bool Mapped() const { return m_page != MAP_FAILED; }
    const std::string& Path() const { return m_path; }
    ShmHeader* Header() { return ShmHeaderOf(m_page); }
    uint8_t* Payload() { return ShmPayloadOf(m_page); }

private:
    std::string m_path;
    void* m_page;
};

// The service side: page_responder in a second process on the same file.
class Responder {
public:
    Responder(const SharedPage& page, std::vector<std::string> args)
    {
        args.insert(args.begin(), {ZO_PAGE_RESPONDER, page.Path()});
        std::vector<std::string> command = ChildCommand(args);
        std::vector<char*> argv;
        for (std::string& word : command) {
            argv.push_back(&word[0]);
        }
        argv.push_back(nullptr);
        if (posix_spawnp(&m_pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
            m_pid = -1;
        }
    }
    ~Responder()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
    }
    Responder(const Responder&) = delete;
    Responder& operator=(const Responder&) = delete;

    // Without a responder the console would wait for ever: tests check this first.
    bool Started() const { return m_pid > 0; }

    // The responder's exit status, or -1 when it does not end within 10 s.
    int Wait()
    {
        for (int i = 0; i < 1000 && m_pid > 0; ++i) {
            int status = 0;
            if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
                m_pid = -1;
                return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            }
            const struct timespec step = {0, 10000000};
            nanosleep(&step, nullptr);
        }
        return -1;
    }

private:
    pid_t m_pid = -1;
};

// Hex of int32 words as they lie in a parcel, without blanks.
std::string Words(std::initializer_list<uint32_t> words)
{
    std::string hex;
    char word[9];
    for (uint32_t w : words) {
        snprintf(word, sizeof word, "%02x%02x%02x%02x", w & 0xff, (w >> 8) & 0xff, (w >> 16) & 0xff, w >> 24);
        hex += word;
    }
    return hex;
}

// "info" of module Channel: one int32 argument, reply of a number and a name.
const TestCmd kInfo = {"info", "0x12", "d", "ds", "number,name", "show one channel"};

// Encodes "info 5" as the dispatcher would.
void EncodeInfo5(ZoCmdDebug& console, android::Parcel& request)
{
    std::istringstream args(" 5 ");
    ASSERT_EQ(0, console.ParseCmd("info", request, args));
}

// What CopyCmdToBuf returned and printed.
struct Outcome {
    int result;
    std::string printed;
};

Outcome Send(ZoCmdDebug& console, android::Parcel& request)
{
    StdoutCapture out;
    const int result = console.CopyCmdToBuf("info", request);
    return {result, out.Text()};
}

}  // namespace

TEST(CopyCmdToBuf, SendsTheRequestAndPrintsTheReply)
{
    ConsoleFixture fixture({kInfo});
    SharedPage page(fixture.Dir());
    ASSERT_TRUE(page.Mapped());
    // status 0, number 5, name "abc"
    Responder service(page, {Words({0x12, 5}) + "/" + Words({0, 5, 3, 0x00620061, 0x00000063})});
    ASSERT_TRUE(service.Started());

    android::Parcel request;
    EncodeInfo5(fixture.Console(), request);
    const Outcome sent = Send(fixture.Console(), request);
    EXPECT_EQ(0, sent.result);
    EXPECT_EQ(kSep + "number:5\tname:abc\t\n" + kSep, sent.printed);
    EXPECT_EQ(0, service.Wait());
    // The console leaves the page as the service left it.
    EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, page.Header()->u32Flag);
}

TEST(CopyCmdToBuf, FailedStatusIsShownInHex)
{
    ConsoleFixture fixture({kInfo});
    SharedPage page(fixture.Dir());
    Responder service(page, {"*/" + Words({0xffffffff, 5})});
    ASSERT_TRUE(service.Started());

    android::Parcel request;
    EncodeInfo5(fixture.Console(), request);
    const Outcome sent = Send(fixture.Console(), request);
    EXPECT_EQ(-1, sent.result);
    EXPECT_EQ("request failure! ret:0xffffffff\n", sent.printed);
    EXPECT_EQ(0, service.Wait());
}

TEST(CopyCmdToBuf, ReplySizeBeyondThePageIsAFailedExchange)
{
    ConsoleFixture fixture({kInfo});
    SharedPage page(fixture.Dir());
    const std::string ok = Words({0, 5});
    Responder service(page, {"*/" + ok + "/4089", "*/" + ok + "/0xffffffff"});
    ASSERT_TRUE(service.Started());

    for (int i = 0; i < 2; ++i) {
        android::Parcel request;
        EncodeInfo5(fixture.Console(), request);
        const Outcome sent = Send(fixture.Console(), request);
        EXPECT_EQ(-1, sent.result);
        EXPECT_EQ("", sent.printed);
    }
    EXPECT_EQ(0, service.Wait());
}

TEST(CopyCmdToBuf, HostileRepliesPrintWhatCanBeRead)
{
    ConsoleFixture fixture({kInfo});
    SharedPage page(fixture.Dir());
    Responder service(page, {
                                // shorter than the print format: the name reads as empty
                                "*/" + Words({0, 7}),
                                // a negative string count
                                "*/" + Words({0, 7, 0xffffffff}),
                                // a string count far beyond the reply
                                "*/" + Words({0, 7, 0x7ffffff0, 0x00410041}),
                                // garbage after the status, with a tail too short for a value
                                "*/" + Words({0, 0xdeadbeef, 0xfffffffe}) + "a5a5",
                            });
    ASSERT_TRUE(service.Started());
    const std::string expected[] = {
        kSep + "number:7\tname:\t\n" + kSep,
        kSep + "number:7\tname:\t\n" + kSep,
        kSep + "number:7\tname:\t\nnumber:4259905\tname:\t\n" + kSep,
        kSep + "number:-559038737\tname:\t\n" + kSep,
    };
    for (const std::string& text : expected) {
        android::Parcel request;
        EncodeInfo5(fixture.Console(), request);
        const Outcome sent = Send(fixture.Console(), request);
        EXPECT_EQ(0, sent.result);
        EXPECT_EQ(text, sent.printed);
    }
    EXPECT_EQ(0, service.Wait());
}

TEST(CopyCmdToBuf, RequestMustFitThePayload)
{
    ConsoleFixture fixture({kInfo});
    SharedPage page(fixture.Dir());

    // 4088 bytes: the whole payload.
    android::Parcel full;
    std::string fullHex;
    for (uint32_t i = 0; i < SHM_DATA_SIZE / 4; ++i) {
        full.writeInt32(static_cast<int32_t>(i));
        fullHex += Words({i});
    }
    ASSERT_EQ(SHM_DATA_SIZE, full.dataSize());
    Responder service(page, {fullHex + "/" + Words({0})});
    ASSERT_TRUE(service.Started());
    {
        const Outcome sent = Send(fixture.Console(), full);
        EXPECT_EQ(0, sent.result);
        EXPECT_EQ(kSep + kSep, sent.printed);
    }
    EXPECT_EQ(0, service.Wait());

    // 4089 bytes: refused before the header is written; the page keeps the last reply.
    const std::vector<uint8_t> tooLong(SHM_DATA_SIZE + 1, 0x5a);
    android::Parcel oversized;
    oversized.setData(tooLong.data(), tooLong.size());
    const Outcome sent = Send(fixture.Console(), oversized);
    EXPECT_EQ(-1, sent.result);
    EXPECT_EQ("", sent.printed);
    EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, page.Header()->u32Flag);
    EXPECT_EQ(4u, page.Header()->u32Size);
    EXPECT_EQ(0u, page.Payload()[0]);  // the reply's status
    EXPECT_EQ(1u, page.Payload()[4]);  // the 4088-byte request's second word
}

TEST(CopyCmdToBuf, NextRequestClearsTheLastReplyFlag)
{
    ConsoleFixture fixture({kInfo});
    SharedPage page(fixture.Dir());
    // A completed exchange whose reply was a failure is still on the page.
    memcpy(page.Payload(), "\xff\xff\xff\xff", 4);
    page.Header()->u32Size = 4;
    page.Header()->u32Flag = SHM_FLAG_REQUEST | SHM_FLAG_REPLY;
    // The service answers late, so the console looks at the page several times
    // first; the responder also checks that the flag word is exactly bit 0.
    Responder service(page, {"--delay-ms", "300", Words({0x12, 5}) + "/" + Words({0, 1, 1, 0x61}),
                             Words({0x12, 5}) + "/" + Words({0, 2, 1, 0x62})});
    ASSERT_TRUE(service.Started());

    for (const char* row : {"number:1\tname:a\t\n", "number:2\tname:b\t\n"}) {
        android::Parcel request;
        EncodeInfo5(fixture.Console(), request);
        const Outcome sent = Send(fixture.Console(), request);
        EXPECT_EQ(0, sent.result);
        EXPECT_EQ(kSep + row + kSep, sent.printed);
    }
    EXPECT_EQ(0, service.Wait());
}

TEST(CopyCmdToBuf, NothingToSend)
{
    ConsoleFixture fixture({kInfo});
    android::Parcel empty;
    {
        // The page is not mapped: no request can go out.
        android::Parcel request;
        EncodeInfo5(fixture.Console(), request);
        const Outcome sent = Send(fixture.Console(), request);
        EXPECT_EQ(-1, sent.result);
        EXPECT_EQ("", sent.printed);
    }
    SharedPage page(fixture.Dir());
    const Outcome sent = Send(fixture.Console(), empty);
    EXPECT_EQ(-1, sent.result);
    EXPECT_EQ("requestData is the null\n", sent.printed);
    EXPECT_EQ(0u, page.Header()->u32Flag);
}
