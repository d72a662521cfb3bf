// zo_demo_tv DIR: a pretend TV for the example catalogue, on the service
// library. It keeps its state between requests (tv_commands.h says what each
// command does) and logs one line per request on standard output.
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "tv_service.h"
#include "tv_state.h"
#include "zo_shm_catalogue_service.h"
#include "zo_usage_error.h"

namespace {

const char kUsage[] =
    "usage: zo_demo_tv DIR\n"
    "\n"
    "A pretend TV for the console's example catalogue: creates DIR/.tv (4096 bytes)\n"
    "when it is missing or short, maps it, and answers the console's requests as a\n"
    "TV would, keeping its channel, settings and log level between them. Each\n"
    "command answers the instruction code that the catalogue in DIR (mods.conf,\n"
    "cmds.conf) gives it. One line per request goes to standard output: the command\n"
    "word, its arguments and what was answered, e.g. 'vol 30 -> volume 30', or why\n"
    "the service library answered by itself (a request that does not decode).\n"
    "\n"
    "Refusals: status 1 for a value out of range (or an unknown log level), 2 for\n"
    "a channel that does not exist, 3 for a rename, which gets no name.\n"
    "\n"
    "Ends on SIGINT or SIGTERM with status 0; a swap file it cannot open, or a\n"
    "catalogue without any of its commands, exits with 1, a usage error with 2.\n";

ZoShmCatalogueService* g_service = nullptr;

void OnStopSignal(int)
{
    g_service->Stop();
}

int UsageError(const std::string& reason)
{
    return ZoUsageError("zo_demo_tv", reason, "zo_demo_tv DIR");
}

}  // namespace

int main(int argc, char* argv[])
{
    TvState tv(MonotonicMs());
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (argc != 2 || argv[1][0] == '-') {
        return UsageError(argc != 2 ? "one directory expected" : std::string("unknown option ") + argv[1]);
    }
    const std::string dir = argv[1];
    struct stat st {};
    if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        return UsageError("'" + dir + "' is not a directory");
    }

    ZoShmCatalogueService service;
    std::string error;
    // The catalogue's own messages go to standard error: standard output carries the request log.
    service.Load(dir, nullptr, [](const std::string& message) { std::fprintf(stderr, "%s\n", message.c_str()); });
    TvService tvService(tv, stdout);
    std::vector<std::string> warnings;
    const size_t served = tvService.Register(service, warnings);
    for (const std::string& warning : warnings) {
        std::fprintf(stderr, "zo_demo_tv: %s\n", warning.c_str());
    }
    if (served == 0) {
        std::fprintf(stderr, "zo_demo_tv: the catalogue in %s holds none of the TV's commands: nothing to serve\n",
                     dir.c_str());
        return 1;
    }

    g_service = &service;
    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    if (service.Open(ShmSwapFilePath(dir), &error) != 0) {
        std::fprintf(stderr, "zo_demo_tv: %s\n", error.c_str());
        return 1;
    }
    while (!service.Stopped()) {
        tvService.Log(service.Serve(1000));  // Stop ends the wait within a poll period
    }
    if (service.Close(&error) != 0) {
        std::fprintf(stderr, "zo_demo_tv: %s\n", error.c_str());
        return 1;
    }
    return 0;
}
