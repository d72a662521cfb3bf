#include "service_sim.h"

#include <ctime>

namespace {

// The simulator looks at the page more often than the library's default, so
// that tests of delays and drops run quickly.
constexpr unsigned kPollMs = 2;
constexpr unsigned kWaitMs = 100;

std::vector<uint8_t> StatusReply(int32_t status)
{
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&status);
    return std::vector<uint8_t>(bytes, bytes + sizeof status);
}

}  // namespace

ServiceSim::ServiceSim(const SimOptions& opts, const RepliesFile& replies, SimPage& service, std::FILE* out)
    : m_opts(opts), m_replies(replies), m_service(service), m_out(out)
{
    m_service.SetPollMs(kPollMs);
    // A console may post before the simulator starts, and gets its answer then:
    // the simulator's handlers cannot crash on a request, which is why a
    // service is warned off serving one left on the page.
    m_service.SetServeStale(true);
}

size_t ServiceSim::RegisterAll(std::vector<std::string>& warnings)
{
    size_t registered = 0;
    for (const ZoShmCommand& command : m_service.Commands()) {
        std::string error;
        const auto handler = [this](const ZoShmArgs& args, ZoShmReply&) {
            m_served = &args.Command();
            m_line = args.Line();
            return 0;  // the reply is chosen after the line is printed
        };
        if (m_service.Register(command.module, command.word, handler, &error) == 0) {
            ++registered;
        } else {
            warnings.push_back(error);
        }
    }
    return registered;
}

bool ServiceSim::Serve(PageGuard& guard)
{
    bool pending = false;
    while (!m_service.Stopped()) {
        if (!guard.Run([&] { pending = m_service.WaitForRequest(kWaitMs); })) {
            return false;
        }
        if (pending && !ServeOne(guard)) {
            return false;
        }
    }
    return true;
}

bool ServiceSim::ServeOne(PageGuard& guard)
{
    bool taken = false;
    if (!guard.Run([&] { taken = m_service.TakeRequest(m_request); })) {
        return false;
    }
    if (!taken) {
        return true;
    }
    m_served = nullptr;
    ZoShmService::Outcome outcome;
    std::vector<uint8_t> reply = m_service.Dispatch(m_request, &outcome);
    const std::string line = m_served != nullptr ? m_line : outcome.problem;
    std::fprintf(m_out, "%s\n", line.c_str());
    std::fflush(m_out);

    if (m_opts.noReply) {
        // The request bit goes, so that the next request can be told apart from this one.
        return guard.Run([&] { m_service.DropRequest(); });
    }
    if (!SleepUnlessStopped(m_opts.delayMs)) {
        return true;
    }
    if (m_served != nullptr) {
        reply = ChooseReply(*m_served);
    }
    // During the wait the console may have gone and another one posted its own request.
    ZoShmService::Served served = ZoShmService::Served::kNothing;
    if (!guard.Run([&] {
            served = m_opts.forceSize
                         ? m_service.PostReplyClaiming(m_request, reply.data(), reply.size(), m_opts.sizeValue)
                         : m_service.PostReply(m_request, reply.data(), reply.size());
        })) {
        return false;
    }
    if (served == ZoShmService::Served::kDropped) {
        std::fprintf(stderr, "zo_service_sim: the page holds another request now: the answer to '%s' is dropped\n",
                     line.c_str());
    }
    return true;
}

std::vector<uint8_t> ServiceSim::ChooseReply(const ZoShmCommand& command)
{
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
    return m_replies.ReplyFor(command);
}

bool ServiceSim::SleepUnlessStopped(unsigned ms) const
{
    // Against a deadline, so that a long delay does not grow by the cost of each step.
    struct timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const int64_t deadline = static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec + int64_t{ms} * 1000000;
    while (!m_service.Stopped()) {
        clock_gettime(CLOCK_MONOTONIC, &now);
        const int64_t left = deadline - (static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec);
        if (left <= 0) {
            break;
        }
        const int64_t step = left < int64_t{kPollMs} * 1000000 ? left : int64_t{kPollMs} * 1000000;
        const struct timespec pause = {0, static_cast<long>(step)};
        nanosleep(&pause, nullptr);
    }
    return !m_service.Stopped();
}
