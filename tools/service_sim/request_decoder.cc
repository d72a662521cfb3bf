#include "request_decoder.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include <binder/Parcel.h>

#include "zo_format_letters.h"

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

// Reads one value of the letter from the request as the line shows it.
// False with a reason when the bytes left do not hold it.
bool DecodeValue(const ZoFormatLetter* format, char letter, const android::Parcel& request, std::string& out,
                 std::string& reason)
{
    ZoFormatValue value;
    if (format == nullptr) {
        reason = std::string("parameter format letter '") + letter + "' has no encoding";
    } else if (request.dataAvail() < format->width) {
        reason = std::string("nothing left for '") + letter + "'";
    } else if (!format->read(request, value)) {
        reason = std::string("broken string for '") + letter + "'";
    }
    if (!reason.empty()) {
        return false;
    }
    char text[32];
    switch (format->kind) {
    case ZoFormatKind::kInteger:
        std::snprintf(text, sizeof text, "%" PRId64, value.integer);
        out = text;
        break;
    case ZoFormatKind::kReal:
        out = format->wide ? ShortestFloat(value.real) : ShortestFloat(static_cast<float>(value.real));
        break;
    case ZoFormatKind::kText:
        out = QuoteText(value.text);
        break;
    }
    return true;
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
        const ZoFormatLetter* format = ZoFormatLetterOf(letter);
        if (format != nullptr && !format->supported) {
            continue;  // the console sends nothing for it
        }
        std::string value;
        if (!DecodeValue(format, letter, request, value, reason)) {
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
