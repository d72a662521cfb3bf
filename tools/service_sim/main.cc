// zo_service_sim DIR [options]: a stand-in for the middleware service.
// See sim_options.cc (--help) for the options and the replies file.
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "command_index.h"
#include "replies_file.h"
#include "service_sim.h"
#include "page_guard.h"
#include "sim_options.h"
#include "zo_file_parse_quiet_load.h"
#include "zo_shm_service.h"
#include "zo_usage_error.h"

namespace {

volatile sig_atomic_t g_stop = 0;

void OnStopSignal(int)
{
    g_stop = 1;
}

int UsageError(const std::string& error)
{
    return ZoUsageError("zo_service_sim", error, SimSynopsis());
}

}  // namespace

int main(int argc, char* argv[])
{
    SimOptions opts;
    std::string error;
    if (!ParseSimOptions(argc, argv, opts, error)) {
        return UsageError(error);
    }
    if (opts.help) {
        std::fputs(SimUsage(), stdout);
        return 0;
    }
    struct stat st {};
    if (stat(opts.dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        return UsageError("'" + opts.dir + "' is not a directory");
    }

    ZoFileParse catalogue;
    LoadCatalogueWithMessagesTo(catalogue, opts.dir, STDERR_FILENO);
    if (catalogue.GetIOExceptionStatus() != 0) {
        std::fprintf(stderr, "zo_service_sim: the catalogue in %s did not load fully; going on with what it has\n",
                     opts.dir.c_str());
    }
    CommandIndex index;
    std::vector<std::string> warnings;
    index.Build(catalogue, warnings);
    for (const std::string& warning : warnings) {
        std::fprintf(stderr, "zo_service_sim: %s\n", warning.c_str());
    }
    RepliesFile replies;
    if (!opts.repliesPath.empty() && !replies.Load(opts.repliesPath, index, error)) {
        std::fprintf(stderr, "zo_service_sim: replies file %s\n(zo_service_sim --help describes its format)\n",
                     error.c_str());
        return 2;
    }

    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    const std::string pagePath = ShmSwapFilePath(opts.dir);
    ZoShmService service;
    if (service.Open(pagePath, &error) != 0) {
        std::fprintf(stderr, "zo_service_sim: %s\n", error.c_str());
        return 1;
    }
    std::fprintf(stderr, "zo_service_sim: answering %zu commands on %s\n", index.Size(), pagePath.c_str());

    PageGuard guard(service.Page());
    ServiceSim sim(opts, index, replies, service, guard, stdout);
    if (!sim.Serve(g_stop)) {
        std::fprintf(stderr, "zo_service_sim: %s\n",
                     ShmLostMessage(pagePath, ShmFileCutShort(pagePath.c_str())).c_str());
        return 1;
    }

    if (service.Close(&error) != 0) {
        std::fprintf(stderr, "zo_service_sim: %s\n", error.c_str());
        return 1;
    }
    return 0;
}
