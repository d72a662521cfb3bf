#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console_fixture.h"
#include "stdout_capture.h"
#include "zo_shm_page.h"

namespace {

const std::string kSep = "===========================\n";

// One exchange as the service sees it: the request it expects ("" accepts
// any), the reply payload and the u32Size it writes.
struct Answer {
    std::vector<uint8_t> expected;
    std::vector<uint8_t> reply;
    uint32_t size;
};

// A console with "info" of module Channel (one int32 argument; the reply is a
// number and a name) and the test's own 4096-byte swap file, mapped as Exec maps it.
class Exchange {
public:
    Exchange() : m_fixture({{"info", "0x12", "d", "ds", "number,name", "show one channel"}})
    {
        m_path = m_fixture.Dir().Write(".tv", std::string(SHM_SIZE, '\0'));
        m_page = Map(m_path);
        g_strSwapFile = m_path;
        g_pShareMem = m_page;
    }
    ~Exchange()
    {
        if (m_service.joinable()) {
            m_service.join();
        }
        g_pShareMem = MAP_FAILED;
        munmap(m_page, SHM_SIZE);
    }

    // The service side in a thread with its own mapping of the file. It
    // answers every request, also a wrong one, so the console never waits for
    // ever; Faults() lists the requests that were not as expected.
    void Respond(std::vector<Answer> answers)
    {
        m_service = std::thread([this, answers] {
            void* page = Map(m_path);
            for (const Answer& a : answers) {
                int waited = 0;
                while ((ShmLoadFlag(page) & (SHM_FLAG_REQUEST | SHM_FLAG_REPLY)) != SHM_FLAG_REQUEST) {
                    if (++waited > 10000) {
                        m_faults += "no request came\n";
                        return;
                    }
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
                const uint32_t flag = ShmLoadFlag(page);
                const uint32_t size = ShmLoadSize(page);
                const std::vector<uint8_t> got(ShmPayloadOf(page), ShmPayloadOf(page) + std::min<size_t>(size, SHM_DATA_SIZE));
                if (flag != SHM_FLAG_REQUEST || size > SHM_DATA_SIZE || (!a.expected.empty() && got != a.expected)) {
                    m_faults += "flag " + std::to_string(flag) + ", request of " + std::to_string(size) + " bytes\n";
                }
                memcpy(ShmPayloadOf(page), a.reply.data(), a.reply.size());
                ShmStoreSize(page, a.size);
                ShmStoreFlag(page, flag | SHM_FLAG_REPLY);
            }
            munmap(page, SHM_SIZE);
        });
    }
    std::string Faults()
    {
        m_service.join();
        return m_faults;
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
    static void* Map(const std::string& path)
    {
        const int fd = open(path.c_str(), O_RDWR);
        void* page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        close(fd);
        return page;
    }

    ConsoleFixture m_fixture;
    std::string m_path;
    void* m_page;
    std::thread m_service;
    std::string m_faults;
};

// int32 words as they lie in a parcel.
std::vector<uint8_t> Words(std::initializer_list<uint32_t> words, std::vector<uint8_t> tail = {})
{
    android::Parcel parcel;
    for (uint32_t w : words) {
        parcel.writeInt32(static_cast<int32_t>(w));
    }
    tail.insert(tail.begin(), parcel.data(), parcel.data() + parcel.dataSize());
    return tail;
}

}  // namespace

TEST(CopyCmdToBuf, EachRequestGetsItsOwnReplyPrintedOrRefused)
{
    Exchange exchange;
    // A completed exchange whose reply was a failure is still on the page: each
    // request must clear the reply bit (the service checks the flag word is
    // exactly bit 0) or the console would read a stale reply.
    memcpy(exchange.Payload(), "\xff\xff\xff\xff", 4);
    exchange.Header()->u32Size = 4;
    exchange.Header()->u32Flag = SHM_FLAG_REQUEST | SHM_FLAG_REPLY;
    const struct {
        std::vector<uint8_t> reply;
        uint32_t size;
        int result;
        std::string printed;
    } cases[] = {
        {Words({0, 5, 3, 0x00620061, 0x63}), 20, 0, kSep + "number:5\tname:abc\t\n" + kSep},
        {Words({0xffffffff, 5}), 8, -1, "request failure! ret:0xffffffff\n"},
        {Words({0, 5}), 4089, -1, ""},  // a reply size beyond the page
        {Words({0, 5}), 0xffffffff, -1, ""},
        // Hostile replies print what can be read: too short for the print format,
        {Words({0, 7}), 8, 0, kSep + "number:7\tname:\t\n" + kSep},
        // a negative string count, a count far beyond the reply,
        {Words({0, 7, 0xffffffff}), 12, 0, kSep + "number:7\tname:\t\n" + kSep},
        {Words({0, 7, 0x7ffffff0, 0x00410041}), 16, 0, kSep + "number:7\tname:\t\nnumber:4259905\tname:\t\n" + kSep},
        // garbage with a tail too short for a value.
        {Words({0, 0xdeadbeef, 0xfffffffe}, {0xa5, 0xa5}), 14, 0, kSep + "number:-559038737\tname:\t\n" + kSep},
    };
    std::vector<Answer> answers;
    for (const auto& c : cases) {
        answers.push_back({Words({0x12, 5}), c.reply, c.size});
    }
    exchange.Respond(answers);
    for (const auto& c : cases) {
        EXPECT_EQ(std::make_pair(c.result, c.printed), exchange.Send()) << c.printed;
    }
    EXPECT_EQ("", exchange.Faults());
    // The console leaves the page as the service left it.
    EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, exchange.Header()->u32Flag);
}

TEST(CopyCmdToBuf, RequestOf4088BytesIsSentAnd4089Refused)
{
    Exchange exchange;
    android::Parcel full;
    for (uint32_t i = 0; i < SHM_DATA_SIZE / 4; ++i) {
        full.writeInt32(static_cast<int32_t>(i));
    }
    ASSERT_EQ(4088u, full.dataSize());
    exchange.Respond({{std::vector<uint8_t>(full.data(), full.data() + 4088), Words({0}), 4}});
    EXPECT_EQ(std::make_pair(0, kSep + kSep), exchange.Send(&full));
    EXPECT_EQ("", exchange.Faults());

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
