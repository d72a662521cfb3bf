// Host stand-in for android::Parcel, used as a flat in-memory encoder and
// decoder only. It offers only calls that the platform's Parcel has, with the
// same signatures; strings are the platform's own String16 (libutils).
//
// Byte layout, identical to the device's (little-endian there and here):
// every value starts 4-byte aligned and every write is zero-padded to a
// multiple of 4. Int32 and float take 4 bytes, int64 and double 8 (with no
// extra 8-byte alignment). A String16 is an int32 count of UTF-16 units, then
// the units and a zero unit, padded to a multiple of 4.
//
// Readers never read past the end: a value that does not fit in what remains
// reads as 0 (an empty string) and, for numbers, does not move the position.
// Not thread-safe.
#ifndef ZO_PLATFORM_BINDER_PARCEL_H
#define ZO_PLATFORM_BINDER_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <utils/Errors.h>
#include <utils/String16.h>

namespace android {

class Parcel {
public:
    Parcel() = default;
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;

    // The bytes written or set; null while nothing has ever been written or set.
    const uint8_t* data() const;
    // Number of bytes written or set.
    size_t dataSize() const { return m_data.size(); }
    // Bytes between the read position and the end.
    size_t dataAvail() const { return m_data.size() > m_pos ? m_data.size() - m_pos : 0; }
    size_t dataPosition() const { return m_pos; }
    // Moves the read position; a position past the end is clamped to the end.
    void setDataPosition(size_t pos) const { m_pos = pos < m_data.size() ? pos : m_data.size(); }

    // Replaces the contents with a copy of len bytes; reading restarts at 0.
    status_t setData(const uint8_t* buffer, size_t len);

    // Each appends at the end: NO_ERROR, or NO_MEMORY when the buffer cannot grow.
    status_t writeInt32(int32_t value);
    status_t writeInt64(int64_t value);
    status_t writeFloat(float value);
    status_t writeDouble(double value);
    status_t writeString16(const String16& text);

    int32_t readInt32() const;
    int64_t readInt64() const;
    float readFloat() const;
    double readDouble() const;
    // Reads the count (moving past it when 4 bytes remain). A negative count,
    // 0x7fffffff, a block that does not fit in what remains, or a terminator
    // unit that is not zero yields an empty text; only in the last case does the
    // position move past the block.
    String16 readString16() const;

private:
    status_t Append(const void* bytes, size_t len);
    // Copies len bytes at the position and advances; false, unmoved, when they do not fit.
    bool Take(void* out, size_t len) const;

    std::vector<uint8_t> m_data;
    bool m_hasData = false;
    mutable size_t m_pos = 0;
};

}  // namespace android

#endif  // ZO_PLATFORM_BINDER_PARCEL_H
