// The demo TV's channel list: a dozen channels of an invented terrestrial
// network, numbered from 1, on UHF multiplexes 8 MHz apart; channels of one
// multiplex share its frequency, as they do on air.
#ifndef ZO_EXAMPLES_DEMO_TV_CHANNEL_LIST_H
#define ZO_EXAMPLES_DEMO_TV_CHANNEL_LIST_H

#include <cstdint>
#include <vector>

struct TvChannel {
    int32_t number;
    int32_t frequencyKHz;
    const char* name;
    // The picture it broadcasts.
    int32_t width;
    int32_t height;
    double frameRate;
};

// Every channel, in number order.
const std::vector<TvChannel>& TvChannels();
// The channel of that number, or null when there is none.
const TvChannel* FindTvChannel(int32_t number);

#endif  // ZO_EXAMPLES_DEMO_TV_CHANNEL_LIST_H
