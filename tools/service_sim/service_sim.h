// ServiceSim: the simulator's request loop over the shared page, on the
// service library's catalogue level (zo_shm_catalogue_service.h).
//
// Every command of the catalogue is registered by its module and word, so
// the library decides what a request is: which command answers a code, and
// whether the arguments decode by its parameter format. For every pending
// request the simulator prints one line to its output, flushed at once: the
// request line of the command (its word and arguments as the format table
// shows them), or the library's reason for the status it answers instead
// ("no handler for instruction 0x99"). A request already pending when the
// simulator opens the page is served like any other: a console may post
// before the simulator runs. Then it answers after the configured delay:
//   --no-reply          nothing: the request bit is cleared so that the next
//                       request can be told apart, and the console waits on
//   library statuses    as the library chose them (no handler, bad
//                       request): see zo_shm_service.h
//   --status N          status N alone
//   --garbage N         status 0, then N pseudo-random bytes (the same
//                       sequence on every run, so a crash can be replayed)
//   otherwise           the replies file's reply, or the built-in one
// --size N replaces the reply's length in u32Size with N in every answer.
// The library posts an answer only while the page still holds the request it
// answers; after a delay the page may hold another console's request instead,
// and then the answer is dropped with a line on standard error. Every access
// to the page runs under the simulator's PageGuard.
//
// Single-threaded; Stop (from a signal handler) is the only call from outside.
#ifndef ZO_TOOLS_SERVICE_SIM_SERVICE_SIM_H
#define ZO_TOOLS_SERVICE_SIM_SERVICE_SIM_H

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "page_guard.h"
#include "replies_file.h"
#include "sim_options.h"
#include "sim_page.h"

class ServiceSim {
public:
    // Borrows everything; all of it must outlive the ServiceSim.
    ServiceSim(const SimOptions& opts, const RepliesFile& replies, SimPage& service, std::FILE* out);

    // Registers every command of the catalogue that answers its code; each
    // one that cannot be registered adds the library's message to warnings.
    // Returns how many were registered.
    size_t RegisterAll(std::vector<std::string>& warnings);
    // Serves each request on the open page, every access under guard, until
    // the service is stopped: then true. False as soon as the page is lost.
    bool Serve(PageGuard& guard);

private:
    // Serves the pending request; false when the page is lost.
    bool ServeOne(PageGuard& guard);
    std::vector<uint8_t> ChooseReply(const ZoShmCommand& command);
    // Sleeps ms milliseconds in short steps; false as soon as the service is stopped.
    bool SleepUnlessStopped(unsigned ms) const;

    const SimOptions& m_opts;
    const RepliesFile& m_replies;
    SimPage& m_service;
    std::FILE* m_out;
    std::mt19937 m_garbage{0x5eedu};
    // What the handler saw of the request being served: its command (null
    // when the library answered without running it) and its line.
    const ZoShmCommand* m_served = nullptr;
    std::string m_line;
    ZoShmRequest m_request;  // the request being served, as taken from the page
};

#endif  // ZO_TOOLS_SERVICE_SIM_SERVICE_SIM_H
