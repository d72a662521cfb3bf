// SimPage: the catalogue service with the one call that only a simulator of
// faulty services needs, kept out of the library's public API: posting a
// reply with another u32Size than its length (--size).
#ifndef ZO_TOOLS_SERVICE_SIM_SIM_PAGE_H
#define ZO_TOOLS_SERVICE_SIM_SIM_PAGE_H

#include "zo_shm_catalogue_service.h"

class SimPage : public ZoShmCatalogueService {
public:
    using ZoShmService::PostReplyClaiming;
};

#endif  // ZO_TOOLS_SERVICE_SIM_SIM_PAGE_H
