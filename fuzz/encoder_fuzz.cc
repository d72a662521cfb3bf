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
#include "fuzz_check.h"

namespace {

fuzz_console::Console* g_console = nullptr;

// Reads the request back by the format; false when a value is missing.
bool ReadsBack(const android::Parcel& request, const std::string& format)
{
    for (const char letter : format) {
        const size_t avail = request.dataAvail();
        switch (letter) {
            case 'd':
            case 'f':
                if (avail < 4) {
                    return false;
                }
                request.readInt32();
                break;
            case 'D':
            case 'F':
                if (avail < 8) {
                    return false;
                }
                request.readInt64();
                break;
            case 's': {
                if (avail < 8) {
                    return false;
                }
                // Always a string of the word's units: even a word that converts to
                // no unit at all leaves its count and terminator.
                request.readString16();
                FUZZ_CHECK(request.dataAvail() < avail);
                break;
            }
            case 'S':
                break;
            default:
                FUZZ_CHECK(!"a successful encoding has only format letters");
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_console::Silence();
    g_console = new fuzz_console::Console();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t eol = input.find('\n');
    const std::string format = input.substr(0, eol);
    const std::string text = eol == std::string::npos ? std::string() : input.substr(eol + 1);

    const ZoFileParse& catalogue = g_console->Load(format, "d", "result");
    const std::string delivered = catalogue.GetCmdParaFmt(catalogue.GetModInstruct("M"), fuzz_console::kCmdWord);

    android::Parcel request;
    std::istringstream args(text + " ");
    const int ret = g_console->Get().ParseCmd(fuzz_console::kCmdWord, request, args);
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
