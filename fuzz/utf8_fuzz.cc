// UTF-8 to String16 on arbitrary bytes, as the argument encoder converts the
// text an engineer types.
//
// Checked besides memory safety: a conversion that succeeds is exact (String8
// gives back the very bytes, embedded NULs included); the terminated form
// converts the bytes before the first NUL exactly as the counted form does;
// and a String16 of any units that converts to UTF-8 converts back to the same
// units.
#include <utils/String16.h>
#include <utils/String8.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "fuzz_check.h"

using android::String16;
using android::String8;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);

    const String16 counted(bytes.data(), bytes.size());
    FUZZ_CHECK(counted.c_str()[counted.size()] == 0);
    if (counted.size() != 0) {
        const String8 back(counted);
        FUZZ_CHECK(std::string(back.c_str(), back.size()) == bytes);
    }

    // Stops at the first NUL, which std::string's c_str() also provides at the end.
    const String16 terminated(bytes.c_str());
    FUZZ_CHECK(terminated == String16(bytes.c_str(), std::strlen(bytes.c_str())));

    // The same bytes taken as UTF-16 units, as a reply may carry them.
    std::u16string units(size / 2, u'\0');
    if (!units.empty()) {
        std::memcpy(&units[0], data, units.size() * sizeof(char16_t));
    }
    const String16 text(units.data(), units.size());
    const String8 utf8(text);
    if (utf8.size() != 0) {
        FUZZ_CHECK(String16(utf8.c_str(), utf8.size()) == text);
    }
    return 0;
}
