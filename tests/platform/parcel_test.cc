#include <binder/Parcel.h>
#include <utils/String8.h>

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using android::NO_ERROR;
using android::Parcel;
using android::String16;
using android::String8;

namespace {

std::string Hex(const Parcel& parcel)
{
    std::string out;
    char pair[4];
    for (size_t i = 0; i < parcel.dataSize(); ++i) {
        snprintf(pair, sizeof pair, i != 0 && i % 4 == 0 ? " %02x" : "%02x", parcel.data()[i]);
        out += pair;
    }
    return out;
}

std::string Hex16(const char* text)
{
    Parcel parcel;
    parcel.writeString16(String16(text));
    return Hex(parcel);
}

TEST(Parcel, ValuesHaveTheDeviceLayoutAndReadBackInOrder)
{
    Parcel parcel;
    EXPECT_EQ(parcel.data(), nullptr);
    EXPECT_EQ(parcel.writeInt32(0x12345678), NO_ERROR);
    EXPECT_EQ(parcel.writeInt32(-1), NO_ERROR);
    EXPECT_EQ(parcel.writeInt64(-2), NO_ERROR);
    EXPECT_EQ(parcel.writeInt64(0x0102030405060708LL), NO_ERROR);
    EXPECT_EQ(parcel.writeFloat(1.5f), NO_ERROR);
    EXPECT_EQ(parcel.writeDouble(-2.25), NO_ERROR);
    EXPECT_EQ(parcel.writeString16(String16("h\xC3\xA9")), NO_ERROR);
    EXPECT_EQ(Hex(parcel), "78563412 ffffffff feffffff ffffffff 08070605 04030201 0000c03f 00000000 000002c0 "
                           "02000000 6800e900 00000000");
    Parcel reply;
    ASSERT_EQ(reply.setData(parcel.data(), parcel.dataSize()), NO_ERROR);
    EXPECT_EQ(reply.readInt32(), 0x12345678);
    EXPECT_EQ(reply.readInt32(), -1);
    EXPECT_EQ(reply.readInt64(), -2);
    EXPECT_EQ(reply.readInt64(), 0x0102030405060708LL);
    EXPECT_EQ(reply.readFloat(), 1.5f);
    EXPECT_EQ(reply.readDouble(), -2.25);
    EXPECT_STREQ(String8(reply.readString16()).c_str(), "h\xC3\xA9");
    EXPECT_EQ(reply.dataAvail(), 0u);
    EXPECT_EQ(reply.readInt32(), 0);

    EXPECT_EQ(Hex16(""), "00000000 00000000");
    EXPECT_EQ(Hex16("hello"), "05000000 68006500 6c006c00 6f000000");
    EXPECT_EQ(Hex16("a\xF0\x9F\x98\x80"), "03000000 61003dd8 00de0000");  // U+1F600: a surrogate pair
}

TEST(Parcel, TruncatedNumbersReadAsZeroWithoutMoving)
{
    const uint8_t bytes[] = {1, 0, 0, 0, 2, 0};
    Parcel parcel;
    ASSERT_EQ(parcel.setData(bytes, sizeof bytes), NO_ERROR);
    EXPECT_EQ(parcel.readInt64(), 0);
    EXPECT_EQ(parcel.readDouble(), 0.0);
    EXPECT_EQ(parcel.dataPosition(), 0u);
    EXPECT_EQ(parcel.readInt32(), 1);
    EXPECT_EQ(parcel.dataAvail(), 2u);
    EXPECT_EQ(parcel.readInt32(), 0);
    EXPECT_EQ(parcel.readFloat(), 0.0f);
    EXPECT_EQ(parcel.dataPosition(), 4u);
    Parcel none;
    EXPECT_EQ(none.readInt32(), 0);
}

TEST(Parcel, HostileStringCountsYieldEmptyWithinBounds)
{
    const struct {
        std::vector<uint8_t> bytes;
        const char* text;
        size_t position;  // after the read
    } cases[] = {
        {{0xff, 0xff, 0xff, 0xff, 'x', 0, 0, 0}, "", 4},           // count -1
        {{0xff, 0xff, 0xff, 0x7f, 0, 0, 0, 0}, "", 4},             // the size computation must not wrap
        {{0xfe, 0xff, 0xff, 0x7f, 'a', 0, 0, 0}, "", 4},           // 0xfffffffe bytes: more than remain
        {{3, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 0, 0}, "abc", 12},   // exactly the block: read whole
        {{4, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 'd', 0}, "", 4},     // no room for the terminator
        {{1, 0, 0, 0, 'a', 0, 'z', 0, 9, 0, 0, 0}, "", 8},         // a bad terminator: the block is consumed
        {{1, 0}, "", 0},                                           // too short for the count
    };
    for (const auto& c : cases) {
        Parcel parcel;
        ASSERT_EQ(parcel.setData(c.bytes.data(), c.bytes.size()), NO_ERROR);
        EXPECT_STREQ(String8(parcel.readString16()).c_str(), c.text) << c.bytes.size() << " bytes, " << c.text;
        EXPECT_EQ(parcel.dataPosition(), c.position) << c.bytes.size() << " bytes, " << c.text;
    }
}

TEST(Parcel, SetDataCopiesAndRestartsReading)
{
    uint8_t bytes[8] = {5, 0, 0, 0, 6, 0, 0, 0};
    Parcel parcel;
    parcel.writeInt32(99);
    ASSERT_EQ(parcel.setData(bytes, sizeof bytes), NO_ERROR);
    std::memset(bytes, 0, sizeof bytes);
    EXPECT_EQ(parcel.dataSize(), 8u);
    EXPECT_EQ(parcel.readInt32(), 5);
    EXPECT_EQ(parcel.readInt32(), 6);
    ASSERT_EQ(parcel.setData(bytes, 0), NO_ERROR);
    EXPECT_EQ(parcel.dataSize(), 0u);
    EXPECT_EQ(parcel.readInt32(), 0);
}

}  // namespace
