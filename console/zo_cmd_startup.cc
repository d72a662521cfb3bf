// Start-up and the prompt loop: loading the catalogue, mapping the shared
// page, installing the signal handling, then prompting, registering the
// completion candidates, reading and dispatching lines until the end.
#include "zo_cmd_debug.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ios>
#include <stdexcept>

#include "zo_cmd_swap_file.h"
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

void ZoCmdDebug::Exec()
{
    m_pid = getpid();
    g_pShareMem = MapSwapFile();
    GuardPageAgainstTruncation(g_pShareMem);

    InstallRunHandlers();
    // Without the thread Ctrl-C would do nothing at all.
    const int rc = m_signalThread.Run(2);
    if (rc != 0) {
        printf("can't start the signal thread: %s\n", strerror(rc));
        exit(1);
    }
    LeaveSignalsToThread();

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
