// What the console harnesses share: a quiet process and the test console
// (tests/support/console_peer.h) standing in module "M", whose one command
// "run" is written afresh for every input. Its directory is in /dev/shm when
// there is one, so rewriting the catalogue costs no disk I/O.
#ifndef ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H
#define ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H

#include <cstdlib>

#include <unistd.h>

#include "console_peer.h"
#include "fuzz_quiet.h"

namespace fuzz_console {

constexpr int32_t kCmdCode = 0x21;
constexpr const char* kCmdWord = "run";

// Drops the characters that would end the "key = value" row early.
inline std::string OneRow(std::string text)
{
    for (char& c : text) {
        if (c == '\n' || c == '\0') {
            c = ' ';
        }
    }
    return text;
}

// The console, made on first use after everything printed, log records
// included, has been sent nowhere; its directory is removed at exit.
inline TestConsole& Console()
{
    static const int quiet = (QuietStdout(), ZoLog::SetSink([](const ZoLogRecord&) {}),
                              access("/dev/shm", W_OK) == 0 ? setenv("TMPDIR", "/dev/shm", 1) : 0);
    static TestConsole console;
    return (void)quiet, console;
}

// Loads a fresh catalogue whose command "run" has these keys, each made one row.
inline ZoFileParse& Load(const std::string& paraFmt, const std::string& printFmt, const std::string& printTags)
{
    return Console().Load({{kCmdWord, "0x21", OneRow(paraFmt), OneRow(printFmt), OneRow(printTags), "fuzzed"}});
}

}  // namespace fuzz_console

#endif  // ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H
