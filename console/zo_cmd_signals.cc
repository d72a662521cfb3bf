// Ctrl-C, Ctrl-Z and resumption. The handlers only record which signal came
// (and that a stop has ended); the signal thread looks every 10 ms and acts
// by signalling the console's own process.
//
// A raw-mode program must look after its terminal across a stop itself, as
// shells differ: bash puts back its own settings when a job stops but not
// when it continues one, dash neither. So beside the suspend and resume
// actions the thread hands the terminal back to the shell before each stop it
// makes, and takes raw mode up again once the console is back in the
// foreground after any stop: its own, a Ctrl-Z while the catalogue loads, or
// a SIGSTOP from elsewhere (each ends with a SIGCONT from another process).
//
// The signals that end a process by default (termination, hang-up, quit from
// the keyboard, a broken pipe) would leave the terminal raw: their handler
// puts it back first. They are handled only while the console holds the
// terminal raw: a stopped process keeps a handled signal pending until it is
// continued, and dash's kill does not continue the job, so a stopped console
// or one in the background (where reading stops it) ends by their default
// effect, with the terminal already the shell's.
#include "zo_cmd_debug.h"

#include <pthread.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "zo_stream.h"

namespace {

const int kEndSignals[] = {SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

// Set when the terminal may have left raw mode for a stop; cleared once raw
// mode and the end handlers are taken up again in the foreground.
std::atomic<bool> g_rawModeLeft(false);
static_assert(std::atomic<bool>::is_always_lock_free, "set in signal handlers");

bool g_endHandled = false;  // changed by the signal thread, or by the main thread before that starts

// Handles the end signals (armed) or gives them their default effect back; a
// signal the process was started ignoring (nohup) stays ignored. Only sigaction.
void HandleEndSignals(bool armed)
{
    if (armed == g_endHandled) {
        return;
    }
    g_endHandled = armed;
    for (const int signo : kEndSignals) {
        struct sigaction action;
        if (sigaction(signo, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            action.sa_handler = armed ? ZoCmdDebug::EndHandler : SIG_DFL;
            action.sa_flags = SA_RESTART;
            sigemptyset(&action.sa_mask);
            sigaction(signo, &action, nullptr);
        }
    }
}

// Before a stop: the shell gets its settings back while the console is stopped.
void HandOverTerminal()
{
    ZoStream::SuspendRawMode();
    HandleEndSignals(false);
    g_rawModeLeft = true;
}

// After a stop, once the console's group owns the terminal: end handlers
// first, so that no moment passes with the terminal raw and an end signal
// unhandled. In the background the end signals keep their default effect.
// Async-signal-safe.
void TakeUpTerminal()
{
    if (!ZoStream::OwnsTerminal()) {
        HandleEndSignals(false);
        return;
    }
    HandleEndSignals(true);
    if (ZoStream::ResumeRawMode()) {
        g_rawModeLeft = false;
    }
}

// Any SIGCONT but the ones the console sends itself ends a stop.
bool FromElsewhere(const siginfo_t* info)
{
    return info == nullptr || info->si_pid != getpid();
}

void ContinuedWhileLoading(int /*signo*/, siginfo_t* info, void* /*context*/)
{
    if (FromElsewhere(info)) {
        g_rawModeLeft = true;
    }
}

// A SIGCONT the console sent itself leaves the state alone: it is "resume"
// already, unless a Ctrl-Z or Ctrl-C came in between, which must not be lost.
void ContinuedHandler(int signo, siginfo_t* info, void* /*context*/)
{
    if (FromElsewhere(info)) {
        g_rawModeLeft = true;
        ZoCmdDebug::ResumeHandler(signo);
    }
}

// Ctrl-Z before Exec stops the process at once, as by default, with the
// terminal handed over as for a Ctrl-Z at the prompt. No signal thread runs
// yet, so the handler takes the terminal up again itself once continued.
void StopWhileLoading(int /*signo*/)
{
    HandOverTerminal();
    raise(SIGSTOP);
    TakeUpTerminal();
}

// SIGINT, SIGTSTP and SIGCONT: the signals whose handlers record the state.
sigset_t StateSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTSTP);
    sigaddset(&set, SIGCONT);
    return set;
}

// Each state handler runs with the other two blocked. Otherwise a Ctrl-Z
// delivered on top of a SIGCONT handler that had not yet stored its state
// would be overwritten by it as that handler goes on: the states are stored
// in the order the signals were taken, so that the last one decides.
void Install(int signo, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    action.sa_mask = StateSignals();
    sigaction(signo, &action, nullptr);
}

void Install(int signo, void (*handler)(int, siginfo_t*, void*))
{
    struct sigaction action = {};
    action.sa_sigaction = handler;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    action.sa_mask = StateSignals();
    sigaction(signo, &action, nullptr);
}

}  // namespace

void ZoCmdDebug::QuitHandler(int /*signo*/)
{
    g_enSignalState = SIGNAL_STATE_QUIT;
}

void ZoCmdDebug::SuspendHandler(int /*signo*/)
{
    g_enSignalState = SIGNAL_STATE_SUSPEND;
}

void ZoCmdDebug::ResumeHandler(int /*signo*/)
{
    g_enSignalState = SIGNAL_STATE_RESUME;
}

// The state is never reset: an action repeats at every look until another
// signal records another state (a resumed console keeps sending itself SIGCONT).
// Raw mode is taken up again once per stop, at the first look in the
// foreground after it: not at every repeated SIGCONT, and never while the
// console runs in the background (after the shell's bg), where its shell owns
// the terminal.
void ZoCmdDebug::SignalDectThread(const void* /*arg*/)
{
    const struct timespec period = {0, 10000000};
    for (;;) {
        const SIGNAL_STATE_E state = g_enSignalState;
        if (g_rawModeLeft && state != SIGNAL_STATE_SUSPEND) {
            TakeUpTerminal();
        }
        switch (state) {
            case SIGNAL_STATE_RESUME: OnResume(); break;
            case SIGNAL_STATE_SUSPEND:
                HandOverTerminal();
                OnSuspend();
                break;
            case SIGNAL_STATE_QUIT: OnQuit(); break;
            default: break;
        }
        nanosleep(&period, nullptr);
    }
}

// Ends the process at once: the terminal is not restored and the page stays mapped.
void ZoCmdDebug::OnQuit()
{
    ZoMutexGuard guard(g_mutex);
    if (ms_pInstance->m_pfnRelease != nullptr) {
        ms_pInstance->m_pfnRelease(nullptr);
    }
    if (kill(ms_pInstance->m_pid, SIGKILL) != 0) {
        perror("OnQuit process failed\n");
    }
}

// SIGSTOP, because the handler has replaced the stop that SIGTSTP would cause.
void ZoCmdDebug::OnSuspend()
{
    ZoMutexGuard guard(g_mutex);
    if (kill(ms_pInstance->m_pid, SIGSTOP) != 0) {
        perror("OnSuspend process failed\n");
    }
}

void ZoCmdDebug::OnResume()
{
    ZoMutexGuard guard(g_mutex);
    if (kill(ms_pInstance->m_pid, SIGCONT) != 0) {
        perror("OnResume process failed\n");
    }
}

void ZoCmdDebug::InstallStartupHandlers()
{
    HandleEndSignals(true);
    struct sigaction current;
    if (sigaction(SIGTSTP, nullptr, &current) == 0 && current.sa_handler != SIG_IGN) {
        signal(SIGTSTP, StopWhileLoading);
    }
    Install(SIGCONT, ContinuedWhileLoading);
}

void ZoCmdDebug::InstallRunHandlers()
{
    Install(SIGINT, QuitHandler);
    Install(SIGTSTP, SuspendHandler);
    Install(SIGCONT, ContinuedHandler);
}

// The kernel drops a pending stop signal when a SIGCONT is sent. A Ctrl-Z
// delivered to a thread that the scheduler lets wait would be lost to the
// signal thread's next SIGCONT; taken by the signal thread itself it is
// handled before that thread runs on. SIGINT needs no such care: a SIGCONT
// drops no SIGINT, and one the console sent itself overwrites no state.
void ZoCmdDebug::LeaveSignalsToThread()
{
    sigset_t stopAndContinue;
    sigemptyset(&stopAndContinue);
    sigaddset(&stopAndContinue, SIGTSTP);
    sigaddset(&stopAndContinue, SIGCONT);
    pthread_sigmask(SIG_BLOCK, &stopAndContinue, nullptr);
}

// Only async-signal-safe calls: the terminal's owner check and one tcsetattr,
// signal and raise. The raised signal is blocked while the handler runs and
// ends the process as it returns.
void ZoCmdDebug::EndHandler(int signo)
{
    ZoStream::RestoreFoundTermios();
    signal(signo, SIG_DFL);
    raise(signo);
}
