// A console object standing inside module "M" (word "m", instruction 0x10)
// of a catalogue written for it, for tests, fuzz harnesses and benchmarks.
// The object is a local one, never the process instance, so the terminal is
// never touched.
#ifndef ZO_TESTS_SUPPORT_CONSOLE_PEER_H
#define ZO_TESTS_SUPPORT_CONSOLE_PEER_H

#include <memory>
#include <string>
#include <vector>

#include "temp_dir.h"
#include "zo_cmd_debug.h"

// Reaches the console's private state for set-up.
class ZoCmdDebugTestPeer {
public:
    static void UseCatalogue(ZoCmdDebug& console, ZoFileParse* catalogue) { console.m_pFileParse = catalogue; }
    static void EnterModule(ZoCmdDebug& console, const std::string& mod) { console.m_strCurMod = mod; }
};

// One command of module M; an empty text leaves its key out.
struct TestCmd {
    std::string word;
    std::string instruction;
    std::string paraFmt = "";
    std::string printFmt = "";
    std::string printTags = "";
    std::string descrip = "";
};

class TestConsole {
public:
    ~TestConsole() { ZoCmdDebugTestPeer::UseCatalogue(m_console, nullptr); }

    // Writes the catalogue of module M with cmds into dir (its own directory
    // by default), loads it into a fresh catalogue and enters M.
    ZoFileParse& Load(const std::vector<TestCmd>& cmds) { return Load(m_dir, cmds); }
    ZoFileParse& Load(const TempDir& dir, const std::vector<TestCmd>& cmds)
    {
        dir.Write("mods.conf", kModsText);
        dir.Write("cmds.conf", CmdsText(cmds));
        m_catalogue.reset(new ZoFileParse());
        m_catalogue->Init(dir.Path());
        ZoCmdDebugTestPeer::UseCatalogue(m_console, m_catalogue.get());
        ZoCmdDebugTestPeer::EnterModule(m_console, "M");
        return *m_catalogue;
    }

    ZoCmdDebug& Get() { return m_console; }
    const TempDir& Dir() const { return m_dir; }

    // The two files' texts.
    static constexpr const char* kModsText = "[M]\ncommand = m\ninstruction = 0x10\n";
    static std::string CmdsText(const std::vector<TestCmd>& cmds)
    {
        std::string text;
        for (const TestCmd& cmd : cmds) {
            text += "[" + cmd.word + "]\ncommand = " + cmd.word + "\nbelong module = M\ninstruction = " +
                    cmd.instruction + "\n" + Key("para format", cmd.paraFmt) + Key("print format", cmd.printFmt) +
                    Key("print tags", cmd.printTags) + Key("description", cmd.descrip);
        }
        return text;
    }

private:
    static std::string Key(const char* key, const std::string& value)
    {
        return value.empty() ? std::string() : std::string(key) + " = " + value + "\n";
    }

    TempDir m_dir;
    std::unique_ptr<ZoFileParse> m_catalogue;
    ZoCmdDebug m_console;
};

#endif  // ZO_TESTS_SUPPORT_CONSOLE_PEER_H
