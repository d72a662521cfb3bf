// zo_conf_check DIR [--quiet]: checks "mods.conf" and "cmds.conf" in DIR
// before they reach a TV (kUsage below tells the user).
//
// The files are read by the console's own catalogue, watched row by row, so
// the report describes exactly what the console would make of them.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "conf_diagnostics.h"
#include "conf_recorder.h"
#include "conf_rules.h"
#include "zo_file_parse.h"
#include "zo_usage_error.h"

namespace
{

constexpr int kExitErrors = 1;
constexpr int kExitCannotRun = kExitUsage;

const char kProgram[] = "zo_conf_check";
const char kSynopsis[] = "zo_conf_check DIR [--quiet]";
// A printf format: the usage line, then the number of problems printed.
const char kUsage[] =
    "usage: %s\n"
    "\n"
    "Checks DIR/mods.conf and DIR/cmds.conf, the console's catalogue, with the\n"
    "console's own reader. Each problem is printed as FILE:LINE: error: text or\n"
    "FILE:LINE: warning: text, sorted by file and line, then the count\n"
    "(\"2 errors, 1 warning\"). An error: the console will drop or ignore something\n"
    "the files say, or do something other than they say. A warning: the console does\n"
    "what they say, but it looks like a slip. Bytes outside printable ASCII are\n"
    "shown as \\xHH, a backslash as \\\\. Only the first %u problems are printed,\n"
    "then how many more there are.\n"
    "\n"
    "options:\n"
    "  --quiet  print the count alone\n"
    "  --help   print this text\n"
    "\n"
    "Exit status: 0 without errors (warnings allowed), 1 with errors, 2 when a file\n"
    "cannot be read or the arguments are wrong.\n";

void PrintUsage(FILE* out)
{
    fprintf(out, kUsage, kSynopsis, static_cast<unsigned>(ConfDiagnostics::kDefaultShown));
}

// True when path can be opened and read; otherwise prints why on stderr.
bool Readable(const std::string& path)
{
    // Only a regular file: opening a FIFO would wait for a writer, and a
    // device would be read without end.
    struct stat info {};
    const char* reason = stat(path.c_str(), &info) != 0 ? strerror(errno)
                         : !S_ISREG(info.st_mode)        ? "not a regular file"
                                                         : nullptr;
    FILE* file = reason == nullptr ? fopen(path.c_str(), "r") : nullptr;
    if (reason == nullptr && file == nullptr) {
        reason = strerror(errno);
    }
    if (reason != nullptr) {
        fprintf(stderr, "zo_conf_check: cannot read %s: %s\n", path.c_str(), reason);
        return false;
    }
    fclose(file);
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    std::string dir;
    bool quiet = false;
    bool help = false;
    std::string error;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--quiet") {
            quiet = true;
        } else if (arg == "--help" || arg == "-h") {
            help = true;
        } else if (arg.size() > 1 && arg[0] == '-') {
            error = error.empty() ? "unknown option " + arg : error;
        } else if (dir.empty() && !arg.empty()) {
            dir = arg;
        } else {
            error = error.empty() ? "unexpected argument '" + arg + "'" : error;
        }
    }
    if (help) {
        PrintUsage(stdout);
        return 0;
    }
    if (error.empty() && dir.empty()) {
        error = "missing DIR";
    }
    if (!error.empty()) {
        return ZoUsageError(kProgram, error, kSynopsis);
    }

    // The console appends "/mods.conf" to its directory; the report names the
    // files the same way, without doubling a "/" given at the end.
    const std::string prefix = (!dir.empty() && dir.back() == '/') ? dir : dir + "/";
    const std::string modsPath = prefix + "mods.conf";
    const std::string cmdsPath = prefix + "cmds.conf";
    const bool modsReadable = Readable(modsPath);
    if (!Readable(cmdsPath) || !modsReadable) {
        return kExitCannotRun;
    }

    ConfDiagnostics diagnostics(quiet ? 0 : ConfDiagnostics::kDefaultShown);
    ConfRules rules(modsPath, cmdsPath, diagnostics);
    ConfRecorder recorder(modsPath, cmdsPath, diagnostics, rules);
    ZoFileParse catalogue;
    catalogue.SetObserver(&recorder);
    // The catalogue's own messages tell of problems that the report names with their rows.
    catalogue.SetMessageSink([](const std::string&) {});
    catalogue.Init(dir);
    recorder.Finish();

    if (!quiet) {
        diagnostics.Print(stdout);
    }
    printf("%s\n", diagnostics.Count().c_str());
    return diagnostics.Errors() != 0 ? kExitErrors : 0;
}
