// ServiceSim: the simulator's request loop over the shared page.
//
// For every pending request it prints one line (the command word and its
// decoded arguments, or why the request cannot be served) to its output,
// flushed at once, then answers after the configured delay. What it answers:
//   --no-reply          nothing: the request bit is cleared so that the next
//                       request can be told apart, and the console waits on
//   unknown code        status kStatusUnknownCode (0xffffffff)
//   bad request         status kStatusBadRequest (0xfffffffe), also for a
//                       u32Size above 4088
//   --status N          status N alone
//   --garbage N         status 0, then N pseudo-random bytes (the same
//                       sequence on every run, so a crash can be replayed)
//   replies file entry  that reply
//   otherwise           the built-in values for the command's print format
// --size N replaces the reply's length in u32Size with N in every answer.
// The page is the service library's (ZoShmService): it posts an answer only
// while the page still holds the request it answers; after a delay the page
// may hold another console's request instead, and then the answer is dropped
// with a line on standard error. Every access to the page runs under the
// simulator's PageGuard.
//
// Single-threaded; the stop flag is the only thing set from outside (by a
// signal handler).
#ifndef ZO_TOOLS_SERVICE_SIM_SERVICE_SIM_H
#define ZO_TOOLS_SERVICE_SIM_SERVICE_SIM_H

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include "command_index.h"
#include "replies_file.h"
#include "request_decoder.h"
#include "page_guard.h"
#include "sim_options.h"
#include "zo_shm_service.h"

class ServiceSim {
public:
    // Borrows everything; all of it must outlive the ServiceSim.
    ServiceSim(const SimOptions& opts, const CommandIndex& index, const RepliesFile& replies, ZoShmService& service,
               PageGuard& guard, std::FILE* out);

    // Polls the page every 2 ms and serves each request until stop is
    // non-zero: then true. False as soon as the page is lost.
    bool Serve(const volatile sig_atomic_t& stop);

private:
    // Serves the pending request; false when the page is lost.
    bool ServeOne(const volatile sig_atomic_t& stop);
    std::vector<uint8_t> ChooseReply(const DecodedRequest& request);
    // Sleeps ms milliseconds in short steps; false as soon as stop is set.
    static bool SleepUnlessStopped(unsigned ms, const volatile sig_atomic_t& stop);

    const SimOptions& m_opts;
    const CommandIndex& m_index;
    const RepliesFile& m_replies;
    ZoShmService& m_service;
    PageGuard& m_guard;
    std::FILE* m_out;
    std::mt19937 m_garbage{0x5eedu};
    ZoShmRequest m_request;  // the request being served, as taken from the page
};

#endif  // ZO_TOOLS_SERVICE_SIM_SERVICE_SIM_H
