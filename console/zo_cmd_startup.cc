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

// Opens (creating it when missing) and maps the swap file; ends the process
// when it cannot. A file shorter than the page cannot back it: touching the
// missing part would kill the console with SIGBUS, so it is refused here.
void* MapSwapFile()
{
    char resolved[4096];
    std::memset(resolved, 0, sizeof resolved);
    // realpath refuses a file that does not exist yet; it is then created under its given name.
    const char* path = realpath(g_strSwapFile.c_str(), resolved) != nullptr ? resolved : g_strSwapFile.c_str();

    const int fd = open(path, O_RDWR | O_CREAT, 0660);
    if (fd < 0) {
        printf("can't open swap file %s, errno = %d\n", g_strSwapFile.c_str(), errno);
        exit(1);
    }
    struct stat info;
    if (fstat(fd, &info) == 0 && info.st_size < static_cast<off_t>(SHM_SIZE)) {
        printf("swap file %s is %lld bytes long, it needs at least %u bytes: start the service first\n",
               g_strSwapFile.c_str(), static_cast<long long>(info.st_size), static_cast<unsigned int>(SHM_SIZE));
        close(fd);
        exit(1);
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

    signal(SIGINT, QuitHandler);
    signal(SIGTSTP, SuspendHandler);
    signal(SIGCONT, ResumeHandler);
    m_signalThread.Run(2);

    if (m_pFileParse == nullptr) {
        printf("please load cfg before call <%s>.\n", "Exec");
        return;
    }
    m_bRunning = ZO_TRUE;
    if (DoWork() != 0) {
        // The loop broke down: leave the terminal and the page as they are.
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
    for (; modCount < m_arrModCmds.Size() && modCount < ZO_CMD_LIST_SIZE; ++modCount) {
        g_apModList[modCount] = m_arrModCmds[modCount].c_str();
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
    for (; count < m_arrHoldCmds.Size() && count < ZO_CMD_LIST_SIZE; ++count) {
        g_apCmdList[count] = m_arrHoldCmds[count].c_str();
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
