// Loads a catalogue from file contents in a fresh temporary directory and
// returns what Init printed on standard output.
#ifndef ZO_TESTS_CATALOGUE_CATALOGUE_LOADER_H
#define ZO_TESTS_CATALOGUE_CATALOGUE_LOADER_H

#include <string>
#include <vector>

#include "stdout_capture.h"
#include "temp_dir.h"
#include "zo_file_parse.h"

// Runs Init on dir; what it printed.
inline std::string InitCaptured(ZoFileParse& parse, const std::string& dir)
{
    StdoutCapture out;
    parse.Init(dir);
    return out.Text();
}

// Writes both files, exactly these bytes, and loads them.
inline std::string Load(ZoFileParse& parse, const std::string& mods, const std::string& cmds)
{
    TempDir dir;
    dir.Write("mods.conf", mods);
    dir.Write("cmds.conf", cmds);
    return InitCaptured(parse, dir.Path());
}

// Commands for one module "M" with the code 0x10.
inline std::string LoadCmds(ZoFileParse& parse, const std::string& cmds)
{
    return Load(parse, "[M]\ncommand = m\ninstruction = 0x10\n", cmds);
}

using Rows = std::vector<std::string>;

inline Rows Items(const Array<std::string>& array)
{
    Rows items;
    for (unsigned int i = 0; i < array.Size(); ++i) {
        items.push_back(array[i]);
    }
    return items;
}

#endif  // ZO_TESTS_CATALOGUE_CATALOGUE_LOADER_H
