// Host stand-in for android::String16: an immutable UTF-16 text.
//
// Built from UTF-8, it converts exactly as the platform does for valid input,
// with characters above U+FFFF as surrogate pairs. Invalid UTF-8 (a byte that
// cannot start a sequence, a missing or wrong continuation byte, an overlong
// form, an encoded surrogate or a value above U+10FFFF) yields an empty text.
// Conversion never reads past the terminator or the given length.
#ifndef ZO_PLATFORM_UTILS_STRING16_H
#define ZO_PLATFORM_UTILS_STRING16_H

#include <cstddef>
#include <string>

namespace android {

class String16 {
public:
    String16() = default;
    explicit String16(const char* utf8);
    String16(const char* utf8, size_t len);
    String16(const char16_t* units, size_t len);

    // Number of UTF-16 code units.
    size_t size() const { return m_units.size(); }
    // The units, always followed by a zero unit.
    const char16_t* c_str() const { return m_units.c_str(); }
    const char16_t* string() const { return m_units.c_str(); }

    bool operator==(const String16& other) const { return m_units == other.m_units; }
    bool operator!=(const String16& other) const { return m_units != other.m_units; }

private:
    std::u16string m_units;
};

}  // namespace android

#endif  // ZO_PLATFORM_UTILS_STRING16_H
