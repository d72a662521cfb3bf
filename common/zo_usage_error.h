// How the programs run off the device answer a command line they cannot use.
//
// --help prints a program's whole usage on standard output and exits with 0.
// A usage error prints two lines on standard error, the reason and the usage
// line with a pointer to --help, and exits with kExitUsage:
//
//   zo_service_sim: unknown option --fast
//   usage: zo_service_sim DIR [options] (zo_service_sim --help tells more)
#ifndef ZO_COMMON_ZO_USAGE_ERROR_H
#define ZO_COMMON_ZO_USAGE_ERROR_H

#include <cstdio>
#include <string>

constexpr int kExitUsage = 2;

// Prints reason for program with its usage line synopsis ("zo_service_sim
// DIR [options]"); returns kExitUsage.
inline int ZoUsageError(const char* program, const std::string& reason, const char* synopsis)
{
    std::fprintf(stderr, "%s: %s\nusage: %s (%s --help tells more)\n", program, reason.c_str(), synopsis, program);
    return kExitUsage;
}

#endif  // ZO_COMMON_ZO_USAGE_ERROR_H
