// Row tests and value extraction of the catalogue files.
//
// Every row part is copied into a fixed row buffer and trimmed there, so the
// parts are bounded: a title row, a key part (before the first "=") and a value
// (after it) must each fit the buffer with its terminator, or the row is
// reported and refused. Inside a part a NUL byte ends the text, as it does in
// any C string; the limits still count the bytes the reader delivered.
#include "zo_file_parse.h"

#include "zo_file_parse_observer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The isspace class of the "C" locale, which the files are written in; tested
// inline because every row of both files is trimmed several times.
bool IsSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Narrows [begin, end) of text to leave out leading and trailing blanks.
void TrimBounds(const char* text, size_t& begin, size_t& end)
{
    while (begin < end && IsSpace(text[begin])) {
        ++begin;
    }
    while (end > begin && IsSpace(text[end - 1])) {
        --end;
    }
}

}  // namespace

int ZoFileParse::RemoveSpace(char* text)
{
    if (text == nullptr || text[0] == '\0') {
        return -1;
    }
    size_t begin = 0;
    size_t end = std::strlen(text);
    TrimBounds(text, begin, end);
    std::memmove(text, text + begin, end - begin);
    text[end - begin] = '\0';
    return 0;
}

size_t ZoFileParse::CopyTrimmed(const char* text, size_t length, char (&buf)[kRowBufSize])
{
    if (length >= kRowBufSize) {
        buf[0] = '\0';
        return kRefused;
    }
    // A NUL byte ends the part, as it would end the text for RemoveSpace.
    // Trimmed where it stands, so that only the kept bytes are copied.
    size_t begin = 0;
    size_t end = strnlen(text, length);
    TrimBounds(text, begin, end);
    if (memcpy_s(buf, sizeof buf, text + begin, end - begin) != 0) {
        buf[0] = '\0';
        return kRefused;
    }
    buf[end - begin] = '\0';
    return end - begin;
}

// ---------------------------------------------------------------------------
// Block titles

bool ZoFileParse::IsBlockTitile(const std::string& row) const
{
    if (row.size() > kMaxTitleRow) {
        Say("str size:%d too large, max len:%d", static_cast<int>(row.size()), static_cast<int>(kRowBufSize));
        return false;
    }
    // Most rows are key rows: look at the first letter before copying.
    const size_t first = row.find_first_not_of(" \t\n\v\f\r");
    if (first == std::string::npos || row[first] != '[') {
        return false;
    }
    char buf[kRowBufSize];
    const size_t length = CopyTrimmed(row.data(), row.size(), buf);
    return length != kRefused && length >= 2 && buf[0] == '[' && buf[length - 1] == ']';
}

std::string ZoFileParse::GetBlockTitile(const std::string& row)
{
    // Only asked after IsBlockTitile said yes; anything else has no name.
    char buf[kRowBufSize];
    const size_t length = CopyTrimmed(row.data(), row.size(), buf);
    if (length == kRefused || length < 2 || buf[0] != '[' || buf[length - 1] != ']') {
        return std::string();
    }
    return std::string(buf + 1, length - 2);
}

// ---------------------------------------------------------------------------
// Key tests

namespace {

// A key's text and the message of its test for a key part too long for the
// row buffer, by ZoFileParse::Key.
struct KeyText {
    const char* key;
    const char* tooLongFormat;
};

KeyText TextOf(ZoFileParse::Key key)
{
    switch (key) {
        case ZoFileParse::Key::kCommand: return {"command", "IsCommand string str.size(): %d"};
        case ZoFileParse::Key::kBelongModule: return {"belong module", "IsBelongMod string str.size(): %d]"};
        case ZoFileParse::Key::kInstruction: return {"instruction", "IsInstruction string str.size(): %d"};
        case ZoFileParse::Key::kParaFormat: return {"para format", "IsParaFormat string str.size(): %d"};
        case ZoFileParse::Key::kPrintFormat: return {"print format", "IsPrintFmt string str.size(): %d"};
        case ZoFileParse::Key::kPrintTags: return {"print tags", "IsPrintTags string str.size(): %d"};
        case ZoFileParse::Key::kDescription: return {"description", "IsDescription string str.size(): %d"};
        case ZoFileParse::Key::kNone:
        case ZoFileParse::Key::kCount: break;
    }
    return {"", ""};
}

}  // namespace

// Every row of a block meets the key tests: the key part is found, trimmed
// and copied once, then compared with each key in turn.
ZoFileParse::Key ZoFileParse::KeyOf(const std::string& row, const Key* keys, size_t count) const
{
    const size_t n = row.find('=');
    if (n == std::string::npos) {
        return Key::kNone;
    }
    if (n > kMaxKeyPart) {
        for (size_t i = 0; i < count; ++i) {
            Say(TextOf(keys[i]).tooLongFormat, static_cast<int>(n));
        }
        return Key::kNone;
    }
    char buf[kRowBufSize];
    if (CopyTrimmed(row.data(), n, buf) == kRefused) {
        return Key::kNone;
    }
    // Limited by the untrimmed key part: "desc=x" names "description", while
    // "desc =x" compares the terminator against 'r' and names nothing. An
    // empty key part (n of 0) compares nothing and names the first key.
    for (size_t i = 0; i < count; ++i) {
        const char* key = TextOf(keys[i]).key;
        if ((n == 0 || key[0] == buf[0]) && std::strncmp(key, buf, n) == 0) {
            return keys[i];
        }
    }
    return Key::kNone;
}

// ---------------------------------------------------------------------------
// Values

int ZoFileParse::GetValue(const std::string& row, const char* tooLongFormat, char (&buf)[kRowBufSize]) const
{
    buf[0] = '\0';
    const size_t n = row.find('=');
    if (n == std::string::npos) {
        return 0;  // no value at all: the empty text
    }
    // The "=" and the value together share the buffer; the message counts both.
    const size_t tail = row.size() - n;
    if (tail - 1 > kMaxValue) {
        if (tooLongFormat != nullptr) {
            Say(tooLongFormat, static_cast<int>(tail));
        }
        return 1;
    }
    return CopyTrimmed(row.data() + n + 1, tail - 1, buf) != kRefused ? 0 : -1;
}

std::string ZoFileParse::GetText(const std::string& row, const char* tooLongFormat) const
{
    char buf[kRowBufSize];
    GetValue(row, tooLongFormat, buf);
    return std::string(buf);
}

std::string ZoFileParse::GetCommand(const std::string& row) const
{
    return GetText(row, "GetCommand string size: %d");
}

std::string ZoFileParse::GetDescription(const std::string& row) const
{
    return GetText(row, "GetDescription string size: %d");
}

std::string ZoFileParse::GetBelongMod(const std::string& row) const
{
    return GetText(row, "GetBelongMod string size: %d");
}

std::string ZoFileParse::GetPrintFmt(const std::string& row) const
{
    return GetText(row, "GetPrintFmt string size: %d");
}

std::string ZoFileParse::GetParaFormat(const std::string& row) const
{
    return GetText(row, "GetParaFormat string size: %d");
}

int32_t ZoFileParse::GetInstruction(const std::string& row) const
{
    char buf[kRowBufSize];
    const int rc = GetValue(row, "GetInstruction string size: %d", buf);
    if (rc != 0) {
        return rc > 0 ? 0 : -1;
    }
    int32_t value = 0;
    if (!ReadInstruction(buf, value)) {
        Say("strtol:%s is not figure", buf);
    }
    return value;
}

bool ZoFileParse::ReadInstruction(const char* text, int32_t& value)
{
    // strtoll reads the same syntax as strtol (sign, "0x", hex digits) but
    // does not depend on the width of long, which differs between the device
    // and a host; the clamp gives what a 32-bit strtol gives.
    char* end = nullptr;
    const long long number = std::strtoll(text, &end, 16);
    if (end == text) {
        value = 0;
        return false;
    }
    if (number > INT32_MAX) {
        value = INT32_MAX;
    } else if (number < INT32_MIN) {
        value = INT32_MIN;
    } else {
        value = static_cast<int32_t>(number);
    }
    return true;
}

Array<std::string> ZoFileParse::GetPrintTags(const std::string& row) const
{
    Array<std::string> tags;
    char buf[kRowBufSize];
    if (GetValue(row, "GetPrintTags string size: %d", buf) != 0) {
        return tags;
    }
    // Every "," ends a tag, so a trailing "," leaves a last empty tag and an
    // empty value is one empty tag.
    const char* piece = buf;
    for (const char* comma; (comma = std::strchr(piece, ',')) != nullptr; piece = comma + 1) {
        tags.PushBack(std::string(piece, comma));
    }
    tags.PushBack(std::string(piece));
    return tags;
}

// ---------------------------------------------------------------------------
// Observing key rows: GetValue's outcome, without its messages

void ZoFileParse::ObserveKey(const char* fileName, int rowNumber, const std::string& row, Key key) const
{
    const size_t n = row.find('=');
    char buf[kRowBufSize];
    const int outcome = GetValue(row, nullptr, buf);
    m_pObserver->OnKeyTaken(fileName, rowNumber, key, buf);
    if (outcome > 0) {
        m_pObserver->OnValueTooLong(fileName, rowNumber, key, row.size() - n - 1);
        return;
    }
    if (outcome < 0 || n == std::string::npos) {
        return;
    }
    if (std::memchr(row.data() + n + 1, '\0', row.size() - n - 1) != nullptr) {
        m_pObserver->OnValueCut(fileName, rowNumber, key);
    }
    int32_t value = 0;
    if (key == Key::kInstruction && !ReadInstruction(buf, value)) {
        m_pObserver->OnInstructionNotFigure(fileName, rowNumber, buf);
    }
}
