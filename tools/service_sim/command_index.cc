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
    // Modules that share a code share one command table: visit each table once.
    // The lists are walked, never indexed: a position costs a walk from the front.
    std::set<int32_t> seenModCodes;
    for (const std::string& module : catalogue.GetModNames()) {
        const int32_t modCode = catalogue.GetModInstruct(module);
        if (!seenModCodes.insert(modCode).second) {
            continue;
        }
        for (const std::string& word : catalogue.GetModHoldCmds(modCode)) {
            SimCommand cmd;
            cmd.module = module;
            cmd.word = word;
            cmd.instruct = catalogue.GetCmdInstruct(modCode, word);
            cmd.paraFmt = catalogue.GetCmdParaFmt(modCode, word);
            cmd.printFmt = catalogue.GetCmdPrintFmt(modCode, word);
            if (Add(cmd)) {
                continue;
            }
            const SimCommand& first = m_byCode.at(cmd.instruct);
            warnings.push_back("instruction " + Hex(cmd.instruct) + " of '" + word + "' (" + module +
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
