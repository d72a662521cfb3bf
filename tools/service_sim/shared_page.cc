#include "shared_page.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

SharedPage::~SharedPage()
{
    std::string ignored;
    Close(ignored);
}

bool SharedPage::Open(const std::string& path, std::string& error)
{
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660);
    if (fd < 0) {
        error = "can't open " + path + ": " + std::strerror(errno);
        return false;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0) {
        error = "can't stat " + path + ": " + std::strerror(errno);
        ::close(fd);
        return false;
    }
    // Only grow: a longer file keeps its tail, and only the first page is shared.
    if (st.st_size < static_cast<off_t>(kPageSize) && ::ftruncate(fd, kPageSize) != 0) {
        error = "can't grow " + path + " to 4096 bytes: " + std::strerror(errno);
        ::close(fd);
        return false;
    }
    void* base = ::mmap(nullptr, kPageSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    const int mapErrno = errno;
    ::close(fd);
    if (base == MAP_FAILED) {
        error = "can't map " + path + ": " + std::strerror(mapErrno);
        return false;
    }
    m_base = static_cast<uint8_t*>(base);
    return true;
}

bool SharedPage::Close(std::string& error)
{
    if (m_base == nullptr) {
        return true;
    }
    void* base = m_base;
    m_base = nullptr;
    if (::munmap(base, kPageSize) != 0) {
        error = std::string("munmap failed: ") + std::strerror(errno);
        return false;
    }
    return true;
}

uint32_t SharedPage::LoadFlag() const
{
    return __atomic_load_n(reinterpret_cast<const uint32_t*>(m_base), __ATOMIC_ACQUIRE);
}

void SharedPage::StoreFlag(uint32_t flag)
{
    __atomic_store_n(reinterpret_cast<uint32_t*>(m_base), flag, __ATOMIC_RELEASE);
}

bool SharedPage::RequestPending() const
{
    if (m_base == nullptr) {
        return false;
    }
    const uint32_t flag = LoadFlag();
    return (flag & kFlagRequest) != 0 && (flag & kFlagReply) == 0;
}

uint32_t SharedPage::RequestSize() const
{
    uint32_t size = 0;
    std::memcpy(&size, m_base + 4, sizeof size);
    return size;
}

std::vector<uint8_t> SharedPage::Payload(uint32_t n) const
{
    if (n > kPayloadSize) {
        n = kPayloadSize;
    }
    return std::vector<uint8_t>(m_base + kHeaderSize, m_base + kHeaderSize + n);
}

bool SharedPage::PostReply(const std::vector<uint8_t>& reply, uint32_t claimedSize)
{
    if (m_base == nullptr || reply.size() > kPayloadSize) {
        return false;
    }
    if (!reply.empty()) {
        std::memcpy(m_base + kHeaderSize, reply.data(), reply.size());
    }
    std::memcpy(m_base + 4, &claimedSize, sizeof claimedSize);
    StoreFlag(LoadFlag() | kFlagReply);
    return true;
}

void SharedPage::DropRequest()
{
    if (m_base != nullptr) {
        StoreFlag(LoadFlag() & ~kFlagRequest);
    }
}
