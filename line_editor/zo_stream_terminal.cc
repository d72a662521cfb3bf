// Raw mode: the terminal on standard input is switched in Init and put back in
// ResetTermios, or in RestoreFoundTermios when the process ends another way;
// SuspendRawMode and ResumeRawMode leave it and enter it again around a stop.
#include "zo_stream.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

namespace {

// Copies of the settings Init read and of the raw ones it made of them, for
// the static calls: a signal handler or the signal thread cannot reach the
// editor object. The flag is published after the copies.
struct termios g_foundTermios;
struct termios g_rawTermios;
std::atomic<bool> g_foundTermiosValid(false);
static_assert(std::atomic<bool>::is_always_lock_free, "the flag is read in signal handlers");

void ReportTermiosFailure(const char* call, int ret, int err)
{
    std::printf("error:set %s fail, ret:)0x%x !!! errno = %d\n", call, static_cast<unsigned int>(ret), err);
    std::fflush(stdout);
}

bool InForeground()
{
    return tcgetpgrp(STDIN_FILENO) == getpgrp();
}

// One tcsetattr while the process's group owns the terminal; false, with
// nothing applied, while another group does. With SIGTTOU blocked, a change
// made after the shell took the terminal back in between is carried out
// instead of stopping the process. Async-signal-safe.
bool ApplyInForeground(const struct termios& settings)
{
    sigset_t ttou;
    sigset_t previous;
    sigemptyset(&ttou);
    sigaddset(&ttou, SIGTTOU);
    pthread_sigmask(SIG_BLOCK, &ttou, &previous);
    const bool foreground = InForeground();
    if (foreground) {
        tcsetattr(STDIN_FILENO, TCSANOW, &settings);
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return foreground;
}

}  // namespace

ZoStream::ZoStream() : m_itHistory(m_listHistory.end()), m_stOldTermios(), m_stNewTermios(), m_bTermiosSaved(false)
{
}

ZoStream::~ZoStream()
{
    ResetTermios();
}

// Only the line discipline's own editing is switched off: non-canonical input
// hands over every byte at once (VMIN 1, VTIME 0) and the editor echoes it.
// Signals (ISIG) and the CR/LF translations (ICRNL, OPOST) stay as they were,
// so Ctrl-C and Ctrl-Z still reach the console and Enter arrives as a line feed.
//
// When the settings cannot be read, nothing is applied and nothing will be
// restored: a record that was never filled in must not reach the terminal.
void ZoStream::Init()
{
    m_itHistory = m_listHistory.end();
    m_bTermiosSaved = false;
    g_foundTermiosValid.store(false, std::memory_order_release);
    if (isatty(STDIN_FILENO) == 0) {
        return;
    }
    int ret = tcgetattr(STDIN_FILENO, &m_stOldTermios);
    if (ret != 0) {
        ReportTermiosFailure("tcgetattr", ret, errno);
        return;
    }
    m_bTermiosSaved = true;
    m_stNewTermios = m_stOldTermios;
    m_stNewTermios.c_cc[VTIME] = 0;
    m_stNewTermios.c_cc[VMIN] = 1;
    m_stNewTermios.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    g_foundTermios = m_stOldTermios;
    g_rawTermios = m_stNewTermios;
    g_foundTermiosValid.store(true, std::memory_order_release);

    if (isatty(STDIN_FILENO) != 0) {
        ret = tcsetattr(STDIN_FILENO, TCSANOW, &m_stNewTermios);
        if (ret != 0) {
            ReportTermiosFailure("tcsetattr", ret, errno);
        }
    }
}

int ZoStream::ResetTermios()
{
    if (isatty(STDIN_FILENO) == 0 || !m_bTermiosSaved) {
        return 0;
    }
    const int ret = tcsetattr(STDIN_FILENO, TCSANOW, &m_stOldTermios);
    if (ret != 0) {
        ReportTermiosFailure("tcsetattr", ret, errno);
    }
    return ret;
}

void ZoStream::RestoreFoundTermios()
{
    if (g_foundTermiosValid.load(std::memory_order_acquire)) {
        ApplyInForeground(g_foundTermios);
    }
}

void ZoStream::SuspendRawMode()
{
    RestoreFoundTermios();
}

bool ZoStream::OwnsTerminal()
{
    return !g_foundTermiosValid.load(std::memory_order_acquire) || InForeground();
}

bool ZoStream::ResumeRawMode()
{
    return !g_foundTermiosValid.load(std::memory_order_acquire) || ApplyInForeground(g_rawTermios);
}
