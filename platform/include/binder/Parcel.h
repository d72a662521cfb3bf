// Host stand-in for android::Parcel, used as a flat in-memory encoder and
// decoder only. It offers only calls that the platform's Parcel has, with the
// same signatures and results; strings are the platform's own String16
// (libutils).
//
// One data position serves both writing and reading, as in the platform's
// class: a write puts its bytes at the position (over what is there) and moves
// past them, growing the data when it passes the end; a read takes its bytes
// from the position. So a parcel that was written must be rewound with
// setDataPosition(0) before it is read, and setData followed by a write
// overwrites the start of the data.
//
// Byte layout, identical to the device's (little-endian there and here):
// every value starts 4-byte aligned and every write is zero-padded to a
// multiple of 4. Int32 and float take 4 bytes, int64 and double 8 (with no
// extra 8-byte alignment). A String16 is an int32 count of UTF-16 units, then
// the units and a zero unit, padded to a multiple of 4.
//
// Readers never read past the end: a value that does not fit in what remains
// reads as 0 (an empty string) and, for numbers, does not move the position;
// the status-returning forms then say NOT_ENOUGH_DATA (UNEXPECTED_NULL for a
// string) instead.
// Not thread-safe.
#ifndef ZO_PLATFORM_BINDER_PARCEL_H
#define ZO_PLATFORM_BINDER_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <string>
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
    // The end of the data, or the position when it lies beyond (as on the
    // device, where the bytes up to such a position are not defined).
    size_t dataSize() const { return m_data.size() > m_pos ? m_data.size() : m_pos; }
    // Bytes between the position and the end.
    size_t dataAvail() const { return dataSize() - m_pos; }
    size_t dataPosition() const { return m_pos; }
    // Moves the position, beyond the end too; a position above INT32_MAX (a
    // negative int converted) aborts the process, as on the device.
    void setDataPosition(size_t pos) const;

    // Replaces the contents with a copy of len bytes; the position goes to 0.
    // BAD_VALUE for a length above INT32_MAX or a null buffer with a length.
    status_t setData(const uint8_t* buffer, size_t len);

    // Each writes at the position and moves past: NO_ERROR, or NO_MEMORY when
    // the buffer cannot grow. Bytes skipped by a position beyond the end are zeros.
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

    // The same reads with a status: NO_ERROR and the value in *out, or
    // NOT_ENOUGH_DATA with *out untouched and the position unmoved.
    status_t readInt32(int32_t* out) const;
    status_t readInt64(int64_t* out) const;
    status_t readFloat(float* out) const;
    status_t readDouble(double* out) const;
    // NO_ERROR and the text, or UNEXPECTED_NULL and an empty *out in each case
    // where readString16() gives an empty text for something other than "".
    status_t readString16(String16* out) const;
    // readString16 converted to UTF-8 by libutils, as String8 converts it (a
    // lone surrogate is dropped): NO_ERROR, or UNEXPECTED_NULL with *out untouched.
    status_t readUtf8FromUtf16(std::string* out) const;

private:
    // Writes len bytes and the zeros that pad them to 4 at the position.
    status_t Put(const void* bytes, size_t len);
    // Copies len (a multiple of 4) bytes at the position and advances; false, unmoved, when they do not fit.
    bool Take(void* out, size_t len) const;
    // The units of a String16 block at the position, as readString16 reads
    // them (at any byte offset: copy, never cast); null when there is none.
    const uint8_t* TakeString16(size_t* units) const;

    std::vector<uint8_t> m_data;
    bool m_hasData = false;
    mutable size_t m_pos = 0;
};

}  // namespace android

#endif  // ZO_PLATFORM_BINDER_PARCEL_H
