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
// ZO_BOOL arguments name them. This table is the one definition that the
// console's encoder and printer, the service simulator and the catalogue
// checker share.
#ifndef ZO_FORMAT_ZO_FORMAT_LETTERS_H
#define ZO_FORMAT_ZO_FORMAT_LETTERS_H

#include <cstddef>
#include <cstdint>
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
};

// The row of a letter; null for a character that is no format letter.
const ZoFormatLetter* ZoFormatLetterOf(char letter);

#endif  // ZO_FORMAT_ZO_FORMAT_LETTERS_H
