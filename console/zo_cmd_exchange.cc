// The exchange of one command with the middleware service over the shared
// page (layout and handshake in zo_shm_page.h), and the printing of its reply.
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
#include "zo_shm_page.h"

namespace {

// Copies the request into the payload, then publishes its size and the
// request flag. -1, with the header untouched, when the request does not fit
// the payload; the service then sees nothing.
int PostRequest(void* page, const android::Parcel& request)
{
    const uint8_t* data = request.data();
    if (data == nullptr) {
        puts("requestData is the null");
        return -1;
    }
    const size_t size = request.dataSize();
    if (memcpy_s(ShmPayloadOf(page), SHM_DATA_SIZE, data, size) != 0) {
        return -1;
    }
    ShmStoreSize(page, static_cast<uint32_t>(size));
    // Bit 0 only: this also clears a reply flag left by the last exchange.
    ShmStoreFlag(page, SHM_FLAG_REQUEST);
    return 0;
}

// Sleeps 100 ms, looks at the flag, and repeats until the reply flag is set;
// then copies the reply out of the page. -1 when the size the service wrote
// would reach past the page.
int AwaitReply(void* page, android::Parcel& reply)
{
    const struct timespec step = {0, 100000000};
    do {
        nanosleep(&step, nullptr);
    } while ((ShmLoadFlag(page) & SHM_FLAG_REPLY) == 0);

    // Read once: the service may still be writing, and only this value was checked.
    const uint32_t size = ShmLoadSize(page);
    if (size > SHM_DATA_SIZE) {
        return -1;
    }
    return reply.setData(ShmPayloadOf(page), size) == android::NO_ERROR ? 0 : -1;
}

}  // namespace

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
    if (PostRequest(g_pShareMem, request) != 0 || AwaitReply(g_pShareMem, reply) != 0) {
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

// --- A swap file truncated under the mapped page ------------------------------
//
// Once the file is shorter than the page, touching the page raises SIGBUS,
// which would kill the console with the terminal raw. The handler ends the
// process itself instead, with async-signal-safe calls only; the message is
// composed beforehand for that reason.

namespace {

const void* g_guardedPage;
std::string g_truncatedMessage;

void OnBusError(int signo, siginfo_t* info, void* /*context*/)
{
    ZoStream::RestoreFoundTermios();
    if (ShmFaultOnPage(info, g_guardedPage)) {
        (void)!write(STDOUT_FILENO, g_truncatedMessage.data(), g_truncatedMessage.size());
        _exit(1);
    }
    signal(signo, SIG_DFL);
    raise(signo);
}

}  // namespace

void ZoCmdDebug::GuardPageAgainstTruncation(void* page)
{
    g_guardedPage = page;
    g_truncatedMessage = "swap file " + g_strSwapFile + " was truncated while mapped: the shared page is lost\n";
    struct sigaction action = {};
    action.sa_sigaction = OnBusError;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    sigaction(SIGBUS, &action, nullptr);
}
