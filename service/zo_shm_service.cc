#include "zo_shm_service.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>

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

std::string Hex(int32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(code));
    return text;
}

bool SameRequest(void* page, const ZoShmRequest& request)
{
    return ShmLoadFlag(page) == request.u32Flag && ShmLoadSize(page) == request.u32Size &&
           std::memcmp(ShmPayloadOf(page), request.payload, request.length) == 0;
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
            m_haveStale = false;
            m_haveStale = TakeRequest(m_stale);
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
    RegisterCode(code, [handler](const android::Parcel& args, android::Parcel& values, std::string&) {
        return handler(args, values);
    });
}

void ZoShmService::RegisterCode(int32_t code, CodeHandler handler)
{
    m_handlers[code] = std::move(handler);
}

bool ZoShmService::Pending() const
{
    return m_page != nullptr && ShmRequestPending(ShmLoadFlag(m_page));
}

bool ZoShmService::WaitForRequest(unsigned timeoutMs) const
{
    const int64_t deadline = NowMs() + timeoutMs;
    for (;;) {
        if (Stopped()) {
            return false;
        }
        if (Pending()) {
            return true;
        }
        const int64_t left = deadline - NowMs();
        if (left <= 0) {
            return false;
        }
        SleepMs(left < m_pollMs ? static_cast<unsigned>(left) : m_pollMs);
    }
}

ZoShmService::Outcome ZoShmService::Serve(unsigned timeoutMs)
{
    return WaitForRequest(timeoutMs) ? ServeOne() : Outcome();
}

ZoShmService::Outcome ZoShmService::ServeOne()
{
    Outcome outcome;
    if (!TakeRequest(m_request)) {
        return outcome;
    }
    const std::vector<uint8_t> reply = Dispatch(m_request, &outcome);
    outcome.served = PostReply(m_request, reply.data(), reply.size());
    return outcome;
}

std::vector<uint8_t> ZoShmService::Dispatch(const uint8_t* request, size_t length, Outcome* outcome)
{
    Outcome ignored;
    return Reply(request, length, length, false, outcome != nullptr ? *outcome : ignored);
}

std::vector<uint8_t> ZoShmService::Dispatch(const ZoShmRequest& request, Outcome* outcome)
{
    Outcome ignored;
    return Reply(request.payload, request.length, request.u32Size, request.stale,
                 outcome != nullptr ? *outcome : ignored);
}

bool ZoShmService::TakeRequest(ZoShmRequest& request)
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
    // Once: a console that sends the same bytes again later sends a new request.
    request.stale = m_haveStale && request.u32Flag == m_stale.u32Flag && request.u32Size == m_stale.u32Size &&
                    std::memcmp(request.payload, m_stale.payload, request.length) == 0;
    m_haveStale = false;
    return true;
}

ZoShmService::Served ZoShmService::PostReply(const ZoShmRequest& answered, const uint8_t* reply, size_t length)
{
    return Post(answered, reply, length, nullptr);
}

ZoShmService::Served ZoShmService::PostReplyClaiming(const ZoShmRequest& answered, const uint8_t* reply,
                                                     size_t length, uint32_t claimedSize)
{
    return Post(answered, reply, length, &claimedSize);
}

ZoShmService::Served ZoShmService::Post(const ZoShmRequest& answered, const uint8_t* reply, size_t length,
                                        const uint32_t* claimedSize)
{
    int32_t tooLong = kStatusReplyTooLong;
    if (length > SHM_DATA_SIZE) {
        reply = reinterpret_cast<const uint8_t*>(&tooLong);
        length = sizeof tooLong;
    }
    if (m_page == nullptr || !SameRequest(m_page, answered)) {
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

std::vector<uint8_t> ZoShmService::Reply(const uint8_t* bytes, size_t length, size_t size, bool stale,
                                         Outcome& outcome)
{
    outcome = Outcome();
    if (size > SHM_DATA_SIZE) {
        outcome.status = kStatusBadRequest;
        outcome.problem = "a request of " + std::to_string(size) + " bytes, more than the page's " +
                          std::to_string(SHM_DATA_SIZE);
        return StatusAlone(outcome.status);
    }
    if (length < sizeof(int32_t)) {
        outcome.status = kStatusBadRequest;
        outcome.problem = "a request of " + std::to_string(length) + " bytes, too short for an instruction code";
        return StatusAlone(outcome.status);
    }
    android::Parcel args, values;
    args.setData(bytes, length);
    outcome.code = args.readInt32();
    const auto handler = m_handlers.find(outcome.code);
    if (stale && !m_serveStale) {
        outcome.status = kStatusStaleRequest;
        outcome.problem = "instruction " + Hex(outcome.code) + " was pending before the page was opened: not run";
    } else if (handler == m_handlers.end()) {
        outcome.status = kStatusNoHandler;
        outcome.problem = "no handler for instruction " + Hex(outcome.code);
    } else {
        try {
            outcome.status = handler->second(args, values, outcome.problem);
        } catch (const std::exception& e) {
            outcome.status = kStatusHandlerFailed;
            outcome.problem = "the handler of instruction " + Hex(outcome.code) + " threw: " + e.what();
        } catch (...) {
            outcome.status = kStatusHandlerFailed;
            outcome.problem = "the handler of instruction " + Hex(outcome.code) + " threw";
        }
    }
    if (outcome.status != 0) {
        return StatusAlone(outcome.status);
    }
    outcome.problem.clear();
    std::vector<uint8_t> reply = StatusAlone(0);
    if (values.dataSize() > SHM_DATA_SIZE - reply.size()) {
        outcome.status = kStatusReplyTooLong;
        outcome.problem = "the reply to instruction " + Hex(outcome.code) + " takes " +
                          std::to_string(reply.size() + values.dataSize()) + " bytes, more than the page's " +
                          std::to_string(SHM_DATA_SIZE);
        return StatusAlone(outcome.status);
    }
    if (values.dataSize() != 0) {
        reply.insert(reply.end(), values.data(), values.data() + values.dataSize());
    }
    return reply;
}
