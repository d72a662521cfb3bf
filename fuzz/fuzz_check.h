// FUZZ_CHECK(condition): a broken invariant is a crash, so libFuzzer keeps the
// input that caused it, like any fault the sanitizers find.
#ifndef ZO_FUZZ_FUZZ_CHECK_H
#define ZO_FUZZ_FUZZ_CHECK_H

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition)                                                              \
    do {                                                                                   \
        if (!(condition)) {                                                                \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                  \
        }                                                                                  \
    } while (0)

#endif  // ZO_FUZZ_FUZZ_CHECK_H
