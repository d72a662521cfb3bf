// Runs the line editor the way the console's prompt loop does, for the tests.
//
//   line_editor_driver [--hold] [GROUP=name,name,...]...
//
// Each GROUP=... argument is a completion registration (the first clears the
// registry, as before every console prompt); "GROUP=" registers no names.
// The loop prints the prompt "TV $", calls Gets and prints each line framed as
// "<<line>>\n"; after a completion listing it only prints the prompt again.
// The line "quit" ends the loop; when Gets returns null it prints "<null>\n"
// and ends the loop. Then it restores the terminal and prints
// "reset <result>\n". With --hold it then waits for one more line (or
// the end of input) before exiting, so a test can look at the restored
// terminal while the program still holds it.
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
    std::string rest = eq == std::string::npos ? "" : arg.substr(eq + 1);
    size_t start = 0;
    while (!rest.empty() && start <= rest.size()) {
        const size_t comma = rest.find(',', start);
        const size_t end = comma == std::string::npos ? rest.size() : comma;
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
