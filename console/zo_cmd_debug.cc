// The console object: its file-level state, construction and the one instance.
#include "zo_cmd_debug.h"

#include <sys/mman.h>

#include <cstdlib>
#include <exception>

#include "zo_shm_page.h"

std::string g_strSwapFile = ShmSwapFilePath(kShmDeviceDir);
ZoMutex g_mutex;
void* g_pShareMem = MAP_FAILED;
volatile SIGNAL_STATE_E g_enSignalState = SIGNAL_STATE_IDLE;
const char* g_apModList[ZO_CMD_LIST_SIZE] = {};
const char* g_apCmdList[ZO_CMD_LIST_SIZE] = {};

ZoCmdDebug* ZoCmdDebug::ms_pInstance = nullptr;

void Release(const void* /*arg*/) {}

namespace {

std::terminate_handler g_previousTerminate = nullptr;

// An exception that nothing catches (std::bad_alloc from a catalogue too big
// for the memory) ends the process by abort, which runs no exit handler: the
// terminal is put back first, then the usual report and abort follow.
[[noreturn]] void RestoreTerminalThenTerminate()
{
    ZoStream::RestoreFoundTermios();
    if (g_previousTerminate != nullptr) {
        g_previousTerminate();
    }
    std::abort();
}

}  // namespace

ZoCmdDebug::ZoCmdDebug()
    : m_bRunning(ZO_FALSE),
      m_pid(0),
      m_pFileParse(nullptr),
      m_strPrompt("TV $"),
      m_pfnRelease(nullptr),
      m_signalThread(SignalDectThread, this, nullptr)
{
}

ZoCmdDebug* ZoCmdDebug::GetInstance()
{
    if (ms_pInstance == nullptr) {
        // Armed before the terminal goes raw, so that no moment is left in
        // which the process can end without putting it back.
        InstallStartupHandlers();
        std::atexit(ZoStream::RestoreFoundTermios);
        g_previousTerminate = std::set_terminate(RestoreTerminalThenTerminate);
        // Lives until the process ends: the signal thread may still reach it
        // while the process is being killed.
        ms_pInstance = new ZoCmdDebug();
        ms_pInstance->m_stream.Init();
    }
    return ms_pInstance;
}
