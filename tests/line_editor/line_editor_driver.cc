// Runs the line editor as the console's prompt loop does: line_editor_driver [GROUP=name,name,...]...
// Each GROUP registers completion names before every prompt, the first one clearing the registry. Prints "TV $",
// each line as "<<line>>\n" (not after a listing), "<null>\n" when Gets returns null; "quit" or null ends the loop
// with "reset <result>\n".
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "zo_stream.h"

int main(int argc, char** argv)
{
    std::vector<std::pair<const char*, std::vector<const char*>>> groups;
    for (int i = 1; i < argc; ++i) {
        char* names = std::strchr(argv[i], '=');
        *names++ = '\0';
        groups.push_back({argv[i], {}});
        for (char* name = std::strtok(names, ","); name != nullptr; name = std::strtok(nullptr, ",")) {
            groups.back().second.push_back(name);
        }
    }
    ZoStream stream;
    stream.Init();
    for (const char* line = ""; line != nullptr && std::strcmp(line, "quit") != 0;) {
        for (auto& group : groups) {
            stream.RegistTab(group.first, group.second.size(), group.second.data(), &group == &groups.front());
        }
        std::printf("TV $");
        std::fflush(stdout);
        line = stream.Gets();
        if (line == nullptr) {
            std::printf("<null>\n");
        } else if (std::strcmp(line, "TAB") != 0) {
            std::printf("<<%s>>\n", line);
        }
    }
    std::printf("reset %d\n", stream.ResetTermios());
    return 0;
}
