// zo_conf_check DIR [--quiet]: checks "mods.conf" and "cmds.conf" in DIR
// before they reach a TV.
//
// The files are read by the console's own catalogue, watched row by row, so
// the report describes exactly what the console would make of them. Each
// problem is printed as "FILE:LINE: error|warning: text", sorted by file and
// line, followed by the count ("2 errors, 1 warning"); --quiet prints the
// count alone. Exit status: 0 without errors (warnings allowed), 1 with
// errors, 2 when a file cannot be read or the arguments are wrong.
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

namespace
{

constexpr int kExitErrors = 1;
constexpr int kExitCannotRun = 2;

// Sends standard output to /dev/null while alive: the catalogue prints its
// own messages as it reads, and the report tells of the same problems.
class StdoutSilenced
{
public:
    StdoutSilenced()
    {
        fflush(stdout);
        m_saved = dup(STDOUT_FILENO);
        const int null = open("/dev/null", O_WRONLY);
        if (null >= 0) {
            dup2(null, STDOUT_FILENO);
            close(null);
        }
    }
    ~StdoutSilenced()
    {
        fflush(stdout);
        if (m_saved >= 0) {
            dup2(m_saved, STDOUT_FILENO);
            close(m_saved);
        }
    }
    StdoutSilenced(const StdoutSilenced&) = delete;
    StdoutSilenced& operator=(const StdoutSilenced&) = delete;

private:
    int m_saved;
};

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
    int dirs = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quiet") == 0) {
            quiet = true;
        } else if (argv[i][0] == '-' && argv[i][1] != '\0') {
            dirs = -1;
            break;
        } else {
            dir = argv[i];
            ++dirs;
        }
    }
    if (dirs != 1) {
        fprintf(stderr, "usage: zo_conf_check DIR [--quiet]\n");
        return kExitCannotRun;
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

    ConfDiagnostics diagnostics;
    ConfRecorder recorder(modsPath, cmdsPath, diagnostics);
    ZoFileParse catalogue;
    catalogue.SetObserver(&recorder);
    {
        StdoutSilenced silenced;
        catalogue.Init(dir);
    }
    CheckCatalogue(recorder, diagnostics);

    if (!quiet) {
        diagnostics.Print(stdout);
    }
    printf("%s\n", diagnostics.Count().c_str());
    return diagnostics.Errors() != 0 ? kExitErrors : 0;
}
