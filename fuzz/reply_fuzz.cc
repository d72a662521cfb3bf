// The reply side on arbitrary replies: the Printer with arbitrary print
// formats and tags, and CopyCmdToBuf taking an arbitrary reply and u32Size out
// of the shared page.
//
// Input: one mode byte, four bytes of u32Size (little-endian), the print
// format, a line feed, the print tags (split at commas), a line feed, then the
// reply's bytes. Mode bit 0 picks the path: 0, a Printer over the reply bytes
// given the format and tags directly (tags may hold any byte); 1, CopyCmdToBuf
// on an in-memory page with the format and tags from the catalogue, where the
// harness's nanosleep stands in for the service and posts the reply at once.
//
// Checked besides memory safety and termination: Fmt fails only for a missing
// format or tags, or an invalid letter it had to handle, and never reads past
// the reply; CopyCmdToBuf succeeds exactly when u32Size fits the page and the
// status word it covers is 0, and it posts the request it was given.
#include <binder/Parcel.h>

#include <sys/mman.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "console_fuzz_support.h"
#include "fuzz_check.h"
#include "zo_format_letters.h"
#include "zo_mw_array.h"
#include "zo_printer.h"
#include "zo_shm_page.h"

namespace {

alignas(8) uint8_t g_page[SHM_SIZE];

// The answer the next nanosleep of this thread gives; none while unarmed.
struct PendingReply {
    bool armed = false;
    uint32_t size = 0;
    const uint8_t* bytes = nullptr;
    size_t length = 0;
};
thread_local PendingReply t_reply;

Array<std::string> SplitTags(const std::string& text)
{
    Array<std::string> tags;
    size_t start = 0;
    for (size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1) {
        tags.PushBack(text.substr(start, comma - start));
    }
    tags.PushBack(text.substr(start));
    return tags;
}

// True when Fmt has a reason to fail: no format, no tags, or an invalid letter
// among those it handles (only when the reply has data for a first pass).
bool MayFail(const std::string& format, const Array<std::string>& tags, size_t replySize)
{
    const size_t n = std::strlen(format.c_str());
    bool invalid = false;
    for (size_t i = 0; replySize != 0 && i < n && i < tags.Size(); ++i) {
        invalid = invalid || ZoFormatLetterOf(format[i]) == nullptr;
    }
    return n == 0 || tags.Size() == 0 || invalid;
}

void PrintDirectly(const std::string& format, const std::string& tagText, const uint8_t* reply, size_t length)
{
    android::Parcel parcel;
    FUZZ_CHECK(parcel.setData(reply, length) == android::NO_ERROR);
    const Array<std::string> tags = SplitTags(tagText);
    Printer printer(parcel);
    const int ret = printer.Fmt(format.c_str(), tags);
    FUZZ_CHECK(ret == 0 || (ret == -1 && MayFail(format, tags, length)));
    FUZZ_CHECK(parcel.dataPosition() <= length);
    FUZZ_CHECK(printer.Flush() == 0);
}

void ExchangeOnPage(const std::string& format, const std::string& tagText, uint32_t size, const uint8_t* reply,
                    size_t length)
{
    fuzz_console::Load("", format, tagText);
    std::memset(g_page, 0, sizeof g_page);
    g_pShareMem = g_page;

    android::Parcel request;
    request.writeInt32(fuzz_console::kCmdCode);
    t_reply = {true, size, reply, length < SHM_DATA_SIZE ? length : SHM_DATA_SIZE};
    const int ret = fuzz_console::Console().Get().CopyCmdToBuf(fuzz_console::kCmdWord, request);
    FUZZ_CHECK(!t_reply.armed);  // the console waited for the answer
    g_pShareMem = MAP_FAILED;

    int32_t status = 0;
    if (size >= 4 && size <= SHM_DATA_SIZE) {
        std::memcpy(&status, ShmPayloadOf(g_page), sizeof status);
    }
    FUZZ_CHECK(ret == ((size <= SHM_DATA_SIZE && status == 0) ? 0 : -1));
}

}  // namespace

// The service's side of the exchange, in place of the console's 100 ms sleep:
// answers at once when armed, sleeps for real otherwise (libFuzzer's own
// threads sleep too).
extern "C" int nanosleep(const struct timespec* request, struct timespec* remaining)
{
    if (!t_reply.armed) {
        return static_cast<int>(syscall(SYS_nanosleep, request, remaining));
    }
    t_reply.armed = false;
    FUZZ_CHECK(ShmLoadFlag(g_page) == SHM_FLAG_REQUEST && ShmLoadSize(g_page) == 4);
    int32_t code;
    std::memcpy(&code, ShmPayloadOf(g_page), sizeof code);
    FUZZ_CHECK(code == fuzz_console::kCmdCode);

    std::memset(ShmPayloadOf(g_page), 0, SHM_DATA_SIZE);
    ShmPostReply(g_page, t_reply.bytes, t_reply.length, t_reply.size);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz_console::Console();  // silences the printer before any input is printed
    if (size < 5) {
        return 0;
    }
    const bool onPage = (data[0] & 1) != 0;
    uint32_t u32Size;
    std::memcpy(&u32Size, data + 1, sizeof u32Size);

    const std::string rest(reinterpret_cast<const char*>(data + 5), size - 5);
    const size_t formatEnd = rest.find('\n');
    const size_t tagsEnd = formatEnd == std::string::npos ? std::string::npos : rest.find('\n', formatEnd + 1);
    if (tagsEnd == std::string::npos) {
        return 0;
    }
    const std::string format = rest.substr(0, formatEnd);
    const std::string tags = rest.substr(formatEnd + 1, tagsEnd - formatEnd - 1);
    const uint8_t* reply = data + 5 + tagsEnd + 1;
    const size_t length = size - 5 - tagsEnd - 1;

    if (onPage) {
        ExchangeOnPage(format, tags, u32Size, reply, length);
    } else {
        PrintDirectly(format, tags, reply, length);
    }
    return 0;
}
