// The catalogue on arbitrary "mods.conf" and "cmds.conf".
//
// Input: the bytes before the first "\n%%\n" are "mods.conf", the bytes after
// it "cmds.conf"; without that line there is no "cmds.conf" at all. Both are
// real files in a directory made once per process, as the row reader opens
// them by path.
//
// Checked besides memory safety: Init fails exactly when a file is missing or
// has no byte; module names and module words pair up, names ascend byte-wise
// and every name answers its lookups with its own word; commands are listed
// only under a module's instruction code (never under -1), ascending
// byte-wise; every name, word and value is a trimmed text that fits a row
// buffer, without NUL; a word or name too long for any row misses every lookup.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "fuzz_check.h"
#include "fuzz_quiet.h"
#include "zo_file_parse.h"

namespace {

// A value fits a row buffer of 256 bytes behind the "=" and before a terminator.
constexpr size_t kMaxValue = 254;
// A title's name also leaves room for its brackets.
constexpr size_t kMaxName = kMaxValue - 1;

std::string g_dir;

void RemoveFiles()
{
    unlink((g_dir + "/mods.conf").c_str());
    unlink((g_dir + "/cmds.conf").c_str());
    rmdir(g_dir.c_str());
}

void WriteFile(const std::string& name, const uint8_t* bytes, size_t size)
{
    const int fd = open((g_dir + "/" + name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    FUZZ_CHECK(fd >= 0);
    FUZZ_CHECK(size == 0 || write(fd, bytes, size) == static_cast<ssize_t>(size));
    close(fd);
}

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

void CheckAscending(const Array<std::string>& list)
{
    for (unsigned int i = 1; i < list.Size(); ++i) {
        FUZZ_CHECK(list[i - 1] < list[i]);
    }
}

void CheckCommands(const ZoFileParse& parse, int32_t code)
{
    const Array<std::string> words = parse.GetModHoldCmds(code);
    CheckAscending(words);
    for (unsigned int i = 0; i < words.Size(); ++i) {
        const std::string& word = words[i];
        CheckValue(word);
        CheckValue(parse.GetCmdParaFmt(code, word));
        CheckValue(parse.GetCmdPrintFmt(code, word));
        CheckValue(parse.GetCmdDescrip(code, word));
        parse.GetCmdInstruct(code, word);
        // The tags are one value split at its commas.
        const Array<std::string> tags = parse.GetCmdPrintTags(code, word);
        std::string joined;
        for (unsigned int t = 0; t < tags.Size(); ++t) {
            joined += (t == 0 ? "" : ",") + tags[t];
        }
        CheckValue(joined);
    }
    const std::string miss(kMaxValue + 1, 'x');
    FUZZ_CHECK(parse.GetCmdParaFmt(code, miss).empty());
    FUZZ_CHECK(parse.GetCmdPrintFmt(code, miss).empty());
    FUZZ_CHECK(parse.GetCmdDescrip(code, miss).empty());
    FUZZ_CHECK(parse.GetCmdPrintTags(code, miss).Size() == 0);
    FUZZ_CHECK(parse.GetCmdInstruct(code, miss) == -1);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    QuietStdout();
    // A memory file system when there is one: the files are rewritten for every input.
    char shm[] = "/dev/shm/catalogue_fuzz.XXXXXX";
    char tmp[] = "/tmp/catalogue_fuzz.XXXXXX";
    const char* dir = mkdtemp(shm);
    if (dir == nullptr) {
        dir = mkdtemp(tmp);
    }
    FUZZ_CHECK(dir != nullptr);
    g_dir = dir;
    std::atexit(RemoveFiles);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const char kSeparator[] = "\n%%\n";
    const uint8_t* split =
        static_cast<const uint8_t*>(memmem(data, size, kSeparator, sizeof kSeparator - 1));
    const size_t modsSize = split != nullptr ? static_cast<size_t>(split - data) : size;
    WriteFile("mods.conf", data, modsSize);
    size_t cmdsSize = 0;
    if (split != nullptr) {
        const uint8_t* cmds = split + sizeof kSeparator - 1;
        cmdsSize = size - static_cast<size_t>(cmds - data);
        WriteFile("cmds.conf", cmds, cmdsSize);
    } else {
        unlink((g_dir + "/cmds.conf").c_str());
    }

    ZoFileParse parse;
    parse.Init(g_dir);
    const bool complete = modsSize != 0 && split != nullptr && cmdsSize != 0;
    FUZZ_CHECK(parse.GetIOExceptionStatus() == (complete ? 0 : 1));

    const Array<std::string> names = parse.GetModNames();
    const Array<std::string> words = parse.GetModCmds();
    FUZZ_CHECK(names.Size() == words.Size());
    CheckAscending(names);
    std::set<int32_t> codes;
    for (unsigned int i = 0; i < names.Size(); ++i) {
        const std::string& name = names[i];
        FUZZ_CHECK(name.size() <= kMaxName);
        FUZZ_CHECK(name.find('\0') == std::string::npos);
        CheckValue(words[i]);
        FUZZ_CHECK(parse.GetModToCmd(name) == words[i]);
        CheckValue(parse.GetModDescrip(name));
        codes.insert(parse.GetModInstruct(name));
    }
    const std::string miss(kMaxName + 1, 'x');
    FUZZ_CHECK(parse.GetModToCmd(miss).empty());
    FUZZ_CHECK(parse.GetModDescrip(miss).empty());
    FUZZ_CHECK(parse.GetModInstruct(miss) == -1);

    // A module without an instruction code holds no command.
    FUZZ_CHECK(parse.GetModHoldCmds(-1).Size() == 0);
    for (const int32_t code : codes) {
        CheckCommands(parse, code);
    }
    return 0;
}
