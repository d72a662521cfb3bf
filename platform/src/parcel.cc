#include <binder/Parcel.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

#include <utils/Unicode.h>

namespace android {

namespace {

// The wire format is the device's native little-endian layout, copied byte for byte.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "parcel layout assumes a little-endian host");

constexpr size_t kAlign = 4;
constexpr size_t kMaxSize = static_cast<size_t>(std::numeric_limits<int32_t>::max());

size_t PadTo4(size_t len)
{
    return (len + kAlign - 1) & ~(kAlign - 1);
}

}  // namespace

const uint8_t* Parcel::data() const
{
    return m_hasData ? m_data.data() : nullptr;
}

void Parcel::setDataPosition(size_t pos) const
{
    if (pos > kMaxSize) {
        std::abort();
    }
    m_pos = pos;
}

status_t Parcel::setData(const uint8_t* buffer, size_t len)
{
    if (len > kMaxSize || (buffer == nullptr && len != 0)) {
        return BAD_VALUE;
    }
    try {
        m_data.assign(buffer, buffer + len);
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
    m_hasData = true;
    m_pos = 0;
    return NO_ERROR;
}

status_t Parcel::Put(const void* bytes, size_t len)
{
    const size_t padded = PadTo4(len);
    if (padded > kMaxSize - m_pos) {
        return NO_MEMORY;
    }
    try {
        if (m_data.size() < m_pos + padded) {
            m_data.resize(m_pos + padded, 0);
        }
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    } catch (const std::length_error&) {
        return NO_MEMORY;
    }
    std::memcpy(m_data.data() + m_pos, bytes, len);
    std::memset(m_data.data() + m_pos + len, 0, padded - len);
    m_pos += padded;
    m_hasData = true;
    return NO_ERROR;
}

status_t Parcel::writeInt32(int32_t value)
{
    return Put(&value, sizeof value);
}

status_t Parcel::writeInt64(int64_t value)
{
    return Put(&value, sizeof value);
}

status_t Parcel::writeFloat(float value)
{
    return Put(&value, sizeof value);
}

status_t Parcel::writeDouble(double value)
{
    return Put(&value, sizeof value);
}

status_t Parcel::writeString16(const String16& text)
{
    if (text.size() >= kMaxSize / sizeof(char16_t)) {
        return BAD_VALUE;
    }
    // Count, then the units and their zero terminator, padded as one block.
    std::vector<uint8_t> block;
    try {
        const int32_t count = static_cast<int32_t>(text.size());
        block.resize(sizeof count + (text.size() + 1) * sizeof(char16_t), 0);
        std::memcpy(block.data(), &count, sizeof count);
        std::memcpy(block.data() + sizeof count, text.string(), text.size() * sizeof(char16_t));
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
    return Put(block.data(), block.size());
}

bool Parcel::Take(void* out, size_t len) const
{
    if (m_pos > m_data.size() || m_data.size() - m_pos < len) {
        return false;
    }
    std::memcpy(out, m_data.data() + m_pos, len);
    m_pos += len;
    return true;
}

int32_t Parcel::readInt32() const
{
    int32_t value = 0;
    return Take(&value, sizeof value) ? value : 0;
}

int64_t Parcel::readInt64() const
{
    int64_t value = 0;
    return Take(&value, sizeof value) ? value : 0;
}

float Parcel::readFloat() const
{
    float value = 0;
    return Take(&value, sizeof value) ? value : 0.0f;
}

double Parcel::readDouble() const
{
    double value = 0;
    return Take(&value, sizeof value) ? value : 0.0;
}

status_t Parcel::readInt32(int32_t* out) const
{
    return Take(out, sizeof *out) ? NO_ERROR : NOT_ENOUGH_DATA;
}

status_t Parcel::readInt64(int64_t* out) const
{
    return Take(out, sizeof *out) ? NO_ERROR : NOT_ENOUGH_DATA;
}

status_t Parcel::readFloat(float* out) const
{
    return Take(out, sizeof *out) ? NO_ERROR : NOT_ENOUGH_DATA;
}

status_t Parcel::readDouble(double* out) const
{
    return Take(out, sizeof *out) ? NO_ERROR : NOT_ENOUGH_DATA;
}

const uint8_t* Parcel::TakeString16(size_t* units) const
{
    const int32_t count = readInt32();
    if (count < 0 || count == std::numeric_limits<int32_t>::max()) {
        return nullptr;
    }
    // Computed in 64 bits so that a huge count cannot wrap on a 32-bit size_t.
    const uint64_t blockLen = PadTo4((static_cast<uint64_t>(count) + 1) * sizeof(char16_t));
    if (m_pos > m_data.size() || blockLen > m_data.size() - m_pos) {
        return nullptr;
    }
    const uint8_t* block = m_data.data() + m_pos;
    m_pos += static_cast<size_t>(blockLen);
    // The check of the terminator came with a security update of the platform's
    // class; without it the units would be taken as they are.
    char16_t terminator = 0;
    std::memcpy(&terminator, block + static_cast<size_t>(count) * sizeof(char16_t), sizeof terminator);
    if (terminator != 0) {
        return nullptr;
    }
    *units = static_cast<size_t>(count);
    return block;
}

String16 Parcel::readString16() const
{
    String16 text;
    readString16(&text);
    return text;
}

status_t Parcel::readString16(String16* out) const
{
    size_t count = 0;
    const uint8_t* block = TakeString16(&count);
    if (block == nullptr) {
        *out = String16();
        return UNEXPECTED_NULL;
    }
    std::u16string units(count, u'\0');
    std::memcpy(&units[0], block, count * sizeof(char16_t));
    *out = String16(units.data(), units.size());
    return NO_ERROR;
}

status_t Parcel::readUtf8FromUtf16(std::string* out) const
{
    size_t count = 0;
    const uint8_t* block = TakeString16(&count);
    if (block == nullptr) {
        return UNEXPECTED_NULL;
    }
    if (count == 0) {
        out->clear();
        return NO_ERROR;
    }
    std::u16string units(count, u'\0');
    std::memcpy(&units[0], block, count * sizeof(char16_t));
    const ssize_t utf8Len = utf16_to_utf8_length(units.data(), units.size());
    if (utf8Len < 0) {
        return BAD_VALUE;
    }
    // utf16_to_utf8 writes a terminator after the text.
    out->resize(static_cast<size_t>(utf8Len) + 1);
    utf16_to_utf8(units.data(), units.size(), &(*out)[0], out->size());
    out->resize(static_cast<size_t>(utf8Len));
    return NO_ERROR;
}

}  // namespace android
