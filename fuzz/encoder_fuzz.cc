// The argument encoder (ParseCmd) on arbitrary argument text against an arbitrary parameter format.
//
// Input: the parameter format, a line feed, then the argument text. The format goes into the catalogue as the command's
// "para format" (so it arrives as the catalogue delivers it: trimmed, cut at a NUL, at most 254 characters); the text
// gets the one blank the dispatcher appends.
//
// Checked besides memory safety: the request starts with the command's code; a successful encoding used only format
// letters, holds for each letter what the letter's row encodes from the same text (S nothing), and reads back, letter
// by letter, to exactly the end of the request.
#include <binder/Parcel.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

#include "console_fuzz_support.h"
#include "fuzz_support.h"
#include "zo_format_letters.h"

namespace {

// Reads the request back by the format, comparing each value's bytes with the row's own encoding of the next argument;
// false when a value is missing.
bool ReadsBack(const android::Parcel& request, const std::string& format, const std::string& text)
{
    std::istringstream args(text);
    for (const char letter : format) {
        const ZoFormatLetter* row = ZoFormatLetterOf(letter);
        FUZZ_CHECK(row != nullptr);  // a successful encoding has only format letters
        if (!row->supported) {
            continue;
        }
        ZoFormatValue value;
        FUZZ_CHECK(row->encode(args, value));
        android::Parcel expected;
        FUZZ_CHECK(row->write(expected, value) == android::NO_ERROR);
        const size_t start = request.dataPosition();
        if (!row->read(request, value)) {
            return false;
        }
        FUZZ_CHECK(request.dataPosition() - start == expected.dataSize());
        FUZZ_CHECK(std::memcmp(request.data() + start, expected.data(), expected.dataSize()) == 0);
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
    const std::string argText = text + " ";
    std::istringstream args(argText);
    const int ret = fuzz_console::Console().Get().ParseCmd(fuzz_console::kCmdWord, request, args);
    FUZZ_CHECK(ret == 0 || ret == -1);

    FUZZ_CHECK(request.dataSize() >= 4 && request.dataSize() % 4 == 0);
    request.setDataPosition(0);
    FUZZ_CHECK(request.readInt32() == fuzz_console::kCmdCode);
    if (ret == 0) {
        FUZZ_CHECK(ReadsBack(request, delivered, argText));
        FUZZ_CHECK(request.dataAvail() == 0);
    }
    return 0;
}
