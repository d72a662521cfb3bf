#include "zo_tv_support.h"

#include <syslog.h>

#include <cstdio>
#include <mutex>
#include <vector>

namespace {

std::mutex g_sinkMutex;
ZoLog::Sink g_sink;

std::string FormatMessage(const char* format, va_list args)
{
    if (format == nullptr) {
        return std::string();
    }
    va_list measure;
    va_copy(measure, args);
    const int len = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (len <= 0) {
        return std::string();
    }
    std::vector<char> text(static_cast<size_t>(len) + 1);
    std::vsnprintf(text.data(), text.size(), format, args);
    return std::string(text.data(), static_cast<size_t>(len));
}

void WriteToSyslog(const ZoLogRecord& record)
{
    // syslog's levels run the other way round from the platform's priorities.
    int level = LOG_INFO;
    switch (record.prio) {
        case ATV_LOG_PRIO_FATAL: level = LOG_CRIT; break;
        case ATV_LOG_PRIO_ERROR: level = LOG_ERR; break;
        case ATV_LOG_PRIO_WARN: level = LOG_WARNING; break;
        case ATV_LOG_PRIO_INFO: level = LOG_INFO; break;
        default: level = LOG_DEBUG; break;
    }
    syslog(LOG_USER | level, "%s: %s:%u %s", record.tag.c_str(), record.function.c_str(), record.line,
           record.message.c_str());
}

}  // namespace

void ZoLog::PrintLog(ATV_LOG_PRIO_E prio, const char* tag, const char* function, unsigned int line,
                     const char* format, ...)
{
    ZoLogRecord record;
    record.prio = prio;
    record.tag = tag != nullptr ? tag : "";
    record.function = function != nullptr ? function : "";
    record.line = line;
    va_list args;
    va_start(args, format);
    record.message = FormatMessage(format, args);
    va_end(args);

    std::lock_guard<std::mutex> lock(g_sinkMutex);
    if (g_sink) {
        g_sink(record);
    } else {
        WriteToSyslog(record);
    }
}

void ZoLog::SetSink(Sink sink)
{
    std::lock_guard<std::mutex> lock(g_sinkMutex);
    g_sink = std::move(sink);
}
