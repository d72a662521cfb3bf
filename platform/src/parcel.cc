#include <binder/Parcel.h>

#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace android {

namespace {

// The wire format is the device's native little-endian layout, copied byte for byte.
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "parcel layout assumes a little-endian host");

constexpr size_t kAlign = 4;

size_t PadTo4(size_t len)
{
    return (len + kAlign - 1) & ~(kAlign - 1);
}

}  // namespace

const uint8_t* Parcel::data() const
{
    return m_hasData ? m_data.data() : nullptr;
}

status_t Parcel::setData(const uint8_t* buffer, size_t len)
{
    if (buffer == nullptr && len != 0) {
        return BAD_VALUE;
    }
    try {
        if (len == 0) {
            m_data.clear();
        } else {
            m_data.assign(buffer, buffer + len);
        }
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    }
    m_hasData = true;
    m_pos = 0;
    return NO_ERROR;
}

status_t Parcel::Append(const void* bytes, size_t len)
{
    const size_t padded = PadTo4(len);
    try {
        const size_t start = m_data.size();
        m_data.resize(start + padded, 0);
        std::memcpy(m_data.data() + start, bytes, len);
    } catch (const std::bad_alloc&) {
        return NO_MEMORY;
    } catch (const std::length_error&) {
        return NO_MEMORY;
    }
    m_hasData = true;
    return NO_ERROR;
}

status_t Parcel::writeInt32(int32_t value)
{
    return Append(&value, sizeof value);
}

status_t Parcel::writeInt64(int64_t value)
{
    return Append(&value, sizeof value);
}

status_t Parcel::writeFloat(float value)
{
    return Append(&value, sizeof value);
}

status_t Parcel::writeDouble(double value)
{
    return Append(&value, sizeof value);
}

status_t Parcel::writeString16(const String16& text)
{
    if (text.size() >= static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
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
    return Append(block.data(), block.size());
}

bool Parcel::Take(void* out, size_t len) const
{
    if (dataAvail() < len) {
        return false;
    }
    std::memcpy(out, m_data.data() + m_pos, len);
    m_pos += PadTo4(len);
    if (m_pos > m_data.size()) {
        m_pos = m_data.size();
    }
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

String16 Parcel::readString16() const
{
    int32_t count = 0;
    if (!Take(&count, sizeof count)) {
        return String16();
    }
    if (count < 0 || count == std::numeric_limits<int32_t>::max()) {
        return String16();
    }
    // Computed in 64 bits so that a huge count cannot wrap on a 32-bit size_t.
    const uint64_t units = static_cast<uint64_t>(count) + 1;
    const uint64_t blockLen = (units * sizeof(char16_t) + kAlign - 1) & ~static_cast<uint64_t>(kAlign - 1);
    if (blockLen > dataAvail()) {
        return String16();
    }
    const uint8_t* block = m_data.data() + m_pos;
    m_pos += static_cast<size_t>(blockLen);
    char16_t terminator = 0;
    std::memcpy(&terminator, block + static_cast<size_t>(count) * sizeof(char16_t), sizeof terminator);
    if (terminator != 0) {
        return String16();
    }
    // The units may sit at any byte offset of the caller's data: copy, never cast.
    std::u16string units16(static_cast<size_t>(count), u'\0');
    std::memcpy(&units16[0], block, static_cast<size_t>(count) * sizeof(char16_t));
    return String16(units16.data(), units16.size());
}

}  // namespace android
