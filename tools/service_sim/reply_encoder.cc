#include "reply_encoder.h"

#include <cerrno>
#include <cstdlib>
#include <map>

#include <utils/String16.h>

#include "zo_format_letters.h"

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

bool WholeInteger(const std::string& text, long long& value)
{
    return WholeWord<long long>(text, [](const char* s, char** e) { return std::strtoll(s, e, NumberBase(s)); }, value);
}

}  // namespace

int NumberBase(const char* text)
{
    if (*text == '-' || *text == '+') {
        ++text;
    }
    return text[0] == '0' && (text[1] == 'x' || text[1] == 'X') ? 16 : 10;
}

bool ParseInt32Word(const char* text, int32_t& value)
{
    long long v = 0;
    if (text == nullptr || !WholeInteger(text, v) || v < INT32_MIN || v > static_cast<long long>(UINT32_MAX)) {
        return false;
    }
    value = static_cast<int32_t>(static_cast<uint32_t>(v));
    return true;
}

bool AppendValue(char letter, const std::string& text, android::Parcel& reply)
{
    const ZoFormatLetter* format = ZoFormatLetterOf(letter);
    if (format == nullptr || !format->supported) {
        return false;
    }
    ZoFormatValue value;
    long long integer = 0;
    float single = 0;
    bool parsed = false;
    switch (format->kind) {
    case ZoFormatKind::kInteger:
        parsed = WholeInteger(text, integer) && (format->wide || (integer >= INT32_MIN && integer <= INT32_MAX));
        value.integer = integer;
        break;
    case ZoFormatKind::kReal:
        if (format->wide) {
            parsed = WholeWord<double>(text, [](const char* s, char** e) { return std::strtod(s, e); }, value.real);
        } else {
            parsed = WholeWord<float>(text, [](const char* s, char** e) { return std::strtof(s, e); }, single);
            value.real = single;
        }
        break;
    case ZoFormatKind::kText:
        // String16 gives an empty text for UTF-8 whose last sequence is cut off; refuse that rather than send it.
        parsed = text.empty() || android::String16(text.c_str(), text.size()).size() != 0;
        value.text = text;
        break;
    }
    return parsed && format->write(reply, value) == android::NO_ERROR;
}

std::vector<uint8_t> ParcelBytes(const android::Parcel& parcel)
{
    const uint8_t* data = parcel.data();
    return data == nullptr ? std::vector<uint8_t>() : std::vector<uint8_t>(data, data + parcel.dataSize());
}

std::vector<uint8_t> BuiltInReply(const std::string& printFmt)
{
    static const std::map<char, std::string> kBuiltIn = {
        {'d', "42"}, {'D', "9000000000"}, {'f', "1.5"}, {'F', "2.25"}, {'s', "sim"}};
    android::Parcel reply;
    reply.writeInt32(0);
    for (char letter : printFmt) {
        const auto value = kBuiltIn.find(letter);
        if (value != kBuiltIn.end()) {
            AppendValue(letter, value->second, reply);
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
