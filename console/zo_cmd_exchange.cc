// The exchange of one command with the middleware service over the shared
// page (layout and handshake in zo_shm_page.h, the console's half of it in
// zo_shm_console.h), and the printing of its reply.
//
// The console posts the request and then polls the page every 100 ms until the
// service raises the reply flag. There is no time-out: a service that never
// answers keeps the console waiting until Ctrl-C ends it. The page is left as
// the service left it; the next request's flag write clears the reply flag.
#include <cstdio>
#include <ctime>

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include "zo_cmd_debug.h"
#include "zo_printer.h"
#include "zo_shm_console.h"
#include "zo_shm_page.h"

int ZoCmdDebug::CopyCmdToBuf(const char* cmd, android::Parcel& request)
{
    if (cmd == nullptr) {
        return -1;
    }
    if (m_pFileParse == nullptr) {
        printf("please load cfg before call <%s>.\n", "CopyCmdToBuf");
        return -1;
    }
    // Exec maps the page before the prompt loop; without it nothing can be sent.
    if (g_pShareMem == MAP_FAILED || g_pShareMem == nullptr) {
        return -1;
    }

    android::Parcel reply;
    if (ShmPostRequest(g_pShareMem, request) != 0 || ShmAwaitReply(g_pShareMem, reply) != 0) {
        return -1;
    }

    const int32_t status = reply.readInt32();
    if (status != 0) {
        printf("request failure! ret:0x%x\n", static_cast<unsigned int>(status));
        return -1;
    }

    const int32_t modCode = m_pFileParse->GetModInstruct(m_strCurMod);
    Printer printer(reply);
    const std::string printFmt = m_pFileParse->GetCmdPrintFmt(modCode, cmd);
    const Array<std::string> printTags = m_pFileParse->GetCmdPrintTags(modCode, cmd);
    printer.Fmt(printFmt.c_str(), printTags);
    printer.Flush();
    return 0;
}

// --- A page lost under the mapping -------------------------------------------
//
// Once the file is shorter than the page, or the file system has no block for
// a sparse page, touching the page raises SIGBUS, which would kill the
// console with the terminal raw. The handler ends the process itself instead,
// with async-signal-safe calls only; the two messages are composed beforehand
// for that reason.

namespace {

const void* g_guardedPage;
std::string g_truncatedMessage;
std::string g_unbackedMessage;

void OnBusError(int signo, siginfo_t* info, void* /*context*/)
{
    ZoStream::RestoreFoundTermios();
    if (ShmFaultOnPage(info, g_guardedPage)) {
        const std::string& message = ShmFileCutShort(g_strSwapFile.c_str()) ? g_truncatedMessage : g_unbackedMessage;
        (void)!write(STDOUT_FILENO, message.data(), message.size());
        _exit(1);
    }
    signal(signo, SIG_DFL);
    raise(signo);
}

}  // namespace

void ZoCmdDebug::GuardPageAgainstTruncation(void* page)
{
    g_guardedPage = page;
    g_truncatedMessage = ShmLostMessage(g_strSwapFile, true) + "\n";
    g_unbackedMessage = ShmLostMessage(g_strSwapFile, false) + "\n";
    struct sigaction action = {};
    action.sa_sigaction = OnBusError;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    sigaction(SIGBUS, &action, nullptr);
}
