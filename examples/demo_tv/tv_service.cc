#include "tv_service.h"

#include <cinttypes>
#include <map>

namespace {

std::string Hex(int32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(code));
    return text;
}

// An argument as the request line shows it: integers in decimal, reals by %g, a
// string in double quotes with control bytes, '"' and '\' escaped.
std::string ShowArg(const ZoFormatLetter& format, const ZoFormatValue& value)
{
    char text[32];
    switch (format.kind) {
    case ZoFormatKind::kInteger:
        std::snprintf(text, sizeof text, "%" PRId64, value.integer);
        return text;
    case ZoFormatKind::kReal:
        std::snprintf(text, sizeof text, "%g", value.real);
        return text;
    case ZoFormatKind::kText:
        break;
    }
    std::string quoted = "\"";
    for (unsigned char c : value.text) {
        if (c < 0x20 || c == 0x7f || c == '"' || c == '\\') {
            std::snprintf(text, sizeof text, "\\x%02x", c);
            quoted += text;
        } else {
            quoted += static_cast<char>(c);
        }
    }
    return quoted + "\"";
}

// Reads one value per letter of paraFmt that carries one into in, and shows
// each on line. False when the request holds less or more than that.
bool ReadArgs(const char* paraFmt, const android::Parcel& args, TvArgs& in, std::string& line)
{
    for (const char* letter = paraFmt; *letter != '\0'; ++letter) {
        const ZoFormatLetter* format = ZoFormatLetterOf(*letter);
        if (!format->supported) {
            continue;  // S: the console sends nothing for it
        }
        ZoFormatValue value;
        if (!format->read(args, value)) {
            return false;
        }
        line += " " + ShowArg(*format, value);
        in.push_back(value);
    }
    return args.dataAvail() == 0;
}

// Writes the values by the letters of printFmt that carry one, starting
// again at the first letter for each further row.
void WriteRows(const char* printFmt, const std::vector<ZoFormatValue>& values, android::Parcel& reply)
{
    std::vector<const ZoFormatLetter*> row;
    for (const char* letter = printFmt; *letter != '\0'; ++letter) {
        if (ZoFormatLetterOf(*letter)->supported) {
            row.push_back(ZoFormatLetterOf(*letter));
        }
    }
    for (size_t i = 0; i < values.size() && !row.empty(); ++i) {
        row[i % row.size()]->write(reply, values[i]);
    }
}

}  // namespace

size_t TvService::Register(const ZoFileParse& catalogue, ZoShmService& service, std::vector<std::string>& warnings)
{
    std::map<int32_t, const TvCommand*> served;
    for (const TvCommand& command : TvCommands()) {
        const std::string name = "'" + std::string(command.word) + "' (" + command.module + ")";
        const int32_t modCode = catalogue.GetModInstruct(command.module);
        const int32_t code = modCode == -1 ? -1 : catalogue.GetCmdInstruct(modCode, command.word);
        if (code == -1) {
            warnings.push_back(name + " is not in the catalogue: not served");
            continue;
        }
        const std::string paraFmt = catalogue.GetCmdParaFmt(modCode, command.word);
        const std::string printFmt = catalogue.GetCmdPrintFmt(modCode, command.word);
        if (paraFmt != command.paraFmt || printFmt != command.printFmt) {
            warnings.push_back(name + ": the catalogue gives the formats \"" + paraFmt + "\" and \"" + printFmt +
                               "\", the TV reads \"" + command.paraFmt + "\" and answers \"" + command.printFmt +
                               "\": not served");
            continue;
        }
        const auto taken = served.emplace(code, &command);
        if (!taken.second) {
            warnings.push_back(name + ": instruction " + Hex(code) + " is taken by '" + taken.first->second->word +
                               "': not served");
            continue;
        }
        service.Register(code, [this, &command](const android::Parcel& args, android::Parcel& values) {
            return Serve(command, args, values);
        });
    }
    return served.size();
}

int32_t TvService::Serve(const TvCommand& command, const android::Parcel& args, android::Parcel& values)
{
    std::string line = command.word;
    TvArgs in;
    TvAnswer answer;
    if (!ReadArgs(command.paraFmt, args, in, line)) {
        answer = {ZoShmService::kStatusBadRequest, {},
                  "bad request: the arguments do not match \"" + std::string(command.paraFmt) + "\""};
    } else {
        answer = command.answer(m_tv, in, MonotonicMs());
    }
    if (answer.status == 0) {
        WriteRows(command.printFmt, answer.values, values);
    }
    std::fprintf(m_log, "%s -> %s\n", line.c_str(), answer.text.c_str());
    std::fflush(m_log);
    return answer.status;
}
