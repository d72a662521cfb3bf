// Loads a catalogue from file contents in a fresh temporary directory and
// returns what Init printed on standard output.
#ifndef ZO_TESTS_CATALOGUE_CATALOGUE_LOADER_H
#define ZO_TESTS_CATALOGUE_CATALOGUE_LOADER_H

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "temp_dir.h"
#include "zo_file_parse.h"

// Runs Init on dir with standard output sent to a file.
inline std::string InitCaptured(ZoFileParse& parse, const std::string& dir)
{
    TempDir scratch;
    fflush(stdout);
    const int saved = dup(STDOUT_FILENO);
    const int fd = open(scratch.File("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(fd, STDOUT_FILENO);
    close(fd);
    parse.Init(dir);
    fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
    std::ifstream in(scratch.File("out"), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
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
