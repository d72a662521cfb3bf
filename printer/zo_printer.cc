#include "zo_printer.h"

#include <cstdio>
#include <cstring>

#include "zo_format_letters.h"

namespace {

const char* const kSeparator = "===========================";
const char* const kLogTag = "ZoMW_Zo_cmd_pri";
// Numbers are formatted into a buffer of this size, terminator included.
constexpr size_t kTextSize = 256;

}  // namespace

Printer::Printer(const android::Parcel& parcel) : m_parcel(parcel) {}

Printer::~Printer() = default;

int Printer::Fmt(const char* fmt, const Array<std::string>& tags)
{
    if (fmt == nullptr || fmt[0] == '\0' || tags.Size() == 0) {
        return -1;
    }
    const size_t letters = strlen(fmt);
    std::string row;
    unsigned int tagIndex = 0;
    while (m_parcel.dataAvail() != 0) {
        const size_t passStart = m_parcel.dataPosition();
        for (unsigned int i = 0; i < letters && i < tags.Size(); ++i) {
            tagIndex = i;
            if (RenderField(fmt[i], tagIndex, tags, row) != 0) {
                return -1;
            }
        }
        // The data left decides whether another pass runs, so a pass that
        // consumed nothing would run for ever; its row holds no real value.
        if (m_parcel.dataPosition() == passStart) {
            break;
        }
        m_arrLines.PushBack(row);
        row.clear();
    }
    m_arrLines.PushFront(kSeparator);
    m_arrLines.PushBack(kSeparator);
    return 0;
}

int Printer::RenderField(char letter, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row)
{
    const ZoFormatLetter* format = ZoFormatLetterOf(letter);
    if (format == nullptr) {
        puts("invalid fmt info!");
        return -1;
    }
    if (ZoFormatInPair(letter, 'd')) {
        ParseIntegerfmt(format->wide, tagIndex, tags, row);
    } else if (ZoFormatInPair(letter, 'f')) {
        ParseDecimalfmt(format->wide, tagIndex, tags, row);
    } else if (ZoFormatInPair(letter, 's')) {
        ParseStringfmt(format->wide, tagIndex, tags, row);
    } else {  // a letter of no pair
        RenderValue(*format, "Fmt", __LINE__, tags[tagIndex], row);
    }
    return 0;
}

int Printer::Flush()
{
    while (m_arrLines.Size() != 0) {
        puts(m_arrLines[0].c_str());
        m_arrLines.PopFront();
    }
    return 0;
}

void Printer::ParseIntegerfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row)
{
    RenderValue(ZoFormatLetterOfPair('d', wide), "ParseIntegerfmt", __LINE__, tags[tagIndex], row);
}

void Printer::ParseDecimalfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row)
{
    RenderValue(ZoFormatLetterOfPair('f', wide), "ParseDecimalfmt", __LINE__, tags[tagIndex], row);
}

void Printer::ParseStringfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row)
{
    RenderValue(ZoFormatLetterOfPair('s', wide), "ParseStringfmt", __LINE__, tags[tagIndex], row);
}

void Printer::RenderValue(const ZoFormatLetter& format, const char* renderer, unsigned int line,
                          const std::string& tag, std::string& row)
{
    if (!format.supported) {
        puts(kZoFormatNoSupportS);
        return;
    }
    ZoFormatValue value;
    format.read(m_parcel, value);
    if (format.print == nullptr) {
        AppendField(tag, value.text.c_str(), row);
        return;
    }
    char text[kTextSize];
    memset(text, 0, sizeof text);
    const int ret = format.print(value, text, sizeof text);
    if (ret == -1) {
        ZoLog::PrintLog(ATV_LOG_PRIO_ERROR, kLogTag, renderer, line, format.printFailure, ret);
        return;
    }
    AppendField(tag, text, row);
}

void Printer::AppendField(const std::string& tag, const char* text, std::string& row)
{
    row += tag;
    row += ':';
    row += text;
    row += '\t';
}
