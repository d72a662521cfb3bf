// The demo TV's commands: what each command of the example catalogue does to
// the TV's state and what it answers. A command is known by its module and
// word, as the catalogue files it; the catalogue gives its instruction code
// and formats, and the service library decodes the arguments and checks the
// values put against them (zo_shm_catalogue_service.h).
#ifndef ZO_EXAMPLES_DEMO_TV_TV_COMMANDS_H
#define ZO_EXAMPLES_DEMO_TV_TV_COMMANDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tv_state.h"
#include "zo_shm_args.h"
#include "zo_shm_reply.h"

// The statuses a request is refused with; the console shows them as
// "request failure! ret:0x1" and so on.
constexpr int32_t kTvRefusedValue = 1;      // a value out of its range, or a log level the TV does not know
constexpr int32_t kTvRefusedNoChannel = 2;  // no channel of that number
constexpr int32_t kTvRefusedNoName = 3;     // rename: no name arrived (the console sends none for S)

struct TvCommand {
    const char* module;  // the module's name in the catalogue
    const char* word;
    // Answers one request: reads args, puts the values of the reply, sets
    // said to what was answered for the log ("volume 30", "refused: no
    // channel 99") and returns the status.
    int32_t (*answer)(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t nowMs, std::string& said);
};

// Every command of the demo TV.
const std::vector<TvCommand>& TvCommands();

#endif  // ZO_EXAMPLES_DEMO_TV_TV_COMMANDS_H
