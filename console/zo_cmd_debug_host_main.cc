// The console for work off the device: the same start-up on a directory given
// as the one argument, with the swap file DIR/.tv.
#include <cstdio>
#include <cstring>
#include <string>

#include "zo_cmd_debug.h"
#include "zo_shm_page.h"
#include "zo_usage_error.h"

namespace {

const char kProgram[] = "zo_cmd_debug_host";
const char kSynopsis[] = "zo_cmd_debug_host DIR";

void PrintHelp()
{
    printf("usage: %s\n"
           "\n"
           "Runs the debug console on the catalogue DIR/mods.conf and DIR/cmds.conf, with\n"
           "the shared page in the swap file %s, as the device's zo_cmd_debug does\n"
           "in %s. Start the service first: it makes the swap file (%zu bytes).\n"
           "At the prompt 'help' lists what can be typed, Ctrl-H erases, 'q' leaves.\n"
           "\n"
           "Exit status: 0 after 'q' or the end of input, 1 when the swap file cannot be\n"
           "used, 2 for wrong arguments; Ctrl-C ends the console by SIGKILL.\n",
           kSynopsis, ShmSwapFilePath("DIR").c_str(), kShmDeviceDir, SHM_SIZE);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && (strcmp(argv[1], "--help") == 0 || strcmp(argv[1], "-h") == 0)) {
        PrintHelp();
        return 0;
    }
    if (argc != 2) {
        const std::string reason =
            argc < 2 ? "missing DIR" : "one directory expected, got " + std::to_string(argc - 1) + " arguments";
        return ZoUsageError(kProgram, reason, kSynopsis);
    }
    if (argv[1][0] == '-') {
        return ZoUsageError(kProgram, std::string("unknown option ") + argv[1], kSynopsis);
    }
    const std::string dir = argv[1];
    g_strSwapFile = ShmSwapFilePath(dir);
    return ZoCmdDebugMain(dir);
}
