// ConfRules: the checks of the blocks of a catalogue. Each finished block is
// judged as the reader finishes it: what became of it (dropped duplicates,
// commands of unknown modules or of modules without a code), empty module
// names, missing or colliding instruction codes, words that cannot be typed
// (white space, or a byte the line editor or the terminal takes as a key),
// and each command's formats (format_rules.h). At the end come the checks
// that need every module: module words shared by modules, and modules with
// no command.
//
// Only the blocks the catalogue entered are kept (commands in brief), so
// memory follows the catalogue the console builds, not the length of the
// files.
#ifndef ZO_TOOLS_CONF_CHECK_CONF_RULES_H
#define ZO_TOOLS_CONF_CHECK_CONF_RULES_H

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "conf_diagnostics.h"
#include "conf_recorder.h"

class ConfRules
{
public:
    ConfRules(const std::string& modsPath, const std::string& cmdsPath, ConfDiagnostics& diagnostics);

    // Each finished block in file order; every module comes before the first
    // command, as the catalogue reads "mods.conf" first.
    void Module(const RecordedModule& mod);
    void Command(const RecordedCommand& cmd);
    // After the last block.
    void Finish();

private:
    // An entered module, and whether a command was entered under it.
    struct KeptModule {
        RecordedModule block;
        bool holdsCommand;
    };
    // An entered command: its title row, its name in messages and its module.
    struct KeptCommand {
        int row;
        std::string named;
        std::string belong;
    };

    void CheckModuleCode(const RecordedModule& mod);
    void CheckModuleWord(const RecordedModule& mod);
    // Reports a command the catalogue dropped; false when it was entered.
    bool CheckDropped(const RecordedCommand& cmd);
    void CheckCommandWord(const RecordedCommand& cmd);
    void CheckCommandCode(const RecordedCommand& cmd, const KeptCommand& kept);

    const std::string m_modsPath;
    const std::string m_cmdsPath;
    ConfDiagnostics& m_diagnostics;

    std::map<std::string, KeptModule> m_modules;  // by name, the console's order
    std::map<int32_t, const KeptModule*> m_moduleCodes;
    // The modules of each word, in the order of their names: the console
    // enters the first.
    std::map<std::string, std::vector<const KeptModule*>> m_moduleWords;
    // Commands as the catalogue files them: by module code and word.
    std::map<std::pair<int32_t, std::string>, KeptCommand> m_commands;
    // The first command of each own code, overall and within each module.
    std::map<int32_t, const KeptCommand*> m_commandCodes;
    std::map<std::pair<int32_t, std::string>, const KeptCommand*> m_moduleCommandCodes;
};

#endif  // ZO_TOOLS_CONF_CHECK_CONF_RULES_H
