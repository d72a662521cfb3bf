// Host stand-in for the platform's status values: 0 is success, failures are
// negative errno values, as on the device.
#ifndef ZO_PLATFORM_UTILS_ERRORS_H
#define ZO_PLATFORM_UTILS_ERRORS_H

#include <cerrno>
#include <cstdint>

namespace android {

typedef int32_t status_t;

enum {
    OK = 0,
    NO_ERROR = 0,
    NO_MEMORY = -ENOMEM,
    BAD_VALUE = -EINVAL,
    NOT_ENOUGH_DATA = -ENODATA,
};

}  // namespace android

#endif  // ZO_PLATFORM_UTILS_ERRORS_H
