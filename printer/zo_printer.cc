#include "zo_printer.h"

#include <cstdio>
#include <cstring>

#include <utils/String16.h>
#include <utils/String8.h>

namespace {

const char* const kSeparator = "===========================";
const char* const kNoSupportS = "current is no support 'S' format";
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
    switch (letter) {
        case 'd':
            ParseIntegerfmt(ZO_FALSE, tagIndex, tags, row);
            return 0;
        case 'D':
            ParseIntegerfmt(ZO_TRUE, tagIndex, tags, row);
            return 0;
        case 'f':
            ParseDecimalfmt(ZO_FALSE, tagIndex, tags, row);
            return 0;
        case 'F':
            ParseDecimalfmt(ZO_TRUE, tagIndex, tags, row);
            return 0;
        case 's':
            ParseStringfmt(ZO_FALSE, tagIndex, tags, row);
            return 0;
        case 'S':
            puts(kNoSupportS);
            return 0;
        default:
            puts("invalid fmt info!");
            return -1;
    }
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
    char text[kTextSize];
    memset(text, 0, sizeof text);
    int ret;
    if (wide) {
        // long long is 64 bits on the 32-bit device as well as on the host.
        ret = sprintf_s(text, sizeof text, "%lld", static_cast<long long>(m_parcel.readInt64()));
    } else {
        ret = sprintf_s(text, sizeof text, "%d", m_parcel.readInt32());
    }
    if (ret == -1) {
        ZoLog::PrintLog(ATV_LOG_PRIO_ERROR, kLogTag, "ParseIntegerfmt", __LINE__, "sprintf_s failed, ret = %d", ret);
        return;
    }
    AppendField(tags[tagIndex], text, row);
}

void Printer::ParseDecimalfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row)
{
    char text[kTextSize];
    memset(text, 0, sizeof text);
    if (wide) {
        const int ret = snprintf_s(text, sizeof text, sizeof text, "%16.6lf", m_parcel.readDouble());
        if (ret == -1) {
            ZoLog::PrintLog(ATV_LOG_PRIO_ERROR, kLogTag, "ParseDecimalfmt", __LINE__, "snprintf_s failed, ret = %d",
                            ret);
            return;
        }
    } else {
        const int ret = sprintf_s(text, sizeof text, "%f", static_cast<double>(m_parcel.readFloat()));
        if (ret == -1) {
            ZoLog::PrintLog(ATV_LOG_PRIO_ERROR, kLogTag, "ParseDecimalfmt", __LINE__, "sprintf_s failed, ret = %d",
                            ret);
            return;
        }
    }
    AppendField(tags[tagIndex], text, row);
}

void Printer::ParseStringfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row)
{
    if (wide) {
        puts(kNoSupportS);
        return;
    }
    const android::String8 text(m_parcel.readString16());
    AppendField(tags[tagIndex], text.c_str(), row);
}

void Printer::AppendField(const std::string& tag, const char* text, std::string& row)
{
    row += tag;
    row += ':';
    row += text;
    row += '\t';
}
