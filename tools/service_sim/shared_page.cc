#include "shared_page.h"

#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The page's range and, while an access runs, where its fault returns to.
char* volatile g_pageBegin = nullptr;
sigjmp_buf* volatile g_guard = nullptr;

// A fault inside the page while an access runs (raised by the kernel, not
// sent) means the file under the mapping was cut: the access is abandoned.
// Any other bus error is not ours and ends the process as it would have
// without this handler.
void OnBusError(int, siginfo_t* info, void*)
{
    if (g_guard != nullptr && ShmFaultOnPage(info, g_pageBegin)) {
        siglongjmp(*g_guard, 1);
    }
    signal(SIGBUS, SIG_DFL);  // the faulting access runs again and ends the process
}

std::string Refused(const std::string& path, const char* kind)
{
    return path + " is " + kind + ", not a regular file: refused";
}

}  // namespace

SharedPage::~SharedPage()
{
    std::string ignored;
    Close(ignored);
}

bool SharedPage::Open(const std::string& path, std::string& error)
{
    // O_NOFOLLOW refuses a link at path, a dangling one too (O_CREAT would
    // otherwise create its target); O_NONBLOCK keeps a FIFO from blocking
    // the open until it is refused below.
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0660);
    struct stat st {};
    if (fd < 0) {
        const int openErrno = errno;
        const char* kind = ::lstat(path.c_str(), &st) == 0 ? ShmNotRegular(st.st_mode) : nullptr;
        error = kind != nullptr ? Refused(path, kind) : "can't open " + path + ": " + std::strerror(openErrno);
        return false;
    }
    if (::fstat(fd, &st) != 0 || ShmNotRegular(st.st_mode) != nullptr) {
        error = ShmNotRegular(st.st_mode) != nullptr ? Refused(path, ShmNotRegular(st.st_mode))
                                                  : "can't stat " + path + ": " + std::strerror(errno);
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
    g_pageBegin = static_cast<char*>(base);
    struct sigaction action {};
    action.sa_sigaction = OnBusError;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    sigaction(SIGBUS, &action, nullptr);
    return true;
}

bool SharedPage::Close(std::string& error)
{
    if (m_base == nullptr) {
        return true;
    }
    void* base = m_base;
    m_base = nullptr;
    g_pageBegin = nullptr;
    if (::munmap(base, SHM_SIZE) != 0) {
        error = std::string("munmap failed: ") + std::strerror(errno);
        return false;
    }
    return true;
}

// Runs access, which touches the page only with plain loads, stores and
// copies (nothing to unwind), and abandons it at a fault in the page.
template <typename Access>
bool SharedPage::Guarded(Access access)
{
    if (m_lost || m_base == nullptr) {
        return false;
    }
    sigjmp_buf back;
    if (sigsetjmp(back, 1) != 0) {
        g_guard = nullptr;
        m_lost = true;
        return false;
    }
    g_guard = &back;
    access(m_base);
    g_guard = nullptr;
    return true;
}

bool SharedPage::LoadFlag(uint32_t& flag)
{
    return Guarded([&flag](void* page) { flag = ShmLoadFlag(page); });
}

bool SharedPage::TakeRequest(PageRequest& request)
{
    return Guarded([&request](void* page) {
        request.flag = ShmLoadFlag(page);
        request.size = ShmLoadSize(page);
        request.length = request.size < SHM_DATA_SIZE ? request.size : SHM_DATA_SIZE;
        std::memcpy(request.payload, ShmPayloadOf(page), request.length);
    });
}

bool SharedPage::Holds(const PageRequest& request, bool& holds)
{
    return Guarded([&request, &holds](void* page) {
        holds = ShmLoadFlag(page) == request.flag && ShmLoadSize(page) == request.size &&
                std::memcmp(ShmPayloadOf(page), request.payload, request.length) == 0;
    });
}

bool SharedPage::ClearRequestBit()
{
    return Guarded([](void* page) { ShmStoreFlag(page, ShmLoadFlag(page) & ~SHM_FLAG_REQUEST); });
}

bool SharedPage::PostReply(const uint8_t* reply, size_t length, uint32_t claimedSize)
{
    return Guarded([=](void* page) { ShmPostReply(page, reply, length, claimedSize); });
}
