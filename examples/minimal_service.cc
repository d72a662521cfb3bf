// The smallest middleware service the console can talk to: the example
// catalogue's "vol" (module Sound, instruction 0x31) sets the volume and
// answers the volume it now holds. Run it on a directory: minimal_service DIR.
#include <cstdio>
#include <string>

#include "zo_shm_service.h"

int main(int argc, char** argv)
{
    const std::string dir = argc > 1 ? argv[1] : kShmDeviceDir;
    ZoShmService service;
    std::string error;
    if (service.Open(ShmSwapFilePath(dir), &error) != 0) {
        std::fprintf(stderr, "minimal_service: %s\n", error.c_str());
        return 1;
    }
    int32_t volume = 20;
    service.Register(0x31, [&volume](const android::Parcel& args, android::Parcel& values) {
        volume = args.readInt32();
        values.writeInt32(volume);
        return 0;
    });
    for (;;) {
        service.Serve(1000);  // wait up to a second for a request and answer it
    }
}
