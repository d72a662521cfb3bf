#include "tv_commands.h"

#include <cinttypes>
#include <cstdio>
#include <type_traits>

#include <sys/resource.h>

#include "channel_list.h"

namespace {

constexpr char kVersion[] = "zo_demo_tv 1.0";
constexpr const char* kLogLevels[] = {"verbose", "debug", "info", "warn", "error"};
// Seeks reach back at most a day: the stream's recording.
constexpr int64_t kMaxSeekMs = 24 * 3600 * 1000;
constexpr int64_t kPtsPerMs = 90;  // presentation time stamps count at 90 kHz

template <typename T>
ZoFormatValue Value(T value)
{
    ZoFormatValue v;
    if constexpr (std::is_integral<T>::value) {
        v.integer = value;
    } else {
        v.real = value;
    }
    return v;
}

ZoFormatValue Value(const std::string& text)
{
    ZoFormatValue v;
    v.text = text;
    return v;
}

template <typename T>
std::string Show(T value)
{
    char text[32];
    if constexpr (std::is_integral<T>::value) {
        std::snprintf(text, sizeof text, "%" PRId64, static_cast<int64_t>(value));
    } else {
        std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    }
    return text;
}

TvAnswer Refuse(int32_t status, const std::string& why)
{
    return {status, {}, "refused: " + why};
}

// Stores value in setting and answers it when it lies in [low, high]; NaN does not.
template <typename T>
TvAnswer Set(T& setting, T value, T low, T high, const char* name)
{
    if (!(value >= low && value <= high)) {
        return Refuse(kTvRefusedValue, "out of range " + Show(low) + " to " + Show(high));
    }
    setting = value;
    return {0, {Value(setting)}, std::string(name) + " " + Show(setting)};
}

int32_t Int32(const ZoFormatValue& v)
{
    return static_cast<int32_t>(v.integer);  // read by d: it fits
}

TvAnswer Count(TvState&, const TvArgs&, int64_t)
{
    const int32_t count = static_cast<int32_t>(TvChannels().size());
    return {0, {Value(count)}, Show(count) + " channels"};
}

std::vector<ZoFormatValue> ChannelRow(const TvChannel& channel)
{
    return {Value(channel.number), Value(channel.frequencyKHz), Value(std::string(channel.name))};
}

TvAnswer Info(TvState&, const TvArgs& args, int64_t)
{
    const TvChannel* channel = FindTvChannel(Int32(args[0]));
    if (channel == nullptr) {
        return Refuse(kTvRefusedNoChannel, "no channel " + Show(Int32(args[0])));
    }
    return {0, ChannelRow(*channel),
            "channel " + Show(channel->number) + " " + Show(channel->frequencyKHz) + " kHz " + channel->name};
}

TvAnswer List(TvState&, const TvArgs&, int64_t)
{
    TvAnswer answer{0, {}, Show(TvChannels().size()) + " channels"};
    for (const TvChannel& channel : TvChannels()) {
        for (ZoFormatValue& value : ChannelRow(channel)) {
            answer.values.push_back(value);
        }
    }
    return answer;
}

// A new channel's stream plays from its start.
TvAnswer Tune(TvState& tv, const TvArgs& args, int64_t nowMs)
{
    const TvChannel* channel = FindTvChannel(Int32(args[0]));
    if (channel == nullptr) {
        return Refuse(kTvRefusedNoChannel, "no channel " + Show(Int32(args[0])));
    }
    tv.channel = channel->number;
    tv.SetStream(0, nowMs);
    return {0, {Value(0)}, "channel " + Show(channel->number) + " " + channel->name};
}

TvAnswer Rename(TvState&, const TvArgs& args, int64_t)
{
    if (FindTvChannel(Int32(args[0])) == nullptr) {
        return Refuse(kTvRefusedNoChannel, "no channel " + Show(Int32(args[0])));
    }
    return Refuse(kTvRefusedNoName, "no name arrived (the console sends none for S)");
}

TvAnswer Brightness(TvState& tv, const TvArgs& args, int64_t)
{
    return Set(tv.brightness, Int32(args[0]), 0, 100, "brightness");
}

TvAnswer Gamma(TvState& tv, const TvArgs& args, int64_t)
{
    return Set(tv.gamma, static_cast<float>(args[0].real), 1.0f, 3.0f, "gamma");
}

TvAnswer Volume(TvState& tv, const TvArgs& args, int64_t)
{
    return Set(tv.volume, Int32(args[0]), 0, 100, "volume");
}

TvAnswer Balance(TvState& tv, const TvArgs& args, int64_t)
{
    return Set(tv.balance, args[0].real, -1.0, 1.0, "balance");
}

TvAnswer Resolution(TvState& tv, const TvArgs&, int64_t)
{
    const TvChannel& channel = *FindTvChannel(tv.channel);
    return {0, {Value(channel.width), Value(channel.height), Value(channel.frameRate)},
            Show(channel.width) + "x" + Show(channel.height) + " at " + Show(channel.frameRate) + " fps"};
}

TvAnswer Position(TvState& tv, const TvArgs&, int64_t nowMs)
{
    const int64_t ms = tv.StreamMs(nowMs);
    return {0, {Value(ms * kPtsPerMs)}, "pts " + Show(ms * kPtsPerMs) + " (" + Show(ms) + " ms)"};
}

TvAnswer Seek(TvState& tv, const TvArgs& args, int64_t nowMs)
{
    const int64_t ms = args[0].integer;
    if (ms < 0 || ms > kMaxSeekMs) {
        return Refuse(kTvRefusedValue, "out of range 0 to " + Show(kMaxSeekMs));
    }
    tv.SetStream(ms, nowMs);
    return {0, {Value(0), Value(ms)}, "position " + Show(ms) + " ms"};
}

TvAnswer Version(TvState&, const TvArgs&, int64_t)
{
    const std::string build = "compiler " __VERSION__ ", " + Show(sizeof(void*) * 8) + "-bit";
    return {0, {Value(std::string(kVersion)), Value(build)}, std::string(kVersion) + ", " + build};
}

// The cpu load is the TV's own: its processor time as a share of its uptime.
TvAnswer Uptime(TvState& tv, const TvArgs&, int64_t nowMs)
{
    const int64_t upMs = nowMs - tv.startMs;
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    const double cpuMs = (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000.0 +
                         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000.0;
    const float load = upMs > 0 ? static_cast<float>(100.0 * cpuMs / static_cast<double>(upMs)) : 0.0f;
    return {0, {Value(upMs), Value(load)}, Show(upMs) + " ms, cpu " + Show(load) + "%"};
}

TvAnswer LogLevel(TvState& tv, const TvArgs& args, int64_t)
{
    for (const char* level : kLogLevels) {
        if (args[0].text == level) {
            tv.logLevel = level;
            return {0, {Value(tv.logLevel)}, "level " + tv.logLevel};
        }
    }
    std::string known;
    for (const char* level : kLogLevels) {
        known += (known.empty() ? "" : "|") + std::string(level);
    }
    return Refuse(kTvRefusedValue, "not one of " + known);
}

}  // namespace

const std::vector<TvCommand>& TvCommands()
{
    static const std::vector<TvCommand> commands = {
        {"Channel", "count", "", "d", Count},
        {"Channel", "info", "d", "dds", Info},
        {"Channel", "tune", "d", "d", Tune},
        {"Channel", "rename", "dS", "d", Rename},
        {"Channel", "list", "", "dds", List},
        {"Picture", "bright", "d", "d", Brightness},
        {"Picture", "gamma", "f", "f", Gamma},
        {"Sound", "vol", "d", "d", Volume},
        {"Sound", "balance", "F", "F", Balance},
        {"Video", "res", "", "ddF", Resolution},
        {"Video", "pos", "", "D", Position},
        {"Video", "seek", "D", "dD", Seek},
        {"System", "ver", "", "ss", Version},
        {"System", "uptime", "", "Df", Uptime},
        {"System", "loglevel", "s", "s", LogLevel},
    };
    return commands;
}
