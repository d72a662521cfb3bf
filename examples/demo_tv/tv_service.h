// TvService: the demo TV's commands (tv_commands.h) served by module and
// word on the service library's catalogue level.
//
// Each command the catalogue holds is registered; one that it lacks, or
// whose code another command answers, is not served, with the library's
// message as a warning (its requests get the library's no-handler status).
//
// One line per request goes to the log, flushed at once: the request line
// and what was answered ("vol 30 -> volume 30"), written by the handler
// before the answer is posted; for a request the library answered without
// the handler (a bad request, say), the library's reason.
//
// Single-threaded, like the service it registers with.
#ifndef ZO_EXAMPLES_DEMO_TV_TV_SERVICE_H
#define ZO_EXAMPLES_DEMO_TV_TV_SERVICE_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "tv_commands.h"
#include "tv_state.h"
#include "zo_shm_catalogue_service.h"

class TvService {
public:
    // Borrows everything; all of it must outlive the TvService.
    TvService(TvState& tv, std::FILE* log) : m_tv(tv), m_log(log) {}

    // Registers with service every command the catalogue holds as the TV
    // does, appends a warning for each other one, and returns how many were
    // registered.
    size_t Register(ZoShmCatalogueService& service, std::vector<std::string>& warnings);
    // Logs what the library answered by itself, if it did.
    void Log(const ZoShmService::Outcome& outcome);

private:
    TvState& m_tv;
    std::FILE* m_log;
};

#endif  // ZO_EXAMPLES_DEMO_TV_TV_SERVICE_H
