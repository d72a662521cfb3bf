#include "zo_shm_console.h"

#include <cstdio>
#include <ctime>

#include <zo_tv_support.h>

#include "zo_shm_page.h"

int ShmPostRequest(void* page, const android::Parcel& request)
{
    const uint8_t* data = request.data();
    if (data == nullptr) {
        puts("requestData is the null");
        return -1;
    }
    const size_t size = request.dataSize();
    if (memcpy_s(ShmPayloadOf(page), SHM_DATA_SIZE, data, size) != 0) {
        return -1;
    }
    ShmStoreSize(page, static_cast<uint32_t>(size));
    ShmStoreFlag(page, SHM_FLAG_REQUEST);
    return 0;
}

int ShmAwaitReply(void* page, android::Parcel& reply)
{
    const struct timespec step = {0, kShmConsolePollNs};
    do {
        nanosleep(&step, nullptr);
    } while ((ShmLoadFlag(page) & SHM_FLAG_REPLY) == 0);

    // Read once: the service may still be writing, and only this value was checked.
    const uint32_t size = ShmLoadSize(page);
    if (size > SHM_DATA_SIZE) {
        return -1;
    }
    return reply.setData(ShmPayloadOf(page), size) == android::NO_ERROR ? 0 : -1;
}
