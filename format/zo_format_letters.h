// The format letters. A command's parameter format (the values of its
// request) and its print format (the values of its reply) spell one value per
// letter, with nothing between the letters:
//
//   letter  value                  parcel writer / reader          printed as
//   d       signed 32-bit integer  writeInt32 / readInt32          "%d"
//   D       signed 64-bit integer  writeInt64 / readInt64          "%lld"
//   f       32-bit float           writeFloat / readFloat          "%f", widened to double
//   F       64-bit double          writeDouble / readDouble        "%16.6lf"
//   s       UTF-16 string          writeString16 / readString16    its text as UTF-8
//   S       not supported: no value; kZoFormatNoSupportS is printed instead
//
// Any other character, a blank included, is an error of the format. D, F and
// S are the wide variants of d, f and s, as the encoder's and the printer's
// ZO_BOOL arguments name them.
//
// Typed by the engineer (encode) and in a request line (show):
//
//   letter  typed argument                               shown as
//   d       a word: decimal, hexadecimal after 0x/0X     decimal
//   D       decimal digits straight from the stream      decimal
//   f, F    a number straight from the stream            shortest %g that reads back
//   s       the next word (no quoting)                   "text", escaped as ZoFormatQuote
//
// This table is the one definition of everything done with a letter: the
// console's encoder and printer, the services (decoding a request with read,
// encoding a reply with write), the tools and the catalogue checker use it.
// Adding a letter is adding its row here.
#ifndef ZO_FORMAT_ZO_FORMAT_LETTERS_H
#define ZO_FORMAT_ZO_FORMAT_LETTERS_H

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include <binder/Parcel.h>

// Printed for the letter S wherever a value would be encoded or printed.
extern const char* const kZoFormatNoSupportS;
// Every letter, in the order of the table above.
extern const char kZoFormatLetters[];

enum class ZoFormatKind { kInteger, kReal, kText };

// One value of any letter: d and D use integer, f and F real, s text (UTF-8).
struct ZoFormatValue {
    int64_t integer = 0;
    double real = 0.0;
    std::string text;
};

struct ZoFormatLetter {
    char letter;
    ZoFormatKind kind;
    bool wide;
    bool supported;  // false for S, which has no value and no functions below
    size_t width;    // bytes one value takes in a parcel; for s the least (its count alone)
    // Appends the value as the letter's parcel writer does.
    android::status_t (*write)(android::Parcel& parcel, const ZoFormatValue& value);
    // Reads one value with the letter's parcel reader. False when the parcel
    // holds no whole value there: the reader then gave 0 or an empty string.
    bool (*read)(const android::Parcel& parcel, ZoFormatValue& value);
    // Formats a number into text (size bytes) as the printer shows it and
    // returns the formatting function's result, -1 when it refused; then the
    // printer logs printFailure with that result. Null for s.
    int (*print)(const ZoFormatValue& value, char* text, size_t size);
    const char* printFailure;
    // Reads the letter's value from the console's argument stream the way the
    // console encodes typed text (d: a word, decimal or hexadecimal after
    // 0x/0X, junk after the number dropped, a word that is no number gives 0,
    // overflow clamps; D: decimal straight from the stream, what follows the
    // digits stays for the next letter; f, F: straight from the stream; s: the
    // next word). False when the stream is left with any condition, not even
    // its end: the dispatcher appends a blank so that the last argument can
    // succeed.
    bool (*encode)(std::istringstream& args, ZoFormatValue& value);
    // Parses one whole word as a value, strictly (a tool's input): false when
    // the word is not entirely such a value. Integers are decimal, or
    // hexadecimal after 0x/0X, with an optional sign: d takes -2147483648 up to
    // 0xffffffff (4294967295), the upper half as the bit pattern of a negative
    // value; D likewise for 64 bits. Reals are strtof (f) or strtod (F) of the
    // whole word, out of range refused. s takes any word that converts to
    // UTF-16 (UTF-8 cut off inside a sequence would be written as "").
    bool (*parse)(const std::string& word, ZoFormatValue& value);
    // Appends the value as a request line shows it: integers in decimal, reals
    // in the shortest %g form that reads back as the same float or double,
    // text as ZoFormatQuote gives it.
    void (*show)(const ZoFormatValue& value, std::string& line);
};

// The row of a letter; null for a character that is no format letter.
const ZoFormatLetter* ZoFormatLetterOf(char letter);

// The row of d, f or s (wide false) or of its wide variant, the capital D, F
// or S (wide true), as the encoder's and the printer's functions name a letter
// of a pair by their ZO_BOOL argument. narrow must be d, f or s.
const ZoFormatLetter& ZoFormatLetterOfPair(char narrow, bool wide);
// True when letter is narrow or its wide variant (d: d and D).
bool ZoFormatInPair(char letter, char narrow);

// The text in double quotes as a request line shows it: '"' and '\\' after a
// backslash, every byte outside printable ASCII (0x20 to 0x7e) as \xHH with
// two lowercase hexadecimal digits, so "a\"b" and "caf\xc3\xa9".
std::string ZoFormatQuote(const std::string& text);

#endif  // ZO_FORMAT_ZO_FORMAT_LETTERS_H
