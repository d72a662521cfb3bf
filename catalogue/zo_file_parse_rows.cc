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

// Trims the length characters of text in place and terminates the result;
// returns its length.
size_t TrimInPlace(char* text, size_t length)
{
    size_t begin = 0;
    while (begin < length && IsSpace(text[begin])) {
        ++begin;
    }
    while (length > begin && IsSpace(text[length - 1])) {
        --length;
    }
    length -= begin;
    std::memmove(text, text + begin, length);
    text[length] = '\0';
    return length;
}

}  // namespace

int ZoFileParse::RemoveSpace(char* text)
{
    if (text == nullptr || text[0] == '\0') {
        return -1;
    }
    TrimInPlace(text, std::strlen(text));
    return 0;
}

size_t ZoFileParse::CopyTrimmed(const char* text, size_t length, char (&buf)[kRowBufSize])
{
    if (length >= kRowBufSize || memcpy_s(buf, sizeof buf, text, length) != 0) {
        buf[0] = '\0';
        return kRefused;
    }
    // A NUL byte ends the part, as it would end the text for RemoveSpace.
    return TrimInPlace(buf, strnlen(buf, length));
}

// ---------------------------------------------------------------------------
// Block titles

bool ZoFileParse::IsBlockTitile(const std::string& row)
{
    if (row.size() >= kRowBufSize) {
        printf("str size:%d too large, max len:%d\n", static_cast<int>(row.size()), static_cast<int>(kRowBufSize));
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

bool ZoFileParse::IsKey(const std::string& row, const char* key, const char* tooLongFormat)
{
    const size_t n = row.find('=');
    if (n == std::string::npos) {
        return false;
    }
    if (n >= kRowBufSize) {
        printf(tooLongFormat, static_cast<int>(n));
        return false;
    }
    // Every row meets up to seven key tests, and most fail on the first
    // letter of the trimmed key part; look at that letter before copying.
    // An empty key part (n of 0) compares nothing and names every key.
    size_t first = 0;
    while (first < n && IsSpace(row[first])) {
        ++first;
    }
    if (n > 0 && (first == n || row[first] != key[0])) {
        return false;
    }
    char buf[kRowBufSize];
    if (CopyTrimmed(row.data(), n, buf) == kRefused) {
        return false;
    }
    // Limited by the untrimmed key part: "desc=x" names "description", while
    // "desc =x" compares the terminator against 'r' and names nothing.
    return std::strncmp(key, buf, n) == 0;
}

bool ZoFileParse::IsCommand(const std::string& row)
{
    return IsKey(row, "command", "IsCommand string str.size(): %d\n");
}

bool ZoFileParse::IsInstruction(const std::string& row)
{
    return IsKey(row, "instruction", "IsInstruction string str.size(): %d\n");
}

bool ZoFileParse::IsDescription(const std::string& row)
{
    return IsKey(row, "description", "IsDescription string str.size(): %d\n");
}

bool ZoFileParse::IsBelongMod(const std::string& row)
{
    return IsKey(row, "belong module", "IsBelongMod string str.size(): %d]\n");
}

bool ZoFileParse::IsPrintFmt(const std::string& row)
{
    return IsKey(row, "print format", "IsPrintFmt string str.size(): %d\n");
}

bool ZoFileParse::IsPrintTags(const std::string& row)
{
    return IsKey(row, "print tags", "IsPrintTags string str.size(): %d\n");
}

bool ZoFileParse::IsParaFormat(const std::string& row)
{
    return IsKey(row, "para format", "IsParaFormat string str.size(): %d\n");
}

// ---------------------------------------------------------------------------
// Values

int ZoFileParse::GetValue(const std::string& row, const char* tooLongFormat, char (&buf)[kRowBufSize])
{
    buf[0] = '\0';
    const size_t n = row.find('=');
    if (n == std::string::npos) {
        return 0;  // no value at all: the empty text
    }
    // The "=" and the value together must fit the buffer, leaving the value
    // at most kRowBufSize - 2 characters.
    const size_t tail = row.size() - n;
    if (tail >= kRowBufSize) {
        printf(tooLongFormat, static_cast<int>(tail));
        return 1;
    }
    return CopyTrimmed(row.data() + n + 1, tail - 1, buf) != kRefused ? 0 : -1;
}

std::string ZoFileParse::GetText(const std::string& row, const char* tooLongFormat)
{
    char buf[kRowBufSize];
    GetValue(row, tooLongFormat, buf);
    return std::string(buf);
}

std::string ZoFileParse::GetCommand(const std::string& row)
{
    return GetText(row, "GetCommand string size: %d\n");
}

std::string ZoFileParse::GetDescription(const std::string& row)
{
    return GetText(row, "GetDescription string size: %d\n");
}

std::string ZoFileParse::GetBelongMod(const std::string& row)
{
    return GetText(row, "GetBelongMod string size: %d\n");
}

std::string ZoFileParse::GetPrintFmt(const std::string& row)
{
    return GetText(row, "GetPrintFmt string size: %d\n");
}

std::string ZoFileParse::GetParaFormat(const std::string& row)
{
    return GetText(row, "GetParaFormat string size: %d\n");
}

int32_t ZoFileParse::GetInstruction(const std::string& row)
{
    char buf[kRowBufSize];
    const int rc = GetValue(row, "GetInstruction string size: %d\n", buf);
    if (rc != 0) {
        return rc > 0 ? 0 : -1;
    }
    int32_t value = 0;
    if (!ReadInstruction(buf, value)) {
        printf("strtol:%s is not figure\n", buf);
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

Array<std::string> ZoFileParse::GetPrintTags(const std::string& row)
{
    Array<std::string> tags;
    char buf[kRowBufSize];
    if (GetValue(row, "GetPrintTags string size: %d\n", buf) != 0) {
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
// Observing values: the same limits as GetValue, without its messages

void ZoFileParse::ObserveValue(const char* fileName, int rowNumber, const std::string& row, Key key) const
{
    const size_t n = row.find('=');
    if (n == std::string::npos) {
        return;
    }
    const size_t tail = row.size() - n;
    if (tail >= kRowBufSize) {
        m_pObserver->OnValueTooLong(fileName, rowNumber, key, tail);
        return;
    }
    char buf[kRowBufSize];
    if (CopyTrimmed(row.data() + n + 1, tail - 1, buf) == kRefused) {
        return;
    }
    if (std::memchr(row.data() + n + 1, '\0', tail - 1) != nullptr) {
        m_pObserver->OnValueCut(fileName, rowNumber, key);
    }
    int32_t value = 0;
    if (key == Key::kInstruction && !ReadInstruction(buf, value)) {
        m_pObserver->OnInstructionNotFigure(fileName, rowNumber, buf);
    }
}
