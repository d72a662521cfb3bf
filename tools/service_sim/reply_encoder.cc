#include "reply_encoder.h"

#include <cerrno>
#include <cstdlib>

namespace {

// strto* over a whole word: the number must use every character.
template <typename T, typename Conv>
bool WholeWord(const std::string& text, Conv conv, T& out)
{
    if (text.empty()) {
        return false;
    }
    errno = 0;
    char* end = nullptr;
    out = conv(text.c_str(), &end);
    return errno == 0 && end != nullptr && *end == '\0';
}

}  // namespace

bool ParseInt32Word(const char* text, int32_t& value)
{
    if (text == nullptr) {
        return false;
    }
    long long v = 0;
    if (!WholeWord<long long>(text, [](const char* s, char** e) { return std::strtoll(s, e, 0); }, v)) {
        return false;
    }
    if (v < INT32_MIN || v > static_cast<long long>(UINT32_MAX)) {
        return false;
    }
    value = static_cast<int32_t>(static_cast<uint32_t>(v));
    return true;
}

bool AppendValue(char letter, const std::string& text, android::Parcel& reply)
{
    switch (letter) {
    case 'd': {
        long long v = 0;
        if (!WholeWord<long long>(text, [](const char* s, char** e) { return std::strtoll(s, e, 0); }, v) ||
            v < INT32_MIN || v > INT32_MAX) {
            return false;
        }
        return reply.writeInt32(static_cast<int32_t>(v)) == android::NO_ERROR;
    }
    case 'D': {
        long long v = 0;
        if (!WholeWord<long long>(text, [](const char* s, char** e) { return std::strtoll(s, e, 0); }, v)) {
            return false;
        }
        return reply.writeInt64(static_cast<int64_t>(v)) == android::NO_ERROR;
    }
    case 'f': {
        float v = 0;
        if (!WholeWord<float>(text, [](const char* s, char** e) { return std::strtof(s, e); }, v)) {
            return false;
        }
        return reply.writeFloat(v) == android::NO_ERROR;
    }
    case 'F': {
        double v = 0;
        if (!WholeWord<double>(text, [](const char* s, char** e) { return std::strtod(s, e); }, v)) {
            return false;
        }
        return reply.writeDouble(v) == android::NO_ERROR;
    }
    case 's': {
        // String16 gives an empty text for UTF-8 whose last sequence is cut off; refuse that rather than send it.
        const android::String16 units(text.c_str(), text.size());
        if (units.size() == 0 && !text.empty()) {
            return false;
        }
        return reply.writeString16(units) == android::NO_ERROR;
    }
    default:
        return false;
    }
}

std::vector<uint8_t> ParcelBytes(const android::Parcel& parcel)
{
    const uint8_t* data = parcel.data();
    return data == nullptr ? std::vector<uint8_t>() : std::vector<uint8_t>(data, data + parcel.dataSize());
}

std::vector<uint8_t> BuiltInReply(const std::string& printFmt)
{
    android::Parcel reply;
    reply.writeInt32(0);
    for (char letter : printFmt) {
        switch (letter) {
        case 'd': reply.writeInt32(42); break;
        case 'D': reply.writeInt64(INT64_C(9000000000)); break;
        case 'f': reply.writeFloat(1.5f); break;
        case 'F': reply.writeDouble(2.25); break;
        case 's': reply.writeString16(android::String16("sim")); break;
        default: break;  // S, or a letter the console rejects anyway
        }
    }
    return ParcelBytes(reply);
}

std::vector<uint8_t> StatusReply(int32_t status)
{
    android::Parcel reply;
    reply.writeInt32(status);
    return ParcelBytes(reply);
}
