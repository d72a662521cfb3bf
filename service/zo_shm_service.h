// ZoShmService: the middleware service's half of the shared page that the
// debug console posts its requests to (layout and handshake in
// zo_shm_page.h), at the level of the page: requests are bytes, a handler is
// registered per instruction code and reads its arguments from the request
// parcel itself. Most services want the level of the catalogue instead,
// ZoShmCatalogueService (zo_shm_catalogue_service.h), which is built on this
// class and serves commands by module and word with decoded arguments.
//
//   ZoShmService service;
//   std::string error;
//   if (service.Open(ShmSwapFilePath(kShmDeviceDir), &error) != 0) { log error; give up }
//   service.Register(0x31, [](const android::Parcel& args, android::Parcel& values) {
//       values.writeInt32(volume);   // the values of the command's print format
//       return 0;                    // the status: 0, or a failure the console reports
//   });
//   while (!service.Stopped()) service.Serve(1000);
//
// The console waits for every request without a time-out, so a service that
// opened the page should keep serving it. An answer is on the page within
// the poll period (kDefaultPollMs unless SetPollMs chose another) of the
// request plus the handler's time; the console takes its first look 100 ms
// after posting.
//
// Statuses. A reply starts with a 32-bit status; 0 is success, followed by
// the values. The library answers some requests itself, each cause with its
// own status (the console prints "request failure! ret:0xffffffff" and so
// on), and names the cause in Outcome::problem:
//
//   kStatusNoHandler      -1  0xffffffff  no handler for the instruction code
//   kStatusBadRequest     -2  0xfffffffe  shorter than an instruction code,
//                                         u32Size past the page, or (catalogue
//                                         level) arguments that do not decode
//                                         by the parameter format
//   kStatusReplyTooLong   -3  0xfffffffd  the status and values take more than
//                                         the page's SHM_DATA_SIZE bytes
//   kStatusStaleRequest   -4  0xfffffffc  the request was pending before Open:
//                                         not run (see SetServeStale)
//   kStatusHandlerFailed  -5  0xfffffffb  the handler threw, or (catalogue
//                                         level) read an argument by another
//                                         letter than its own
//   kStatusReplyMismatch  -6  0xfffffffa  (catalogue level) the values break
//                                         the print format
//
// The statuses from kStatusReservedLowest (-16) to -1 are the library's: a
// handler reports its own failures with other values (positive ones, say), so
// that the console's user can tell the two apart. A handler's non-zero status
// is sent alone, without values.
//
// What the library does not do: it installs no signal handler, keeps no
// process-wide state, starts no thread and prints nothing; failures come back
// as results, with a message for the caller to log.
//
// Thread safety: one thread at a time may call a ZoShmService's methods; it
// has no lock. Handlers run on the thread that called Serve, ServeOne or
// Dispatch. The one exception is Stop, which any thread and a signal handler
// may call at any time.
//
// A foreign page: the page is shared with whatever process maps the file, so
// its contents are untrusted input. A request whose u32Size reaches past the
// page, or that is shorter than its instruction code, is answered with
// kStatusBadRequest; a handler reads its arguments with the parcel's readers,
// which never read past the request.
//
// A request left on the page: a request that is already pending when Open
// maps the page was posted before this service existed, perhaps to an
// earlier run that it made crash. By default it is answered with
// kStatusStaleRequest and its handler does not run, so that such a request
// cannot crash every restart of the service.
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

#include <atomic>
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
    bool stale = false;    // it was pending when the page was opened
    uint8_t payload[SHM_DATA_SIZE];
};

class ZoShmService {
public:
    // Fills values (the reply's values, behind the status) from args, whose
    // read position is at the first argument, and returns the status: 0 for
    // success; anything else is sent alone and the values are dropped.
    using Handler = std::function<int32_t(const android::Parcel& args, android::Parcel& values)>;

    // What became of a request.
    enum class Served {
        kNothing,   // no request was pending (or Dispatch: there is no page)
        kAnswered,  // the reply is on the page
        kDropped,   // the page held another request by the time the reply was ready: not answered
    };

    // The statuses the library sends itself; the table above says when.
    static constexpr int32_t kStatusNoHandler = -1;
    static constexpr int32_t kStatusBadRequest = -2;
    static constexpr int32_t kStatusReplyTooLong = -3;
    static constexpr int32_t kStatusStaleRequest = -4;
    static constexpr int32_t kStatusHandlerFailed = -5;
    static constexpr int32_t kStatusReplyMismatch = -6;
    // The library's range: kStatusReservedLowest to -1. Handlers keep out of it.
    static constexpr int32_t kStatusReservedLowest = -16;

    // What ServeOne, Serve or Dispatch did with one request.
    struct Outcome {
        Served served = Served::kNothing;
        int32_t code = -1;    // the request's instruction code; -1 when it has none
        int32_t status = 0;   // the status the reply starts with
        // Why the library chose the status itself, for the service's log
        // ("no handler for instruction 0x99"); empty when the status is the
        // handler's own or no request was served.
        std::string problem;
    };

    // Time between two looks at the flag word in WaitForRequest and Serve: an
    // idle service wakes 50 times a second, and every answer is on the page
    // long before the console first looks, 100 ms after posting.
    static constexpr unsigned kDefaultPollMs = 20;

    ZoShmService() = default;
    virtual ~ZoShmService();  // Close
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
    // call created is removed again when it fails. A request pending on the
    // page now is remembered as stale.
    int Open(const std::string& path, std::string* error);
    // Unmaps the page. Returns 0, also when nothing is open; -1 with a message
    // when munmap fails. The file stays.
    int Close(std::string* error = nullptr);
    // The mapped page, or null before Open and after Close.
    const void* Page() const { return m_page; }

    // Time between two looks at the page while waiting; 0 counts as 1.
    void SetPollMs(unsigned pollMs) { m_pollMs = pollMs != 0 ? pollMs : 1; }
    // With true, the request that was pending at Open is served like any
    // other instead of getting kStatusStaleRequest. Call it before Open.
    void SetServeStale(bool serve) { m_serveStale = serve; }

    // The handler for requests with this instruction code, replacing an
    // earlier one. Codes without a handler get kStatusNoHandler.
    void Register(int32_t code, Handler handler);

    // True iff a request is pending now. Never blocks.
    bool Pending() const;
    // Looks every poll period until a request is pending (true), timeoutMs
    // have passed or Stop was called (false). Sleeps between looks.
    bool WaitForRequest(unsigned timeoutMs) const;
    // Waits up to timeoutMs for a request and serves it as ServeOne does;
    // served is kNothing when none came or Stop was called.
    Outcome Serve(unsigned timeoutMs);
    // Serves the pending request, if any: runs its code's handler (Dispatch)
    // and posts the reply (PostReply).
    Outcome ServeOne();

    // Makes a waiting Serve or WaitForRequest return within a poll period,
    // and every later one at once. Async-signal-safe: a signal handler or
    // another thread may call it while this object serves.
    void Stop() { m_stop.store(true, std::memory_order_relaxed); }
    bool Stopped() const { return m_stop.load(std::memory_order_relaxed); }

    // The reply ServeOne would post for these request bytes (the instruction
    // code, then the arguments), without a page: the same dispatch, for a
    // handler's unit test. outcome, when not null, says what was done
    // (served is kNothing).
    std::vector<uint8_t> Dispatch(const uint8_t* request, size_t length, Outcome* outcome = nullptr);
    // The reply to a request taken from the page, stale requests included.
    std::vector<uint8_t> Dispatch(const ZoShmRequest& request, Outcome* outcome = nullptr);

    // The parts of ServeOne, for a service that decodes requests itself.
    //
    // Copies the pending request into request; false when none is pending.
    // request.stale tells the request that was pending at Open, once.
    bool TakeRequest(ZoShmRequest& request);
    // Posts length bytes (a status, then values with status 0) as the answer
    // to answered, but only while the page still holds that request (its flag
    // word, u32Size and payload unchanged): it may have been replaced by
    // another console's request meanwhile. Writes the payload and u32Size,
    // then sets bit 1 with release ordering, leaving the other bits as they
    // were. A reply longer than the payload is replaced by kStatusReplyTooLong.
    Served PostReply(const ZoShmRequest& answered, const uint8_t* reply, size_t length);
    // Leaves the pending request unanswered and clears its bit 0, so that a
    // later request (a restarted console's) stands out from it.
    void DropRequest();

protected:
    // A handler that may choose one of the library's statuses itself, with
    // the reason in problem: what the catalogue level registers.
    using CodeHandler =
        std::function<int32_t(const android::Parcel& args, android::Parcel& values, std::string& problem)>;
    void RegisterCode(int32_t code, CodeHandler handler);
    bool HasHandler(int32_t code) const { return m_handlers.count(code) != 0; }

    // PostReply with claimedSize in u32Size instead of the length: only a
    // simulator of faulty services wants that.
    Served PostReplyClaiming(const ZoShmRequest& answered, const uint8_t* reply, size_t length,
                             uint32_t claimedSize);

private:
    // The reply to size bytes at bytes, of which length are there (size may
    // claim more than the page holds); stale when it was pending at Open.
    std::vector<uint8_t> Reply(const uint8_t* bytes, size_t length, size_t size, bool stale, Outcome& outcome);
    Served Post(const ZoShmRequest& answered, const uint8_t* reply, size_t length, const uint32_t* claimedSize);

    void* m_page = nullptr;
    std::map<int32_t, CodeHandler> m_handlers;
    unsigned m_pollMs = kDefaultPollMs;
    bool m_serveStale = false;
    bool m_haveStale = false;  // m_stale holds the request pending at Open, not yet taken
    std::atomic<bool> m_stop{false};
    static_assert(std::atomic<bool>::is_always_lock_free, "Stop must be async-signal-safe");
    ZoShmRequest m_stale;    // kept out of the stack: 4 KB
    ZoShmRequest m_request;  // the request being served
};

#endif  // ZO_SHM_ZO_SHM_SERVICE_H
