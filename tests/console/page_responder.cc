// A stand-in for the service side of the shared page, started by the exchange
// tests as a second process.
//
//   page_responder PAGE_FILE [--delay-ms N] EXCHANGE...
//   EXCHANGE = EXPECTED_HEX/REPLY_HEX[/SIZE]
//
// For each exchange in turn it maps PAGE_FILE, waits until a request is
// pending (bit 0 set, bit 1 clear), checks that the flag word is exactly the
// request bit and that the request bytes equal EXPECTED_HEX ("*" accepts any
// request), optionally waits N ms, then writes REPLY_HEX as the reply payload,
// SIZE (default: the reply's length) as u32Size, and sets the reply bit.
// Every pending request is answered, also a wrong one, so the console never
// waits for ever.
//
// Exit status: 0 when every request was as expected, 1 on bad usage, 2 when
// the page cannot be mapped, 3 when a request differed, 4 when no request
// came within 10 s.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "zo_shm_page.h"

namespace {

struct Exchange {
    std::string expected;  // hex, or "*"
    std::vector<uint8_t> reply;
    uint32_t size;
};

bool FromHex(const std::string& hex, std::vector<uint8_t>& out)
{
    if (hex.size() % 2 != 0) {
        return false;
    }
    for (size_t i = 0; i < hex.size(); i += 2) {
        char* end = nullptr;
        const std::string pair = hex.substr(i, 2);
        const long byte = strtol(pair.c_str(), &end, 16);
        if (*end != '\0') {
            return false;
        }
        out.push_back(static_cast<uint8_t>(byte));
    }
    return true;
}

std::string ToHex(const uint8_t* bytes, size_t size)
{
    std::string hex;
    char pair[3];
    for (size_t i = 0; i < size; ++i) {
        snprintf(pair, sizeof pair, "%02x", bytes[i]);
        hex += pair;
    }
    return hex;
}

bool ParseExchange(const std::string& arg, Exchange& ex)
{
    const size_t first = arg.find('/');
    if (first == std::string::npos) {
        return false;
    }
    const size_t second = arg.find('/', first + 1);
    ex.expected = arg.substr(0, first);
    const std::string reply = arg.substr(first + 1, second == std::string::npos ? std::string::npos : second - first - 1);
    if (!FromHex(reply, ex.reply) || ex.reply.size() > SHM_DATA_SIZE) {
        return false;
    }
    ex.size = second == std::string::npos ? static_cast<uint32_t>(ex.reply.size())
                                          : static_cast<uint32_t>(strtoul(arg.c_str() + second + 1, nullptr, 0));
    return true;
}

void SleepMs(long ms)
{
    const struct timespec step = {ms / 1000, (ms % 1000) * 1000000L};
    nanosleep(&step, nullptr);
}

bool AwaitRequest(void* page)
{
    for (int i = 0; i < 10000; ++i) {
        if ((ShmLoadFlag(page) & (SHM_FLAG_REQUEST | SHM_FLAG_REPLY)) == SHM_FLAG_REQUEST) {
            return true;
        }
        SleepMs(1);
    }
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        fprintf(stderr, "usage: page_responder PAGE_FILE [--delay-ms N] EXPECTED_HEX/REPLY_HEX[/SIZE]...\n");
        return 1;
    }
    long delayMs = 0;
    std::vector<Exchange> exchanges;
    for (int i = 2; i < argc; ++i) {
        if (strcmp(argv[i], "--delay-ms") == 0 && i + 1 < argc) {
            delayMs = strtol(argv[++i], nullptr, 10);
            continue;
        }
        Exchange ex;
        if (!ParseExchange(argv[i], ex)) {
            fprintf(stderr, "page_responder: bad exchange %s\n", argv[i]);
            return 1;
        }
        exchanges.push_back(ex);
    }

    const int fd = open(argv[1], O_RDWR);
    if (fd < 0) {
        perror("page_responder: open");
        return 2;
    }
    void* page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    if (page == MAP_FAILED) {
        perror("page_responder: mmap");
        return 2;
    }

    int status = 0;
    for (const Exchange& ex : exchanges) {
        if (!AwaitRequest(page)) {
            fprintf(stderr, "page_responder: no request came\n");
            return 4;
        }
        const uint32_t flag = ShmLoadFlag(page);
        const uint32_t size = ShmLoadSize(page);
        const std::string got = size <= SHM_DATA_SIZE ? ToHex(ShmPayloadOf(page), size) : "(oversized)";
        if (flag != SHM_FLAG_REQUEST || (ex.expected != "*" && got != ex.expected)) {
            fprintf(stderr, "page_responder: flag 0x%x, request %s, expected %s\n", flag, got.c_str(),
                    ex.expected.c_str());
            status = 3;
        }
        SleepMs(delayMs);
        memcpy(ShmPayloadOf(page), ex.reply.data(), ex.reply.size());
        ShmStoreSize(page, ex.size);
        ShmStoreFlag(page, flag | SHM_FLAG_REPLY);
    }
    munmap(page, SHM_SIZE);
    return status;
}
