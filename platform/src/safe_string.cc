// Bounds-checked copies and formats. Every refusal is decided before a byte
// is written, except the formatted forms, which can only know the length by
// formatting into the destination itself (never past destMax bytes).
#include "zo_tv_support.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

// Larger sizes are taken as a negative number converted by mistake.
constexpr size_t kMaxSize = 0x7fffffffu;

bool Overlap(const void* a, size_t aLen, const void* b, size_t bLen)
{
    const uintptr_t aStart = reinterpret_cast<uintptr_t>(a);
    const uintptr_t bStart = reinterpret_cast<uintptr_t>(b);
    return aStart < bStart + bLen && bStart < aStart + aLen;
}

bool UsableString(const char* dest, size_t destMax)
{
    return dest != nullptr && destMax != 0 && destMax <= kMaxSize;
}

// Copies len bytes of src and a terminator into dest, or refuses and leaves "".
int CopyText(char* dest, size_t destMax, const char* src, size_t len)
{
    if (!UsableString(dest, destMax)) {
        return EINVAL;
    }
    if (src == nullptr) {
        dest[0] = '\0';
        return EINVAL;
    }
    if (len >= destMax) {
        dest[0] = '\0';
        return ERANGE;
    }
    if (Overlap(dest, len + 1, src, len + 1)) {
        dest[0] = '\0';
        return EINVAL;
    }
    std::memcpy(dest, src, len);
    dest[len] = '\0';
    return 0;
}

// Formats into dest, allowing at most limit characters; -1 and "" when it does not fit.
int FormatText(char* dest, size_t destMax, size_t limit, const char* format, va_list args)
{
    if (!UsableString(dest, destMax)) {
        return -1;
    }
    if (format == nullptr) {
        dest[0] = '\0';
        return -1;
    }
    const int written = std::vsnprintf(dest, limit + 1, format, args);
    if (written < 0 || static_cast<size_t>(written) > limit) {
        dest[0] = '\0';
        return -1;
    }
    return written;
}

}  // namespace

int memcpy_s(void* dest, size_t destMax, const void* src, size_t count)
{
    if (dest == nullptr || src == nullptr || destMax == 0 || destMax > kMaxSize) {
        return EINVAL;
    }
    if (count > destMax) {
        return ERANGE;
    }
    if (Overlap(dest, count, src, count)) {
        return EINVAL;
    }
    std::memcpy(dest, src, count);
    return 0;
}

int strncpy_s(char* dest, size_t destMax, const char* src, size_t count)
{
    const size_t len = src != nullptr ? strnlen(src, count) : 0;
    return CopyText(dest, destMax, src, len);
}

int strcpy_s(char* dest, size_t destMax, const char* src)
{
    // Never measure further than could fit: a missing terminator is then
    // refused instead of being searched for past the source.
    const size_t len = src != nullptr ? strnlen(src, destMax) : 0;
    return CopyText(dest, destMax, src, len);
}

int sprintf_s(char* dest, size_t destMax, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int rc = FormatText(dest, destMax, destMax - 1, format, args);
    va_end(args);
    return rc;
}

int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
{
    const size_t limit = count < destMax - 1 ? count : destMax - 1;
    va_list args;
    va_start(args, format);
    const int rc = FormatText(dest, destMax, limit, format, args);
    va_end(args);
    return rc;
}
