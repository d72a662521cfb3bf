#include <binder/Parcel.h>
#include <utils/String8.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "hex_words.h"

using namespace android;

namespace {

// Reads one value per letter (d D f F s, as in the formats), then tells the position and the bytes left.
std::string Read(const std::vector<uint8_t>& bytes, const std::string& letters)
{
    Parcel parcel;
    parcel.writeInt32(99), parcel.readInt32();
    std::vector<uint8_t> copy = bytes;
    parcel.setData(copy.data(), copy.size());  // copies and restarts reading
    copy.assign(copy.size(), 0xee);
    std::string out;
    for (char letter : letters) {
        switch (letter) {
        case 'd': out += std::to_string(parcel.readInt32()) + ' '; break;
        case 'D': out += std::to_string(parcel.readInt64()) + ' '; break;
        case 'f': out += std::to_string(parcel.readFloat()) + ' '; break;
        case 'F': out += std::to_string(parcel.readDouble()) + ' '; break;
        default: out += '"' + std::string(String8(parcel.readString16()).c_str()) + "\" "; break;
        }
    }
    return out + '@' + std::to_string(parcel.dataPosition()) + '+' + std::to_string(parcel.dataAvail());
}

TEST(Parcel, ValuesHaveTheDeviceLayoutAndReadBackInOrder)
{
    Parcel parcel;
    EXPECT_EQ(nullptr, parcel.data());
    parcel.writeInt32(0x12345678);
    parcel.writeInt32(-1);
    parcel.writeInt64(0x0102030405060708LL);
    parcel.writeFloat(1.5f);
    parcel.writeDouble(-2.25);
    for (const char* text : {"", "hello", "hi", "h\xC3\xA9", "a\xF0\x9F\x98\x80"}) {  // U+1F600: a surrogate pair
        EXPECT_EQ(android::NO_ERROR, parcel.writeString16(String16(text)));
    }
    EXPECT_EQ("78563412 ffffffff 08070605 04030201 0000c03f 00000000 000002c0 00000000 00000000 05000000 68006500 "
              "6c006c00 6f000000 02000000 68006900 00000000 02000000 6800e900 00000000 03000000 61003dd8 00de0000",
              HexWords(parcel.data(), parcel.dataSize()));
    EXPECT_EQ("305419896 -1 72623859790382856 1.500000 -2.250000 \"\" \"hello\" \"hi\" \"h\xC3\xA9\" "
              "\"a\xF0\x9F\x98\x80\" 0 @88+0",
              Read(std::vector<uint8_t>(parcel.data(), parcel.data() + parcel.dataSize()), "ddDfFsssssd"));
}

TEST(Parcel, ShortOrHostileDataReadsAsZeroOrEmptyWithinBounds)
{
    const struct { std::vector<uint8_t> bytes; const char* letters; const char* values; } cases[] = {
        {{1, 0, 0, 0, 2, 0}, "DFdfd", "0 0.000000 1 0.000000 0 @4+2"},            // short numbers: 0, no move
        {{0xff, 0xff, 0xff, 0xff, 'x', 0, 0, 0}, "s", "\"\" @4+4"},               // count -1
        {{0xff, 0xff, 0xff, 0x7f, 0, 0, 0, 0}, "s", "\"\" @4+4"},                 // the size computation must not wrap
        {{0xfe, 0xff, 0xff, 0x7f, 'a', 0, 0, 0}, "s", "\"\" @4+4"},               // more units than bytes left
        {{3, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 0, 0}, "s", "\"abc\" @12+0"},       // exactly the block
        {{4, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 'd', 0}, "s", "\"\" @4+8"},         // no room for the terminator
        {{1, 0, 0, 0, 'a', 0, 'z', 0, 9, 0, 0, 0}, "sd", "\"\" 9 @12+0"},        // a bad terminator: block consumed
        {{1, 0}, "s", "\"\" @0+2"},                                                // too short for the count
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.values, Read(c.bytes, c.letters)) << c.bytes.size() << " bytes, " << c.letters;
    }
}

}  // namespace
