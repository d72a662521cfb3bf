#include <binder/Parcel.h>
#include <utils/String8.h>

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "hex_words.h"

using namespace android;

namespace {

// Reads one value per letter (d D f F s, as in the formats; u: s as UTF-8) with the status-returning readers, each
// failure marked "!", and checks that the value readers read the same, or 0 and "" where those fail; then tells the
// position and the bytes left.
std::string Read(const std::vector<uint8_t>& bytes, const std::string& letters)
{
    Parcel parcel, plain;
    parcel.writeInt32(99), parcel.readInt32();
    std::vector<uint8_t> copy = bytes;
    parcel.setData(copy.data(), copy.size());  // copies and puts the position at 0
    plain.setData(copy.data(), copy.size());
    copy.assign(copy.size(), 0xee);
    const auto quoted = [](const String16& text) { return '"' + std::string(String8(text).c_str()) + '"'; };
    const auto str = [](auto number) { return std::to_string(number); };
    std::string out;
    for (char letter : letters) {
        int32_t i = 7;
        int64_t l = 7;
        float f = 7;
        double d = 7;
        String16 text("old");
        std::string utf8 = "old", value, same;
        status_t status = NO_ERROR;
        switch (letter) {
        case 'd': status = parcel.readInt32(&i), value = str(i), same = str(plain.readInt32()); break;
        case 'D': status = parcel.readInt64(&l), value = str(l), same = str(plain.readInt64()); break;
        case 'f': status = parcel.readFloat(&f), value = str(f), same = str(plain.readFloat()); break;
        case 'F': status = parcel.readDouble(&d), value = str(d), same = str(plain.readDouble()); break;
        case 'u':
            status = parcel.readUtf8FromUtf16(&utf8), value = '"' + utf8 + '"', same = quoted(plain.readString16());
            break;
        default: status = parcel.readString16(&text), value = quoted(text), same = quoted(plain.readString16()); break;
        }
        const bool isText = letter == 's' || letter == 'u';
        if (status != NO_ERROR) {
            EXPECT_EQ(isText ? UNEXPECTED_NULL : NOT_ENOUGH_DATA, status) << letter;
            EXPECT_EQ(isText ? "\"\"" : letter == 'f' || letter == 'F' ? "0.000000" : "0", same) << letter;
            value += '!';
        } else {
            EXPECT_EQ(value, same) << letter;
        }
        EXPECT_EQ(parcel.dataPosition(), plain.dataPosition()) << letter;
        out += value + ' ';
    }
    return out + '@' + std::to_string(parcel.dataPosition()) + '+' + std::to_string(parcel.dataAvail());
}

// The layout each writer gives is the format letters' (tests/format); here: what the readers make of any bytes.
TEST(Parcel, ReadersTakeWholeValuesAndReadShortOrHostileDataAsZeroOrEmpty)
{
    const struct { std::vector<uint8_t> bytes; const char* letters; const char* values; } cases[] = {
        {{8, 7, 6, 5, 4, 3, 2, 1, 0, 0, 0xc0, 0x3f, 0, 0, 0, 0, 0, 0, 2, 0xc0}, "DfF",
         "72623859790382856 1.500000 -2.250000 @20+0"},
        {{1, 0, 0, 0, 2, 0}, "DFdfd", "7! 7.000000! 1 7.000000! 7! @4+2"},        // short numbers: untouched, no move
        {{0xff, 0xff, 0xff, 0xff, 'x', 0, 0, 0}, "s", "\"\"! @4+4"},              // count -1
        {{0xff, 0xff, 0xff, 0x7f, 0, 0, 0, 0}, "u", "\"old\"! @4+4"},             // the size computation must not wrap
        {{0xfe, 0xff, 0xff, 0x7f, 'a', 0, 0, 0}, "s", "\"\"! @4+4"},              // more units than bytes left
        {{3, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 0, 0}, "s", "\"abc\" @12+0"},       // exactly the block
        {{4, 0, 0, 0, 'a', 0, 'b', 0, 'c', 0, 'd', 0}, "u", "\"old\"! @4+8"},     // no room for the terminator
        {{1, 0, 0, 0, 'a', 0, 'z', 0, 9, 0, 0, 0}, "sd", "\"\"! 9 @12+0"},       // a bad terminator: block consumed
        {{1, 0}, "s", "\"\"! @0+2"},                                               // too short for the count
        {{2, 0, 0, 0, 0, 0xd8, 'a', 0, 0, 0, 0, 0}, "u", "\"a\" @12+0"},  // a lone surrogate is dropped
        {{3, 0, 0, 0, 'a', 0, 0x3d, 0xd8, 0, 0xde, 0, 0, 3, 0, 0, 0}, "ud", "\"a\xF0\x9F\x98\x80\" 3 @16+0"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.values, Read(c.bytes, c.letters)) << c.bytes.size() << " bytes, " << c.letters;
    }
}

// One data position for writing and reading, as on the device: a write lands at the position, over what is there,
// and grows the data only past the end. Each case returns what it read; then the data, the position and the rest.
TEST(Parcel, WritesAndReadsShareOnePosition)
{
    const uint8_t eight[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const struct { std::function<std::string(Parcel&)> steps; const char* after; } cases[] = {
        {[&](Parcel& p) { p.setData(eight, 1), p.writeInt32(9); return ""; }, "09000000 @4+0"},
        {[&](Parcel& p) { p.setData(eight, 8), p.writeInt32(9); return std::to_string(p.readInt32()); },
         "134678021 09000000 05060708 @8+0"},
        {[](Parcel& p) {
             int32_t value = 5;
             p.writeInt32(9);
             const status_t status = p.readInt32(&value);
             return std::to_string(p.readInt32()) + (status == NOT_ENOUGH_DATA ? "!" : "?") + std::to_string(value);
         },
         "0!5 09000000 @4+0"},
        {[](Parcel& p) { p.writeInt32(9), p.setDataPosition(0); return std::to_string(p.readInt32()); },
         "9 09000000 @4+0"},
        // A string over the middle keeps the bytes behind it; its padding is zeros.
        {[&](Parcel& p) { p.setData(eight, 8), p.writeInt64(-1), p.writeInt64(-1), p.writeInt32(-1);
                          p.setDataPosition(4), p.writeString16(String16("ab")); return ""; },
         "ffffffff 02000000 61006200 00000000 ffffffff @16+4"},
        // A position beyond the end counts in the size, reads nothing, and a write there leaves zeros before it.
        {[&](Parcel& p) {
             p.setData(eight, 8), p.setDataPosition(13);
             const std::string seen = std::to_string(p.dataSize()) + "+" + std::to_string(p.dataAvail()) + " " +
                                      std::to_string(p.readInt32());
             p.writeInt32(9);
             return seen;
         },
         "13+0 0 01020304 05060708 00000000 00090000 00 @17+0"},
    };
    for (const auto& c : cases) {
        Parcel parcel;
        std::string seen = c.steps(parcel);
        seen += (seen.empty() ? "" : " ") + HexWords(parcel.data(), parcel.dataSize());
        EXPECT_EQ(c.after, seen + " @" + std::to_string(parcel.dataPosition()) + '+' +
                               std::to_string(parcel.dataAvail()));
    }
}

}  // namespace
