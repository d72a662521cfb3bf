// SimOptions: the command line of zo_service_sim.
//
//   zo_service_sim DIR [--delay MS] [--no-reply | --status N | --garbage N]
//                      [--size N] [--replies FILE] [--help]
//
// --no-reply, --status and --garbage choose what every known command gets
// instead of its normal answer, so at most one of them may be given.
#ifndef ZO_TOOLS_SERVICE_SIM_SIM_OPTIONS_H
#define ZO_TOOLS_SERVICE_SIM_SIM_OPTIONS_H

#include <cstdint>
#include <string>

struct SimOptions {
    std::string dir;           // catalogue directory; the page is dir + "/.tv"
    unsigned delayMs = 0;      // wait this long before each answer
    bool noReply = false;      // take requests but never answer them
    bool forceStatus = false;  // answer every known command with status alone
    int32_t status = 0;
    bool garbage = false;      // answer with status 0 and garbageBytes random bytes
    uint32_t garbageBytes = 0;
    bool forceSize = false;    // claim sizeValue in u32Size whatever the reply's length
    uint32_t sizeValue = 0;
    std::string repliesPath;   // replies file; empty for the built-in values
    bool help = false;
};

// The usage line without "usage: ", as a usage error shows it.
const char* SimSynopsis();
// The text printed by --help.
const char* SimUsage();

// Fills opts from argv. Returns true on success; otherwise false with a
// one-line reason in error. --help sets opts.help and needs no DIR.
bool ParseSimOptions(int argc, char* const argv[], SimOptions& opts, std::string& error);

#endif  // ZO_TOOLS_SERVICE_SIM_SIM_OPTIONS_H
