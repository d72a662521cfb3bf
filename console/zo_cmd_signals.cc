// Ctrl-C, Ctrl-Z and resumption. The handlers only record which signal came;
// the signal thread looks every 10 ms and acts by signalling the console's
// own process, so nothing but one store happens in signal context.
//
// A raw-mode program must look after its terminal across a stop itself, as
// shells differ: bash puts back its own settings when a job stops but not
// when it continues one, dash neither. So beside the suspend and resume
// actions the thread hands the terminal back to the shell before each stop
// and takes raw mode up again once the console is back in the foreground.
//
// The signals that end a process by default (termination, hang-up, quit from
// the keyboard, a broken pipe) would leave the terminal raw: their handler
// puts it back first.
#include "zo_cmd_debug.h"

#include <signal.h>
#include <time.h>

#include <cstdio>

#include "zo_stream.h"

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
    bool rawModeLeft = false;  // left for a stop, not yet taken up again
    for (;;) {
        switch (g_enSignalState) {
            case SIGNAL_STATE_RESUME:
                rawModeLeft = rawModeLeft && !ZoStream::ResumeRawMode();
                OnResume();
                break;
            case SIGNAL_STATE_SUSPEND:
                ZoStream::SuspendRawMode();
                rawModeLeft = true;
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

void ZoCmdDebug::InstallEndHandlers()
{
    static const int kEndSignals[] = {SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};
    for (const int signo : kEndSignals) {
        struct sigaction current;
        if (sigaction(signo, nullptr, &current) == 0 && current.sa_handler != SIG_IGN) {
            signal(signo, EndHandler);
        }
    }
}

// Only async-signal-safe calls: one tcsetattr, signal and raise. The raised
// signal is blocked while the handler runs and ends the process as it returns.
void ZoCmdDebug::EndHandler(int signo)
{
    ZoStream::RestoreFoundTermios();
    signal(signo, SIG_DFL);
    raise(signo);
}
