// Reply payloads: a 32-bit status, then values laid out as the console's
// printer reads them by a command's print format (zo_format_letters.h). S has
// no value: the console reads nothing for it.
#ifndef ZO_TOOLS_SERVICE_SIM_REPLY_ENCODER_H
#define ZO_TOOLS_SERVICE_SIM_REPLY_ENCODER_H

#include <cstdint>
#include <string>
#include <vector>

#include <binder/Parcel.h>

// The base of a number word: 16 when it starts with 0x or 0X (after an
// optional sign), else 10. A leading zero means decimal, never octal.
int NumberBase(const char* text);

// Reads a whole word as a 32-bit number: decimal or 0x hexadecimal, signed
// (down to -2147483648) or as an unsigned bit pattern (up to 0xffffffff).
bool ParseInt32Word(const char* text, int32_t& value);

// Parses text as the value of one print-format letter and appends it.
// False, with nothing appended, when the text is not such a value or the
// letter is not one of d, D, f, F, s.
bool AppendValue(char letter, const std::string& text, android::Parcel& reply);

// The parcel's bytes, as they go into the page.
std::vector<uint8_t> ParcelBytes(const android::Parcel& parcel);

// Status 0 and one row of built-in values for the print format:
// d 42, D 9000000000, f 1.5, F 2.25, s "sim"; other letters add nothing.
std::vector<uint8_t> BuiltInReply(const std::string& printFmt);

// The status alone.
std::vector<uint8_t> StatusReply(int32_t status);

#endif  // ZO_TOOLS_SERVICE_SIM_REPLY_ENCODER_H
