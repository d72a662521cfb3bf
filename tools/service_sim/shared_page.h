// SharedPage: the service's side of the page that the console and the
// service map from the swap file. The layout, the handshake and the helpers
// that read and write the page are the console's own (zo_shm_page.h).
//
// Not thread-safe; one SharedPage per process.
#ifndef ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H
#define ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H

#include <string>

class SharedPage {
public:
    SharedPage() = default;
    ~SharedPage();  // unmaps
    SharedPage(const SharedPage&) = delete;
    SharedPage& operator=(const SharedPage&) = delete;

    // Opens path (creating it with mode 0660), grows it to a page when it is
    // shorter, and maps its first page shared. Returns true on success;
    // otherwise false with a message naming the file in error.
    bool Open(const std::string& path, std::string& error);
    // Unmaps the page; safe to call twice. False (with error) when munmap fails.
    bool Close(std::string& error);

    // The mapped page; null while none is mapped.
    void* Page() const { return m_base; }

private:
    void* m_base = nullptr;
};

#endif  // ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H
