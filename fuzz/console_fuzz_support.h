// What the console harnesses share: a quiet process, a console object standing
// in module "M", and a one-command catalogue written afresh for every input.
//
// The catalogue lives in a temporary directory (in /dev/shm when there is one,
// so rewriting it costs no disk I/O), removed at exit. The console object is a
// local one, never the process instance, so the terminal is never touched.
#ifndef ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H
#define ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include <ftw.h>
#include <unistd.h>

#include "fuzz_quiet.h"
#include "zo_cmd_debug.h"
#include "zo_file_parse.h"
#include "zo_tv_support.h"

// Reaches the console's private state, as the unit tests' peer does.
class ZoCmdDebugTestPeer {
public:
    static void UseCatalogue(ZoCmdDebug& console, ZoFileParse* catalogue) { console.m_pFileParse = catalogue; }
    static void EnterModule(ZoCmdDebug& console, const std::string& mod) { console.m_strCurMod = mod; }
};

namespace fuzz_console {

// Module "M" (code 0x20) holding one command "run" (code 0x21).
constexpr int32_t kCmdCode = 0x21;
constexpr const char* kCmdWord = "run";

// Everything the code under test prints goes nowhere; so do log records.
inline void Silence()
{
    QuietStdout();
    ZoLog::SetSink([](const ZoLogRecord&) {});
}

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

class Console {
public:
    Console()
    {
        const char* tmp = std::getenv("TMPDIR");
        const char* base = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : (tmp != nullptr ? tmp : "/tmp");
        std::string pattern = std::string(base) + "/zo_fuzz_XXXXXX";
        if (mkdtemp(&pattern[0]) == nullptr) {
            std::perror("mkdtemp");
            std::exit(1);
        }
        m_dir = pattern;
        Write("mods.conf", "[M]\ncommand = m\ninstruction = 0x20\ndescription = fuzzed module\n");
        ZoCmdDebugTestPeer::EnterModule(m_console, "M");
    }
    ~Console()
    {
        ZoCmdDebugTestPeer::UseCatalogue(m_console, nullptr);
        nftw(m_dir.c_str(), [](const char* p, const struct stat*, int, struct FTW*) { return ::remove(p); }, 4,
             FTW_DEPTH | FTW_PHYS);
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Loads a fresh catalogue whose command "run" has these keys (each made one row).
    ZoFileParse& Load(const std::string& paraFmt, const std::string& printFmt, const std::string& printTags)
    {
        Write("cmds.conf", "[Run]\ncommand = run\nbelong module = M\ninstruction = 0x21\npara format = " +
                               OneRow(paraFmt) + "\nprint format = " + OneRow(printFmt) +
                               "\nprint tags = " + OneRow(printTags) + "\ndescription = fuzzed command\n");
        m_catalogue.reset(new ZoFileParse());
        m_catalogue->Init(m_dir);
        ZoCmdDebugTestPeer::UseCatalogue(m_console, m_catalogue.get());
        return *m_catalogue;
    }

    ZoCmdDebug& Get() { return m_console; }

private:
    void Write(const char* name, const std::string& text)
    {
        std::ofstream out(m_dir + "/" + name, std::ios::binary | std::ios::trunc);
        out << text;
        if (!out.flush()) {
            std::fprintf(stderr, "cannot write %s/%s\n", m_dir.c_str(), name);
            std::abort();
        }
    }

    std::string m_dir;
    std::unique_ptr<ZoFileParse> m_catalogue;
    ZoCmdDebug m_console;
};

}  // namespace fuzz_console

#endif  // ZO_FUZZ_CONSOLE_FUZZ_SUPPORT_H
