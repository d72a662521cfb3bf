#include "request_decoder.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include <binder/Parcel.h>
#include <utils/String8.h>

namespace {

// The shortest %g form that reads back as the same value.
template <typename T>
std::string ShortestFloat(T value)
{
    char text[64];
    for (int precision = 6; precision <= 17; ++precision) {
        std::snprintf(text, sizeof text, "%.*g", precision, static_cast<double>(value));
        if (static_cast<T>(std::strtod(text, nullptr)) == value) {
            break;
        }
    }
    return text;
}

// Reads one value of the letter from the request. False with a reason when
// the bytes left do not hold it.
bool DecodeValue(char letter, const android::Parcel& request, std::string& out, std::string& reason)
{
    const size_t avail = request.dataAvail();
    const std::string nothingLeft = std::string("nothing left for '") + letter + "'";
    char text[32];
    switch (letter) {
    case 'd':
        if (avail < 4) {
            reason = nothingLeft;
            return false;
        }
        std::snprintf(text, sizeof text, "%" PRId32, request.readInt32());
        out = text;
        return true;
    case 'D':
        if (avail < 8) {
            reason = nothingLeft;
            return false;
        }
        std::snprintf(text, sizeof text, "%" PRId64, request.readInt64());
        out = text;
        return true;
    case 'f':
        if (avail < 4) {
            reason = nothingLeft;
            return false;
        }
        out = ShortestFloat(request.readFloat());
        return true;
    case 'F':
        if (avail < 8) {
            reason = nothingLeft;
            return false;
        }
        out = ShortestFloat(request.readDouble());
        return true;
    case 's': {
        if (avail < 4) {
            reason = nothingLeft;
            return false;
        }
        // The reader yields an empty text for a broken block as well as for
        // "": the count tells them apart.
        const size_t start = request.dataPosition();
        const int32_t count = request.readInt32();
        request.setDataPosition(start);
        const android::String16 units = request.readString16();
        if (count != 0 && units.size() == 0) {
            reason = "broken string for 's'";
            return false;
        }
        const android::String8 utf8(units);
        out = QuoteText(std::string(utf8.c_str(), utf8.size()));
        return true;
    }
    default:
        reason = std::string("parameter format letter '") + letter + "' has no encoding";
        return false;
    }
}

}  // namespace

std::string QuoteText(const std::string& text)
{
    std::string quoted = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x7f) {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\x%02x", c);
            quoted += esc;
        } else {
            quoted += static_cast<char>(c);
        }
    }
    return quoted + "\"";
}

DecodedRequest DecodeRequest(const std::vector<uint8_t>& bytes, const CommandIndex& index)
{
    DecodedRequest result;
    char text[96];
    if (bytes.size() < 4) {
        std::snprintf(text, sizeof text, "bad request: %zu bytes, too short for an instruction code", bytes.size());
        result.line = text;
        return result;
    }
    android::Parcel request;
    request.setData(bytes.data(), bytes.size());
    const int32_t code = request.readInt32();
    result.command = index.Find(code);
    if (result.command == nullptr) {
        result.kind = DecodedRequest::Kind::kUnknownCode;
        std::snprintf(text, sizeof text, "unknown instruction 0x%x (%zu bytes)", static_cast<unsigned>(code),
                      bytes.size());
        result.line = text;
        return result;
    }

    result.line = result.command->word;
    std::string reason;
    for (char letter : result.command->paraFmt) {
        if (letter == 'S') {
            continue;  // the console sends nothing for it
        }
        std::string value;
        if (!DecodeValue(letter, request, value, reason)) {
            break;
        }
        result.line += ' ';
        result.line += value;
    }
    if (reason.empty() && request.dataAvail() != 0) {
        std::snprintf(text, sizeof text, "%zu bytes left over", request.dataAvail());
        reason = text;
    }
    if (!reason.empty()) {
        result.line += " [bad request: " + reason + "]";
        return result;
    }
    result.kind = DecodedRequest::Kind::kCommand;
    return result;
}
