#include "service_sim.h"

#include <ctime>

#include "reply_encoder.h"
#include "zo_shm_page.h"

namespace {

constexpr unsigned kPollMs = 2;

}  // namespace

ServiceSim::ServiceSim(const SimOptions& opts, const CommandIndex& index, const RepliesFile& replies,
                       ZoShmService& service, PageGuard& guard, std::FILE* out)
    : m_opts(opts), m_index(index), m_replies(replies), m_service(service), m_guard(guard), m_out(out)
{
}

bool ServiceSim::Serve(const volatile sig_atomic_t& stop)
{
    bool pending = false;
    while (stop == 0) {
        if (!m_guard.Run([&] { pending = m_service.Pending(); })) {
            return false;
        }
        if (!pending) {
            SleepUnlessStopped(kPollMs, stop);
        } else if (!ServeOne(stop)) {
            return false;
        }
    }
    return true;
}

bool ServiceSim::ServeOne(const volatile sig_atomic_t& stop)
{
    bool taken = false;
    if (!m_guard.Run([&] { taken = m_service.TakeRequest(m_request); })) {
        return false;
    }
    if (!taken) {
        return true;
    }
    DecodedRequest request;
    if (m_request.u32Size > SHM_DATA_SIZE) {
        request.line = "bad request: u32Size " + std::to_string(m_request.u32Size) + " is more than " +
                       std::to_string(SHM_DATA_SIZE);
    } else {
        request = DecodeRequest(std::vector<uint8_t>(m_request.payload, m_request.payload + m_request.length), m_index);
    }
    std::fprintf(m_out, "%s\n", request.line.c_str());
    std::fflush(m_out);

    if (m_opts.noReply) {
        // The request bit goes, so that the next request can be told apart from this one.
        return m_guard.Run([&] { m_service.DropRequest(); });
    }
    if (!SleepUnlessStopped(m_opts.delayMs, stop)) {
        return true;
    }
    const std::vector<uint8_t> reply = ChooseReply(request);
    // During the wait the console may have gone and another one posted its own request.
    ZoShmService::Served served = ZoShmService::Served::kNothing;
    if (!m_guard.Run([&] {
            served = m_service.PostReply(m_request, reply.data(), reply.size(),
                                         m_opts.forceSize ? &m_opts.sizeValue : nullptr);
        })) {
        return false;
    }
    if (served == ZoShmService::Served::kDropped) {
        std::fprintf(stderr, "zo_service_sim: the page holds another request now: the answer to '%s' is dropped\n",
                     request.line.c_str());
    }
    return true;
}

std::vector<uint8_t> ServiceSim::ChooseReply(const DecodedRequest& request)
{
    switch (request.kind) {
    case DecodedRequest::Kind::kUnknownCode:
        return StatusReply(ZoShmService::kStatusUnknownCode);
    case DecodedRequest::Kind::kBadRequest:
        return StatusReply(ZoShmService::kStatusBadRequest);
    case DecodedRequest::Kind::kCommand:
        break;
    }
    if (m_opts.forceStatus) {
        return StatusReply(m_opts.status);
    }
    if (m_opts.garbage) {
        std::vector<uint8_t> reply = StatusReply(0);
        for (uint32_t i = 0; i < m_opts.garbageBytes; ++i) {
            reply.push_back(static_cast<uint8_t>(m_garbage()));
        }
        return reply;
    }
    const std::vector<uint8_t>* canned = m_replies.Find(request.command->instruct);
    return canned != nullptr ? *canned : BuiltInReply(request.command->printFmt);
}

bool ServiceSim::SleepUnlessStopped(unsigned ms, const volatile sig_atomic_t& stop)
{
    // Against a deadline, so that a long delay does not grow by the cost of each step.
    struct timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const int64_t deadline = static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec + int64_t{ms} * 1000000;
    while (stop == 0) {
        clock_gettime(CLOCK_MONOTONIC, &now);
        const int64_t left = deadline - (static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec);
        if (left <= 0) {
            break;
        }
        const int64_t step = left < int64_t{kPollMs} * 1000000 ? left : int64_t{kPollMs} * 1000000;
        const struct timespec pause = {0, static_cast<long>(step)};
        nanosleep(&pause, nullptr);
    }
    return stop == 0;
}
