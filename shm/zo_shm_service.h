// ZoShmService: the middleware service's half of the shared page that the
// debug console posts its requests to (layout and handshake in
// zo_shm_page.h). A service opens the swap file once, registers a handler per
// instruction code, and calls Serve or WaitForRequest from its own loop:
//
//   ZoShmService service;
//   std::string error;
//   if (service.Open(ShmSwapFilePath(kShmDeviceDir), &error) != 0) { log error; give up }
//   service.Register(0x31, [](const android::Parcel& args, android::Parcel& values) {
//       values.writeInt32(volume);   // the values of the command's print format
//       return 0;                    // the status: 0, or a failure the console reports
//   });
//   while (running) service.Serve(100);
//
// The console waits for every request without a time-out, so a service that
// opened the page should keep serving it. An answer is on the page within
// the poll period (kDefaultPollMs) of the request plus the handler's time;
// the console takes its first look 100 ms after posting.
//
// What the library does not do: it installs no signal handler, keeps no
// process-wide state, starts no thread and prints nothing; failures come back
// as results, with a message for the caller to log.
//
// Thread safety: one thread at a time may call a ZoShmService's methods; it
// has no lock. Handlers run on the thread that called Serve or ServeOne.
//
// A foreign page: the page is shared with whatever process maps the file, so
// its contents are untrusted input. A request whose u32Size reaches past the
// page, or that is shorter than its instruction code, is answered with
// kStatusBadRequest; a handler reads its arguments with the parcel's readers,
// which never read past the request.
//
// A truncated page: when the swap file is cut below a page while it is mapped
// (truncate(1), another program), the next access to the page raises SIGBUS,
// which ends the process by default. Every access happens inside Pending,
// WaitForRequest, TakeRequest, PostReply and DropRequest (and so Serve and
// ServeOne), with plain loads, stores and copies and no allocation; a service
// that must survive a lost page may catch the fault (SA_SIGINFO, si_addr
// inside Page()) and siglongjmp out of those calls, then Close the service.
#ifndef ZO_SHM_ZO_SHM_SERVICE_H
#define ZO_SHM_ZO_SHM_SERVICE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <binder/Parcel.h>

#include "zo_shm_page.h"

// A request as it was on the page when it was taken: enough to serve it and
// to tell later whether the page still holds it.
struct ZoShmRequest {
    uint32_t u32Flag = 0;
    uint32_t u32Size = 0;  // as posted; may reach past the payload
    uint32_t length = 0;   // payload bytes copied: u32Size, at most SHM_DATA_SIZE
    uint8_t payload[SHM_DATA_SIZE];
};

class ZoShmService {
public:
    // Fills values (the reply's values, behind the status) from args, whose
    // read position is at the first argument, and returns the status: 0 for
    // success; anything else is sent alone and the values are dropped.
    using Handler = std::function<int32_t(const android::Parcel& args, android::Parcel& values)>;

    // What ServeOne did.
    enum class Served {
        kNothing,   // no request was pending
        kAnswered,  // the reply is on the page
        kDropped,   // the page held another request by the time the reply was ready: not answered
    };

    // Statuses of requests the library answers itself (the console prints
    // them as "request failure! ret:0xffffffff" and so on).
    static constexpr int32_t kStatusUnknownCode = -1;  // no handler for the code
    static constexpr int32_t kStatusBadRequest = -2;   // shorter than a code, u32Size past the page,
                                                       // or a reply longer than the payload
    // Time between two looks at the flag word in WaitForRequest and Serve: an
    // idle service wakes 50 times a second, and every answer is on the page
    // long before the console first looks, 100 ms after posting.
    static constexpr unsigned kDefaultPollMs = 20;

    ZoShmService() = default;
    ~ZoShmService();  // Close
    ZoShmService(const ZoShmService&) = delete;
    ZoShmService& operator=(const ZoShmService&) = delete;

    // Opens path, creating it with mode 0660 when it does not exist, reserves
    // the blocks of its first page (growing a shorter file to a page; a longer
    // one keeps its size and tail) and maps that page shared. Returns 0, or -1
    // with a message naming path in *error (when error is not null). Refused:
    // a symbolic link at path (also a dangling one, whose target is never
    // created), and anything but a regular file ("PATH is a FIFO, not a
    // regular file: refused"). A file system without room for the page fails
    // here ("No space left on device"), not with SIGBUS later; a file this
    // call created is removed again when it fails.
    int Open(const std::string& path, std::string* error);
    // Unmaps the page. Returns 0, also when nothing is open; -1 with a message
    // when munmap fails. The file stays.
    int Close(std::string* error = nullptr);
    // The mapped page, or null before Open and after Close.
    const void* Page() const { return m_page; }

    // The handler for requests with this instruction code, replacing an
    // earlier one. Codes without a handler get kStatusUnknownCode.
    void Register(int32_t code, Handler handler);

    // True iff a request is pending now. Never blocks.
    bool Pending() const;
    // Looks every pollMs until a request is pending (true) or timeoutMs have
    // passed (false). Sleeps between looks; never spins.
    bool WaitForRequest(unsigned timeoutMs, unsigned pollMs = kDefaultPollMs) const;
    // Waits up to timeoutMs for a request and serves it; true when one was answered.
    bool Serve(unsigned timeoutMs);
    // Serves the pending request, if any: runs its code's handler and posts
    // the reply. When code is not null it receives the request's code (-1 when
    // there is none).
    Served ServeOne(int32_t* code = nullptr);

    // The parts of ServeOne, for a service that decodes requests itself.
    //
    // Copies the pending request into request; false when none is pending.
    bool TakeRequest(ZoShmRequest& request) const;
    // Posts length bytes (a status, then values with status 0) as the answer
    // to answered, but only while the page still holds that request (its flag
    // word, u32Size and payload unchanged): it may have been replaced by
    // another console's request meanwhile. Writes the payload and u32Size,
    // then sets bit 1 with release ordering, leaving the other bits as they
    // were. A reply longer than the payload is replaced by kStatusBadRequest.
    // claimedSize, when not null, goes into u32Size instead of the length:
    // only a simulator of faulty services wants that.
    Served PostReply(const ZoShmRequest& answered, const uint8_t* reply, size_t length,
                     const uint32_t* claimedSize = nullptr);
    // Leaves the pending request unanswered and clears its bit 0, so that a
    // later request (a restarted console's) stands out from it.
    void DropRequest();

private:
    // The reply to request: the status, then the handler's values when the
    // status is 0. Runs the handler; no page access.
    std::vector<uint8_t> BuildReply(const ZoShmRequest& request, int32_t* code);

    void* m_page = nullptr;
    std::map<int32_t, Handler> m_handlers;
    ZoShmRequest m_request;  // the request being served, kept out of the stack: 4 KB
};

#endif  // ZO_SHM_ZO_SHM_SERVICE_H
