// The demo TV's commands: what each command of the example catalogue does to
// the TV's state and what it answers. A command is known by its module and
// word, as the catalogue files it; the catalogue gives its instruction code
// (tv_service.h). Its formats are the ones the handler reads and writes: the
// catalogue must give the same.
#ifndef ZO_EXAMPLES_DEMO_TV_TV_COMMANDS_H
#define ZO_EXAMPLES_DEMO_TV_TV_COMMANDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tv_state.h"
#include "zo_format_letters.h"

// The statuses a request is refused with; the console shows them as
// "request failure! ret:0x1" and so on.
constexpr int32_t kTvRefusedValue = 1;      // a value out of its range, or a log level the TV does not know
constexpr int32_t kTvRefusedNoChannel = 2;  // no channel of that number
constexpr int32_t kTvRefusedNoName = 3;     // rename: no name arrived (the console sends none for S)

// The arguments of a request: one value per letter of the parameter format
// that carries one (S carries none).
using TvArgs = std::vector<ZoFormatValue>;

struct TvAnswer {
    int32_t status = 0;
    // With status 0: one value per letter of the print format, row after row.
    std::vector<ZoFormatValue> values;
    // What was answered, for the request line: "volume 30", "refused: no channel 99".
    std::string text;
};

struct TvCommand {
    const char* module;  // the module's name in the catalogue
    const char* word;
    const char* paraFmt;
    const char* printFmt;
    TvAnswer (*answer)(TvState& tv, const TvArgs& args, int64_t nowMs);
};

// Every command of the demo TV.
const std::vector<TvCommand>& TvCommands();

#endif  // ZO_EXAMPLES_DEMO_TV_TV_COMMANDS_H
