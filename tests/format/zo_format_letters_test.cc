// The format letters' table, letter by letter: typed text encoded, words
// parsed strictly, values shown in a request line, parcel values written and
// read back. Expected values are given as show prints them.
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

TEST(FormatLetters, EveryLetterHasARowAndOnlyUnsupportedOnesLackFunctions)
{
    for (const char* c = kZoFormatLetters; *c != '\0'; ++c) {
        const ZoFormatLetter& row = Letter(*c);
        const bool all = row.write && row.read && row.encode && row.parse && row.show;
        EXPECT_EQ(row.supported, all) << *c;
        EXPECT_EQ(row.supported && row.kind != ZoFormatKind::kText, row.print != nullptr) << *c;
    }
    EXPECT_EQ(nullptr, ZoFormatLetterOf(' '));
    EXPECT_EQ(nullptr, ZoFormatLetterOf('\0'));
}

// The argument text carries the dispatcher's trailing blank unless the case
// shows the end of the stream; rest is what is left for the next letter.
TEST(FormatLetters, EncodeTakesTypedTextAsTheConsoleDoes)
{
    const struct { char letter; const char* text; bool ok; const char* value; const char* rest; } cases[] = {
        {'d', "0x1F ", true, "31", " "},
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
        {'D', "abc ", false, "", ""},
        {'D', "99999999999999999999 ", false, "", ""},
        {'f', "1.5 2", true, "1.5", " 2"},
        {'f', "1e50 ", false, "", ""},
        {'F', "-2.25e3 ", true, "-2250", " "},
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

TEST(FormatLetters, ParseTakesOnlyWholeWords)
{
    const struct { char letter; const char* word; bool ok; const char* value; } cases[] = {
        {'d', "-2147483648", true, "-2147483648"},
        {'d', "0xffffffff", true, "-1"},  // the upper half as a bit pattern
        {'d', "4294967295", true, "-1"},
        {'d', "+0X10", true, "16"},
        {'d', "-0x10", true, "-16"},
        {'d', "010", true, "10"},
        {'d', "4294967296", false, ""},
        {'d', "-2147483649", false, ""},
        {'d', "12abc", false, ""},
        {'d', "0x", false, ""},
        {'d', " 5", false, ""},
        {'d', "", false, ""},
        {'D', "0xffffffffffffffff", true, "-1"},
        {'D', "-9223372036854775808", true, "-9223372036854775808"},
        {'D', "9000000000", true, "9000000000"},
        {'D', "18446744073709551616", false, ""},
        {'D', "-9223372036854775809", false, ""},
        {'f', "1.5", true, "1.5"},
        {'f', "1e50", false, ""},
        {'f', "1.5x", false, ""},
        {'F', "1e300", true, "1e+300"},
        {'F', "1e400", false, ""},
        {'F', "", false, ""},
        {'s', "a\"b", true, "\"a\\\"b\""},
        {'s', "", true, "\"\""},
        {'s', "caf\xc3", false, ""},  // cut inside a UTF-8 sequence
    };
    for (const auto& c : cases) {
        ZoFormatValue value;
        EXPECT_EQ(c.ok, Letter(c.letter).parse(c.word, value)) << c.letter << " '" << c.word << "'";
        if (c.ok) {
            EXPECT_EQ(c.value, Shown(c.letter, value)) << c.letter << " '" << c.word << "'";
        }
    }
}

TEST(FormatLetters, ShowGivesDecimalShortestRealsAndEscapedText)
{
    ZoFormatValue value;
    value.integer = INT64_MIN;
    EXPECT_EQ("-9223372036854775808", Shown('D', value));
    value.integer = 0x1ffffffffLL;  // d shows what it writes: the low 32 bits
    EXPECT_EQ("-1", Shown('d', value));
    value.real = 0.1;
    EXPECT_EQ("0.1", Shown('F', value));
    EXPECT_EQ("0.1", Shown('f', value));
    value.real = 1.0 / 3;
    EXPECT_EQ("0.3333333333333333", Shown('F', value));
    EXPECT_EQ("0.33333334", Shown('f', value));
    value.text = std::string("a\"b\\c\n\x7f\0~\xc3\xa9", 11);
    EXPECT_EQ("\"a\\\"b\\\\c\\x0a\\x7f\\x00~\\xc3\\xa9\"", Shown('s', value));
}

// Each value as the letter's writer lays it out, read back whole; the same
// bytes cut short (or a string whose count claims more) are no whole value.
TEST(FormatLetters, WriteAndReadRoundTripAndShortDataIsNoValue)
{
    const struct { char letter; const char* word; const char* bytes; const char* shortBytes; } cases[] = {
        {'d', "-2", "feffffff", "feffff"},
        {'D', "-9000000000", "00e68ee7 fdffffff", "00e68ee7 fdffff"},
        {'f', "1.5", "0000c03f", "0000c0"},
        {'F', "2.25", "00000000 00000240", "00000000 000002"},
        {'s', "ab", "02000000 61006200 00000000", "02000000 610062"},
        {'s', "", "00000000 00000000", "000000"},
        {'s', "x", "01000000 78000000", "05000000 78000000"},
    };
    for (const auto& c : cases) {
        const ZoFormatLetter& row = Letter(c.letter);
        ZoFormatValue value;
        ASSERT_TRUE(row.parse(c.word, value)) << c.word;
        android::Parcel parcel;
        ASSERT_EQ(android::NO_ERROR, row.write(parcel, value));
        EXPECT_EQ(c.bytes, HexWords(parcel.data(), parcel.dataSize())) << c.letter << " " << c.word;
        EXPECT_LE(row.width, parcel.dataSize()) << c.letter;
        parcel.setDataPosition(0);
        ZoFormatValue back;
        EXPECT_TRUE(row.read(parcel, back)) << c.letter << " " << c.word;
        EXPECT_EQ(Shown(c.letter, value), Shown(c.letter, back));
        EXPECT_EQ(0u, parcel.dataAvail()) << c.letter << " " << c.word;

        const std::vector<uint8_t> cut = FromHex(c.shortBytes);
        parcel.setData(cut.data(), cut.size());
        EXPECT_FALSE(row.read(parcel, back)) << c.letter << " " << c.shortBytes;
    }
}
