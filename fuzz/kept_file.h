// Files that a harness rewrites for every input, kept open and rewritten in
// place: a pwrite and an ftruncate instead of an open with truncation, a
// write and a close. What reads such a file opens it by its path as before.
#ifndef ZO_FUZZ_KEPT_FILE_H
#define ZO_FUZZ_KEPT_FILE_H

#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "fuzz_check.h"

// The descriptor of path, created empty, open for the rest of the process.
inline int KeepOpen(const std::string& path)
{
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    FUZZ_CHECK(fd >= 0);
    return fd;
}

inline void Rewrite(int fd, const void* data, size_t size)
{
    FUZZ_CHECK(size == 0 || pwrite(fd, data, size, 0) == static_cast<ssize_t>(size));
    FUZZ_CHECK(ftruncate(fd, static_cast<off_t>(size)) == 0);
}

#endif  // ZO_FUZZ_KEPT_FILE_H
