#include "zo_shm_service.h"

#include <cerrno>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string Refused(const std::string& path, const char* kind)
{
    return path + " is " + kind + ", not a regular file: refused";
}

int Fail(std::string* error, const std::string& message)
{
    if (error != nullptr) {
        *error = message;
    }
    return -1;
}

// Opens path for the page: created when missing (created tells), never
// through a symbolic link (O_EXCL and O_NOFOLLOW both refuse one, a dangling
// one too), and without blocking on a FIFO, which is refused later.
int OpenSwapFile(const std::string& path, bool& created)
{
    const int flags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    int fd = ::open(path.c_str(), flags | O_CREAT | O_EXCL, 0660);
    created = fd >= 0;
    if (!created && errno == EEXIST) {
        fd = ::open(path.c_str(), flags);
    }
    return fd;
}

// Gives the first page its blocks, so that a full file system fails here and
// not as a bus error at the first access. File systems without fallocate
// only get the size.
int ReservePage(int fd, off_t size)
{
    const int rc = posix_fallocate(fd, 0, SHM_SIZE);
    if (rc != EOPNOTSUPP && rc != EINVAL) {
        return rc;
    }
    return size >= static_cast<off_t>(SHM_SIZE) || ::ftruncate(fd, SHM_SIZE) == 0 ? 0 : errno;
}

int64_t NowMs()
{
    struct timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void SleepMs(unsigned ms)
{
    const struct timespec pause = {static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1000000};
    nanosleep(&pause, nullptr);
}

std::vector<uint8_t> StatusAlone(int32_t status)
{
    std::vector<uint8_t> reply(sizeof status);
    std::memcpy(reply.data(), &status, sizeof status);
    return reply;
}

}  // namespace

ZoShmService::~ZoShmService()
{
    Close();
}

int ZoShmService::Open(const std::string& path, std::string* error)
{
    Close();
    bool created = false;
    const int fd = OpenSwapFile(path, created);
    struct stat st {};
    if (fd < 0) {
        const int openErrno = errno;
        const char* kind = ::lstat(path.c_str(), &st) == 0 ? ShmNotRegular(st.st_mode) : nullptr;
        return Fail(error, kind != nullptr ? Refused(path, kind) : "can't open " + path + ": " + std::strerror(openErrno));
    }
    std::string message;
    if (::fstat(fd, &st) != 0) {
        message = "can't stat " + path + ": " + std::strerror(errno);
    } else if (const char* kind = ShmNotRegular(st.st_mode)) {
        message = Refused(path, kind);
    } else if (created && ::fchmod(fd, 0660) != 0) {  // the umask must not keep the console out
        message = "can't give " + path + " mode 0660: " + std::strerror(errno);
    } else if (const int rc = ReservePage(fd, st.st_size)) {
        message = "can't reserve " + std::to_string(SHM_SIZE) + " bytes for " + path + ": " + std::strerror(rc);
    } else {
        void* page = ::mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        if (page != MAP_FAILED) {
            ::close(fd);
            m_page = page;
            return 0;
        }
        message = "can't map " + path + ": " + std::strerror(errno);
    }
    ::close(fd);
    if (created) {
        ::unlink(path.c_str());
    }
    return Fail(error, message);
}

int ZoShmService::Close(std::string* error)
{
    if (m_page == nullptr) {
        return 0;
    }
    void* page = m_page;
    m_page = nullptr;
    return ::munmap(page, SHM_SIZE) == 0 ? 0 : Fail(error, std::string("munmap failed: ") + std::strerror(errno));
}

void ZoShmService::Register(int32_t code, Handler handler)
{
    m_handlers[code] = std::move(handler);
}

bool ZoShmService::Pending() const
{
    return m_page != nullptr && ShmRequestPending(ShmLoadFlag(m_page));
}

bool ZoShmService::WaitForRequest(unsigned timeoutMs, unsigned pollMs) const
{
    const int64_t deadline = NowMs() + timeoutMs;
    for (;;) {
        if (Pending()) {
            return true;
        }
        const int64_t left = deadline - NowMs();
        if (left <= 0) {
            return false;
        }
        SleepMs(left < pollMs ? static_cast<unsigned>(left) : pollMs);
    }
}

bool ZoShmService::Serve(unsigned timeoutMs)
{
    return WaitForRequest(timeoutMs) && ServeOne() == Served::kAnswered;
}

ZoShmService::Served ZoShmService::ServeOne(int32_t* code)
{
    if (!TakeRequest(m_request)) {
        return Served::kNothing;
    }
    const std::vector<uint8_t> reply = BuildReply(m_request, code);
    return PostReply(m_request, reply.data(), reply.size());
}

bool ZoShmService::TakeRequest(ZoShmRequest& request) const
{
    if (m_page == nullptr) {
        return false;
    }
    request.u32Flag = ShmLoadFlag(m_page);
    if (!ShmRequestPending(request.u32Flag)) {
        return false;
    }
    request.u32Size = ShmLoadSize(m_page);
    request.length = request.u32Size < SHM_DATA_SIZE ? request.u32Size : static_cast<uint32_t>(SHM_DATA_SIZE);
    std::memcpy(request.payload, ShmPayloadOf(m_page), request.length);
    return true;
}

ZoShmService::Served ZoShmService::PostReply(const ZoShmRequest& answered, const uint8_t* reply, size_t length,
                                             const uint32_t* claimedSize)
{
    int32_t tooLong = kStatusBadRequest;
    if (length > SHM_DATA_SIZE) {
        reply = reinterpret_cast<const uint8_t*>(&tooLong);
        length = sizeof tooLong;
    }
    if (m_page == nullptr || ShmLoadFlag(m_page) != answered.u32Flag || ShmLoadSize(m_page) != answered.u32Size ||
        std::memcmp(ShmPayloadOf(m_page), answered.payload, answered.length) != 0) {
        return Served::kDropped;
    }
    if (length != 0) {
        std::memcpy(ShmPayloadOf(m_page), reply, length);
    }
    ShmStoreSize(m_page, claimedSize != nullptr ? *claimedSize : static_cast<uint32_t>(length));
    ShmStoreFlag(m_page, answered.u32Flag | SHM_FLAG_REPLY);
    return Served::kAnswered;
}

void ZoShmService::DropRequest()
{
    if (m_page != nullptr) {
        ShmStoreFlag(m_page, ShmLoadFlag(m_page) & ~SHM_FLAG_REQUEST);
    }
}

std::vector<uint8_t> ZoShmService::BuildReply(const ZoShmRequest& request, int32_t* code)
{
    int32_t requestCode = -1;
    int32_t result = kStatusBadRequest;
    android::Parcel args, values;
    if (request.u32Size <= SHM_DATA_SIZE && request.length >= sizeof(int32_t)) {
        args.setData(request.payload, request.length);
        requestCode = args.readInt32();
        const auto handler = m_handlers.find(requestCode);
        result = handler == m_handlers.end() ? kStatusUnknownCode : handler->second(args, values);
    }
    if (code != nullptr) {
        *code = requestCode;
    }
    std::vector<uint8_t> reply = StatusAlone(result);
    if (result == 0 && values.dataSize() != 0) {
        reply.insert(reply.end(), values.data(), values.data() + values.dataSize());
    }
    return reply;
}
