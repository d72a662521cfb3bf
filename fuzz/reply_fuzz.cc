// The reply printer on arbitrary replies, print formats and tags.
//
// Input: the print format, a line feed, the print tags, a line feed, then the reply's bytes. Format and tags reach the
// printer as the catalogue delivers them (trimmed, cut at a NUL, the tags split at commas).
//
// Checked besides memory safety and termination: Fmt fails only for a missing format or tags, or an invalid letter it
// had to handle, and never reads past the reply. (What CopyCmdToBuf makes of each u32Size and status is pinned by the
// exchange tests against the simulator.)
#include <binder/Parcel.h>

#include <cstdint>
#include <string>

#include "console_fuzz_support.h"
#include "fuzz_support.h"
#include "zo_format_letters.h"
#include "zo_mw_array.h"
#include "zo_printer.h"

namespace {

// True when Fmt has a reason to fail: no format, no tags, or an invalid letter among those it handles (only when the
// reply has data for a first pass).
bool MayFail(const std::string& format, const Array<std::string>& tags, size_t replySize)
{
    bool invalid = false;
    for (size_t i = 0; replySize != 0 && i < format.size() && i < tags.Size(); ++i) {
        invalid = invalid || ZoFormatLetterOf(format[i]) == nullptr;
    }
    return format.empty() || tags.Size() == 0 || invalid;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const size_t formatEnd = text.find('\n');
    const size_t tagsEnd = formatEnd == std::string::npos ? std::string::npos : text.find('\n', formatEnd + 1);
    if (tagsEnd == std::string::npos) {
        return 0;
    }
    const ZoFileParse& catalogue = fuzz_console::Load(
        "", text.substr(0, formatEnd), text.substr(formatEnd + 1, tagsEnd - formatEnd - 1));
    const int32_t code = catalogue.GetModInstruct("M");
    const std::string format = catalogue.GetCmdPrintFmt(code, fuzz_console::kCmdWord);
    const Array<std::string> tags = catalogue.GetCmdPrintTags(code, fuzz_console::kCmdWord);
    android::Parcel reply;
    FUZZ_CHECK(reply.setData(data + tagsEnd + 1, size - tagsEnd - 1) == android::NO_ERROR);
    Printer printer(reply);
    const int ret = printer.Fmt(format.c_str(), tags);
    FUZZ_CHECK(ret == 0 || (ret == -1 && MayFail(format, tags, size - tagsEnd - 1)));
    FUZZ_CHECK(reply.dataPosition() <= size - tagsEnd - 1);
    FUZZ_CHECK(printer.Flush() == 0);
    return 0;
}
