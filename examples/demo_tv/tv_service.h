// TvService: the demo TV's commands (tv_commands.h) served on the shared page.
//
// Each command answers the instruction code that the catalogue gives its
// module and word. A command the catalogue does not hold, holds with other
// formats, or whose code another command took first is not served, with a
// warning; its requests get the library's unknown-code status.
//
// Per request: the arguments are read by the command's parameter format (a
// request that does not match it gets ZoShmService::kStatusBadRequest), the
// command answers, and its values go out by its print format. One line per
// request goes to the log, flushed at once: the command word, its arguments
// and what was answered ("vol 30 -> volume 30").
//
// Single-threaded, like the ZoShmService it registers with.
#ifndef ZO_EXAMPLES_DEMO_TV_TV_SERVICE_H
#define ZO_EXAMPLES_DEMO_TV_TV_SERVICE_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include <binder/Parcel.h>

#include "tv_commands.h"
#include "tv_state.h"
#include "zo_file_parse.h"
#include "zo_shm_service.h"

class TvService {
public:
    // Borrows everything; all of it must outlive the TvService.
    TvService(TvState& tv, std::FILE* log) : m_tv(tv), m_log(log) {}

    // Registers with service every command the catalogue holds as the TV
    // does, appends a warning for each other one, and returns how many were
    // registered.
    size_t Register(const ZoFileParse& catalogue, ZoShmService& service, std::vector<std::string>& warnings);

private:
    int32_t Serve(const TvCommand& command, const android::Parcel& args, android::Parcel& values);

    TvState& m_tv;
    std::FILE* m_log;
};

#endif  // ZO_EXAMPLES_DEMO_TV_TV_SERVICE_H
