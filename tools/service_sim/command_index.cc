#include "command_index.h"

#include <cstdio>
#include <set>
#include <utility>

#include "zo_file_parse.h"

namespace {

std::string Hex(int32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(code));
    return text;
}

}  // namespace

void CommandIndex::Build(const ZoFileParse& catalogue, std::vector<std::string>& warnings)
{
    const Array<std::string> modules = catalogue.GetModNames();
    // Modules that share a code share one command table: visit each table once.
    std::set<int32_t> seenModCodes;
    for (unsigned m = 0; m < modules.Size(); ++m) {
        const std::string& module = modules[m];
        const int32_t modCode = catalogue.GetModInstruct(module);
        if (!seenModCodes.insert(modCode).second) {
            continue;
        }
        const Array<std::string> words = catalogue.GetModHoldCmds(modCode);
        for (unsigned w = 0; w < words.Size(); ++w) {
            SimCommand cmd;
            cmd.module = module;
            cmd.word = words[w];
            cmd.instruct = catalogue.GetCmdInstruct(modCode, cmd.word);
            cmd.paraFmt = catalogue.GetCmdParaFmt(modCode, cmd.word);
            cmd.printFmt = catalogue.GetCmdPrintFmt(modCode, cmd.word);
            if (Add(cmd)) {
                continue;
            }
            const SimCommand& first = m_byCode.at(cmd.instruct);
            warnings.push_back("instruction " + Hex(cmd.instruct) + " of '" + cmd.word + "' (" + module +
                               ") is taken by '" + first.word + "' (" + first.module + "), which answers it");
        }
    }
}

bool CommandIndex::Add(const SimCommand& cmd)
{
    return m_byCode.emplace(cmd.instruct, cmd).second;
}

const SimCommand* CommandIndex::Find(int32_t code) const
{
    const auto it = m_byCode.find(code);
    return it == m_byCode.end() ? nullptr : &it->second;
}
