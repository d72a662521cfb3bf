// The smallest middleware service the console can talk to: the example
// catalogue's "vol" (module Sound, "para format = d", "print format = d")
// sets the volume and answers the volume it now holds. Run it on the
// catalogue's directory: minimal_service DIR.
#include <cstdio>
#include <string>

#include "zo_shm_catalogue_service.h"

int main(int argc, char** argv)
{
    const std::string dir = argc > 1 ? argv[1] : kShmDeviceDir;
    ZoShmCatalogueService service;
    std::string error;
    int32_t volume = 20;
    const auto setVolume = [&volume](const ZoShmArgs& args, ZoShmReply& reply) {
        volume = args.Int32(0);
        reply.PutInt32(volume);
        return 0;
    };
    if (service.Load(dir, &error) != 0 || service.Register("Sound", "vol", setVolume, &error) != 0 ||
        service.Open(ShmSwapFilePath(dir), &error) != 0) {
        std::fprintf(stderr, "minimal_service: %s\n", error.c_str());
        return 1;
    }
    for (;;) {
        service.Serve(1000);  // wait up to a second for a request and answer it
    }
}
