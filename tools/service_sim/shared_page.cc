#include "shared_page.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "zo_shm_page.h"

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
    if (st.st_size < static_cast<off_t>(SHM_SIZE) && ::ftruncate(fd, SHM_SIZE) != 0) {
        error = "can't grow " + path + " to " + std::to_string(SHM_SIZE) + " bytes: " + std::strerror(errno);
        ::close(fd);
        return false;
    }
    void* base = ::mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    const int mapErrno = errno;
    ::close(fd);
    if (base == MAP_FAILED) {
        error = "can't map " + path + ": " + std::strerror(mapErrno);
        return false;
    }
    m_base = base;
    return true;
}

bool SharedPage::Close(std::string& error)
{
    if (m_base == nullptr) {
        return true;
    }
    void* base = m_base;
    m_base = nullptr;
    if (::munmap(base, SHM_SIZE) != 0) {
        error = std::string("munmap failed: ") + std::strerror(errno);
        return false;
    }
    return true;
}
