// Checks across the modules and commands of a loaded catalogue.
#include "conf_rules.h"

#include <strings.h>
#include <cinttypes>
#include <cstdio>
#include <map>
#include <set>
#include <utility>

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

// The entered modules by name, and the names that hold a command.
struct Modules {
    std::map<std::string, const RecordedModule*> byName;
    std::set<std::string> withCommands;
};

void CheckModuleCode(const std::string& path, const RecordedModule& mod,
                     std::map<int32_t, const RecordedModule*>& byCode, ConfDiagnostics& diagnostics)
{
    const std::string name = "module '" + mod.info.strName + "'";
    const int row = mod.RowOf(ConfKey::kInstruction);
    if (mod.info.s32Instruct == -1) {
        diagnostics.Error(path, row,
                          mod.Has(ConfKey::kInstruction) ? "instruction -1 means none: " + name + " can hold no command"
                                                         : name + " has no \"instruction\": it can hold no command");
        return;
    }
    const auto first = byCode.emplace(mod.info.s32Instruct, &mod);
    if (!first.second) {
        const RecordedModule& other = *first.first->second;
        diagnostics.Error(path, row,
                          name + " has the instruction code " + Code(mod.info.s32Instruct) + " of module '" +
                              other.info.strName + "' (" + Line(other.row) + "): their commands are filed together");
    }
}

void CheckModuleWord(const std::string& path, const RecordedModule& mod,
                     std::map<std::string, const RecordedModule*>& byWord, ConfDiagnostics& diagnostics)
{
    const std::string& word = mod.info.strCommand;
    const std::string name = "module '" + mod.info.strName + "'";
    const int row = mod.RowOf(ConfKey::kCommand);
    if (word.empty()) {
        diagnostics.Error(path, row, name + " has no \"command\" word: it cannot be entered at the prompt");
        return;
    }
    if (IsConsoleWord(word)) {
        diagnostics.Error(path, row,
                          "the word '" + word + "' of " + name +
                              " is the console's own (help, ?, q, quit): the module cannot be entered");
        return;
    }
    const std::string untypable = UntypableByte(word);
    if (!untypable.empty()) {
        diagnostics.Error(path, row,
                          "the word '" + word + "' of " + name + " holds " + untypable +
                              ": the module cannot be entered");
        return;
    }
    const auto first = byWord.emplace(word, &mod);
    if (!first.second) {
        // The console tries the module words in the order of the names.
        const RecordedModule& other = *first.first->second;
        const std::string& winner = std::min(other.info.strName, mod.info.strName);
        diagnostics.Error(path, row,
                          "the word '" + word + "' of " + name + " is also the word of module '" + other.info.strName +
                              "' (" + Line(other.row) + "): typing it enters module '" + winner + "'");
    }
}

void CheckModules(const ConfRecorder& recorder, Modules& modules, ConfDiagnostics& diagnostics)
{
    const std::string& path = recorder.ModsPath();
    std::map<int32_t, const RecordedModule*> byCode;
    std::map<std::string, const RecordedModule*> byWord;
    for (const RecordedModule& mod : recorder.Modules()) {
        if (mod.entry == ZoFileParse::Entry::kDuplicateModule) {
            diagnostics.Error(path, mod.row,
                              "module '" + mod.info.strName + "' is already defined at " +
                                  Line(modules.byName.at(mod.info.strName)->row) + ": this block is ignored");
            continue;
        }
        modules.byName[mod.info.strName] = &mod;
        CheckModuleCode(path, mod, byCode, diagnostics);
        CheckModuleWord(path, mod, byWord, diagnostics);
    }
}

// A name for a command in messages: its word, or its title when it has none.
std::string Named(const RecordedCommand& cmd)
{
    return cmd.info.strCommand.empty() ? "command block '" + cmd.info.strName + "'"
                                       : "command '" + cmd.info.strCommand + "'";
}

// Reports a command the catalogue dropped; false when it was entered.
bool CheckDropped(const std::string& path, const RecordedCommand& cmd, const Modules& modules,
                  const std::map<std::pair<int32_t, std::string>, const RecordedCommand*>& byWord,
                  ConfDiagnostics& diagnostics)
{
    const std::string& belong = cmd.info.strBelongMod;
    const int belongRow = cmd.RowOf(ConfKey::kBelongModule);
    switch (cmd.entry) {
        case ZoFileParse::Entry::kEntered:
            return false;
        case ZoFileParse::Entry::kUnknownModule: {
            if (!cmd.Has(ConfKey::kBelongModule)) {
                diagnostics.Error(path, cmd.row, Named(cmd) + " has no \"belong module\": it is dropped");
                break;
            }
            std::string hint;
            for (const auto& mod : modules.byName) {
                if (mod.second->info.strCommand == belong) {
                    hint = " ('" + belong + "' is the word of module '" + mod.first +
                           "'; \"belong module\" takes the module's name)";
                }
            }
            diagnostics.Error(path, belongRow,
                              "no module '" + belong + "' in mods.conf: " + Named(cmd) + " is dropped" + hint);
            break;
        }
        case ZoFileParse::Entry::kModuleWithoutInstruction:
            diagnostics.Error(path, belongRow,
                              "module '" + belong + "' has no instruction code: " + Named(cmd) + " is dropped");
            break;
        default: {  // kDuplicateCommand, the one outcome left for a command
            const int32_t code = modules.byName.at(belong)->info.s32Instruct;
            const RecordedCommand& first = *byWord.at({code, cmd.info.strCommand});
            std::string shared;
            if (first.info.strBelongMod != belong) {
                shared = " by module '" + first.info.strBelongMod + "', which shares the code " + Code(code);
            }
            diagnostics.Error(
                path, cmd.row,
                Named(cmd) + " is already defined at " + Line(first.row) + shared + ": this block is ignored");
            break;
        }
    }
    return true;
}

void CheckCommandWord(const std::string& path, const RecordedCommand& cmd, const Modules& modules,
                      ConfDiagnostics& diagnostics)
{
    const std::string& word = cmd.info.strCommand;
    const int row = cmd.RowOf(ConfKey::kCommand);
    if (word.empty()) {
        diagnostics.Error(path, row, Named(cmd) + " has no \"command\" word: it cannot be typed");
        return;
    }
    if (word.find_first_of(" \t\v\f\r\n") != std::string::npos) {
        diagnostics.Error(path, row, "the command word '" + word + "' holds white space: it cannot be typed");
        return;
    }
    const std::string untypable = UntypableByte(word);
    if (!untypable.empty()) {
        diagnostics.Error(path, row, "the command word '" + word + "' holds " + untypable + ": it cannot be typed");
        return;
    }
    if (IsConsoleWord(word)) {
        diagnostics.Warning(path, row,
                            "the command word '" + word +
                                "' is the console's own (help, ?, q, quit): typed alone it does not run the command");
    }
    for (const auto& mod : modules.byName) {
        if (mod.second->info.strCommand == word) {
            diagnostics.Warning(path, row,
                                "the command word '" + word + "' is also the word of module '" + mod.first +
                                    "': typed alone it enters that module");
        }
    }
}

// The request carries only the command's own code, so the service tells
// commands apart by it alone.
void CheckCommandCode(const std::string& path, const RecordedCommand& cmd,
                      std::map<int32_t, const RecordedCommand*>& byCode, ConfDiagnostics& diagnostics)
{
    const int32_t code = cmd.info.s32Instruct;
    const int row = cmd.RowOf(ConfKey::kInstruction);
    if (code == -1) {
        diagnostics.Error(path, row,
                          (cmd.Has(ConfKey::kInstruction) ? "instruction -1 means none: "
                                                          : Named(cmd) + " has no \"instruction\": ") +
                              std::string("the console sends the code -1"));
        return;
    }
    const auto first = byCode.emplace(code, &cmd);
    if (first.second) {
        return;
    }
    const RecordedCommand& other = *first.first->second;
    const std::string text = "the instruction code " + Code(code) + " of " + Named(cmd) + " is also the code of " +
                             Named(other) + " (" + Line(other.row) + ")";
    if (other.info.strBelongMod == cmd.info.strBelongMod) {
        diagnostics.Error(path, row, text + " in the same module");
    } else {
        diagnostics.Warning(
            path, row,
            text + " of module '" + other.info.strBelongMod + "': the service receives the same code for both");
    }
}

void CheckCommands(const ConfRecorder& recorder, Modules& modules, ConfDiagnostics& diagnostics)
{
    const std::string& path = recorder.CmdsPath();
    std::map<std::pair<int32_t, std::string>, const RecordedCommand*> byWord;
    std::map<int32_t, const RecordedCommand*> byCode;
    for (const RecordedCommand& cmd : recorder.Commands()) {
        CheckFormats(path, cmd, diagnostics);
        if (CheckDropped(path, cmd, modules, byWord, diagnostics)) {
            continue;
        }
        const std::string& belong = cmd.info.strBelongMod;
        byWord.emplace(std::make_pair(modules.byName.at(belong)->info.s32Instruct, cmd.info.strCommand), &cmd);
        modules.withCommands.insert(belong);
        CheckCommandWord(path, cmd, modules, diagnostics);
        CheckCommandCode(path, cmd, byCode, diagnostics);
    }
}

}  // namespace

void CheckCatalogue(const ConfRecorder& recorder, ConfDiagnostics& diagnostics)
{
    Modules modules;
    CheckModules(recorder, modules, diagnostics);
    CheckCommands(recorder, modules, diagnostics);
    for (const std::string* path : {&recorder.ModsPath(), &recorder.CmdsPath()}) {
        if (recorder.HoldsNoBlock(*path)) {
            diagnostics.Error(*path, 1,
                              "the file holds no block (no \"[title]\" row): the console loads nothing from it");
        }
    }
    for (const auto& mod : modules.byName) {
        if (mod.second->info.s32Instruct != -1 && modules.withCommands.count(mod.first) == 0) {
            diagnostics.Warning(recorder.ModsPath(), mod.second->row, "module '" + mod.first + "' holds no command");
        }
    }
}
