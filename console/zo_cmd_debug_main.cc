// The shipped console: configuration and swap file in the device's fixed directory.
#include "zo_cmd_debug.h"
#include "zo_shm_page.h"

int main()
{
    return ZoCmdDebugMain(kShmDeviceDir);
}
