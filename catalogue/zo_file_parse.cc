// The catalogue's tables: loading both files, entering records, and the lookups.
#include "zo_file_parse.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

void ZoFileParse::ZoCmdInfo::Clear()
{
    strName.clear();
    strCommand.clear();
    strBelongMod.clear();
    s32Instruct = -1;
    strParaFmt.clear();
    strPrintFmt.clear();
    arrPrintTags.Clear();
    strDescrip.clear();
}

ZoFileParse::ZoFileParse() : m_s32IOExceptionStatus(0), m_pObserver(nullptr) {}

void ZoFileParse::SetObserver(ZoFileParseObserver* observer)
{
    m_pObserver = observer;
}

void ZoFileParse::SetMessageSink(MessageSink sink)
{
    m_sink = std::move(sink);
}

void ZoFileParse::Say(const char* format, ...) const
{
    va_list args;
    va_start(args, format);
    if (!m_sink) {
        std::vprintf(format, args);
        std::putchar('\n');
    } else {
        char text[512];  // the longest message holds one row part of at most 255 bytes
        std::vsnprintf(text, sizeof text, format, args);
        m_sink(text);
    }
    va_end(args);
}

int ZoFileParse::Init(const std::string& dir)
{
    // Modules first: command records attach to modules already entered, so
    // "cmds.conf" is read even when "mods.conf" failed (its commands then drop).
    if (ParseModules(dir) != 0) {
        Say("ParseModules fail");
        m_s32IOExceptionStatus = 1;
    }
    if (ParseCmds(dir) != 0) {
        Say("ParseCmds fail");
        m_s32IOExceptionStatus = 1;
    }
    return m_s32IOExceptionStatus == 0 ? 0 : -1;
}

int ZoFileParse::GetIOExceptionStatus() const
{
    return m_s32IOExceptionStatus;
}

// ---------------------------------------------------------------------------
// Entering records

ZoFileParse::Entry ZoFileParse::EnterModule(ZoModInfo mod)
{
    const std::string name = mod.strName;
    const auto stored = m_mapModInfo.try_emplace(name, std::move(mod));
    // The stored module's code: a repeated name keeps the first block's code.
    m_mapCmdInfo[stored.first->second.s32Instruct];
    return stored.second ? Entry::kEntered : Entry::kDuplicateModule;
}

ZoFileParse::Entry ZoFileParse::EnterCommand(ZoCmdInfo cmd)
{
    const auto mod = m_mapModInfo.find(cmd.strBelongMod);
    if (mod == m_mapModInfo.end()) {
        return Entry::kUnknownModule;
    }
    if (mod->second.s32Instruct == -1) {
        return Entry::kModuleWithoutInstruction;
    }
    const std::string word = cmd.strCommand;
    const bool entered = m_mapCmdInfo[mod->second.s32Instruct].try_emplace(word, std::move(cmd)).second;
    return entered ? Entry::kEntered : Entry::kDuplicateCommand;
}

// ---------------------------------------------------------------------------
// Module lookups

Array<std::string> ZoFileParse::GetModNames() const
{
    Array<std::string> names;
    for (const auto& entry : m_mapModInfo) {
        names.PushBack(entry.first);
    }
    return names;
}

Array<std::string> ZoFileParse::GetModCmds() const
{
    Array<std::string> words;
    for (const auto& entry : m_mapModInfo) {
        words.PushBack(entry.second.strCommand);
    }
    return words;
}

std::string ZoFileParse::GetModToCmd(const std::string& modName) const
{
    const auto mod = m_mapModInfo.find(modName);
    return mod != m_mapModInfo.end() ? mod->second.strCommand : std::string();
}

std::string ZoFileParse::GetModDescrip(const std::string& modName) const
{
    const auto mod = m_mapModInfo.find(modName);
    return mod != m_mapModInfo.end() ? mod->second.strDescrip : std::string();
}

int32_t ZoFileParse::GetModInstruct(const std::string& modName) const
{
    const auto mod = m_mapModInfo.find(modName);
    return mod != m_mapModInfo.end() ? mod->second.s32Instruct : -1;
}

Array<std::string> ZoFileParse::GetModHoldCmds(int32_t modInstruct) const
{
    Array<std::string> words;
    const auto cmds = m_mapCmdInfo.find(modInstruct);
    if (cmds != m_mapCmdInfo.end()) {
        for (const auto& entry : cmds->second) {
            words.PushBack(entry.first);
        }
    }
    return words;
}

// ---------------------------------------------------------------------------
// Command lookups

const ZoFileParse::ZoCmdInfo* ZoFileParse::FindCmd(int32_t modInstruct, const std::string& cmd) const
{
    const auto cmds = m_mapCmdInfo.find(modInstruct);
    if (cmds == m_mapCmdInfo.end()) {
        return nullptr;
    }
    const auto found = cmds->second.find(cmd);
    return found != cmds->second.end() ? &found->second : nullptr;
}

std::string ZoFileParse::GetCmdPrintFmt(int32_t modInstruct, const std::string& cmd) const
{
    const ZoCmdInfo* info = FindCmd(modInstruct, cmd);
    return info != nullptr ? info->strPrintFmt : std::string();
}

Array<std::string> ZoFileParse::GetCmdPrintTags(int32_t modInstruct, const std::string& cmd) const
{
    const ZoCmdInfo* info = FindCmd(modInstruct, cmd);
    return info != nullptr ? info->arrPrintTags : Array<std::string>();
}

std::string ZoFileParse::GetCmdParaFmt(int32_t modInstruct, const std::string& cmd) const
{
    const ZoCmdInfo* info = FindCmd(modInstruct, cmd);
    return info != nullptr ? info->strParaFmt : std::string();
}

int32_t ZoFileParse::GetCmdInstruct(int32_t modInstruct, const std::string& cmd) const
{
    const ZoCmdInfo* info = FindCmd(modInstruct, cmd);
    return info != nullptr ? info->s32Instruct : -1;
}

std::string ZoFileParse::GetCmdDescrip(int32_t modInstruct, const std::string& cmd) const
{
    const ZoCmdInfo* info = FindCmd(modInstruct, cmd);
    return info != nullptr ? info->strDescrip : std::string();
}
