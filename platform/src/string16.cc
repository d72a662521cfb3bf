#include <utils/String16.h>

#include <cstdint>
#include <cstring>

namespace android {

namespace {

// Decodes one UTF-8 sequence at text[0..len). Returns its length and stores
// the code point, or returns 0 for an invalid sequence.
size_t DecodeUtf8(const unsigned char* text, size_t len, uint32_t* codePoint)
{
    const unsigned char lead = text[0];
    size_t seqLen;
    uint32_t value;
    uint32_t minimum;
    if (lead < 0x80) {
        *codePoint = lead;
        return 1;
    } else if ((lead & 0xe0) == 0xc0) {
        seqLen = 2;
        value = lead & 0x1f;
        minimum = 0x80;
    } else if ((lead & 0xf0) == 0xe0) {
        seqLen = 3;
        value = lead & 0x0f;
        minimum = 0x800;
    } else if ((lead & 0xf8) == 0xf0) {
        seqLen = 4;
        value = lead & 0x07;
        minimum = 0x10000;
    } else {
        return 0;
    }
    if (seqLen > len) {
        return 0;
    }
    for (size_t i = 1; i < seqLen; ++i) {
        if ((text[i] & 0xc0) != 0x80) {
            return 0;
        }
        value = (value << 6) | (text[i] & 0x3f);
    }
    if (value < minimum || value > 0x10ffff || (value >= 0xd800 && value <= 0xdfff)) {
        return 0;
    }
    *codePoint = value;
    return seqLen;
}

std::u16string Utf8ToUtf16(const char* utf8, size_t len)
{
    std::u16string units;
    const unsigned char* text = reinterpret_cast<const unsigned char*>(utf8);
    size_t pos = 0;
    while (pos < len) {
        uint32_t codePoint = 0;
        const size_t seqLen = DecodeUtf8(text + pos, len - pos, &codePoint);
        if (seqLen == 0) {
            return std::u16string();
        }
        if (codePoint > 0xffff) {
            codePoint -= 0x10000;
            units.push_back(static_cast<char16_t>(0xd800 + (codePoint >> 10)));
            units.push_back(static_cast<char16_t>(0xdc00 + (codePoint & 0x3ff)));
        } else {
            units.push_back(static_cast<char16_t>(codePoint));
        }
        pos += seqLen;
    }
    return units;
}

}  // namespace

String16::String16(const char* utf8)
{
    if (utf8 != nullptr) {
        m_units = Utf8ToUtf16(utf8, std::strlen(utf8));
    }
}

String16::String16(const char* utf8, size_t len)
{
    if (utf8 != nullptr) {
        m_units = Utf8ToUtf16(utf8, len);
    }
}

String16::String16(const char16_t* units, size_t len)
{
    if (units != nullptr) {
        m_units.assign(units, len);
    }
}

}  // namespace android
