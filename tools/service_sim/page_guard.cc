#include "page_guard.h"

#include <csignal>

#include "zo_shm_page.h"

namespace {

const void* volatile g_page = nullptr;
sigjmp_buf* volatile g_back = nullptr;

void OnBusError(int signo, siginfo_t* info, void*)
{
    if (g_back != nullptr && ShmFaultOnPage(info, g_page)) {
        siglongjmp(*g_back, 1);
    }
    // Not ours: the default action, once this handler returns (the signal is
    // blocked until then). A fault raised by the kernel would repeat anyway.
    signal(signo, SIG_DFL);
    raise(signo);
}

}  // namespace

PageGuard::PageGuard(const void* page)
{
    g_page = page;
    struct sigaction action {};
    action.sa_sigaction = OnBusError;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    sigaction(SIGBUS, &action, nullptr);
}

PageGuard::~PageGuard()
{
    signal(SIGBUS, SIG_DFL);
    g_page = nullptr;
}

void PageGuard::Arm(sigjmp_buf* back)
{
    g_back = back;
}

void PageGuard::Disarm()
{
    g_back = nullptr;
}
