// The reply side's parcel readers on arbitrary bytes.
//
// Input: one byte n, then n reader letters, then the parcel's bytes. A letter
// picks the reader as in a print format (d readInt32, D readInt64, f readFloat,
// F readDouble, s readString16); any other byte picks one by its value modulo 5.
// Each string read is converted to String8 as the printer does.
//
// Checked besides memory safety: the read position stays within the data and
// never moves back; a number is the bytes at the position as they stand, or 0
// with the position unmoved when they do not fit.
#include <binder/Parcel.h>
#include <utils/String8.h>

#include <cstdint>
#include <cstring>

#include "fuzz_check.h"

namespace {

using android::Parcel;
using android::String16;
using android::String8;

// Compares a number read with the bytes it was read from, bit for bit.
template <typename T>
void CheckNumber(const Parcel& parcel, const uint8_t* bytes, size_t size, T (Parcel::*reader)() const)
{
    const size_t before = parcel.dataPosition();
    const T value = (parcel.*reader)();
    const size_t after = parcel.dataPosition();
    if (size - before < sizeof(T)) {
        FUZZ_CHECK(after == before);
        FUZZ_CHECK(value == T(0));
        return;
    }
    T expected;
    std::memcpy(&expected, bytes + before, sizeof expected);
    FUZZ_CHECK(std::memcmp(&value, &expected, sizeof value) == 0);
    FUZZ_CHECK(after == before + sizeof(T));
}

void CheckString(const Parcel& parcel)
{
    const size_t before = parcel.dataPosition();
    const String16 text = parcel.readString16();
    const size_t after = parcel.dataPosition();
    FUZZ_CHECK(after >= before);
    // The count, the units and their terminator all came from the data.
    FUZZ_CHECK(text.size() == 0 || after - before >= 4 + (text.size() + 1) * sizeof(char16_t));
    FUZZ_CHECK(text.string()[text.size()] == 0);
    const String8 utf8(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    size_t readers = data[0];
    if (readers > size - 1) {
        readers = size - 1;
    }
    const uint8_t* letters = data + 1;
    const uint8_t* bytes = letters + readers;
    const size_t length = size - 1 - readers;

    Parcel parcel;
    FUZZ_CHECK(parcel.setData(bytes, length) == android::NO_ERROR);
    FUZZ_CHECK(parcel.dataSize() == length);
    FUZZ_CHECK(length == 0 || std::memcmp(parcel.data(), bytes, length) == 0);

    for (size_t i = 0; i < readers; ++i) {
        const uint8_t letter = std::memchr("dDfFs", letters[i], 5) != nullptr ? letters[i] : "dDfFs"[letters[i] % 5];
        switch (letter) {
        case 'd': CheckNumber(parcel, bytes, length, &Parcel::readInt32); break;
        case 'D': CheckNumber(parcel, bytes, length, &Parcel::readInt64); break;
        case 'f': CheckNumber(parcel, bytes, length, &Parcel::readFloat); break;
        case 'F': CheckNumber(parcel, bytes, length, &Parcel::readDouble); break;
        default: CheckString(parcel); break;
        }
        FUZZ_CHECK(parcel.dataPosition() <= length);
        FUZZ_CHECK(parcel.dataAvail() == length - parcel.dataPosition());
    }
    return 0;
}
