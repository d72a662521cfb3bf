// The shared page between the console and the middleware service.
//
// Both processes map the first 4096 bytes of the swap file shared. Layout, in
// the processor's native byte order:
//
//   offset 0  u32Flag   bit 0 SHM_FLAG_REQUEST: the console posted a request
//                       bit 1 SHM_FLAG_REPLY:   the service's reply is complete
//   offset 4  u32Size   length of the parcel data at offset 8
//   offset 8  payload   4088 bytes: the request parcel, later the reply parcel
//
// A request is pending exactly when bit 0 is set and bit 1 is clear. The
// console posts by writing the payload, then u32Size, then the flag word with
// only bit 0 set (which also clears a reply flag left by the last exchange).
// The service answers by writing the reply payload and u32Size, then setting
// bit 1. The flag word is the only synchronisation: it is stored with release
// and loaded with acquire ordering, so a side that sees the new flag also sees
// the payload and size written before it, on a weakly ordered CPU as well.
//
// The console's half of the exchange is in zo_shm_console.h, the service's
// half in zo_shm_service.h; nothing else writes an offset or a flag bit.
#ifndef ZO_SHM_ZO_SHM_PAGE_H
#define ZO_SHM_ZO_SHM_PAGE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include <signal.h>
#include <sys/stat.h>

constexpr size_t SHM_SIZE = 4096;
constexpr size_t SHM_HEAD_SIZE = 8;
constexpr size_t SHM_DATA_SIZE = SHM_SIZE - SHM_HEAD_SIZE;

constexpr uint32_t SHM_FLAG_REQUEST = 1u << 0;
constexpr uint32_t SHM_FLAG_REPLY = 1u << 1;

// On the device the console's catalogue and the swap file are in this
// directory; the swap file is this name in it.
constexpr char kShmDeviceDir[] = "/atv/dbg";
constexpr char kShmSwapFileName[] = ".tv";

inline std::string ShmSwapFilePath(const std::string& dir)
{
    return dir + "/" + kShmSwapFileName;
}

// The first 8 bytes of the page.
struct ShmHeader {
    uint32_t u32Flag;
    uint32_t u32Size;
};
static_assert(sizeof(ShmHeader) == SHM_HEAD_SIZE, "the page header is two 32-bit words");

inline ShmHeader* ShmHeaderOf(void* page)
{
    return static_cast<ShmHeader*>(page);
}

inline uint8_t* ShmPayloadOf(void* page)
{
    return static_cast<uint8_t*>(page) + SHM_HEAD_SIZE;
}

// Publishes the flag word after everything written to the page before it.
inline void ShmStoreFlag(void* page, uint32_t flag)
{
    __atomic_store_n(&ShmHeaderOf(page)->u32Flag, flag, __ATOMIC_RELEASE);
}

// Reads the flag word; what the other side wrote before it is visible after it.
inline uint32_t ShmLoadFlag(void* page)
{
    return __atomic_load_n(&ShmHeaderOf(page)->u32Flag, __ATOMIC_ACQUIRE);
}

// u32Size, read or written without tearing; ordered by the flag word.
inline void ShmStoreSize(void* page, uint32_t size)
{
    __atomic_store_n(&ShmHeaderOf(page)->u32Size, size, __ATOMIC_RELAXED);
}

inline uint32_t ShmLoadSize(void* page)
{
    return __atomic_load_n(&ShmHeaderOf(page)->u32Size, __ATOMIC_RELAXED);
}

// True when the flag word holds a pending request: bit 0 set, bit 1 clear.
inline bool ShmRequestPending(uint32_t flag)
{
    return (flag & (SHM_FLAG_REQUEST | SHM_FLAG_REPLY)) == SHM_FLAG_REQUEST;
}

// What a swap file that cannot back the page is, for a message ("a FIFO");
// null for a regular file, the only kind that can.
inline const char* ShmNotRegular(mode_t mode)
{
    if (S_ISREG(mode)) {
        return nullptr;
    }
    if (S_ISLNK(mode)) {
        return "a symbolic link";
    }
    if (S_ISDIR(mode)) {
        return "a directory";
    }
    if (S_ISFIFO(mode)) {
        return "a FIFO";
    }
    if (S_ISCHR(mode)) {
        return "a character device";
    }
    if (S_ISBLK(mode)) {
        return "a block device";
    }
    return S_ISSOCK(mode) ? "a socket" : "a special file";
}

// For a SIGBUS handler: true when the kernel raised it (it was not sent) for an
// access inside the page at page, which happens once the file under the
// mapping is cut shorter than the page. Async-signal-safe.
inline bool ShmFaultOnPage(const siginfo_t* info, const void* page)
{
    const uintptr_t at = reinterpret_cast<uintptr_t>(info->si_addr);
    return info->si_code > 0 && page != nullptr && at - reinterpret_cast<uintptr_t>(page) < SHM_SIZE;
}

// A page access that faults has lost the page one of two ways: the file was
// cut below a page (truncated), or it still has its size but the file system
// could not give it a block (a sparse file on a full file system). The
// message says which; ShmFileCutShort tells them apart by the file's size
// now, and is async-signal-safe (one stat), so a handler may call it.
inline bool ShmFileCutShort(const char* path)
{
    struct stat info;
    return stat(path, &info) != 0 || info.st_size < static_cast<off_t>(SHM_SIZE);
}

inline std::string ShmLostMessage(const std::string& path, bool cutShort)
{
    return "swap file " + path +
           (cutShort ? " was truncated while mapped: the shared page is lost"
                     : " could not back the shared page (is its file system full?): the shared page is lost");
}

#endif  // ZO_SHM_ZO_SHM_PAGE_H
