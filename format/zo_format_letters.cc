#include "zo_format_letters.h"

#include <utils/String16.h>
#include <utils/String8.h>

#include "zo_tv_support.h"

const char* const kZoFormatNoSupportS = "current is no support 'S' format";
const char kZoFormatLetters[] = "dDfFsS";

namespace {

using android::Parcel;
using android::status_t;

status_t WriteInt32(Parcel& p, const ZoFormatValue& v) { return p.writeInt32(static_cast<int32_t>(v.integer)); }
status_t WriteInt64(Parcel& p, const ZoFormatValue& v) { return p.writeInt64(v.integer); }
status_t WriteFloat(Parcel& p, const ZoFormatValue& v) { return p.writeFloat(static_cast<float>(v.real)); }
status_t WriteDouble(Parcel& p, const ZoFormatValue& v) { return p.writeDouble(v.real); }
status_t WriteString(Parcel& p, const ZoFormatValue& v)
{
    return p.writeString16(android::String16(v.text.c_str(), v.text.size()));
}

// A number's reader gives 0 without moving when its bytes are not all there.
bool ReadInt32(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 4;
    v.integer = p.readInt32();
    return whole;
}
bool ReadInt64(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 8;
    v.integer = p.readInt64();
    return whole;
}
bool ReadFloat(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 4;
    v.real = p.readFloat();
    return whole;
}
bool ReadDouble(const Parcel& p, ZoFormatValue& v)
{
    const bool whole = p.dataAvail() >= 8;
    v.real = p.readDouble();
    return whole;
}
// The reader gives an empty text for a broken block as for "": the count tells them apart.
bool ReadString(const Parcel& p, ZoFormatValue& v)
{
    const size_t start = p.dataPosition();
    const bool counted = p.dataAvail() >= 4;
    const int32_t count = p.readInt32();
    p.setDataPosition(start);
    const android::String16 units = p.readString16();
    const android::String8 text(units);
    v.text.assign(text.c_str(), text.size());
    return counted && (count == 0 || units.size() != 0);
}

int PrintInt32(const ZoFormatValue& v, char* text, size_t size)
{
    return sprintf_s(text, size, "%d", static_cast<int32_t>(v.integer));
}
int PrintInt64(const ZoFormatValue& v, char* text, size_t size)
{
    // long long is 64 bits on the 32-bit device as well as on the host.
    return sprintf_s(text, size, "%lld", static_cast<long long>(v.integer));
}
int PrintFloat(const ZoFormatValue& v, char* text, size_t size)
{
    return sprintf_s(text, size, "%f", static_cast<double>(static_cast<float>(v.real)));
}
int PrintDouble(const ZoFormatValue& v, char* text, size_t size)
{
    return snprintf_s(text, size, size, "%16.6lf", v.real);
}

const char* const kSprintfFailed = "sprintf_s failed, ret = %d";

const ZoFormatLetter kLetters[] = {
    {'d', ZoFormatKind::kInteger, false, true, 4, WriteInt32, ReadInt32, PrintInt32, kSprintfFailed},
    {'D', ZoFormatKind::kInteger, true, true, 8, WriteInt64, ReadInt64, PrintInt64, kSprintfFailed},
    {'f', ZoFormatKind::kReal, false, true, 4, WriteFloat, ReadFloat, PrintFloat, kSprintfFailed},
    {'F', ZoFormatKind::kReal, true, true, 8, WriteDouble, ReadDouble, PrintDouble, "snprintf_s failed, ret = %d"},
    {'s', ZoFormatKind::kText, false, true, 4, WriteString, ReadString, nullptr, nullptr},
    {'S', ZoFormatKind::kText, true, false, 0, nullptr, nullptr, nullptr, nullptr},
};
static_assert(sizeof kLetters / sizeof kLetters[0] == sizeof kZoFormatLetters - 1, "one row per letter");

}  // namespace

const ZoFormatLetter* ZoFormatLetterOf(char letter)
{
    for (const ZoFormatLetter& row : kLetters) {
        if (row.letter == letter) {
            return &row;
        }
    }
    return nullptr;
}
