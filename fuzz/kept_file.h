// KeptFile: a file that a harness rewrites for every input, kept open and
// rewritten in place: one pwrite, and an ftruncate only when the file
// shrinks, instead of an open with truncation, a write and a close. What
// reads the file opens it by its path as before and sees exactly the bytes
// last written.
#ifndef ZO_FUZZ_KEPT_FILE_H
#define ZO_FUZZ_KEPT_FILE_H

#include <cstddef>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "fuzz_check.h"

class KeptFile {
public:
    explicit KeptFile(const std::string& path) : m_fd(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600))
    {
        FUZZ_CHECK(m_fd >= 0);
    }
    ~KeptFile() { close(m_fd); }
    KeptFile(const KeptFile&) = delete;
    KeptFile& operator=(const KeptFile&) = delete;

    void Write(const void* data, size_t size)
    {
        FUZZ_CHECK(size == 0 || pwrite(m_fd, data, size, 0) == static_cast<ssize_t>(size));
        if (size < m_size) {
            FUZZ_CHECK(ftruncate(m_fd, static_cast<off_t>(size)) == 0);
        }
        m_size = size;
    }

private:
    int m_fd;
    size_t m_size = 0;
};

#endif  // ZO_FUZZ_KEPT_FILE_H
