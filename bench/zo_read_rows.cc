// Reads DIR/mods.conf and DIR/cmds.conf with the platform row reader and takes
// every row, as the catalogue does before it looks at them, then exits: the
// floor under the console's start-up that zo_startup_bench compares it with.
#include <cstdio>
#include <string>

#include "zo_tv_support.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: %s DIR\n", argc > 0 ? argv[0] : "zo_read_rows");
        return 2;
    }
    size_t bytes = 0;
    for (const char* name : {"/mods.conf", "/cmds.conf"}) {
        ZoFile file;
        if (file.Init(std::string(argv[1]) + name, "r") != 0) {
            fprintf(stderr, "cannot read %s%s\n", argv[1], name);
            return 1;
        }
        while (!file.IsEOF()) {
            bytes += file.NextRow().size();
        }
    }
    return bytes != 0 ? 0 : 1;
}
