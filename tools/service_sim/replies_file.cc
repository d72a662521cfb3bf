#include "replies_file.h"

#include <cerrno>
#include <cstring>
#include <sstream>

#include <fcntl.h>
#include <unistd.h>

#include <binder/Parcel.h>

#include "zo_format_letters.h"
#include "zo_shm_page.h"

namespace {

// The built-in value of each letter.
const char* BuiltIn(char letter)
{
    switch (letter) {
    case 'd': return "42";
    case 'D': return "9000000000";  // beyond 32 bits
    case 'f': return "1.5";
    case 'F': return "2.25";
    case 's': return "sim";
    default: return nullptr;
    }
}

// The letters of a format that carry a value.
std::string ValueLetters(const std::string& format)
{
    std::string letters;
    for (char c : format) {
        const ZoFormatLetter* row = ZoFormatLetterOf(c);
        if (row != nullptr && row->supported) {
            letters += c;
        }
    }
    return letters;
}

// Parses word as a value of letter, as the format table does, and appends it.
bool AppendWord(char letter, const std::string& word, android::Parcel& reply)
{
    const ZoFormatLetter* format = ZoFormatLetterOf(letter);
    ZoFormatValue value;
    return format != nullptr && format->supported && format->parse(word, value) &&
           format->write(reply, value) == android::NO_ERROR;
}

std::vector<uint8_t> ParcelBytes(const android::Parcel& parcel)
{
    const uint8_t* data = parcel.data();
    return data == nullptr ? std::vector<uint8_t>() : std::vector<uint8_t>(data, data + parcel.dataSize());
}

bool ParseInt32Word(const std::string& word, int32_t& value)
{
    ZoFormatValue v;
    if (!ZoFormatLetterOf('d')->parse(word, v)) {
        return false;
    }
    value = static_cast<int32_t>(v.integer);
    return true;
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

// Splits a line into words; a word that starts with '"' runs to the closing
// quote. False with a reason for an unclosed quote or text glued to it.
bool SplitWords(const std::string& line, std::vector<std::string>& words, std::string& error)
{
    size_t i = 0;
    while (i < line.size()) {
        if (IsBlank(line[i])) {
            ++i;
            continue;
        }
        std::string word;
        if (line[i] != '"') {
            while (i < line.size() && !IsBlank(line[i])) {
                word += line[i++];
            }
            words.push_back(word);
            continue;
        }
        ++i;
        bool closed = false;
        while (i < line.size()) {
            const char c = line[i++];
            if (c == '"') {
                closed = true;
                break;
            }
            if (c == '\\' && i < line.size() && (line[i] == '"' || line[i] == '\\')) {
                word += line[i++];
            } else {
                word += c;
            }
        }
        if (!closed) {
            error = "a quoted text has no closing quote";
            return false;
        }
        if (i < line.size() && !IsBlank(line[i])) {
            error = "text right after a closing quote";
            return false;
        }
        words.push_back(word);
    }
    return true;
}

}  // namespace

bool RepliesFile::Load(const std::string& path, const ZoShmCatalogueService& catalogue, std::string& error)
{
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = path + ": cannot be read";
        return false;
    }
    // Read to the end by hand: a stream takes a directory for an empty file.
    std::string text;
    char chunk[4096];
    ssize_t n;
    while ((n = read(fd, chunk, sizeof chunk)) > 0) {
        text.append(chunk, static_cast<size_t>(n));
    }
    const int readErrno = errno;
    close(fd);
    if (n < 0) {
        error = path + ": cannot be read: " + std::strerror(readErrno);
        return false;
    }
    if (!Parse(text, catalogue, error)) {
        error = path + " " + error;
        return false;
    }
    return true;
}

bool RepliesFile::Parse(const std::string& text, const ZoShmCatalogueService& catalogue, std::string& error)
{
    std::istringstream lines(text);
    std::string line;
    for (unsigned number = 1; std::getline(lines, line); ++number) {
        std::string reason;
        if (!ParseLine(line, catalogue, reason)) {
            error = "line " + std::to_string(number) + ": " + reason;
            return false;
        }
    }
    return true;
}

bool RepliesFile::ParseLine(const std::string& line, const ZoShmCatalogueService& catalogue, std::string& error)
{
    const size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos || line[first] == '#') {
        return true;
    }
    std::vector<std::string> words;
    if (!SplitWords(line, words, error)) {
        return false;
    }
    for (size_t i = 0; i < words.size(); ++i) {
        if (words[i].find('\0') != std::string::npos) {
            error = "word " + std::to_string(i + 1) + " holds a NUL byte";
            return false;
        }
    }
    int32_t code = 0;
    int32_t status = 0;
    if (!ParseInt32Word(words[0], code)) {
        error = "'" + words[0] + "' is not an instruction code";
        return false;
    }
    if (words.size() < 2 || !ParseInt32Word(words[1], status)) {
        error = "a status must follow the instruction code";
        return false;
    }
    const ZoShmCommand* cmd = catalogue.CommandOf(code);
    if (cmd == nullptr) {
        error = "instruction " + words[0] + " is not a command of the catalogue";
        return false;
    }
    if (m_replies.count(code) != 0) {
        error = "instruction " + words[0] + " has a reply already";
        return false;
    }

    const std::string letters = ValueLetters(cmd->printFmt);
    if (words.size() > 2 && letters.empty()) {
        error = "the print format of '" + cmd->word + "' takes no values";
        return false;
    }
    android::Parcel reply;
    reply.writeInt32(status);
    for (size_t i = 2; i < words.size(); ++i) {
        const char letter = letters[(i - 2) % letters.size()];
        if (!AppendWord(letter, words[i], reply)) {
            error = "'" + words[i] + "' is not a value for '" + std::string(1, letter) + "' of '" + cmd->word + "'";
            return false;
        }
    }
    if (reply.dataSize() > SHM_DATA_SIZE) {
        error = "the reply takes " + std::to_string(reply.dataSize()) + " bytes, more than " +
                std::to_string(SHM_DATA_SIZE);
        return false;
    }
    m_replies[code] = ParcelBytes(reply);
    return true;
}

std::vector<uint8_t> RepliesFile::ReplyFor(const ZoShmCommand& command) const
{
    const auto it = m_replies.find(command.code);
    if (it != m_replies.end()) {
        return it->second;
    }
    android::Parcel reply;
    reply.writeInt32(0);
    for (char letter : ValueLetters(command.printFmt)) {
        AppendWord(letter, BuiltIn(letter), reply);
    }
    return ParcelBytes(reply);
}
