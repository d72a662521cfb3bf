#include "zo_format_letters.h"

#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include <utils/String16.h>
#include <utils/String8.h>

#include "zo_tv_support.h"

const char* const kZoFormatNoSupportS = "current is no support 'S' format";
const char kZoFormatLetters[] = "dDfFsS";

namespace {

using android::Parcel;
using android::status_t;

status_t WriteInt32(Parcel& p, const ZoFormatValue& v) { return p.writeInt32(static_cast<int32_t>(v.integer)); }
status_t WriteInt64(Parcel& p, const ZoFormatValue& v) { return p.writeInt64(v.integer); }
status_t WriteFloat(Parcel& p, const ZoFormatValue& v) { return p.writeFloat(static_cast<float>(v.real)); }
status_t WriteDouble(Parcel& p, const ZoFormatValue& v) { return p.writeDouble(v.real); }
status_t WriteString(Parcel& p, const ZoFormatValue& v)
{
    return p.writeString16(android::String16(v.text.c_str(), v.text.size()));
}

// A number's reader gives 0 without moving when its bytes are not all there.
bool ReadInt32(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 4;
    v.integer = p.readInt32();
    return whole;
}
bool ReadInt64(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 8;
    v.integer = p.readInt64();
    return whole;
}
bool ReadFloat(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 4;
    v.real = p.readFloat();
    return whole;
}
bool ReadDouble(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 8;
    v.real = p.readDouble();
    return whole;
}
// The reader gives an empty text for a broken block as for "": the count tells them apart.
bool ReadString(const Parcel& p, ZoFormatValue& v)
{
    const size_t start = p.dataPosition();
    const bool counted = p.dataAvail() >= 4;
    const int32_t count = p.readInt32();
    p.setDataPosition(start);
    const android::String16 units = p.readString16();
    const android::String8 text(units);
    v.text.assign(text.c_str(), text.size());
    return counted && (count == 0 || units.size() != 0);
}

int PrintInt32(const ZoFormatValue& v, char* text, size_t size)
{
    return sprintf_s(text, size, "%d", static_cast<int32_t>(v.integer));
}
int PrintInt64(const ZoFormatValue& v, char* text, size_t size)
{
    // long long is 64 bits on the 32-bit device as well as on the host.
    return sprintf_s(text, size, "%lld", static_cast<long long>(v.integer));
}
int PrintFloat(const ZoFormatValue& v, char* text, size_t size)
{
    return sprintf_s(text, size, "%f", static_cast<double>(static_cast<float>(v.real)));
}
int PrintDouble(const ZoFormatValue& v, char* text, size_t size)
{
    return snprintf_s(text, size, size, "%16.6lf", v.real);
}

// Extracts the next value of type T (a word for std::string) into out; true
// when the stream is left without any condition, not even its end.
template <typename T, typename Out>
bool Extract(std::istringstream& args, Out& out)
{
    T value{};
    args >> value;
    out = value;
    return args.good();
}

// The word as a 32-bit integer: hexadecimal after a leading "0x" or "0X",
// otherwise decimal (a leading zero does not mean octal). The standard
// extraction stops at the first character that is not part of the number,
// gives 0 when there is no number and the nearest limit when out of range.
int32_t WordToInt32(const std::string& word)
{
    std::istringstream conv(word);
    int32_t value = 0;
    if (word.size() >= 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X')) {
        conv >> std::hex >> value;
    } else {
        conv >> value;
    }
    return value;
}

bool EncodeInt32(std::istringstream& args, ZoFormatValue& v)
{
    std::string word;
    if (!Extract<std::string>(args, word)) {
        return false;
    }
    v.integer = WordToInt32(word);
    return true;
}
bool EncodeInt64(std::istringstream& args, ZoFormatValue& v) { return Extract<int64_t>(args, v.integer); }
bool EncodeFloat(std::istringstream& args, ZoFormatValue& v) { return Extract<float>(args, v.real); }
bool EncodeDouble(std::istringstream& args, ZoFormatValue& v) { return Extract<double>(args, v.real); }
bool EncodeString(std::istringstream& args, ZoFormatValue& v) { return Extract<std::string>(args, v.text); }

// strto* over a whole word: the conversion must use every character, start at
// the first (no white space skipped) and stay in range.
template <typename T, typename Conv>
bool WholeWord(const std::string& word, Conv conv, T& out)
{
    if (word.empty() || std::isspace(static_cast<unsigned char>(word[0]))) {
        return false;
    }
    errno = 0;
    char* end = nullptr;
    out = conv(word.c_str(), &end);
    return errno == 0 && end == word.c_str() + word.size();
}

// Base 16 after an optional sign and "0x" or "0X", else 10.
int NumberBase(const std::string& word)
{
    const size_t digits = !word.empty() && (word[0] == '-' || word[0] == '+') ? 1 : 0;
    return word.compare(digits, 2, "0x") == 0 || word.compare(digits, 2, "0X") == 0 ? 16 : 10;
}

// A whole word as a signed integer of `bits` bits, or as the bit pattern of
// an unsigned one: from -2^(bits-1) up to 2^bits - 1.
bool ParseInteger(const std::string& word, unsigned bits, int64_t& value)
{
    const int base = NumberBase(word);
    if (!word.empty() && word[0] == '-') {
        long long v = 0;
        if (!WholeWord<long long>(word, [base](const char* s, char** e) { return std::strtoll(s, e, base); }, v) ||
            (bits < 64 && v < -(1LL << (bits - 1)))) {
            return false;
        }
        value = v;
        return true;
    }
    unsigned long long v = 0;
    if (!WholeWord<unsigned long long>(word, [base](const char* s, char** e) { return std::strtoull(s, e, base); },
                                       v) ||
        (bits < 64 && v >> bits != 0)) {
        return false;
    }
    value = bits < 64 ? static_cast<int32_t>(static_cast<uint32_t>(v)) : static_cast<int64_t>(v);
    return true;
}

bool ParseInt32(const std::string& word, ZoFormatValue& v) { return ParseInteger(word, 32, v.integer); }
bool ParseInt64(const std::string& word, ZoFormatValue& v) { return ParseInteger(word, 64, v.integer); }
bool ParseFloat(const std::string& word, ZoFormatValue& v)
{
    float single = 0;
    const bool whole = WholeWord<float>(word, [](const char* s, char** e) { return std::strtof(s, e); }, single);
    v.real = single;
    return whole;
}
bool ParseDouble(const std::string& word, ZoFormatValue& v)
{
    return WholeWord<double>(word, [](const char* s, char** e) { return std::strtod(s, e); }, v.real);
}
bool ParseString(const std::string& word, ZoFormatValue& v)
{
    v.text = word;
    // String16 gives no units for UTF-8 cut off inside a sequence: that word would be written as "".
    return word.empty() || android::String16(word.c_str(), word.size()).size() != 0;
}

void ShowInt32(const ZoFormatValue& v, std::string& line) { line += std::to_string(static_cast<int32_t>(v.integer)); }
void ShowInt64(const ZoFormatValue& v, std::string& line)
{
    char text[24];
    std::snprintf(text, sizeof text, "%" PRId64, v.integer);
    line += text;
}
// The shortest %g form that reads back as the same value of type T.
template <typename T>
void ShowShortest(T value, std::string& line)
{
    char text[64];
    for (int precision = 6; precision <= 17; ++precision) {
        std::snprintf(text, sizeof text, "%.*g", precision, static_cast<double>(value));
        if (static_cast<T>(std::strtod(text, nullptr)) == value) {
            break;
        }
    }
    line += text;
}
void ShowFloat(const ZoFormatValue& v, std::string& line) { ShowShortest(static_cast<float>(v.real), line); }
void ShowDouble(const ZoFormatValue& v, std::string& line) { ShowShortest(v.real, line); }
void ShowString(const ZoFormatValue& v, std::string& line) { line += ZoFormatQuote(v.text); }

const char* const kSprintfFailed = "sprintf_s failed, ret = %d";

const ZoFormatLetter kLetters[] = {
    {'d', ZoFormatKind::kInteger, false, true, 4, WriteInt32, ReadInt32, PrintInt32, kSprintfFailed, EncodeInt32,
     ParseInt32, ShowInt32},
    {'D', ZoFormatKind::kInteger, true, true, 8, WriteInt64, ReadInt64, PrintInt64, kSprintfFailed, EncodeInt64,
     ParseInt64, ShowInt64},
    {'f', ZoFormatKind::kReal, false, true, 4, WriteFloat, ReadFloat, PrintFloat, kSprintfFailed, EncodeFloat,
     ParseFloat, ShowFloat},
    {'F', ZoFormatKind::kReal, true, true, 8, WriteDouble, ReadDouble, PrintDouble, "snprintf_s failed, ret = %d",
     EncodeDouble, ParseDouble, ShowDouble},
    {'s', ZoFormatKind::kText, false, true, 4, WriteString, ReadString, nullptr, nullptr, EncodeString, ParseString,
     ShowString},
    {'S', ZoFormatKind::kText, true, false, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr},
};
static_assert(sizeof kLetters / sizeof kLetters[0] == sizeof kZoFormatLetters - 1, "one row per letter");

}  // namespace

const ZoFormatLetter* ZoFormatLetterOf(char letter)
{
    for (const ZoFormatLetter& row : kLetters) {
        if (row.letter == letter) {
            return &row;
        }
    }
    return nullptr;
}

// The wide variant of a letter is its capital.
const ZoFormatLetter& ZoFormatLetterOfPair(char narrow, bool wide)
{
    return *ZoFormatLetterOf(wide ? static_cast<char>(std::toupper(static_cast<unsigned char>(narrow))) : narrow);
}

bool ZoFormatInPair(char letter, char narrow)
{
    const ZoFormatLetter* row = ZoFormatLetterOf(letter);
    return row != nullptr && row == &ZoFormatLetterOfPair(narrow, row->wide);
}

std::string ZoFormatQuote(const std::string& text)
{
    std::string quoted = "\"";
    for (const unsigned char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += static_cast<char>(c);
        } else if (c < 0x20 || c > 0x7e) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", c);
            quoted += escape;
        } else {
            quoted += static_cast<char>(c);
        }
    }
    return quoted + '"';
}
