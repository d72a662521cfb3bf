// QuietStdout(): throws away everything printed on standard output, for
// harnesses whose code under test prints messages or echoes keys. Nothing
// reaches a descriptor, so printing costs no system call, and every write and
// flush succeeds, as it does on a terminal.
#ifndef ZO_FUZZ_FUZZ_QUIET_H
#define ZO_FUZZ_FUZZ_QUIET_H

#include <cstdio>

#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

inline void QuietStdout()
{
    // Descriptor 1 too, for anything that would write to it directly.
    const int null = open("/dev/null", O_WRONLY);
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
}

#endif  // ZO_FUZZ_FUZZ_QUIET_H
