// The swap file: opening it (creating it when missing), checking that it can
// back the page, mapping its first page and telling of another console on it.
#include "zo_cmd_swap_file.h"

#include <fcntl.h>
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

// Descriptors 0, 1 and 2 belong to the terminal. In a console started with one
// of them closed, a descriptor of the swap file there would take the prompt
// and the messages into the page; so every descriptor of the file is moved
// above them.
int AboveStandardStreams(int fd)
{
    if (fd < 0 || fd > STDERR_FILENO) {
        return fd;
    }
    const int moved = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(fd);
    return moved;
}

// Nothing arbitrates between two consoles on one page (a second one may take
// the first one's replies), but a console says when another one uses it. Each
// console holds a shared POSIX record lock on the byte behind the page,
// through a descriptor it keeps open for its whole life: any number can hold
// it at once, it goes with the process however that ends (the Ctrl-C kill
// included), and F_GETLK names the process id of another holder. Taken first
// and looked for after, so that of two consoles starting together at least
// one sees the other. Where the file system keeps no locks nothing is said.
void WarnOfAnotherConsole(int fd)
{
    struct flock lock {};
    lock.l_type = F_RDLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(SHM_SIZE);
    lock.l_len = 1;
    fcntl(fd, F_SETLK, &lock);
    lock.l_type = F_WRLCK;  // in the way of every other console's lock, never of this one's
    if (fcntl(fd, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK) {
        fprintf(stderr, "swap file %s is also used by another console (process %d): replies may cross\n",
                g_strSwapFile.c_str(), static_cast<int>(lock.l_pid));
    }
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
    fd = AboveStandardStreams(fd);
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
    // Kept for the lock: closing the mapping's descriptor drops every record lock the process holds on the file.
    const int kept = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(fd);
    if (page == MAP_FAILED) {
        perror("map share memery failed!\n");
        exit(1);
    }
    WarnOfAnotherConsole(kept);
    return page;
}
