// The swap file: opening it (creating it when missing), checking that it can
// back the page, mapping its first page and claiming it for this console.
#include "zo_cmd_swap_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "zo_cmd_debug.h"
#include "zo_shm_page.h"

namespace {

// Ends the process when mode is a FIFO's or a device's: opening one could
// block or act on the device, and neither can back the page. The kinds that
// open itself refuses (a directory, a socket) are left to it and its errno.
void RefuseFifoOrDevice(mode_t mode)
{
    if (S_ISFIFO(mode) || S_ISCHR(mode) || S_ISBLK(mode)) {
        printf("swap file %s is %s, not a regular file\n", g_strSwapFile.c_str(), ShmNotRegular(mode));
        exit(1);
    }
}

// Where O_CREAT on path creates the file: the end of its chain of symbolic
// links (the target of a dangling link), or path itself. Opening that with
// O_EXCL tells for certain whether this console created the file.
std::string CreationPath(std::string path)
{
    for (int hops = 0; hops < 40; ++hops) {  // the kernel's own limit
        char target[PATH_MAX];
        const ssize_t n = readlink(path.c_str(), target, sizeof target);
        if (n <= 0 || n == static_cast<ssize_t>(sizeof target)) {
            break;
        }
        const std::string next(target, static_cast<size_t>(n));
        path = next[0] == '/' ? next : path.substr(0, path.rfind('/') + 1) + next;
    }
    return path;
}

// One console per page: a second one would take the first one's replies. The
// claim is a flock on a descriptor kept open for the process's life; it
// belongs to that open file, so closing the mapping's descriptor keeps it, and
// it goes with the process however that ends (the Ctrl-C kill included). A
// POSIX record lock on the byte behind the page names the holder to the next
// console: F_GETLK reports its process id, which flock does not; alone it
// would not do, as any close of the file by this process drops it. (An open
// file description's record lock, F_OFD_SETLK, would hold like flock, but it
// reports no process id either and wants struct flock64 on the 32-bit device.)
struct flock HolderLock()
{
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(SHM_SIZE);
    lock.l_len = 1;
    return lock;
}

// Ends the process when another console holds the claim. Where the file
// system keeps no locks the console runs unclaimed.
void ClaimOrExit(int claim)
{
    struct flock holder = HolderLock();
    if (flock(claim, LOCK_EX | LOCK_NB) == 0) {
        fcntl(claim, F_SETLK, &holder);  // only names this console; the claim holds without it
        return;
    }
    if (errno != EWOULDBLOCK) {
        return;
    }
    if (fcntl(claim, F_GETLK, &holder) == 0 && holder.l_type != F_UNLCK) {
        printf("swap file %s is in use by another console (process %d)\n", g_strSwapFile.c_str(),
               static_cast<int>(holder.l_pid));
    } else {
        printf("swap file %s is in use by another console\n", g_strSwapFile.c_str());
    }
    exit(1);
}

}  // namespace

void* MapSwapFile()
{
    char resolved[4096];
    std::memset(resolved, 0, sizeof resolved);
    // realpath refuses a file that does not exist yet (or a dangling link); it is then opened by its given name.
    const char* path = realpath(g_strSwapFile.c_str(), resolved) != nullptr ? resolved : g_strSwapFile.c_str();

    struct stat info;
    if (stat(path, &info) == 0) {
        RefuseFifoOrDevice(info.st_mode);
    }
    const std::string creation = CreationPath(path);
    int fd = open(creation.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0660);
    const bool created = fd >= 0;
    if (!created && errno == EEXIST) {
        fd = open(creation.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660);
    }
    if (fd < 0) {
        printf("can't open swap file %s, errno = %d\n", g_strSwapFile.c_str(), errno);
        exit(1);
    }
    if (fstat(fd, &info) == 0) {
        RefuseFifoOrDevice(info.st_mode);  // replaced since the first look
        if (info.st_size < static_cast<off_t>(SHM_SIZE)) {
            printf("swap file %s is %lld bytes long, it needs at least %u bytes: start the service first\n",
                   g_strSwapFile.c_str(), static_cast<long long>(info.st_size), static_cast<unsigned int>(SHM_SIZE));
            if (created) {
                unlink(creation.c_str());
            }
            exit(1);
        }
    }
    void* page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    const int claim = fcntl(fd, F_DUPFD_CLOEXEC, 0);  // the same open file, kept for the claim
    close(fd);
    if (page == MAP_FAILED) {
        perror("map share memery failed!\n");
        exit(1);
    }
    ClaimOrExit(claim);
    return page;
}
