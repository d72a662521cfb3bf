// The service side of the shared page, started by the exchange tests.
//
//   page_responder PAGE_FILE [--delay-ms N] EXPECTED_HEX/REPLY_HEX[/SIZE]...
//
// For each exchange in turn: waits until a request is pending, checks that the
// flag word is exactly the request bit and the request bytes are EXPECTED_HEX
// ("*": any), waits N ms, writes the reply, SIZE (default: the reply's length)
// as u32Size, and sets the reply bit. Every request is answered, also a wrong
// one, so the console never waits for ever.
// Exit status: 0 all as expected, 1 bad usage, 2 no page, 3 a request
// differed, 4 no request within 10 s.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "zo_shm_page.h"

namespace {

void SleepMs(long ms)
{
    const struct timespec step = {ms / 1000, (ms % 1000) * 1000000L};
    nanosleep(&step, nullptr);
}

}  // namespace

int main(int argc, char** argv)
{
    const int fd = argc < 3 ? -1 : open(argv[1], O_RDWR);
    void* page = fd < 0 ? MAP_FAILED : mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    if (page == MAP_FAILED) {
        fprintf(stderr, "page_responder: no page\n");
        return argc < 3 ? 1 : 2;
    }
    long delayMs = 0;
    int status = 0;
    for (int i = 2; i < argc; ++i) {
        if (strcmp(argv[i], "--delay-ms") == 0 && i + 1 < argc) {
            delayMs = strtol(argv[++i], nullptr, 10);
            continue;
        }
        const std::string arg = argv[i];
        const size_t first = arg.find('/');
        const size_t second = arg.find('/', first + 1);
        const std::string replyHex = arg.substr(first + 1, second - std::min(second, first + 1));
        std::vector<uint8_t> reply;
        for (size_t at = 0; at + 1 < replyHex.size(); at += 2) {
            reply.push_back(static_cast<uint8_t>(strtoul(replyHex.substr(at, 2).c_str(), nullptr, 16)));
        }
        if (first == std::string::npos || replyHex.size() % 2 != 0 || reply.size() > SHM_DATA_SIZE) {
            fprintf(stderr, "page_responder: bad exchange %s\n", argv[i]);
            return 1;
        }
        int waited = 0;
        while ((ShmLoadFlag(page) & (SHM_FLAG_REQUEST | SHM_FLAG_REPLY)) != SHM_FLAG_REQUEST) {
            if (++waited > 10000) {
                fprintf(stderr, "page_responder: no request came\n");
                return 4;
            }
            SleepMs(1);
        }
        const uint32_t flag = ShmLoadFlag(page);
        const uint32_t size = ShmLoadSize(page);
        std::string got = size <= SHM_DATA_SIZE ? "" : "(oversized)";
        for (uint32_t at = 0; size <= SHM_DATA_SIZE && at < size; ++at) {
            char pair[3];
            snprintf(pair, sizeof pair, "%02x", ShmPayloadOf(page)[at]);
            got += pair;
        }
        const std::string expected = arg.substr(0, first);
        if (flag != SHM_FLAG_REQUEST || (expected != "*" && got != expected)) {
            fprintf(stderr, "page_responder: flag 0x%x, request %s, expected %s\n", flag, got.c_str(), expected.c_str());
            status = 3;
        }
        SleepMs(delayMs);
        memcpy(ShmPayloadOf(page), reply.data(), reply.size());
        ShmStoreSize(page, second == std::string::npos ? static_cast<uint32_t>(reply.size())
                                                       : static_cast<uint32_t>(strtoul(arg.c_str() + second + 1, nullptr, 0)));
        ShmStoreFlag(page, flag | SHM_FLAG_REPLY);
    }
    return status;
}
