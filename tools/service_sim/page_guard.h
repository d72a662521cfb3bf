// PageGuard: runs the simulator's accesses to the service's page so that a
// page lost under the mapping (its swap file cut below a page, or a sparse
// page on a full file system) abandons the access instead of killing the
// simulator with SIGBUS. The library leaves that choice to its user; this is
// the simulator's.
//
// Only a bus error that the kernel raises inside the page while an access
// runs is caught. Any other SIGBUS, a sent one included, ends the process as
// it would have without the guard. One PageGuard per process.
#ifndef ZO_TOOLS_SERVICE_SIM_PAGE_GUARD_H
#define ZO_TOOLS_SERVICE_SIM_PAGE_GUARD_H

#include <csetjmp>

class PageGuard {
public:
    // Guards accesses to the 4096 bytes at page (a ZoShmService's Page()).
    explicit PageGuard(const void* page);
    ~PageGuard();  // the default action again
    PageGuard(const PageGuard&) = delete;
    PageGuard& operator=(const PageGuard&) = delete;

    // Runs access, which must touch the page only through ZoShmService's page
    // calls (plain loads, stores and copies: nothing to unwind). False when
    // the page is lost, now or at an earlier access; access does not run then.
    template <typename Access>
    bool Run(Access access)
    {
        if (m_lost) {
            return false;
        }
        sigjmp_buf back;
        if (sigsetjmp(back, 1) != 0) {
            Disarm();
            m_lost = true;
            return false;
        }
        Arm(&back);
        access();
        Disarm();
        return true;
    }

private:
    static void Arm(sigjmp_buf* back);
    static void Disarm();

    bool m_lost = false;
};

#endif  // ZO_TOOLS_SERVICE_SIM_PAGE_GUARD_H
