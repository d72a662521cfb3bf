// Checks across the modules and commands of a catalogue.
#include "conf_rules.h"

#include <strings.h>
#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "format_rules.h"
#include "zo_stream_key_table.h"

namespace
{

std::string Code(int32_t code)
{
    char text[16];
    const int64_t value = code;
    snprintf(text, sizeof text, "%s0x%" PRIx64, value < 0 ? "-" : "", value < 0 ? -value : value);
    return text;
}

std::string Line(int row)
{
    return "line " + std::to_string(row);
}

// The words the console reads as help or quit before any module or command.
bool IsConsoleWord(const std::string& word)
{
    for (const char* own : {"help", "?", "q", "quit"}) {
        if (strcasecmp(word.c_str(), own) == 0) {
            return true;
        }
    }
    return false;
}

// The first byte of word that typing at the prompt cannot enter, and what
// typing it does instead: "'C', which the line editor drops". Empty when
// every byte can be typed.
std::string UntypableByte(const std::string& word)
{
    for (const char c : word) {
        if (const char* effect = ZoKeyEffect(static_cast<unsigned char>(c))) {
            return ShownByte(c) + ", which " + effect;
        }
    }
    return "";
}

// A name for a command in messages: its word, or its title when it has none.
std::string Named(const RecordedCommand& cmd)
{
    return cmd.info.strCommand.empty() ? "command block '" + cmd.info.strName + "'"
                                       : "command '" + cmd.info.strCommand + "'";
}

}  // namespace

ConfRules::ConfRules(const std::string& modsPath, const std::string& cmdsPath, ConfDiagnostics& diagnostics)
    : m_modsPath(modsPath), m_cmdsPath(cmdsPath), m_diagnostics(diagnostics)
{
}

void ConfRules::Module(const RecordedModule& mod)
{
    const std::string& name = mod.info.strName;
    if (mod.entry == ZoFileParse::Entry::kDuplicateModule) {
        m_diagnostics.Error(m_modsPath, mod.row,
                            "module '" + name + "' is already defined at " + Line(m_modules.at(name).block.row) +
                                ": this block is ignored");
        return;
    }
    if (name.empty()) {
        m_diagnostics.Error(m_modsPath, mod.row,
                            "the block title '[]' gives the module an empty name, which the console takes for the "
                            "top level: the module can never be entered");
    }
    const KeptModule& kept = m_modules.emplace(name, KeptModule{mod, false}).first->second;
    CheckModuleCode(kept.block);
    CheckModuleWord(kept.block);
    if (!mod.info.strCommand.empty()) {
        std::vector<const KeptModule*>& sharing = m_moduleWords[mod.info.strCommand];
        sharing.insert(std::upper_bound(sharing.begin(), sharing.end(), &kept,
                                        [](const KeptModule* a, const KeptModule* b) {
                                            return a->block.info.strName < b->block.info.strName;
                                        }),
                       &kept);
    }
}

void ConfRules::CheckModuleCode(const RecordedModule& mod)
{
    const std::string name = "module '" + mod.info.strName + "'";
    const int row = mod.RowOf(ConfKey::kInstruction);
    if (mod.info.s32Instruct == -1) {
        m_diagnostics.Error(m_modsPath, row,
                            mod.Has(ConfKey::kInstruction)
                                ? "instruction -1 means none: " + name + " can hold no command"
                                : name + " has no \"instruction\": it can hold no command");
        return;
    }
    const auto first = m_moduleCodes.emplace(mod.info.s32Instruct, &m_modules.at(mod.info.strName));
    if (!first.second) {
        const RecordedModule& other = first.first->second->block;
        m_diagnostics.Error(m_modsPath, row,
                            name + " has the instruction code " + Code(mod.info.s32Instruct) + " of module '" +
                                other.info.strName + "' (" + Line(other.row) +
                                "): their commands are filed together");
    }
}

// A word shared by modules is judged at the end, when every module is known.
void ConfRules::CheckModuleWord(const RecordedModule& mod)
{
    const std::string& word = mod.info.strCommand;
    const std::string name = "module '" + mod.info.strName + "'";
    const int row = mod.RowOf(ConfKey::kCommand);
    if (word.empty()) {
        m_diagnostics.Error(m_modsPath, row, name + " has no \"command\" word: it cannot be entered at the prompt");
    } else if (IsConsoleWord(word)) {
        m_diagnostics.Error(m_modsPath, row,
                            "the word '" + word + "' of " + name +
                                " is the console's own (help, ?, q, quit): the module cannot be entered");
    } else {
        const std::string untypable = UntypableByte(word);
        if (!untypable.empty()) {
            m_diagnostics.Error(m_modsPath, row,
                                "the word '" + word + "' of " + name + " holds " + untypable +
                                    ": the module cannot be entered");
        }
    }
}

void ConfRules::Command(const RecordedCommand& cmd)
{
    CheckFormats(m_cmdsPath, cmd, m_diagnostics);
    if (CheckDropped(cmd)) {
        return;
    }
    KeptModule& mod = m_modules.at(cmd.info.strBelongMod);
    mod.holdsCommand = true;
    const KeptCommand& kept = m_commands
                                  .emplace(std::make_pair(mod.block.info.s32Instruct, cmd.info.strCommand),
                                           KeptCommand{cmd.row, Named(cmd), cmd.info.strBelongMod})
                                  .first->second;
    CheckCommandWord(cmd);
    CheckCommandCode(cmd, kept);
}

bool ConfRules::CheckDropped(const RecordedCommand& cmd)
{
    const std::string& belong = cmd.info.strBelongMod;
    const int belongRow = cmd.RowOf(ConfKey::kBelongModule);
    switch (cmd.entry) {
        case ZoFileParse::Entry::kEntered:
            return false;
        case ZoFileParse::Entry::kUnknownModule: {
            if (!cmd.Has(ConfKey::kBelongModule)) {
                m_diagnostics.Error(m_cmdsPath, cmd.row, Named(cmd) + " has no \"belong module\": it is dropped");
                break;
            }
            std::string hint;
            const auto word = m_moduleWords.find(belong);
            if (word != m_moduleWords.end()) {
                hint = " ('" + belong + "' is the word of module '" + word->second.front()->block.info.strName +
                       "'; \"belong module\" takes the module's name)";
            }
            m_diagnostics.Error(m_cmdsPath, belongRow,
                                "no module '" + belong + "' in mods.conf: " + Named(cmd) + " is dropped" + hint);
            break;
        }
        case ZoFileParse::Entry::kModuleWithoutInstruction:
            m_diagnostics.Error(m_cmdsPath, belongRow,
                                "module '" + belong + "' has no instruction code: " + Named(cmd) + " is dropped");
            break;
        default: {  // kDuplicateCommand, the one outcome left for a command
            const int32_t code = m_modules.at(belong).block.info.s32Instruct;
            const KeptCommand& first = m_commands.at({code, cmd.info.strCommand});
            std::string shared;
            if (first.belong != belong) {
                shared = " by module '" + first.belong + "', which shares the code " + Code(code);
            }
            m_diagnostics.Error(
                m_cmdsPath, cmd.row,
                Named(cmd) + " is already defined at " + Line(first.row) + shared + ": this block is ignored");
            break;
        }
    }
    return true;
}

void ConfRules::CheckCommandWord(const RecordedCommand& cmd)
{
    const std::string& word = cmd.info.strCommand;
    const int row = cmd.RowOf(ConfKey::kCommand);
    if (word.empty()) {
        m_diagnostics.Error(m_cmdsPath, row, Named(cmd) + " has no \"command\" word: it cannot be typed");
        return;
    }
    if (word.find_first_of(" \t\v\f\r\n") != std::string::npos) {
        m_diagnostics.Error(m_cmdsPath, row, "the command word '" + word + "' holds white space: it cannot be typed");
        return;
    }
    const std::string untypable = UntypableByte(word);
    if (!untypable.empty()) {
        m_diagnostics.Error(m_cmdsPath, row,
                            "the command word '" + word + "' holds " + untypable + ": it cannot be typed");
        return;
    }
    if (IsConsoleWord(word)) {
        m_diagnostics.Warning(m_cmdsPath, row,
                              "the command word '" + word +
                                  "' is the console's own (help, ?, q, quit): typed alone it does not run the command");
    }
    const auto modules = m_moduleWords.find(word);
    if (modules == m_moduleWords.end()) {
        return;
    }
    for (const KeptModule* mod : modules->second) {
        m_diagnostics.Warning(m_cmdsPath, row,
                              "the command word '" + word + "' is also the word of module '" +
                                  mod->block.info.strName + "': typed alone it enters that module");
    }
}

// The request carries only the command's own code, so the service tells
// commands apart by it alone.
void ConfRules::CheckCommandCode(const RecordedCommand& cmd, const KeptCommand& kept)
{
    const int32_t code = cmd.info.s32Instruct;
    const int row = cmd.RowOf(ConfKey::kInstruction);
    if (code == -1) {
        m_diagnostics.Error(m_cmdsPath, row,
                            (cmd.Has(ConfKey::kInstruction) ? "instruction -1 means none: "
                                                            : Named(cmd) + " has no \"instruction\": ") +
                                std::string("the console sends the code -1"));
        return;
    }
    // Within one module an error, even when another module had the code first.
    const auto inModule = m_moduleCommandCodes.emplace(std::make_pair(code, kept.belong), &kept);
    const auto anywhere = m_commandCodes.emplace(code, &kept);
    const KeptCommand& other = *(inModule.second ? anywhere.first->second : inModule.first->second);
    const std::string text = "the instruction code " + Code(code) + " of " + kept.named + " is also the code of " +
                             other.named + " (" + Line(other.row) + ")";
    if (!inModule.second) {
        m_diagnostics.Error(m_cmdsPath, row, text + " in the same module");
    } else if (!anywhere.second) {
        m_diagnostics.Warning(
            m_cmdsPath, row,
            text + " of module '" + other.belong + "': the service receives the same code for both");
    }
}

void ConfRules::Finish()
{
    // The console tries the module words in the order of the module names.
    for (const auto& word : m_moduleWords) {
        const std::vector<const KeptModule*>& sharing = word.second;
        if (sharing.size() < 2 || IsConsoleWord(word.first) || !UntypableByte(word.first).empty()) {
            continue;  // such a word is reported with each module
        }
        const RecordedModule& winner = sharing.front()->block;
        for (auto mod = sharing.begin() + 1; mod != sharing.end(); ++mod) {
            const RecordedModule& loser = (*mod)->block;
            m_diagnostics.Error(m_modsPath, loser.RowOf(ConfKey::kCommand),
                                "the word '" + word.first + "' of module '" + loser.info.strName +
                                    "' is also the word of module '" + winner.info.strName + "' (" +
                                    Line(winner.row) + "), whose name sorts first: typing it enters module '" +
                                    winner.info.strName + "'");
        }
    }
    for (const auto& mod : m_modules) {
        if (mod.second.block.info.s32Instruct != -1 && !mod.second.holdsCommand && !mod.first.empty()) {
            m_diagnostics.Warning(m_modsPath, mod.second.block.row, "module '" + mod.first + "' holds no command");
        }
    }
}
