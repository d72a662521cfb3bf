// RepliesFile: canned answers per instruction code, read from a text file.
//
// One line per code; blank lines and lines whose first non-blank character
// is '#' are skipped:
//
//   CODE STATUS [VALUE ...]
//
// CODE is a command's own instruction code and must be in the catalogue;
// STATUS is the reply status. Both are 32-bit numbers, decimal or 0x hex,
// as the letter d parses them (zo_format_letters.h). The values are encoded by the command's print format,
// letter by letter, skipping S, and starting again at the first letter when
// the letters run out (the console prints one row per pass over the format);
// fewer values than letters give a short reply on purpose. A string value is
// one word, or a double-quoted text in which \" and \\ stand for " and \.
// A word holding a NUL byte is an error, as the value would be cut there.
// Every reply is encoded while the file is read, so a bad line is found at
// start-up, never while the console waits. A command without a line gets the
// built-in reply: status 0 and one row of d 42, D 9000000000, f 1.5, F 2.25,
// s "sim".
#ifndef ZO_TOOLS_SERVICE_SIM_REPLIES_FILE_H
#define ZO_TOOLS_SERVICE_SIM_REPLIES_FILE_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "zo_shm_catalogue_service.h"

class RepliesFile {
public:
    // Reads the file at path; false with "PATH line N: reason" in error, or
    // "PATH: cannot be read" when it cannot be opened or read (a directory).
    bool Load(const std::string& path, const ZoShmCatalogueService& catalogue, std::string& error);
    // Reads the text of a replies file; false with "line N: reason" in error.
    // On failure the table keeps the lines read before the bad one.
    bool Parse(const std::string& text, const ZoShmCatalogueService& catalogue, std::string& error);

    // The encoded reply for command: its line's, or the built-in one.
    std::vector<uint8_t> ReplyFor(const ZoShmCommand& command) const;

private:
    bool ParseLine(const std::string& line, const ZoShmCatalogueService& catalogue, std::string& error);

    std::map<int32_t, std::vector<uint8_t>> m_replies;
};

#endif  // ZO_TOOLS_SERVICE_SIM_REPLIES_FILE_H
