// ZoCmdDebug: the interactive debug console of the TV middleware service.
//
// One object per process, created by the first GetInstance and never
// destroyed. It holds what the console knows between two typed lines: the
// module lists taken from the catalogue, the current module, the line editor
// and the signal-watching thread. A typed command travels
//
//   Proc -> HandleCmd -> ParseCmd -> CopyCmdToBuf -> Printer
//
// dispatch: the word is looked up among the current module's commands;
// encoding: the arguments become a request parcel by the parameter format;
// exchange: the request goes through the shared page (zo_shm_page.h) and the
// reply comes back; printing: the reply is rendered by the print format.
//
// Operations return 0 on success and -1 (or a callee's non-zero result) on
// failure, after printing their own message on standard output.
//
// Threads: everything runs on the main thread, except the signal thread, which
// reads only m_pid and m_pfnRelease (set before it starts, never changed) and
// g_enSignalState, serialises its actions with g_mutex, and reaches the
// terminal only through the line editor's static job-control calls.
#ifndef ZO_CONSOLE_ZO_CMD_DEBUG_H
#define ZO_CONSOLE_ZO_CMD_DEBUG_H

#include <csignal>
#include <cstdint>
#include <sstream>
#include <string>

#include <binder/Parcel.h>
#include <sys/types.h>

#include "zo_file_parse.h"
#include "zo_mutex.h"
#include "zo_mw_array.h"
#include "zo_stream.h"
#include "zo_tv_support.h"

// What the signal handlers record for the signal thread.
enum SIGNAL_STATE_E : sig_atomic_t {
    SIGNAL_STATE_QUIT = 0,     // SIGINT: release and kill the process
    SIGNAL_STATE_SUSPEND = 1,  // SIGTSTP: stop the process
    SIGNAL_STATE_RESUME = 2,   // SIGCONT: continue the process
    SIGNAL_STATE_IDLE = 3,     // initial value only; nothing to do
};

// Called by the signal thread just before the process kills itself.
typedef void (*ZoReleaseFunc)(const void* arg);

// Capacity of the word and argument buffers and of the completion tables.
constexpr unsigned int ZO_CMD_BUF_SIZE = 256;
constexpr unsigned int ZO_CMD_LIST_SIZE = 256;

// ---------------------------------------------------------------------------
// File-level state of the console, one of each per process.

// Path of the shared-page file ("/atv/dbg/.tv").
extern std::string g_strSwapFile;
// Serialises the quit, suspend and resume actions of the signal thread.
extern ZoMutex g_mutex;
// The mapped shared page; MAP_FAILED while it is not mapped.
extern void* g_pShareMem;
// Written by the signal handlers, read afresh by the signal thread.
extern volatile SIGNAL_STATE_E g_enSignalState;
// Completion tables: module command words and the current module's command
// names. They point into m_arrModCmds and m_arrHoldCmds and stay valid only
// until that list is replaced.
extern const char* g_apModList[ZO_CMD_LIST_SIZE];
extern const char* g_apCmdList[ZO_CMD_LIST_SIZE];

// The release callback installed by the program entry; does nothing.
void Release(const void* arg);

// The program entry's whole start-up on a configuration directory: creates the
// console, loads the catalogue, installs Release and runs the console until it
// ends. Returns 0; the process may also end through exit(1) or the Ctrl-C kill.
int ZoCmdDebugMain(const std::string& dir);

class ZoCmdDebug {
public:
    // The one console object, created on first use; creating it puts the
    // terminal into the line editor's raw mode. From then on every exit of the
    // process, the end signals (EndHandler) and an uncaught exception
    // put the terminal back as the editor found it; only the Ctrl-C kill
    // leaves it raw.
    static ZoCmdDebug* GetInstance();

    // Fields at their defaults; reads nothing and starts nothing.
    ZoCmdDebug();
    ZoCmdDebug(const ZoCmdDebug&) = delete;
    ZoCmdDebug& operator=(const ZoCmdDebug&) = delete;

    // --- Start-up and prompt loop -------------------------------------------

    // Loads "mods.conf" and "cmds.conf" from dir into a new catalogue and keeps
    // the module names and words. -1 when the catalogue reported a failure.
    int LoadConfig(const std::string& dir);
    // Maps the shared page, installs the signal handlers, starts the signal
    // thread and runs the prompt loop; restores the terminal and unmaps the
    // page after a normal end. Ends the process with exit(1) when the swap
    // file cannot back the page (MapSwapFile), when the page cannot be
    // unmapped, and when the signal thread cannot start.
    void Exec();
    // The prompt loop: 0 after "q"/"quit" at the top level or the end of input.
    int DoWork();
    // Registers the completion candidates for the next line: 0 or -1.
    int DoWorkSub(unsigned int cmdCount, unsigned int modCount, const char** regList, const char** cmdTable,
                  const char** modTable);
    // Refreshes m_arrHoldCmds and g_apCmdList from the catalogue. Always 0.
    int GetSupportCmds(const char**& cmdTable, unsigned int& count);

    // --- Dispatch of a typed line ---------------------------------------------

    // Help, quit, module entry or a command of the current module.
    void Proc(char* line);
    // Splits a line into its first word and the rest (256-byte buffers).
    int SeparateCmd(const char* line, char* word, char* args, unsigned int wordSize, unsigned int argsSize);
    // Encodes and sends one command and prints its reply.
    int HandleCmd(const char* word, const char* args, unsigned int wordSize, unsigned int argsSize);

    // --- Argument encoding ------------------------------------------------------

    // Writes the command's instruction code, then one value per letter of its
    // parameter format read from args. 0 when the whole format was encoded;
    // -1 after "para format err.", the help text of a missing or unreadable
    // argument, or a refused write.
    int ParseCmd(const char* cmd, android::Parcel& parcel, std::istringstream& args);
    // Letters f, F, s and S. 0, also when the argument could not be read
    // (ok is then false); -1 when the parcel refused the value.
    int ParseCmdSub(char letter, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel);
    // Letters d (wide false) and D (wide true); results as ParseCmdSub.
    int ParseIntegerCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel);
    // Letters s (wide false) and S (wide true); results as ParseCmdSub.
    int ParseStringCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel);

    // --- Exchange with the service ------------------------------------------------

    // Posts the request on the shared page, waits for the reply in 100 ms
    // steps without a time-out, and prints it. 0 when a reply with status 0
    // was printed; -1 on every failure.
    int CopyCmdToBuf(const char* cmd, android::Parcel& request);
    // Makes a SIGBUS on the mapped page (its file was truncated meanwhile) end
    // the process with a message naming the swap file, the terminal restored
    // and status 1. Any other SIGBUS keeps its default effect.
    static void GuardPageAgainstTruncation(void* page);

    // --- Signals ------------------------------------------------------------------

    // Handlers: each only records its state in g_enSignalState.
    static void QuitHandler(int signo);
    static void SuspendHandler(int signo);
    static void ResumeHandler(int signo);
    // Body of m_signalThread: acts on g_enSignalState every 10 ms, for ever;
    // hands the terminal back to the shell before each stop it makes and takes
    // raw mode up again once the console is back in the foreground after any
    // stop.
    static void SignalDectThread(const void* arg);
    static void OnQuit();
    static void OnSuspend();
    static void OnResume();
    // Before the terminal goes raw: the end signals (EndHandler), and a Ctrl-Z
    // that stops the process at once, as by default, with the terminal handed
    // to the shell while it is stopped and raw mode taken up again after fg.
    static void InstallStartupHandlers();
    // Exec's handlers, in this order: SIGINT, SIGTSTP, SIGCONT, each run with
    // the other two blocked. A SIGCONT from another process ends a stop (raw
    // mode is taken up again); one the console sent itself changes nothing.
    static void InstallRunHandlers();
    // Blocks SIGTSTP and SIGCONT in the calling thread, once the signal
    // thread runs, so that they reach that thread.
    static void LeaveSignalsToThread();
    // SIGTERM, SIGHUP, SIGQUIT and SIGPIPE while the console holds the
    // terminal raw: puts the terminal back as the line editor found it (only
    // when the console owns it), then ends the process by the same signal, so
    // that the shell still sees it. While the console is stopped or in the
    // background these signals have their default effect. A signal the
    // process was started ignoring (nohup) stays ignored.
    static void EndHandler(int signo);

private:
    friend class ZoCmdDebugTestPeer;  // lets the unit tests set up a console state
    friend int ZoCmdDebugMain(const std::string& dir);  // installs the release callback

    // The help listing of Proc: modules at the top level, the current module's commands inside one.
    void PrintHelp();

    // The one instance; null until GetInstance creates it.
    static ZoCmdDebug* ms_pInstance;

    Array<std::string> m_arrModNames;  // module names, in the catalogue's order
    Array<std::string> m_arrModCmds;   // entry i enters the module named by m_arrModNames entry i
    Array<std::string> m_arrHoldCmds;  // command names of the current (or last) module
    std::string m_strCurMod;           // current module's name; empty at the top level
    ZO_BOOL m_bRunning;                // the prompt loop runs while set
    ZoStream m_stream;                 // the line editor
    pid_t m_pid;                       // own process id, the target of the signal actions
    ZoFileParse* m_pFileParse;         // the catalogue; created by LoadConfig, never freed
    std::string m_strPrompt;           // "TV $"
    ZoReleaseFunc m_pfnRelease;        // called by OnQuit before the kill
    ZoMWThread m_signalThread;         // runs SignalDectThread; started by Exec
};

#endif  // ZO_CONSOLE_ZO_CMD_DEBUG_H
