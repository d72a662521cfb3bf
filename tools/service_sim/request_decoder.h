// DecodeRequest: turns the bytes of one request into the line the simulator
// prints and the command that should answer it.
//
// A request is the command's own instruction code (int32), then one value per
// letter of its parameter format (zo_format_letters.h); S has no value. The line is the command word followed by the
// values, blank-separated: numbers in decimal (floats in the shortest form
// that reads back exactly), strings in double quotes with ", \ and control
// bytes escaped.
#ifndef ZO_TOOLS_SERVICE_SIM_REQUEST_DECODER_H
#define ZO_TOOLS_SERVICE_SIM_REQUEST_DECODER_H

#include <cstdint>
#include <string>
#include <vector>

#include "command_index.h"

struct DecodedRequest {
    enum class Kind {
        kCommand,      // a known command whose arguments matched its format
        kUnknownCode,  // no command has the instruction code
        kBadRequest,   // too short for a code, or the arguments do not match the format
    };
    Kind kind = Kind::kBadRequest;
    const SimCommand* command = nullptr;  // set for kCommand, and for kBadRequest once the code is known
    std::string line;                     // what the simulator prints, without a line end
};

DecodedRequest DecodeRequest(const std::vector<uint8_t>& bytes, const CommandIndex& index);

// A string as the line shows it: in double quotes, escaped.
std::string QuoteText(const std::string& text);

#endif  // ZO_TOOLS_SERVICE_SIM_REQUEST_DECODER_H
