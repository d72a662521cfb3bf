// The format letters' table, letter by letter: typed text encoded, words parsed strictly, values written, shown in a
// request line and read back. Expected values are given as show prints them.
#include "zo_format_letters.h"

#include <gtest/gtest.h>

#include "hex_words.h"

namespace {

const ZoFormatLetter& Letter(char letter)
{
    const ZoFormatLetter* row = ZoFormatLetterOf(letter);
    EXPECT_NE(nullptr, row) << letter;
    return *row;
}

std::string Shown(char letter, const ZoFormatValue& value)
{
    std::string line;
    Letter(letter).show(value, line);
    return line;
}

}  // namespace

// The argument text carries the dispatcher's trailing blank unless the case shows the end of the stream; rest is what
// is left for the next letter.
TEST(FormatLetters, EncodeTakesTypedTextAsTheConsoleDoes)
{
    const struct { char letter; const char* text; bool ok; const char* value; const char* rest; } cases[] = {
        {'d', "0XfF 7", true, "255", " 7"},
        {'d', "-0x5 ", true, "0", " "},  // a sign makes it decimal, which stops at the x
        {'d', "010 ", true, "10", " "},  // a leading zero is no octal
        {'d', "12abc ", true, "12", " "},
        {'d', "abc ", true, "0", " "},
        {'d', "0xFFFFFFFF ", true, "2147483647", " "},
        {'d', "-99999999999 ", true, "-2147483648", " "},
        {'d', " ", false, "", ""},
        {'d', "5", false, "", ""},  // the stream's end is a condition too
        {'D', "-9000000000 ", true, "-9000000000", " "},
        {'D', "0x10 ", true, "0", "x10 "},
        {'D', "99999999999999999999 ", false, "", ""},
        {'f', "1.5 2", true, "1.5", " 2"},
        {'f', "1e50 ", false, "", ""},
        {'F', "x ", false, "", ""},
        {'s', "hello world ", true, "\"hello\"", " world "},
        {'s', "  ", false, "", ""},
    };
    for (const auto& c : cases) {
        std::istringstream args(c.text);
        ZoFormatValue value;
        EXPECT_EQ(c.ok, Letter(c.letter).encode(args, value)) << c.letter << " '" << c.text << "'";
        if (c.ok) {
            EXPECT_EQ(c.value, Shown(c.letter, value)) << c.letter << " '" << c.text << "'";
            EXPECT_EQ(c.rest, args.str().substr(args.tellg())) << c.letter << " '" << c.text << "'";
        }
    }
}

// Each word parsed (or, without shown, refused), written as the letter's writer lays it out, shown, and read back
// whole; the bytes cut short (or a string whose count claims more) are no whole value.
TEST(FormatLetters, ParsedWordsAreWrittenShownAndReadBack)
{
    const struct { char letter; const char* word; const char *shown = nullptr, *bytes = "", *cut = ""; } cases[] = {
        {'d', "4294967296"}, {'d', "-2147483649"}, {'d', "12abc"}, {'d', "0x"}, {'d', " 5"},
        {'D', "18446744073709551616"}, {'D', "-9223372036854775809"},
        {'f', "1e50"}, {'f', "1.5x"}, {'F', "1e400"}, {'F', ""},
        {'s', "caf\xc3"},  // cut inside a UTF-8 sequence
        {'d', "-2147483648", "-2147483648", "00000080", "000000"},
        {'d', "0xffffffff", "-1", "ffffffff", "ffffff"},  // the upper half as a bit pattern
        {'d', "+0X10", "16", "10000000", "100000"},
        {'d', "-0x10", "-16", "f0ffffff", "f0ffff"},
        {'D', "0xffffffffffffffff", "-1", "ffffffff ffffffff", "ffffffff ffffff"},
        {'D', "-9223372036854775808", "-9223372036854775808", "00000000 00000080", "00000000"},
        {'f', "0.1", "0.1", "cdcccc3d", "cdcc"},
        {'f', "0.33333334", "0.33333334", "abaaaa3e", ""},
        {'F', "0.3333333333333333", "0.3333333333333333", "55555555 5555d53f", "55555555 5555d5"},
        {'F', "1e300", "1e+300", "9c750088 3ce4377e", "9c750088"},
        {'s', "a\"b\\c\x7f~\xc3\xa9", "\"a\\\"b\\\\c\\x7f~\\xc3\\xa9\"",
         "08000000 61002200 62005c00 63007f00 7e00e900 00000000",
         "0a000000 61002200 62005c00 63007f00 7e00e900 00000000"},
        {'s', "", "\"\"", "00000000 00000000", "000000"},
    };
    for (const auto& c : cases) {
        const ZoFormatLetter& row = Letter(c.letter);
        ZoFormatValue value;
        ASSERT_EQ(c.shown != nullptr, row.parse(c.word, value)) << c.letter << " '" << c.word << "'";
        if (c.shown == nullptr) {
            continue;
        }
        EXPECT_EQ(c.shown, Shown(c.letter, value)) << c.letter << " '" << c.word << "'";
        android::Parcel parcel;
        ASSERT_EQ(android::NO_ERROR, row.write(parcel, value));
        EXPECT_EQ(c.bytes, HexWords(parcel.data(), parcel.dataSize())) << c.letter << " '" << c.word << "'";
        EXPECT_LE(row.width, parcel.dataSize()) << c.letter;
        parcel.setDataPosition(0);
        ZoFormatValue back;
        EXPECT_TRUE(row.read(parcel, back)) << c.letter << " '" << c.word << "'";
        EXPECT_EQ(c.shown, Shown(c.letter, back)) << c.letter << " '" << c.word << "'";
        EXPECT_EQ(0u, parcel.dataAvail()) << c.letter << " '" << c.word << "'";

        const std::vector<uint8_t> cut = FromHex(c.cut);
        parcel.setData(cut.data(), cut.size());
        EXPECT_FALSE(row.read(parcel, back)) << c.letter << " '" << c.cut << "'";
    }
    EXPECT_EQ("\"\\x00\\x0a\"", ZoFormatQuote(std::string("\0\n", 2)));
    ZoFormatValue beyond;
    beyond.integer = 0x1ffffffffLL;  // d shows what it writes: the low 32 bits
    EXPECT_EQ("-1", Shown('d', beyond));
}
