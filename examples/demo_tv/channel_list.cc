#include "channel_list.h"

const std::vector<TvChannel>& TvChannels()
{
    static const std::vector<TvChannel> channels = {
        {1, 474000, "Northgate One", 1920, 1080, 25.0},
        {2, 474000, "Northgate Two", 1920, 1080, 25.0},
        {3, 498000, "Riverside News", 1920, 1080, 25.0},
        {4, 522000, "Tidewater Sport", 1280, 720, 50.0},
        {5, 522000, "Puffin Kids", 720, 576, 25.0},
        {6, 546000, "Larkhill Cinema", 1920, 1080, 24.0},
        {7, 570000, "Fenwick Local", 720, 576, 25.0},
        {8, 594000, "Copperleaf Music", 1280, 720, 50.0},
        {9, 618000, "Glenmoor Docs", 1920, 1080, 25.0},
        {10, 642000, "Saltmarsh Weather", 720, 576, 25.0},
        {11, 666000, "Brightwell Drama", 1920, 1080, 25.0},
        {12, 690000, "Harbourlight Shop", 720, 576, 25.0},
    };
    return channels;
}

const TvChannel* FindTvChannel(int32_t number)
{
    for (const TvChannel& channel : TvChannels()) {
        if (channel.number == number) {
            return &channel;
        }
    }
    return nullptr;
}
