// Captures what the code under test writes to standard output (descriptor 1)
// while it lives: Text() ends the capture and returns the bytes written.
#ifndef ZO_TESTS_SUPPORT_STDOUT_CAPTURE_H
#define ZO_TESTS_SUPPORT_STDOUT_CAPTURE_H

#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

class StdoutCapture {
public:
    StdoutCapture() : m_file(tmpfile()), m_saved((fflush(stdout), dup(STDOUT_FILENO)))
    {
        if (m_file == nullptr || m_saved < 0 || dup2(fileno(m_file), STDOUT_FILENO) < 0) {
            throw std::runtime_error("cannot capture standard output");
        }
    }
    ~StdoutCapture() { Text(), fclose(m_file); }
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    std::string Text()
    {
        if (m_saved >= 0) {
            fflush(stdout);
            dup2(m_saved, STDOUT_FILENO);
            close(m_saved);
            m_saved = -1;
        }
        std::string text(static_cast<size_t>(ftell(m_file)), '\0');
        rewind(m_file);
        return text.substr(0, fread(&text[0], 1, text.size(), m_file));
    }

private:
    FILE* m_file;
    int m_saved;
};

#endif  // ZO_TESTS_SUPPORT_STDOUT_CAPTURE_H
