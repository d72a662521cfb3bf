// The console's half of the exchange over the shared page (zo_shm_page.h):
// post a request, wait for the reply flag, take the reply.
//
// Used by the console's main thread only, one exchange at a time.
#ifndef ZO_SHM_ZO_SHM_CONSOLE_H
#define ZO_SHM_ZO_SHM_CONSOLE_H

#include <binder/Parcel.h>

// The console looks at the flag word once per this period, the first time
// after one period: a service has that long to answer before the first look.
constexpr long kShmConsolePollNs = 100000000;

// Copies the request's bytes into the payload, then publishes its size and a
// flag word of bit 0 alone (which also clears a reply flag left by the last
// exchange). Returns 0; -1 with the header untouched, so that the service
// sees nothing, when the request does not fit the payload, and -1 after
// printing "requestData is the null" when the parcel holds no data.
int ShmPostRequest(void* page, const android::Parcel& request);

// Sleeps one period and looks at the flag word, until bit 1 is set (there is
// no time-out: Ctrl-C ends a console whose service never answers). Then loads
// reply with u32Size bytes of the payload, read once. Returns 0; -1, with
// nothing read, when u32Size reaches past the page.
int ShmAwaitReply(void* page, android::Parcel& reply);

#endif  // ZO_SHM_ZO_SHM_CONSOLE_H
