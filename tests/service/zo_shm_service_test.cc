// The service library against the console's half of the exchange, in one process, on a real mapped swap file.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "hex_words.h"
#include "temp_dir.h"
#include "zo_shm_console.h"
#include "zo_shm_service.h"

namespace {

// A volume of 0 to 100, set by code 0x31; any other fails with 5.
int32_t SetVolume(const android::Parcel& args, android::Parcel& values)
{
    const int32_t volume = args.readInt32();
    return volume < 0 || volume > 100 ? 5 : (values.writeInt32(volume), 0);
}

// Posts the request bytes with u32Size size, as the console does but with any size.
void PostRaw(void* page, const std::vector<uint8_t>& bytes, uint32_t size)
{
    std::memcpy(ShmPayloadOf(page), bytes.data(), bytes.size());
    ShmStoreSize(page, size);
    ShmStoreFlag(page, SHM_FLAG_REQUEST);
}

}  // namespace

TEST(ZoShmService, AnswersEachRequestTheConsolePosts)
{
    TempDir dir;
    ZoShmService service;
    std::string error;
    ASSERT_EQ(0, service.Open(ShmSwapFilePath(dir.Path()), &error)) << error;
    service.Register(0x31, SetVolume);
    service.Register(0x32, [](const android::Parcel&, android::Parcel& values) {
        for (size_t i = 0; i < SHM_DATA_SIZE / 4; ++i) {  // with the status, 4 bytes too many
            values.writeInt32(1);
        }
        return 0;
    });
    service.Register(0x33, [](const android::Parcel&, android::Parcel&) -> int32_t { throw std::logic_error("no"); });
    void* page = const_cast<void*>(service.Page());
    EXPECT_FALSE(service.Pending());
    EXPECT_EQ(ZoShmService::Served::kNothing, service.ServeOne().served);

    // size: u32Size, 0 for the request's length.
    const struct { const char* sent; uint32_t size; const char* reply; int32_t code; const char* problem; } cases[] = {
        {"31000000 1e000000", 0, "00000000 1e000000", 0x31, ""},
        {"31000000 2c010000", 0, "05000000", 0x31, ""},  // a failure carries the status alone
        {"99000000", 0, "ffffffff", 0x99, "no handler for instruction 0x99"},
        {"3100", 0, "feffffff", -1, "a request of 2 bytes, too short for an instruction code"},
        {"31000000 1e000000", 4089, "feffffff", -1, "a request of 4089 bytes, more than the page's 4088"},
        {"32000000", 0, "fdffffff", 0x32, "the reply to instruction 0x32 takes 4092 bytes, more than the page's 4088"},
        {"33000000", 0, "fbffffff", 0x33, "the handler of instruction 0x33 threw: no"},
    };
    for (const auto& c : cases) {
        const std::vector<uint8_t> bytes = FromHex(c.sent);
        PostRaw(page, bytes, c.size != 0 ? c.size : uint32_t(bytes.size()));
        EXPECT_TRUE(service.Pending()) << c.sent;
        const ZoShmService::Outcome outcome = service.ServeOne();
        EXPECT_EQ(ZoShmService::Served::kAnswered, outcome.served);
        EXPECT_EQ(c.code, outcome.code);
        EXPECT_EQ(c.problem, outcome.problem);
        EXPECT_EQ(SHM_FLAG_REQUEST | SHM_FLAG_REPLY, ShmLoadFlag(page));
        EXPECT_FALSE(service.Pending());
        android::Parcel reply;
        ASSERT_EQ(0, ShmAwaitReply(page, reply));
        EXPECT_EQ(c.reply, HexWords(reply.data(), reply.dataSize())) << c.sent;
    }

    // The console's own post; the reply of a request taken before another console replaced it is dropped, and the new
    // one is served next.
    android::Parcel request;
    request.writeInt32(0x31);
    request.writeInt32(7);
    ASSERT_EQ(0, ShmPostRequest(page, request));
    ZoShmRequest taken;
    ASSERT_TRUE(service.TakeRequest(taken));
    PostRaw(page, FromHex("99000000"), 4);
    const uint8_t status[4] = {};
    EXPECT_EQ(ZoShmService::Served::kDropped, service.PostReply(taken, status, sizeof status));
    EXPECT_EQ(SHM_FLAG_REQUEST, ShmLoadFlag(page));
    EXPECT_EQ(ZoShmService::Served::kAnswered, service.ServeOne().served);
    service.DropRequest();
    EXPECT_EQ(SHM_FLAG_REPLY, ShmLoadFlag(page)) << "no request is left pending";

    // A request pending at Open is served when the service asks for it.
    PostRaw(page, FromHex("31000000 1e000000"), 8);
    ZoShmService restarted;
    restarted.SetServeStale(true);
    restarted.Register(0x31, SetVolume);
    ASSERT_EQ(0, restarted.Open(ShmSwapFilePath(dir.Path()), &error)) << error;
    EXPECT_EQ(0, restarted.ServeOne().status);

    // Stop ends a wait from another thread within a poll period, and every later one at once.
    restarted.SetPollMs(5);
    const auto started = std::chrono::steady_clock::now();
    std::thread stopper([&restarted] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        restarted.Stop();
    });
    EXPECT_EQ(ZoShmService::Served::kNothing, restarted.Serve(60000).served);
    stopper.join();
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
    PostRaw(page, FromHex("31000000 1e000000"), 8);
    EXPECT_FALSE(restarted.WaitForRequest(60000)) << "stopped: returns at once";
}

TEST(ZoShmService, OpensOnlyARegularFileReachedWithoutALink)
{
    TempDir dir;
    const std::string page = ShmSwapFilePath(dir.Path());
    const std::string target = dir.Write("target", "kept");
    const mode_t umaskWas = umask(022);
    struct stat st {};
    {
        ZoShmService service;
        ASSERT_EQ(0, service.Open(page, nullptr));
        ASSERT_EQ(0, stat(page.c_str(), &st));
        EXPECT_EQ(0660u, st.st_mode & 0777) << "the umask does not keep the console out";
        EXPECT_EQ(off_t(SHM_SIZE), st.st_size);
        EXPECT_GE(st.st_blocks * 512, off_t(SHM_SIZE)) << "the page's blocks are reserved";
    }
    dir.Write(kShmSwapFileName, std::string(5000, 'x'));
    ZoShmService longer;
    ASSERT_EQ(0, longer.Open(page, nullptr));
    EXPECT_EQ(0, stat(page.c_str(), &st));
    EXPECT_EQ(5000, st.st_size) << "a longer file keeps its tail";
    umask(umaskWas);

    const struct {
        std::function<int()> make;
        std::string error;
    } refused[] = {
        {[&] { return symlink(target.c_str(), page.c_str()); }, "is a symbolic link, not a regular file: refused"},
        {[&] { return symlink(dir.File("none").c_str(), page.c_str()); }, "is a symbolic link, not a regular"},
        {[&] { return mkfifo(page.c_str(), 0600); }, "is a FIFO, not a regular file: refused"},
        {[&] { return mkdir(page.c_str(), 0700); }, "is a directory, not a regular file: refused"},
    };
    for (const auto& c : refused) {
        remove(page.c_str());
        ASSERT_EQ(0, c.make());
        ZoShmService service;
        std::string error;
        EXPECT_EQ(-1, service.Open(page, &error));
        EXPECT_EQ(page + " " + c.error, error.substr(0, page.size() + 1 + c.error.size()));
        EXPECT_EQ(nullptr, service.Page());
    }
    EXPECT_EQ("kept", ReadFile(target));
    EXPECT_NE(0, access(dir.File("none").c_str(), F_OK)) << "nothing made through a dangling link";
}
