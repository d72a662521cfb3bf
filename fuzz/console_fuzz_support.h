// What the console harnesses share: a quiet process and the test console (tests/support/console_peer.h) standing in
// module "M", whose one command "run" has the keys an input gives.
//
// Loading a catalogue is deterministic, so each set of keys is written and loaded once and the catalogue kept: a later
// input with the same keys (most inputs: mutations mostly leave them alone) gets the kept one, with no file written or
// read and no parse.
#ifndef ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H
#define ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H

#include <map>
#include <memory>
#include <string>

#include "console_peer.h"
#include "fuzz_support.h"

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

// The console, made on first use after everything printed, log records included, has been sent nowhere; its directory
// is removed at exit.
inline TestConsole& Console()
{
    static const int quiet = (QuietProcess(), ZoLog::SetSink([](const ZoLogRecord&) {}), 0);
    static TestConsole console;
    return (void)quiet, console;
}

// The catalogue whose command "run" has these keys, each made one row, with the console standing in its module M.
inline ZoFileParse& Load(const std::string& paraFmt, const std::string& printFmt, const std::string& printTags)
{
    static std::map<std::string, std::unique_ptr<ZoFileParse>> kept;
    const TestCmd cmd = {kCmdWord, "0x21", OneRow(paraFmt), OneRow(printFmt), OneRow(printTags), "fuzzed"};
    const std::string keys = cmd.paraFmt + '\n' + cmd.printFmt + '\n' + cmd.printTags;
    auto found = kept.find(keys);
    if (found == kept.end()) {
        static const TempDir& dir = (Console().Dir().Write("mods.conf", TestConsole::kModsText), Console().Dir());
        static const int cmds = KeepOpen(dir.File("cmds.conf"));
        const std::string text = TestConsole::CmdsText({cmd});
        Rewrite(cmds, text.data(), text.size());
        if (kept.size() >= 4096) {
            kept.clear();  // bounds the memory; the console is pointed at a kept one below
        }
        found = kept.emplace(keys, std::unique_ptr<ZoFileParse>(new ZoFileParse())).first;
        found->second->Init(dir.Path());
    }
    ZoCmdDebugTestPeer::UseCatalogue(Console().Get(), found->second.get());
    ZoCmdDebugTestPeer::EnterModule(Console().Get(), "M");
    return *found->second;
}

}  // namespace fuzz_console

#endif  // ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H
