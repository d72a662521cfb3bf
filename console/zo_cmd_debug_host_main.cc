// The console for work off the device: the same start-up on a directory given
// as the one argument, with the swap file DIR/.tv.
#include <cstdio>
#include <string>

#include "zo_cmd_debug.h"
#include "zo_shm_page.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: %s DIR\n  runs the console on DIR/mods.conf, DIR/cmds.conf and the swap file DIR/.tv\n",
                argc > 0 ? argv[0] : "zo_cmd_debug_host");
        return 2;
    }
    const std::string dir = argv[1];
    g_strSwapFile = ShmSwapFilePath(dir);
    return ZoCmdDebugMain(dir);
}
