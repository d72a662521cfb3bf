// What the harnesses share: a check that crashes, a quiet process whose temporary files live in memory, and files
// rewritten in place for every input.
#ifndef ZO_FUZZ_FUZZ_SUPPORT_H
#define ZO_FUZZ_FUZZ_SUPPORT_H

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

// A broken invariant is a crash, so libFuzzer keeps the input that caused it, like any fault the sanitizers find.
#define FUZZ_CHECK(condition)                                                              \
    do {                                                                                   \
        if (!(condition)) {                                                                \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                  \
        }                                                                                  \
    } while (0)

// Throws away everything printed on standard output (the code under test prints messages and echoes keys): nothing
// reaches a descriptor, so printing costs no system call, and every write and flush succeeds, as on a terminal.
// Temporary directories go to /dev/shm when there is one, so that writing files costs no disk I/O.
inline void QuietProcess()
{
    const int null = open("/dev/null", O_WRONLY);  // descriptor 1 too, for anything that writes to it directly
    if (null >= 0) {
        dup2(null, STDOUT_FILENO);
        close(null);
    }
    cookie_io_functions_t discard = {};
    discard.write = [](void*, const char*, size_t size) -> ssize_t { return static_cast<ssize_t>(size); };
    if (FILE* sink = fopencookie(nullptr, "w", discard)) {
        setvbuf(sink, nullptr, _IOFBF, 1 << 16);
        __fsetlocking(sink, FSETLOCKING_BYCALLER);  // printing is the fuzzing thread's alone: no lock per byte
        stdout = sink;  // glibc lets stdout be replaced
    }
    if (access("/dev/shm", W_OK) == 0) {
        setenv("TMPDIR", "/dev/shm", 1);
    }
}

// A file that a harness rewrites for every input, kept open: a pwrite and an ftruncate instead of an open with
// truncation, a write and a close. What reads it opens it by its path as before.
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

#endif  // ZO_FUZZ_FUZZ_SUPPORT_H
