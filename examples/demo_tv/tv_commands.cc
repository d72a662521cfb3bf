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

int32_t Refuse(int32_t status, const std::string& why, std::string& said)
{
    said = "refused: " + why;
    return status;
}

void Put(ZoShmReply& reply, int32_t value) { reply.PutInt32(value); }
void Put(ZoShmReply& reply, float value) { reply.PutFloat(value); }
void Put(ZoShmReply& reply, double value) { reply.PutDouble(value); }

// Stores value in setting and answers it when it lies in [low, high]; NaN does not.
template <typename T>
int32_t Set(T& setting, T value, T low, T high, const char* name, ZoShmReply& reply, std::string& said)
{
    if (!(value >= low && value <= high)) {
        return Refuse(kTvRefusedValue, "out of range " + Show(low) + " to " + Show(high), said);
    }
    setting = value;
    Put(reply, setting);
    said = std::string(name) + " " + Show(setting);
    return 0;
}

int32_t Count(TvState&, const ZoShmArgs&, ZoShmReply& reply, int64_t, std::string& said)
{
    const int32_t count = static_cast<int32_t>(TvChannels().size());
    reply.PutInt32(count);
    said = Show(count) + " channels";
    return 0;
}

void PutChannel(ZoShmReply& reply, const TvChannel& channel)
{
    reply.PutInt32(channel.number);
    reply.PutInt32(channel.frequencyKHz);
    reply.PutText(channel.name);
}

int32_t Info(TvState&, const ZoShmArgs& args, ZoShmReply& reply, int64_t, std::string& said)
{
    const TvChannel* channel = FindTvChannel(args.Int32(0));
    if (channel == nullptr) {
        return Refuse(kTvRefusedNoChannel, "no channel " + Show(args.Int32(0)), said);
    }
    PutChannel(reply, *channel);
    said = "channel " + Show(channel->number) + " " + Show(channel->frequencyKHz) + " kHz " + channel->name;
    return 0;
}

int32_t List(TvState&, const ZoShmArgs&, ZoShmReply& reply, int64_t, std::string& said)
{
    for (const TvChannel& channel : TvChannels()) {
        PutChannel(reply, channel);  // a row each
    }
    said = Show(TvChannels().size()) + " channels";
    return 0;
}

// A new channel's stream plays from its start.
int32_t Tune(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t nowMs, std::string& said)
{
    const TvChannel* channel = FindTvChannel(args.Int32(0));
    if (channel == nullptr) {
        return Refuse(kTvRefusedNoChannel, "no channel " + Show(args.Int32(0)), said);
    }
    tv.channel = channel->number;
    tv.SetStream(0, nowMs);
    reply.PutInt32(0);
    said = "channel " + Show(channel->number) + " " + channel->name;
    return 0;
}

int32_t Rename(TvState&, const ZoShmArgs& args, ZoShmReply&, int64_t, std::string& said)
{
    if (FindTvChannel(args.Int32(0)) == nullptr) {
        return Refuse(kTvRefusedNoChannel, "no channel " + Show(args.Int32(0)), said);
    }
    return Refuse(kTvRefusedNoName, "no name arrived (the console sends none for S)", said);
}

int32_t Brightness(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t, std::string& said)
{
    return Set(tv.brightness, args.Int32(0), 0, 100, "brightness", reply, said);
}

int32_t Gamma(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t, std::string& said)
{
    return Set(tv.gamma, args.Float(0), 1.0f, 3.0f, "gamma", reply, said);
}

int32_t Volume(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t, std::string& said)
{
    return Set(tv.volume, args.Int32(0), 0, 100, "volume", reply, said);
}

int32_t Balance(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t, std::string& said)
{
    return Set(tv.balance, args.Double(0), -1.0, 1.0, "balance", reply, said);
}

int32_t Resolution(TvState& tv, const ZoShmArgs&, ZoShmReply& reply, int64_t, std::string& said)
{
    const TvChannel& channel = *FindTvChannel(tv.channel);
    reply.PutInt32(channel.width);
    reply.PutInt32(channel.height);
    reply.PutDouble(channel.frameRate);
    said = Show(channel.width) + "x" + Show(channel.height) + " at " + Show(channel.frameRate) + " fps";
    return 0;
}

int32_t Position(TvState& tv, const ZoShmArgs&, ZoShmReply& reply, int64_t nowMs, std::string& said)
{
    const int64_t ms = tv.StreamMs(nowMs);
    reply.PutInt64(ms * kPtsPerMs);
    said = "pts " + Show(ms * kPtsPerMs) + " (" + Show(ms) + " ms)";
    return 0;
}

int32_t Seek(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t nowMs, std::string& said)
{
    const int64_t ms = args.Int64(0);
    if (ms < 0 || ms > kMaxSeekMs) {
        return Refuse(kTvRefusedValue, "out of range 0 to " + Show(kMaxSeekMs), said);
    }
    tv.SetStream(ms, nowMs);
    reply.PutInt32(0);
    reply.PutInt64(ms);
    said = "position " + Show(ms) + " ms";
    return 0;
}

int32_t Version(TvState&, const ZoShmArgs&, ZoShmReply& reply, int64_t, std::string& said)
{
    const std::string build = "compiler " __VERSION__ ", " + Show(sizeof(void*) * 8) + "-bit";
    reply.PutText(kVersion);
    reply.PutText(build);
    said = std::string(kVersion) + ", " + build;
    return 0;
}

// The cpu load is the TV's own: its processor time as a share of its uptime.
int32_t Uptime(TvState& tv, const ZoShmArgs&, ZoShmReply& reply, int64_t nowMs, std::string& said)
{
    const int64_t upMs = nowMs - tv.startMs;
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    const double cpuMs = (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000.0 +
                         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000.0;
    const float load = upMs > 0 ? static_cast<float>(100.0 * cpuMs / static_cast<double>(upMs)) : 0.0f;
    reply.PutInt64(upMs);
    reply.PutFloat(load);
    said = Show(upMs) + " ms, cpu " + Show(load) + "%";
    return 0;
}

int32_t LogLevel(TvState& tv, const ZoShmArgs& args, ZoShmReply& reply, int64_t, std::string& said)
{
    for (const char* level : kLogLevels) {
        if (args.Text(0) == level) {
            tv.logLevel = level;
            reply.PutText(tv.logLevel);
            said = "level " + tv.logLevel;
            return 0;
        }
    }
    std::string known;
    for (const char* level : kLogLevels) {
        known += (known.empty() ? "" : "|") + std::string(level);
    }
    return Refuse(kTvRefusedValue, "not one of " + known, said);
}

}  // namespace

const std::vector<TvCommand>& TvCommands()
{
    static const std::vector<TvCommand> commands = {
        {"Channel", "count", Count},     {"Channel", "info", Info},     {"Channel", "tune", Tune},
        {"Channel", "rename", Rename},   {"Channel", "list", List},     {"Picture", "bright", Brightness},
        {"Picture", "gamma", Gamma},     {"Sound", "vol", Volume},      {"Sound", "balance", Balance},
        {"Video", "res", Resolution},    {"Video", "pos", Position},    {"Video", "seek", Seek},
        {"System", "ver", Version},      {"System", "uptime", Uptime},  {"System", "loglevel", LogLevel},
    };
    return commands;
}
