// What the demo TV holds between requests: the channel tuned, the picture and
// sound settings, the log level, and the clocks its uptime and the playing
// stream's position are read from. Times are milliseconds of CLOCK_MONOTONIC,
// which no change of the wall clock moves.
#ifndef ZO_EXAMPLES_DEMO_TV_TV_STATE_H
#define ZO_EXAMPLES_DEMO_TV_TV_STATE_H

#include <cstdint>
#include <string>

// Now, in milliseconds of CLOCK_MONOTONIC.
int64_t MonotonicMs();

struct TvState {
    explicit TvState(int64_t nowMs) : startMs(nowMs), streamSetMs(nowMs) {}

    // Where the stream is now: it advances with time from the last tune or seek.
    int64_t StreamMs(int64_t nowMs) const { return streamAtMs + (nowMs - streamSetMs); }
    // Plays the stream from atMs on.
    void SetStream(int64_t atMs, int64_t nowMs)
    {
        streamAtMs = atMs;
        streamSetMs = nowMs;
    }

    int32_t channel = 1;
    int32_t volume = 20;
    int32_t brightness = 50;
    float gamma = 2.2f;
    double balance = 0.0;  // -1 all left, 1 all right
    std::string logLevel = "info";
    const int64_t startMs;  // when the TV started: its uptime counts from here

private:
    int64_t streamAtMs = 0;  // the stream's position at streamSetMs
    int64_t streamSetMs;
};

#endif  // ZO_EXAMPLES_DEMO_TV_TV_STATE_H
