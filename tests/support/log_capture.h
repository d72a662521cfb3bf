// Captures the log records written while it lives, instead of sending them to syslog. One thread only.
#ifndef ZO_TESTS_SUPPORT_LOG_CAPTURE_H
#define ZO_TESTS_SUPPORT_LOG_CAPTURE_H

#include <vector>

#include "zo_tv_support.h"

class LogCapture {
public:
    LogCapture() { ZoLog::SetSink([this](const ZoLogRecord& record) { m_records.push_back(record); }); }
    ~LogCapture() { ZoLog::SetSink(nullptr); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<ZoLogRecord>& Records() const { return m_records; }

private:
    std::vector<ZoLogRecord> m_records;
};

#endif  // ZO_TESTS_SUPPORT_LOG_CAPTURE_H
