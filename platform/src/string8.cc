#include <utils/String8.h>

#include <cstdint>

namespace android {

namespace {

void AppendUtf8(uint32_t codePoint, std::string* out)
{
    if (codePoint < 0x80) {
        out->push_back(static_cast<char>(codePoint));
    } else if (codePoint < 0x800) {
        out->push_back(static_cast<char>(0xc0 | (codePoint >> 6)));
        out->push_back(static_cast<char>(0x80 | (codePoint & 0x3f)));
    } else if (codePoint < 0x10000) {
        out->push_back(static_cast<char>(0xe0 | (codePoint >> 12)));
        out->push_back(static_cast<char>(0x80 | ((codePoint >> 6) & 0x3f)));
        out->push_back(static_cast<char>(0x80 | (codePoint & 0x3f)));
    } else {
        out->push_back(static_cast<char>(0xf0 | (codePoint >> 18)));
        out->push_back(static_cast<char>(0x80 | ((codePoint >> 12) & 0x3f)));
        out->push_back(static_cast<char>(0x80 | ((codePoint >> 6) & 0x3f)));
        out->push_back(static_cast<char>(0x80 | (codePoint & 0x3f)));
    }
}

bool IsHighSurrogate(char16_t unit)
{
    return unit >= 0xd800 && unit <= 0xdbff;
}

bool IsLowSurrogate(char16_t unit)
{
    return unit >= 0xdc00 && unit <= 0xdfff;
}

}  // namespace

String8::String8(const String16& text)
{
    const char16_t* units = text.c_str();
    const size_t count = text.size();
    std::string bytes;
    for (size_t i = 0; i < count; ++i) {
        const char16_t unit = units[i];
        if (IsHighSurrogate(unit)) {
            if (i + 1 >= count || !IsLowSurrogate(units[i + 1])) {
                return;
            }
            const uint32_t codePoint = 0x10000 + ((static_cast<uint32_t>(unit) - 0xd800) << 10) +
                                       (static_cast<uint32_t>(units[i + 1]) - 0xdc00);
            AppendUtf8(codePoint, &bytes);
            ++i;
        } else if (IsLowSurrogate(unit)) {
            return;
        } else {
            AppendUtf8(unit, &bytes);
        }
    }
    m_bytes.swap(bytes);
}

}  // namespace android
