// Captures the log records written while it lives, instead of sending them to syslog.
#ifndef ZO_TESTS_SUPPORT_LOG_CAPTURE_H
#define ZO_TESTS_SUPPORT_LOG_CAPTURE_H

#include <mutex>
#include <vector>

#include "zo_tv_support.h"

class LogCapture {
public:
    LogCapture()
    {
        ZoLog::SetSink([this](const ZoLogRecord& record) {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_records.push_back(record);
        });
    }
    ~LogCapture() { ZoLog::SetSink(nullptr); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<ZoLogRecord> Records()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_records;
    }

private:
    std::mutex m_mutex;
    std::vector<ZoLogRecord> m_records;
};

#endif  // ZO_TESTS_SUPPORT_LOG_CAPTURE_H
