// zo_service_sim DIR [options]: a stand-in for the middleware service.
// See sim_options.cc (--help) for the options and the replies file.
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "page_guard.h"
#include "replies_file.h"
#include "service_sim.h"
#include "sim_options.h"
#include "sim_page.h"
#include "zo_usage_error.h"

namespace {

SimPage* g_service = nullptr;

void OnStopSignal(int)
{
    g_service->Stop();
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

    SimPage service;
    // The catalogue's own messages go to standard error: standard output carries the request lines.
    const auto toStderr = [](const std::string& message) { std::fprintf(stderr, "%s\n", message.c_str()); };
    if (service.Load(opts.dir, &error, toStderr) != 0) {
        std::fprintf(stderr, "zo_service_sim: %s; going on with what it has\n", error.c_str());
    }
    RepliesFile replies;
    if (!opts.repliesPath.empty() && !replies.Load(opts.repliesPath, service, error)) {
        std::fprintf(stderr, "zo_service_sim: replies file %s\n(zo_service_sim --help describes its format)\n",
                     error.c_str());
        return 2;
    }
    ServiceSim sim(opts, replies, service, stdout);
    std::vector<std::string> warnings;
    const size_t served = sim.RegisterAll(warnings);
    for (const std::string& warning : warnings) {
        std::fprintf(stderr, "zo_service_sim: %s\n", warning.c_str());
    }

    g_service = &service;
    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    const std::string pagePath = ShmSwapFilePath(opts.dir);
    if (service.Open(pagePath, &error) != 0) {
        std::fprintf(stderr, "zo_service_sim: %s\n", error.c_str());
        return 1;
    }
    std::fprintf(stderr, "zo_service_sim: answering %zu commands on %s\n", served, pagePath.c_str());

    PageGuard guard(service.Page());
    if (!sim.Serve(guard)) {
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
