// ZoShmCommand: one command of the catalogue as a service sees it, with what
// the console sends for it and reads back. Filled by ZoShmCatalogueService
// from the catalogue's files (zo_shm_catalogue_service.h).
#ifndef ZO_SHM_ZO_SHM_COMMAND_H
#define ZO_SHM_ZO_SHM_COMMAND_H

#include <cstdint>
#include <string>

struct ZoShmCommand {
    std::string module;    // the module's name ("Sound"), the title of its block in mods.conf
    std::string word;      // the command word typed at the prompt ("vol")
    int32_t code = -1;     // the command's own instruction code, the first value of every request
    std::string paraFmt;   // the format letters of the request's arguments
    std::string printFmt;  // the format letters of the reply's values, one row of them
    // "'vol' (Sound)", for messages.
    std::string Name() const { return "'" + word + "' (" + module + ")"; }
};

#endif  // ZO_SHM_ZO_SHM_COMMAND_H
