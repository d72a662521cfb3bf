// The catalogue on arbitrary "mods.conf" and "cmds.conf".
//
// Input: the bytes before the first "\n%%\n" are "mods.conf", the bytes after it "cmds.conf"; without that line there
// is no "cmds.conf" at all. Both are real files, as the row reader opens them by path: in one directory made once per
// process, or "mods.conf" alone in a second one (in /dev/shm when there is one), kept open and rewritten in place for
// every input.
//
// Checked besides memory safety: Init fails exactly when a file is missing or has no byte; module names and module
// words pair up, names ascend byte-wise and every name answers its lookups with its own word; commands are listed only
// under a module's instruction code (never under -1), ascending byte-wise; every name, word and value is a trimmed text
// that fits a row buffer, without NUL.
#include <cstdint>
#include <cstring>
#include <set>
#include <string>

#include "fuzz_support.h"
#include "temp_dir.h"
#include "zo_file_parse.h"

namespace {

constexpr size_t kMaxValue = ZoFileParse::kMaxValue;
// A title's name is the title row without its brackets.
constexpr size_t kMaxName = ZoFileParse::kMaxTitleRow - 2;

// The directory with both files, the one with "mods.conf" alone, and their files.
struct Catalogues {
    TempDir both;
    TempDir modsOnly;
    int mods = KeepOpen(both.File("mods.conf"));
    int cmds = KeepOpen(both.File("cmds.conf"));
    int soloMods = KeepOpen(modsOnly.File("mods.conf"));
};
Catalogues* g_files = nullptr;

bool IsSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// A value as the row parts yield it: trimmed, bounded, ended by a NUL byte.
void CheckValue(const std::string& text, size_t limit = kMaxValue)
{
    FUZZ_CHECK(text.size() <= limit);
    FUZZ_CHECK(text.find('\0') == std::string::npos);
    FUZZ_CHECK(text.empty() || (!IsSpace(text.front()) && !IsSpace(text.back())));
}

// Walked, never indexed: a position costs a walk from the front of the list.
void CheckAscending(const Array<std::string>& list)
{
    const std::string* last = nullptr;
    for (const std::string& item : list) {
        FUZZ_CHECK(last == nullptr || *last < item);
        last = &item;
    }
}

void CheckCommands(const ZoFileParse& parse, int32_t code)
{
    const Array<std::string> words = parse.GetModHoldCmds(code);
    CheckAscending(words);
    for (const std::string& word : words) {
        CheckValue(word);
        CheckValue(parse.GetCmdParaFmt(code, word));
        CheckValue(parse.GetCmdPrintFmt(code, word));
        CheckValue(parse.GetCmdDescrip(code, word));
        parse.GetCmdInstruct(code, word);
        // The tags are one value split at its commas.
        std::string joined;
        for (const std::string& tag : parse.GetCmdPrintTags(code, word)) {
            joined += "," + tag;
        }
        CheckValue(joined.substr(joined.empty() ? 0 : 1));
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    QuietProcess();
    static Catalogues files;
    g_files = &files;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const char kSeparator[] = "\n%%\n";
    const uint8_t* split =
        static_cast<const uint8_t*>(memmem(data, size, kSeparator, sizeof kSeparator - 1));
    const size_t modsSize = split != nullptr ? static_cast<size_t>(split - data) : size;
    size_t cmdsSize = 0;
    if (split != nullptr) {
        const size_t cmdsStart = modsSize + sizeof kSeparator - 1;
        cmdsSize = size - cmdsStart;
        Rewrite(g_files->mods, data, modsSize);
        Rewrite(g_files->cmds, data + cmdsStart, cmdsSize);
    } else {
        Rewrite(g_files->soloMods, data, modsSize);
    }

    ZoFileParse parse;
    parse.Init((split != nullptr ? g_files->both : g_files->modsOnly).Path());
    const bool complete = modsSize != 0 && split != nullptr && cmdsSize != 0;
    FUZZ_CHECK(parse.GetIOExceptionStatus() == (complete ? 0 : 1));

    const Array<std::string> names = parse.GetModNames();
    const Array<std::string> words = parse.GetModCmds();
    FUZZ_CHECK(names.Size() == words.Size());
    CheckAscending(names);
    std::set<int32_t> codes;
    auto word = words.begin();
    for (const std::string& name : names) {
        FUZZ_CHECK(name.size() <= kMaxName);
        FUZZ_CHECK(name.find('\0') == std::string::npos);
        CheckValue(*word);
        FUZZ_CHECK(parse.GetModToCmd(name) == *word++);
        CheckValue(parse.GetModDescrip(name));
        codes.insert(parse.GetModInstruct(name));
    }
    // A module without an instruction code holds no command.
    FUZZ_CHECK(parse.GetModHoldCmds(-1).Size() == 0);
    for (const int32_t code : codes) {
        CheckCommands(parse, code);
    }
    return 0;
}
