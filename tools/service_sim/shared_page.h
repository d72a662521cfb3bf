// SharedPage: the service's side of the 4096-byte page that the console and
// the service map from the swap file.
//
// Layout: u32Flag at 0, u32Size at 4, payload (at most 4088 bytes) at 8.
// Bit 0 of the flag is the console's request, bit 1 the service's reply; a
// request is pending while bit 0 is set and bit 1 clear. The flag word is
// read with acquire and written with release ordering, so the payload and
// u32Size are complete on both sides before the flag says so.
//
// Not thread-safe; one SharedPage per process.
#ifndef ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H
#define ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H

#include <cstdint>
#include <string>
#include <vector>

class SharedPage {
public:
    static constexpr uint32_t kPageSize = 4096;
    static constexpr uint32_t kHeaderSize = 8;
    static constexpr uint32_t kPayloadSize = kPageSize - kHeaderSize;
    static constexpr uint32_t kFlagRequest = 1u << 0;
    static constexpr uint32_t kFlagReply = 1u << 1;

    SharedPage() = default;
    ~SharedPage();  // unmaps
    SharedPage(const SharedPage&) = delete;
    SharedPage& operator=(const SharedPage&) = delete;

    // Opens path (creating it with mode 0660), grows it to 4096 bytes when it
    // is shorter, and maps its first 4096 bytes shared. Returns true on
    // success; otherwise false with a message naming the file in error.
    bool Open(const std::string& path, std::string& error);
    // Unmaps the page; safe to call twice. False (with error) when munmap fails.
    bool Close(std::string& error);

    // True iff a request is pending.
    bool RequestPending() const;
    // The value the console put in u32Size, unchecked.
    uint32_t RequestSize() const;
    // The first n bytes of the payload (n at most kPayloadSize).
    std::vector<uint8_t> Payload(uint32_t n) const;

    // Writes the reply (at most kPayloadSize bytes) and u32Size = claimedSize,
    // then sets the reply bit; bit 0 and the other bits stay as they are.
    // False, writing nothing, when the reply does not fit.
    bool PostReply(const std::vector<uint8_t>& reply, uint32_t claimedSize);
    // Clears the request bit without answering, so the pending request is
    // taken and the next one can be told apart from it.
    void DropRequest();

private:
    uint32_t LoadFlag() const;
    void StoreFlag(uint32_t flag);

    uint8_t* m_base = nullptr;
};

#endif  // ZO_TOOLS_SERVICE_SIM_SHARED_PAGE_H
