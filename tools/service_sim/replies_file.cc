#include "replies_file.h"

#include <cerrno>
#include <cstring>
#include <sstream>

#include <fcntl.h>
#include <unistd.h>

#include <binder/Parcel.h>

#include "reply_encoder.h"
#include "zo_format_letters.h"
#include "zo_shm_page.h"

namespace {

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

bool RepliesFile::Load(const std::string& path, const CommandIndex& index, std::string& error)
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
    if (!Parse(text, index, error)) {
        error = path + " " + error;
        return false;
    }
    return true;
}

bool RepliesFile::Parse(const std::string& text, const CommandIndex& index, std::string& error)
{
    std::istringstream lines(text);
    std::string line;
    for (unsigned number = 1; std::getline(lines, line); ++number) {
        std::string reason;
        if (!ParseLine(line, index, reason)) {
            error = "line " + std::to_string(number) + ": " + reason;
            return false;
        }
    }
    return true;
}

bool RepliesFile::ParseLine(const std::string& line, const CommandIndex& index, std::string& error)
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
    if (!ParseInt32Word(words[0].c_str(), code)) {
        error = "'" + words[0] + "' is not an instruction code";
        return false;
    }
    if (words.size() < 2 || !ParseInt32Word(words[1].c_str(), status)) {
        error = "a status must follow the instruction code";
        return false;
    }
    const SimCommand* cmd = index.Find(code);
    if (cmd == nullptr) {
        error = "instruction " + words[0] + " is not a command of the catalogue";
        return false;
    }
    if (m_replies.count(code) != 0) {
        error = "instruction " + words[0] + " has a reply already";
        return false;
    }

    std::string letters;
    for (char c : cmd->printFmt) {
        const ZoFormatLetter* format = ZoFormatLetterOf(c);
        if (format == nullptr || format->supported) {
            letters += c;
        }
    }
    if (words.size() > 2 && letters.empty()) {
        error = "the print format of '" + cmd->word + "' takes no values";
        return false;
    }
    android::Parcel reply;
    reply.writeInt32(status);
    for (size_t i = 2; i < words.size(); ++i) {
        const char letter = letters[(i - 2) % letters.size()];
        if (!AppendValue(letter, words[i], reply)) {
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

const std::vector<uint8_t>* RepliesFile::Find(int32_t code) const
{
    const auto it = m_replies.find(code);
    return it == m_replies.end() ? nullptr : &it->second;
}
