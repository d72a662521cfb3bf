// SharedPage: the service's side of the page that the console and the
// service map from the swap file. The layout, the handshake and the helpers
// that read and write the page are the console's own (zo_shm_page.h).
//
// The swap file must be a regular file reached without a symbolic link: the
// simulator never creates, grows or writes a file through a link. Every
// access to the mapped page goes through the methods below; when the file is
// cut below a page while mapped, the access faults with SIGBUS, the fault is
// caught, and the method returns false: the page is lost for good.
//
// Not thread-safe; one SharedPage per process.
#ifndef ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H
#define ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "zo_shm_page.h"

// What the page held when a request was taken: enough to tell later whether
// it still holds that request.
struct PageRequest {
    uint32_t flag = 0;
    uint32_t size = 0;      // u32Size as posted, maybe beyond the payload
    size_t length = 0;      // bytes of payload copied: size, at most SHM_DATA_SIZE
    uint8_t payload[SHM_DATA_SIZE];
};

class SharedPage {
public:
    SharedPage() = default;
    ~SharedPage();  // unmaps
    SharedPage(const SharedPage&) = delete;
    SharedPage& operator=(const SharedPage&) = delete;

    // Opens path (creating it with mode 0660), grows it to a page when it is
    // shorter, and maps its first page shared. Returns true on success;
    // otherwise false with a message naming the file in error. A symbolic
    // link or anything but a regular file is refused.
    bool Open(const std::string& path, std::string& error);
    // Unmaps the page; safe to call twice. False (with error) when munmap fails.
    bool Close(std::string& error);

    // The accesses; each is false once the page is lost.
    bool LoadFlag(uint32_t& flag);
    bool TakeRequest(PageRequest& request);
    // holds: the page holds request still (flag, u32Size and payload unchanged).
    bool Holds(const PageRequest& request, bool& holds);
    bool ClearRequestBit();
    bool PostReply(const uint8_t* reply, size_t length, uint32_t claimedSize);

private:
    template <typename Access>
    bool Guarded(Access access);

    void* m_base = nullptr;
    bool m_lost = false;  // an access found the swap file cut below a page
};

#endif  // ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H
