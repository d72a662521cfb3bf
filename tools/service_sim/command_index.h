// CommandIndex: the catalogue's commands by their own instruction code, the
// number that starts every request.
//
// The catalogue files commands under their module's code; a request carries
// only the command's code. The index is built once from the catalogue's public
// lookups. When several commands share a code, the first one wins: modules in
// the catalogue's order (byte-wise by name), then words byte-wise within a
// module. Every command left out that way is reported as a warning.
//
// Read-only after Build; const methods may be called from any thread.
#ifndef ZO_TOOLS_SERVICE_SIM_COMMAND_INDEX_H
#define ZO_TOOLS_SERVICE_SIM_COMMAND_INDEX_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class ZoFileParse;

struct SimCommand {
    std::string module;    // owning module's name
    std::string word;      // command word typed at the prompt
    int32_t instruct = -1; // the command's own instruction code
    std::string paraFmt;   // how the request's arguments are laid out
    std::string printFmt;  // how the console reads the reply's values
};

class CommandIndex {
public:
    // Indexes every command of the catalogue. Each command whose code is
    // already taken adds a line to warnings, naming the one that answers.
    void Build(const ZoFileParse& catalogue, std::vector<std::string>& warnings);
    // Adds one command unless its code is taken; true when it was added.
    bool Add(const SimCommand& cmd);

    // The command answering to code, or null when none has it.
    const SimCommand* Find(int32_t code) const;
    size_t Size() const { return m_byCode.size(); }

private:
    std::map<int32_t, SimCommand> m_byCode;
};

#endif  // ZO_TOOLS_SERVICE_SIM_COMMAND_INDEX_H
