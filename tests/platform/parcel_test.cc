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
    static const char kDigits[] = "0123456789abcdef";
    std::string out;
    for (size_t i = 0; i < parcel.dataSize(); ++i) {
        if (i != 0 && i % 4 == 0) {
            out += ' ';
        }
        out += kDigits[parcel.data()[i] >> 4];
        out += kDigits[parcel.data()[i] & 0xf];
    }
    return out;
}

// A parcel holding exactly the given bytes, read from position 0.
void Load(Parcel* parcel, const std::vector<uint8_t>& bytes)
{
    ASSERT_EQ(parcel->setData(bytes.data(), bytes.size()), NO_ERROR);
}

TEST(Parcel, NumbersHaveTheDeviceLayout)
{
    Parcel parcel;
    EXPECT_EQ(parcel.data(), nullptr);
    EXPECT_EQ(parcel.writeInt32(0x12345678), NO_ERROR);
    EXPECT_EQ(parcel.writeInt32(-1), NO_ERROR);
    EXPECT_EQ(parcel.writeInt64(-2), NO_ERROR);
    EXPECT_EQ(parcel.writeInt64(0x0102030405060708LL), NO_ERROR);
    EXPECT_EQ(parcel.writeFloat(1.5f), NO_ERROR);
    EXPECT_EQ(parcel.writeDouble(-2.25), NO_ERROR);
    EXPECT_EQ(Hex(parcel),
              "78563412 ffffffff feffffff ffffffff 08070605 04030201 0000c03f 00000000 000002c0");
    EXPECT_EQ(parcel.dataSize(), 36u);
}

TEST(Parcel, StringsHaveTheDeviceLayout)
{
    Parcel empty;
    empty.writeString16(String16(""));
    EXPECT_EQ(Hex(empty), "00000000 00000000");

    Parcel hello;
    hello.writeString16(String16("hello"));
    EXPECT_EQ(Hex(hello), "05000000 68006500 6c006c00 6f000000");

    Parcel hi;
    hi.writeString16(String16("hi"));
    EXPECT_EQ(Hex(hi), "02000000 68006900 00000000");

    // U+1F600 is the surrogate pair d83d de00: two units.
    Parcel astral;
    astral.writeString16(String16("a\xF0\x9F\x98\x80"));
    EXPECT_EQ(Hex(astral), "03000000 61003dd8 00de0000");
}

TEST(Parcel, ValuesReadBackInOrder)
{
    Parcel parcel;
    parcel.writeInt32(-7);
    parcel.writeString16(String16("h\xC3\xA9llo"));
    parcel.writeInt64(-9000000000LL);
    parcel.writeFloat(0.25f);
    parcel.writeDouble(1e300);

    Parcel reply;
    Load(&reply, std::vector<uint8_t>(parcel.data(), parcel.data() + parcel.dataSize()));
    EXPECT_EQ(reply.readInt32(), -7);
    EXPECT_STREQ(String8(reply.readString16()).c_str(), "h\xC3\xA9llo");
    EXPECT_EQ(reply.readInt64(), -9000000000LL);
    EXPECT_EQ(reply.readFloat(), 0.25f);
    EXPECT_EQ(reply.readDouble(), 1e300);
    EXPECT_EQ(reply.dataAvail(), 0u);
    EXPECT_EQ(reply.readInt32(), 0);
}

TEST(Parcel, TruncatedNumbersReadAsZeroWithoutMoving)
{
    Parcel parcel;
    Load(&parcel, {1, 0, 0, 0, 2, 0});
    EXPECT_EQ(parcel.readInt64(), 0);
    EXPECT_EQ(parcel.dataPosition(), 0u);
    EXPECT_EQ(parcel.readDouble(), 0.0);
    EXPECT_EQ(parcel.readInt32(), 1);
    EXPECT_EQ(parcel.dataAvail(), 2u);
    EXPECT_EQ(parcel.readInt32(), 0);
    EXPECT_EQ(parcel.readFloat(), 0.0f);
    EXPECT_EQ(parcel.dataPosition(), 4u);

    Parcel none;
    EXPECT_EQ(none.readInt32(), 0);
    EXPECT_EQ(none.dataAvail(), 0u);
}

TEST(Parcel, HostileStringCountsYieldEmptyWithinBounds)
{
    // Count -1: empty, position stays behind the count.
    Parcel minusOne;
    Load(&minusOne, {0xff, 0xff, 0xff, 0xff, 'x', 0, 0, 0});
    EXPECT_EQ(minusOne.readString16().size(), 0u);
    EXPECT_EQ(minusOne.dataPosition(), 4u);

    // Count 0x7fffffff: the size computation must not wrap.
    Parcel huge;
    Load(&huge, {0xff, 0xff, 0xff, 0x7f, 0, 0, 0, 0});
    EXPECT_EQ(huge.readString16().size(), 0u);
    EXPECT_EQ(huge.dataPosition(), 4u);

    // 0x7ffffffe units would need 0xfffffffe bytes: too big for what remains.
    Parcel nearlyHuge;
    Load(&nearlyHuge, {0xfe, 0xff, 0xff, 0x7f, 'a', 0, 0, 0});
    EXPECT_EQ(nearlyHuge.readString16().size(), 0u);
    EXPECT_EQ(nearlyHuge.dataPosition(), 4u);

    // Count 3 with exactly the 8 bytes its block needs remaining: read whole.
    Parcel exact;
    Load(&exact, {3, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 0, 0});
    EXPECT_STREQ(String8(exact.readString16()).c_str(), "abc");
    EXPECT_EQ(exact.dataAvail(), 0u);

    // Count 4 with only the units and no room for the terminator.
    Parcel noRoom;
    Load(&noRoom, {4, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 'd', 0});
    EXPECT_EQ(noRoom.readString16().size(), 0u);
    EXPECT_EQ(noRoom.dataPosition(), 4u);

    // The terminator unit is not zero: empty, but the block is consumed.
    Parcel badTerminator;
    Load(&badTerminator, {1, 0, 0, 0, 'a', 0, 'z', 0, 9, 0, 0, 0});
    EXPECT_EQ(badTerminator.readString16().size(), 0u);
    EXPECT_EQ(badTerminator.dataPosition(), 8u);
    EXPECT_EQ(badTerminator.readInt32(), 9);

    // Fewer than 4 bytes for the count.
    Parcel shortCount;
    Load(&shortCount, {1, 0});
    EXPECT_EQ(shortCount.readString16().size(), 0u);
    EXPECT_EQ(shortCount.dataPosition(), 0u);
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

    Parcel zero;
    ASSERT_EQ(zero.setData(bytes, 0), NO_ERROR);
    EXPECT_EQ(zero.dataSize(), 0u);
    EXPECT_EQ(zero.readInt32(), 0);
}

}  // namespace
