#include <fcntl.h>
#include <sys/mman.h>

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "child_program.h"
#include "console_fixture.h"
#include "stdout_capture.h"
#include "zo_shm_page.h"

namespace {

const std::string kSep = "===========================\n";

// A console with "info" of module Channel (one int32 argument; the reply is a
// number and a name) and the test's own 4096-byte swap file, mapped as Exec maps it.
class Exchange {
public:
    Exchange() : m_fixture({{"info", "0x12", "d", "ds", "number,name", "show one channel"}})
    {
        const std::string path = m_fixture.Dir().Write(".tv", std::string(SHM_SIZE, '\0'));
        const int fd = open(path.c_str(), O_RDWR);
        m_page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        close(fd);
        g_strSwapFile = path;
        g_pShareMem = m_page;
    }
    ~Exchange()
    {
        g_pShareMem = MAP_FAILED;
        munmap(m_page, SHM_SIZE);
        if (m_responder > 0) {
            kill(m_responder, SIGKILL);
            waitpid(m_responder, nullptr, 0);
        }
    }

    // page_responder in a second process on the same file. Without it the
    // console would wait for ever, so tests check that it started.
    bool Respond(std::vector<std::string> exchanges)
    {
        exchanges.insert(exchanges.begin(), {ZO_PAGE_RESPONDER, g_strSwapFile});
        m_responder = SpawnChild(exchanges);
        return m_page != MAP_FAILED && m_responder > 0;
    }
    // The responder's exit status, -1 when it does not end in time.
    int ResponderStatus()
    {
        const int status = WaitChild(m_responder);
        m_responder = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // CopyCmdToBuf's result and printed text for the request, by default "info 5".
    std::pair<int, std::string> Send(android::Parcel* request = nullptr)
    {
        android::Parcel info5;
        std::istringstream args(" 5 ");
        if (request == nullptr && m_fixture.Console().ParseCmd("info", info5, args) != 0) {
            return {-100, "cannot encode"};
        }
        StdoutCapture out;
        const int result = m_fixture.Console().CopyCmdToBuf("info", request != nullptr ? *request : info5);
        return {result, out.Text()};
    }

    ShmHeader* Header() { return ShmHeaderOf(m_page); }
    uint8_t* Payload() { return ShmPayloadOf(m_page); }

private:
    ConsoleFixture m_fixture;
    void* m_page;
    pid_t m_responder = -1;
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

}  // namespace

TEST(CopyCmdToBuf, EachRequestGetsItsOwnReplyPrintedOrRefused)
{
    Exchange exchange;
    // A completed exchange whose reply was a failure is still on the page: each
    // request must clear the reply bit (the responder checks the flag word is
    // exactly bit 0) or the console would read a stale reply.
    memcpy(exchange.Payload(), "\xff\xff\xff\xff", 4);
    exchange.Header()->u32Size = 4;
    exchange.Header()->u32Flag = SHM_FLAG_REQUEST | SHM_FLAG_REPLY;
    const std::string info5 = Words({0x12, 5});
    const std::string ok = Words({0, 5});
    const struct {
        std::string reply;  // REPLY_HEX[/SIZE]
        int result;
        std::string printed;
    } cases[] = {
        {Words({0, 5, 3, 0x00620061, 0x63}), 0, kSep + "number:5\tname:abc\t\n" + kSep},
        {Words({0xffffffff, 5}), -1, "request failure! ret:0xffffffff\n"},
        {ok + "/4089", -1, ""},  // a reply size beyond the page
        {ok + "/0xffffffff", -1, ""},
        // Hostile replies print what can be read: too short for the print format,
        {Words({0, 7}), 0, kSep + "number:7\tname:\t\n" + kSep},
        // a negative string count, a count far beyond the reply,
        {Words({0, 7, 0xffffffff}), 0, kSep + "number:7\tname:\t\n" + kSep},
        {Words({0, 7, 0x7ffffff0, 0x00410041}), 0, kSep + "number:7\tname:\t\nnumber:4259905\tname:\t\n" + kSep},
        // garbage with a tail too short for a value.
        {Words({0, 0xdeadbeef, 0xfffffffe}) + "a5a5", 0, kSep + "number:-559038737\tname:\t\n" + kSep},
    };
    std::vector<std::string> exchanges;
    for (const auto& c : cases) {
        exchanges.push_back(info5 + "/" + c.reply);
    }
    ASSERT_TRUE(exchange.Respond(exchanges));
    for (const auto& c : cases) {
        EXPECT_EQ(std::make_pair(c.result, c.printed), exchange.Send()) << c.reply;
    }
    EXPECT_EQ(0, exchange.ResponderStatus());
    // The console leaves the page as the service left it.
    EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, exchange.Header()->u32Flag);
}

TEST(CopyCmdToBuf, RequestOf4088BytesIsSentAnd4089Refused)
{
    Exchange exchange;
    android::Parcel full;
    std::string fullHex;
    for (uint32_t i = 0; i < SHM_DATA_SIZE / 4; ++i) {
        full.writeInt32(static_cast<int32_t>(i));
        fullHex += Words({i});
    }
    ASSERT_EQ(4088u, full.dataSize());
    ASSERT_TRUE(exchange.Respond({fullHex + "/" + Words({0})}));
    EXPECT_EQ(std::make_pair(0, kSep + kSep), exchange.Send(&full));
    EXPECT_EQ(0, exchange.ResponderStatus());

    // Refused before the header is written; the page keeps the last reply.
    const std::vector<uint8_t> tooLong(SHM_DATA_SIZE + 1, 0x5a);
    android::Parcel oversized;
    oversized.setData(tooLong.data(), tooLong.size());
    EXPECT_EQ(std::make_pair(-1, std::string()), exchange.Send(&oversized));
    EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, exchange.Header()->u32Flag);
    EXPECT_EQ(4u, exchange.Header()->u32Size);
    EXPECT_EQ(0u, exchange.Payload()[0]);  // the reply's status
    EXPECT_EQ(1u, exchange.Payload()[4]);  // the 4088-byte request's second word
}

TEST(CopyCmdToBuf, NothingToSend)
{
    Exchange exchange;
    android::Parcel empty;
    EXPECT_EQ(std::make_pair(-1, std::string("requestData is the null\n")), exchange.Send(&empty));
    EXPECT_EQ(0u, exchange.Header()->u32Flag);
    // Without the mapped page no request can go out.
    g_pShareMem = MAP_FAILED;
    EXPECT_EQ(std::make_pair(-1, std::string()), exchange.Send());
}
