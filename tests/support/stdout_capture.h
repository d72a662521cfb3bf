// Captures what the code under test writes to standard output (descriptor 1)
// while it lives: Text() stops the capture and returns the bytes written.
#ifndef ZO_TESTS_SUPPORT_STDOUT_CAPTURE_H
#define ZO_TESTS_SUPPORT_STDOUT_CAPTURE_H

#include <cstdio>
#include <stdexcept>
#include <string>

#include <unistd.h>

class StdoutCapture {
public:
    StdoutCapture()
    {
        fflush(stdout);
        m_file = tmpfile();
        m_saved = dup(STDOUT_FILENO);
        if (m_file == nullptr || m_saved < 0 || dup2(fileno(m_file), STDOUT_FILENO) < 0) {
            throw std::runtime_error("cannot capture standard output");
        }
    }
    ~StdoutCapture()
    {
        Stop();
        fclose(m_file);
    }
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    std::string Text()
    {
        Stop();
        std::string text;
        rewind(m_file);
        char chunk[4096];
        size_t n;
        while ((n = fread(chunk, 1, sizeof chunk, m_file)) > 0) {
            text.append(chunk, n);
        }
        return text;
    }

private:
    void Stop()
    {
        if (m_saved >= 0) {
            fflush(stdout);
            dup2(m_saved, STDOUT_FILENO);
            close(m_saved);
            m_saved = -1;
        }
    }

    FILE* m_file = nullptr;
    int m_saved = -1;
};

#endif  // ZO_TESTS_SUPPORT_STDOUT_CAPTURE_H
