// Host stand-in for android::String8: an immutable UTF-8 text.
//
// Built from a String16, surrogate pairs become one 4-byte sequence. A text
// with an unpaired surrogate yields an empty String8.
#ifndef ZO_PLATFORM_UTILS_STRING8_H
#define ZO_PLATFORM_UTILS_STRING8_H

#include <cstddef>
#include <string>

#include <utils/String16.h>

namespace android {

class String8 {
public:
    String8() = default;
    explicit String8(const char* utf8) : m_bytes(utf8 != nullptr ? utf8 : "") {}
    explicit String8(const String16& text);

    // Number of bytes, without the terminator.
    size_t size() const { return m_bytes.size(); }
    size_t length() const { return m_bytes.size(); }
    const char* c_str() const { return m_bytes.c_str(); }
    const char* string() const { return m_bytes.c_str(); }

private:
    std::string m_bytes;
};

}  // namespace android

#endif  // ZO_PLATFORM_UTILS_STRING8_H
