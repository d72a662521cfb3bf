#include "tv_service.h"

size_t TvService::Register(ZoShmCatalogueService& service, std::vector<std::string>& warnings)
{
    size_t registered = 0;
    for (const TvCommand& command : TvCommands()) {
        const auto handler = [this, &command](const ZoShmArgs& args, ZoShmReply& reply) {
            std::string said;
            const int32_t status = command.answer(m_tv, args, reply, MonotonicMs(), said);
            std::fprintf(m_log, "%s -> %s\n", args.Line().c_str(), said.c_str());
            std::fflush(m_log);
            return status;
        };
        std::string error;
        if (service.Register(command.module, command.word, handler, &error) == 0) {
            ++registered;
        } else {
            warnings.push_back(error + ": not served");
        }
    }
    return registered;
}

void TvService::Log(const ZoShmService::Outcome& outcome)
{
    if (!outcome.problem.empty()) {
        std::fprintf(m_log, "%s\n", outcome.problem.c_str());
        std::fflush(m_log);
    }
}
