// Start-up and the prompt loop: loading the catalogue, mapping the shared
// page, installing the signal handling, then prompting, registering the
// completion candidates, reading and dispatching lines until the end.
#include "zo_cmd_debug.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ios>
#include <stdexcept>

#include "zo_shm_page.h"

int ZoCmdDebug::LoadConfig(const std::string& dir)
{
    // Stored before anything can fail: Exec refuses to run without a catalogue.
    m_pFileParse = new ZoFileParse();
    m_pFileParse->Init(dir);
    if (m_pFileParse->GetIOExceptionStatus() != 0) {
        puts("ParseModules fail or ParseCmds fail.");
        return -1;
    }
    m_arrModNames = m_pFileParse->GetModNames();
    m_arrModCmds = m_pFileParse->GetModCmds();
    return 0;
}

namespace {

// Ends the process unless mode is a regular file's. Every exit of the console
// puts the terminal back (GetInstance arranges it).
void RefuseUnlessRegular(mode_t mode)
{
    if (const char* kind = ShmNotRegular(mode)) {
        printf("swap file %s is %s, not a regular file\n", g_strSwapFile.c_str(), kind);
        exit(1);
    }
}

// Opens (creating it when missing) and maps the swap file; ends the process
// when it cannot. Anything but a regular file is refused before it is opened:
// a FIFO or a device must not be opened, and cannot back the page anyway. A
// file shorter than the page cannot back it either: touching the missing part
// would kill the console with SIGBUS, so it is refused here, and removed again
// when the console created it, so that a service running as another user can
// still create its own.
void* MapSwapFile()
{
    char resolved[4096];
    std::memset(resolved, 0, sizeof resolved);
    // realpath refuses a file that does not exist yet; it is then created under its given name.
    const char* path = realpath(g_strSwapFile.c_str(), resolved) != nullptr ? resolved : g_strSwapFile.c_str();

    struct stat info;
    if (stat(path, &info) == 0) {
        RefuseUnlessRegular(info.st_mode);
    }
    // O_EXCL tells whether this open created the file.
    int fd = open(path, O_RDWR | O_CREAT | O_EXCL, 0660);
    const bool created = fd >= 0;
    if (!created && errno == EEXIST) {
        fd = open(path, O_RDWR | O_CREAT, 0660);
    }
    if (fd < 0) {
        printf("can't open swap file %s, errno = %d\n", g_strSwapFile.c_str(), errno);
        exit(1);
    }
    if (fstat(fd, &info) == 0) {
        RefuseUnlessRegular(info.st_mode);  // replaced since the first look
        if (info.st_size < static_cast<off_t>(SHM_SIZE)) {
            printf("swap file %s is %lld bytes long, it needs at least %u bytes: start the service first\n",
                   g_strSwapFile.c_str(), static_cast<long long>(info.st_size), static_cast<unsigned int>(SHM_SIZE));
            if (created) {
                unlink(path);
            }
            exit(1);
        }
    }
    void* page = mmap(nullptr, SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    if (page == MAP_FAILED) {
        perror("map share memery failed!\n");
        exit(1);
    }
    return page;
}

}  // namespace

void ZoCmdDebug::Exec()
{
    m_pid = getpid();
    g_pShareMem = MapSwapFile();
    GuardPageAgainstTruncation(g_pShareMem);

    signal(SIGINT, QuitHandler);
    signal(SIGTSTP, SuspendHandler);
    signal(SIGCONT, ResumeHandler);
    // Without the thread Ctrl-C would do nothing at all.
    const int rc = m_signalThread.Run(2);
    if (rc != 0) {
        printf("can't start the signal thread: %s\n", strerror(rc));
        exit(1);
    }

    if (m_pFileParse == nullptr) {
        printf("please load cfg before call <%s>.\n", "Exec");
        return;
    }
    m_bRunning = ZO_TRUE;
    if (DoWork() != 0) {
        // The loop broke down: leave the page as it is; the terminal is put
        // back only as the process ends.
        return;
    }
    m_stream.ResetTermios();
    if (munmap(g_pShareMem, SHM_SIZE) != 0) {
        perror("munmap failed!\n");
        exit(1);
    }
    g_pShareMem = MAP_FAILED;
}

int ZoCmdDebug::DoWork()
{
    // Completion offers at most the first ZO_CMD_LIST_SIZE module words; the
    // table is filled once, since the module list never changes.
    unsigned int modCount = 0;
    for (const std::string& word : m_arrModCmds) {
        if (modCount == ZO_CMD_LIST_SIZE) {
            break;
        }
        g_apModList[modCount++] = word.c_str();
    }
    if (!m_bRunning) {
        return 0;
    }
    do {
        const char** cmdTable = g_apCmdList;
        unsigned int cmdCount = 0;
        if (!m_strCurMod.empty()) {
            printf("%s@%s", m_strCurMod.c_str(), m_strPrompt.c_str());
            GetSupportCmds(cmdTable, cmdCount);
        } else {
            printf("%s", m_strPrompt.c_str());
        }
        fflush(stdout);

        const unsigned int total = cmdCount + modCount;
        const char** regList = nullptr;
        if (total == 0) {
            puts("Error:modCount+cmdCount=0");
        } else {
            regList = static_cast<const char**>(calloc(total, sizeof(const char*)));
        }
        const int rc = DoWorkSub(cmdCount, modCount, regList, cmdTable, g_apModList);
        if (rc != 0) {
            return rc;
        }

        char* line = m_stream.Gets();
        // "TAB" is the editor's word for "a completion list was printed".
        if (line != nullptr && !IsBlank(line) && std::strcmp(line, "TAB") != 0) {
            Proc(line);
        }
        // Freed only now: the editor reads the registered names while Gets runs.
        free(regList);
        if (line == nullptr) {
            break;
        }
    } while (m_bRunning);
    return 0;
}

int ZoCmdDebug::DoWorkSub(unsigned int cmdCount, unsigned int modCount, const char** regList, const char** cmdTable,
                          const char** modTable)
{
    if (modCount != 0) {
        if (regList == nullptr) {
            puts("regList is null");
            return -1;
        }
        const size_t bytes = modCount * sizeof(const char*);
        if (memcpy_s(regList, bytes, modTable, bytes) != 0) {
            free(regList);
            return -1;
        }
        m_stream.RegistTab(" all mods ", modCount, regList, ZO_TRUE);
    }
    if (cmdCount == 0) {
        return 0;
    }
    if (regList == nullptr) {
        puts("regList is null");
        return -1;
    }
    const size_t bytes = cmdCount * sizeof(const char*);
    if (memcpy_s(regList + modCount, bytes, cmdTable, bytes) != 0) {
        free(regList);
        return -1;
    }
    m_stream.RegistTab(m_strCurMod + " cmds", cmdCount, regList + modCount, ZO_FALSE);
    return 0;
}

int ZoCmdDebug::GetSupportCmds(const char**& cmdTable, unsigned int& count)
{
    m_arrHoldCmds = m_pFileParse->GetModHoldCmds(m_pFileParse->GetModInstruct(m_strCurMod));
    // Completion offers at most the first ZO_CMD_LIST_SIZE commands of a module.
    count = 0;
    for (const std::string& word : m_arrHoldCmds) {
        if (count == ZO_CMD_LIST_SIZE) {
            break;
        }
        g_apCmdList[count++] = word.c_str();
    }
    cmdTable = g_apCmdList;
    return 0;
}

int ZoCmdDebugMain(const std::string& dir)
{
    try {
        ZoCmdDebug* console = ZoCmdDebug::GetInstance();
        // A failed load is already reported; the console starts with no modules.
        console->LoadConfig(dir);
        console->m_pfnRelease = Release;
        console->Exec();
    } catch (const std::length_error& e) {
        printf("lenth of para is too loog ,e = %s", e.what());
    } catch (const std::ios_base::failure& e) {
        printf("catch ios_base failure ,e = %s", e.what());
    }
    return 0;
}
