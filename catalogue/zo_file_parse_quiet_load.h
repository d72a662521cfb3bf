// Loading the catalogue in a program whose standard output carries something
// else (the simulator's and the demo TV's request lines, the checker's
// report): the catalogue's own messages, which it prints on standard output,
// go to another descriptor while it loads. Host programs only; the console
// prints them where they are.
#ifndef ZO_CATALOGUE_ZO_FILE_PARSE_QUIET_LOAD_H
#define ZO_CATALOGUE_ZO_FILE_PARSE_QUIET_LOAD_H

#include <unistd.h>

#include <cstdio>
#include <string>

#include "zo_file_parse.h"

// Loads dir into catalogue with standard output sent to messages (a
// descriptor open for writing) meanwhile.
inline void LoadCatalogueWithMessagesTo(ZoFileParse& catalogue, const std::string& dir, int messages)
{
    std::fflush(stdout);
    const int saved = dup(STDOUT_FILENO);
    if (saved >= 0 && messages >= 0) {
        dup2(messages, STDOUT_FILENO);
    }
    catalogue.Init(dir);
    std::fflush(stdout);
    if (saved >= 0) {
        dup2(saved, STDOUT_FILENO);
        close(saved);
    }
}

#endif  // ZO_CATALOGUE_ZO_FILE_PARSE_QUIET_LOAD_H
