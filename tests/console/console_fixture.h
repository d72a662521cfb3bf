// A console standing inside module "Channel" (instruction 0x10), with a
// catalogue written to its own temporary directory and holding the commands
// a test gives. The console object is a local one, not the process instance,
// so the terminal is never touched.
#ifndef ZO_TESTS_CONSOLE_CONSOLE_FIXTURE_H
#define ZO_TESTS_CONSOLE_CONSOLE_FIXTURE_H

#include <cstdio>
#include <string>
#include <vector>

#include "temp_dir.h"
#include "zo_cmd_debug.h"

// Reaches the console's private state for set-up and inspection.
class ZoCmdDebugTestPeer {
public:
    static void UseCatalogue(ZoCmdDebug& console, ZoFileParse* catalogue) { console.m_pFileParse = catalogue; }
    static void EnterModule(ZoCmdDebug& console, const std::string& mod) { console.m_strCurMod = mod; }
};

// One command of the test catalogue; an empty text leaves its key out.
struct TestCmd {
    std::string word;
    std::string instruction;
    std::string paraFmt;
    std::string printFmt;
    std::string printTags;
    std::string descrip;
};

class ConsoleFixture {
public:
    explicit ConsoleFixture(const std::vector<TestCmd>& cmds)
    {
        m_dir.Write("mods.conf", "[Channel]\ncommand = chan\ninstruction = 0x10\ndescription = channel functions\n");
        std::string text;
        for (const TestCmd& cmd : cmds) {
            text += "[" + cmd.word + "]\ncommand = " + cmd.word + "\nbelong module = Channel\n";
            text += "instruction = " + cmd.instruction + "\n";
            text += Key("para format", cmd.paraFmt) + Key("print format", cmd.printFmt);
            text += Key("print tags", cmd.printTags) + Key("description", cmd.descrip) + "\n";
        }
        m_dir.Write("cmds.conf", text);
        m_catalogue.Init(m_dir.Path());
        ZoCmdDebugTestPeer::UseCatalogue(m_console, &m_catalogue);
        ZoCmdDebugTestPeer::EnterModule(m_console, "Channel");
    }

    ZoCmdDebug& Console() { return m_console; }
    const TempDir& Dir() const { return m_dir; }

private:
    static std::string Key(const char* key, const std::string& value)
    {
        return value.empty() ? std::string() : std::string(key) + " = " + value + "\n";
    }

    TempDir m_dir;
    ZoFileParse m_catalogue;
    ZoCmdDebug m_console;
};

// The bytes as hex, four bytes (one parcel word) to a group.
inline std::string HexWords(const uint8_t* bytes, size_t size)
{
    std::string hex;
    char pair[3];
    for (size_t i = 0; i < size; ++i) {
        if (i != 0 && i % 4 == 0) {
            hex += ' ';
        }
        snprintf(pair, sizeof pair, "%02x", bytes[i]);
        hex += pair;
    }
    return hex;
}

#endif  // ZO_TESTS_CONSOLE_CONSOLE_FIXTURE_H
