// The argument encoder (ParseCmd) on arbitrary argument text against an
// arbitrary parameter format.
//
// Input: the parameter format, a line feed, then the argument text. The format
// goes into the catalogue as the command's "para format" (so it arrives as the
// catalogue delivers it: trimmed, cut at a NUL, at most 254 characters); the
// text gets the one blank the dispatcher appends.
//
// Checked besides memory safety: the request starts with the command's code;
// a successful encoding used only format letters and reads back, letter by
// letter, to exactly the end of the request.
#include <binder/Parcel.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "console_fuzz_support.h"
#include "fuzz_support.h"
#include "zo_format_letters.h"

namespace {

// Reads the request back by the format; false when a value is missing.
bool ReadsBack(const android::Parcel& request, const std::string& format)
{
    for (const char letter : format) {
        const ZoFormatLetter* row = ZoFormatLetterOf(letter);
        FUZZ_CHECK(row != nullptr);  // a successful encoding has only format letters
        ZoFormatValue value;
        const size_t avail = request.dataAvail();
        if (row->supported && !row->read(request, value)) {
            return false;
        }
        if (row->supported && row->kind == ZoFormatKind::kText) {
            // Always a string of the word's units, never an absent one.
            FUZZ_CHECK(request.dataAvail() < avail);
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t eol = input.find('\n');
    const std::string format = input.substr(0, eol);
    const std::string text = eol == std::string::npos ? std::string() : input.substr(eol + 1);

    const ZoFileParse& catalogue = fuzz_console::Load(format, "d", "result");
    const std::string delivered = catalogue.GetCmdParaFmt(catalogue.GetModInstruct("M"), fuzz_console::kCmdWord);

    android::Parcel request;
    std::istringstream args(text + " ");
    const int ret = fuzz_console::Console().Get().ParseCmd(fuzz_console::kCmdWord, request, args);
    FUZZ_CHECK(ret == 0 || ret == -1);

    FUZZ_CHECK(request.dataSize() >= 4 && request.dataSize() % 4 == 0);
    request.setDataPosition(0);
    FUZZ_CHECK(request.readInt32() == fuzz_console::kCmdCode);
    if (ret == 0) {
        FUZZ_CHECK(ReadsBack(request, delivered));
        FUZZ_CHECK(request.dataAvail() == 0);
    }
    return 0;
}
