// Runs the line editor the way the console's prompt loop does, for the tests.
//   line_editor_driver [--hold] [GROUP=name,name,...]...
// Each GROUP registers completion names (the first clears the registry, as
// before every console prompt). Prints "TV $", each line as "<<line>>\n" (not
// after a listing), "<null>\n" when Gets returns null; "quit" or null ends the
// loop with "reset <result>\n". --hold then waits for one more line, so a test
// can look at the restored terminal while the program still holds it.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "zo_stream.h"

namespace {

struct Group {
    std::string name;
    std::vector<std::string> names;
    std::vector<const char*> list;
};

Group ParseGroup(const std::string& arg)
{
    Group group;
    const size_t eq = arg.find('=');
    group.name = arg.substr(0, eq);
    const std::string rest = eq == std::string::npos ? "" : arg.substr(eq + 1);
    for (size_t start = 0; !rest.empty() && start <= rest.size();) {
        const size_t end = std::min(rest.find(',', start), rest.size());
        group.names.push_back(rest.substr(start, end - start));
        start = end + 1;
    }
    for (const std::string& name : group.names) {
        group.list.push_back(name.c_str());
    }
    return group;
}

}  // namespace

int main(int argc, char** argv)
{
    bool hold = false;
    std::vector<Group> groups;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--hold") == 0) {
            hold = true;
        } else {
            groups.push_back(ParseGroup(argv[i]));
        }
    }

    ZoStream stream;
    stream.Init();
    for (;;) {
        bool clear = true;
        for (Group& group : groups) {
            stream.RegistTab(group.name, static_cast<unsigned int>(group.list.size()), group.list.data(), clear);
            clear = false;
        }
        std::printf("TV $");
        std::fflush(stdout);
        const char* line = stream.Gets();
        if (line == nullptr) {
            std::printf("<null>\n");
            break;
        }
        if (std::strcmp(line, "TAB") != 0) {
            std::printf("<<%s>>\n", line);
        }
        if (std::strcmp(line, "quit") == 0) {
            break;
        }
    }
    std::printf("reset %d\n", stream.ResetTermios());
    std::fflush(stdout);
    if (hold) {
        int byte;
        while ((byte = std::getchar()) != EOF && byte != '\n') {
        }
    }
    return 0;
}
