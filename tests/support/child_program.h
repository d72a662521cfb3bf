// Starting the project's own programs from a test.
//
// In a cross build the tests run under an emulator (qemu-arm for armhf), and
// so must every program a test starts: no binfmt handler is registered on the
// build machines, so exec of an ARM program directly would fail. CTest passes
// the emulator's command line in ZO_TEST_EMULATOR, words separated by blanks;
// it is unset in a native build, where programs start directly.
#ifndef ZO_TESTS_SUPPORT_CHILD_PROGRAM_H
#define ZO_TESTS_SUPPORT_CHILD_PROGRAM_H

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

// The command line that starts argv[0] with its arguments here: the
// emulator's words, if any, in front of argv.
inline std::vector<std::string> ChildCommand(const std::vector<std::string>& argv)
{
    std::vector<std::string> command;
    if (const char* emulator = std::getenv("ZO_TEST_EMULATOR")) {
        std::istringstream words(emulator);
        for (std::string word; words >> word;) {
            command.push_back(word);
        }
    }
    command.insert(command.end(), argv.begin(), argv.end());
    return command;
}

// For a forked child: replaces the process with the program. Returns only if
// exec failed.
inline void ExecChild(const std::vector<std::string>& argv)
{
    const std::vector<std::string> command = ChildCommand(argv);
    std::vector<char*> args;
    for (const std::string& word : command) {
        args.push_back(const_cast<char*>(word.c_str()));
    }
    args.push_back(nullptr);
    execvp(args[0], args.data());
}

#endif  // ZO_TESTS_SUPPORT_CHILD_PROGRAM_H
