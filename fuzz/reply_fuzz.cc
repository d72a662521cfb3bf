// The reply printer on arbitrary replies, print formats and tags.
//
// Input: the print format, a line feed, the print tags (split at commas; they
// may hold any byte), a line feed, then the reply's bytes.
//
// Checked besides memory safety and termination: Fmt fails only for a missing
// format or tags, or an invalid letter it had to handle, and never reads past
// the reply. (What CopyCmdToBuf makes of each u32Size and status is pinned by
// the exchange tests against the simulator.)
#include <binder/Parcel.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "console_fuzz_support.h"
#include "fuzz_support.h"
#include "zo_format_letters.h"
#include "zo_mw_array.h"
#include "zo_printer.h"

namespace {

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz_console::Console();  // silences the printer before any input is printed
    const std::string text(reinterpret_cast<const char*>(data), size);
    const size_t formatEnd = text.find('\n');
    const size_t tagsEnd = formatEnd == std::string::npos ? std::string::npos : text.find('\n', formatEnd + 1);
    if (tagsEnd == std::string::npos) {
        return 0;
    }
    PrintDirectly(text.substr(0, formatEnd), text.substr(formatEnd + 1, tagsEnd - formatEnd - 1), data + tagsEnd + 1,
                  size - tagsEnd - 1);
    return 0;
}
