// The catalogue level of the service library: registration by word, each letter decoded and encoded, rows, and every
// mismatch with its status, through the same dispatch a page uses; then a stale request on a real page.
#include <stdexcept>

#include <gtest/gtest.h>

#include "hex_words.h"
#include "temp_dir.h"
#include "zo_shm_catalogue_service.h"
#include "zo_shm_console.h"

namespace {

// 'rename' shares 0x11 with 'count', which answers it: Channel sorts first. Broken's code is no number, which the
// reader reports.
void WriteCatalogue(const TempDir& dir)
{
    dir.Write("mods.conf", "[Channel]\ninstruction = 0x10\n[Picture]\ninstruction = 0x20\n[Broken]\ninstruction = zz\n");
    dir.Write("cmds.conf",
              "[a]\ncommand = count\nbelong module = Channel\ninstruction = 0x11\nprint format = d\n"
              "[b]\ncommand = echo\nbelong module = Channel\ninstruction = 0x12\npara format = dDfFsS\n"
              "print format = dDfFs\n"
              "[c]\ncommand = odd\nbelong module = Channel\ninstruction = 0x13\npara format = d\nprint format = dF\n"
              "[d]\ncommand = name\nbelong module = Channel\ninstruction = 0x14\npara format = s\n"
              "[e]\ncommand = bad\nbelong module = Channel\ninstruction = 0x15\npara format = dx\n"
              "[f]\ncommand = rename\nbelong module = Picture\ninstruction = 0x11\n");
}

// Print format dF; what it does is chosen by its argument.
int32_t Odd(const ZoShmArgs& args, ZoShmReply& reply)
{
    const int32_t how = args.Int32(0);
    if (how == 3) {
        throw std::runtime_error("boom");
    }
    for (int row = 0; row < (how == 0 ? 2 : how == 6 ? 400 : 1); ++row) {  // 0: two rows; 6: too many
        reply.PutInt32(1);
        if (how == 1) {
            reply.PutInt32(2);  // where F belongs
        } else if (how != 2) {  // 2: a row cut short
            reply.PutDouble(2.5);
        }
    }
    return how == 4 ? static_cast<int32_t>(args.Double(0)) : how == 5 ? 7 : 0;
}

}  // namespace

TEST(ZoShmCatalogueService, ServesByWordAndAnswersEveryMismatchWithItsStatus)
{
    TempDir dir;
    WriteCatalogue(dir);
    ZoShmCatalogueService service;
    std::vector<std::string> messages;
    std::string error;
    EXPECT_EQ(0, service.Load(dir.Path(), &error, [&](const std::string& m) { messages.push_back(m); })) << error;
    EXPECT_EQ(std::vector<std::string>{"strtol:zz is not figure"}, messages) << "to the sink, not to stdout";

    std::string line;
    const auto echo = [&line](const ZoShmArgs& args, ZoShmReply& reply) {  // each argument put back
        line = args.Line();
        reply.PutInt32(args.Int32(0)), reply.PutInt64(args.Int64(1)), reply.PutFloat(args.Float(2));
        reply.PutDouble(args.Double(3)), reply.PutText(args.Text(4));
        return 0;
    };
    const auto nothing = [](const ZoShmArgs&, ZoShmReply&) { return 0; };
    EXPECT_EQ(0, service.Register("Channel", "echo", echo, &error));
    EXPECT_EQ(0, service.Register("Channel", "odd", Odd, &error));
    EXPECT_EQ(0, service.Register("Channel", "name", nothing, &error));
    const struct { const char* module; const char* word; std::string error; } refused[] = {
        {"Channel", "nope", "no command 'nope' in module 'Channel' of the catalogue"},
        {"Nope", "count", "no module 'Nope' in the catalogue"},
        {"Picture", "rename", "'rename' (Picture) shares instruction 0x11 with 'count' (Channel), which answers it"},
        {"Channel", "bad", "'bad' (Channel): 'x' of \"dx\" is no format letter"},
    };
    for (const auto& c : refused) {
        EXPECT_EQ(-1, service.Register(c.module, c.word, nothing, &error));
        EXPECT_EQ(c.error, error);
    }
    std::vector<std::string> unserved;
    for (const ZoShmCommand& command : service.Unserved()) {
        unserved.push_back(command.word);
    }
    EXPECT_EQ((std::vector<std::string>{"bad", "count", "rename"}), unserved);

    const std::string args = "fbffffff 00e68ee7 fdffffff cdcccc3d 00000000 00000240 05000000 61002200 62000900 63000000";
    const std::string row = "01000000 00000000 00000440";
    // reply: with status 0; problem: the start of the outcome's problem.
    const struct { std::string request; int32_t status; std::string reply, problem; } cases[] = {
        {"12000000 " + args, 0, "00000000 " + args, ""},
        {"13000000 00000000", 0, "00000000 " + row + " " + row, ""},
        {"13000000 05000000", 7, "", ""},
        {"11000000", ZoShmService::kStatusNoHandler, "", "no handler for instruction 0x11"},
        {"12000000 01000000", ZoShmService::kStatusBadRequest, "",
         "'echo' (Channel) takes \"dDfFsS\": nothing left for argument 2 ('D')"},
        {"14000000 64000000", ZoShmService::kStatusBadRequest, "", "'name' (Channel) takes \"s\": a broken string for argument 1 ('s')"},
        {"14000000 00000000 00000000 01000000", ZoShmService::kStatusBadRequest, "", "'name' (Channel) takes \"s\": 4 bytes left over"},
        {"13000000 01000000", ZoShmService::kStatusReplyMismatch, "",
         "the reply of 'odd' (Channel): value 2 put as 'd' where the print format \"dF\" has 'F'"},
        {"13000000 02000000", ZoShmService::kStatusReplyMismatch, "",
         "the reply of 'odd' (Channel): the last row has 1 of the 2 values of the print format \"dF\""},
        {"13000000 03000000", ZoShmService::kStatusHandlerFailed, "", "the handler of 'odd' (Channel) threw: boom"},
        {"13000000 04000000", ZoShmService::kStatusHandlerFailed, "",
         "the handler of 'odd' (Channel) read argument 1 ('d') as F, a double"},
        {"13000000 06000000", ZoShmService::kStatusReplyTooLong, "",
         "the reply of 'odd' (Channel): the values take more than the page's 4088 bytes"},
    };
    for (const auto& c : cases) {
        const std::vector<uint8_t> request = FromHex(c.request);
        ZoShmService::Outcome outcome;
        const std::vector<uint8_t> reply = service.Dispatch(request.data(), request.size(), &outcome);
        const int32_t status = c.status;
        EXPECT_EQ(c.status == 0 ? c.reply : HexWords(reinterpret_cast<const uint8_t*>(&status), 4),
                  HexWords(reply.data(), reply.size()))
            << c.request;
        EXPECT_EQ(c.status, outcome.status) << c.request;
        EXPECT_EQ(c.problem, outcome.problem.substr(0, c.problem.size())) << c.request;
        EXPECT_EQ(c.problem.empty(), outcome.problem.empty()) << outcome.problem;
    }
    EXPECT_EQ("echo -5 -9000000000 0.1 2.25 \"a\\\"b\\x09c\"", line);

    // On a page: a request left there before the service opened it is not run, a new one is.
    void* page = nullptr;
    const auto post = [&page](const std::string& hex) {
        android::Parcel request;
        const std::vector<uint8_t> bytes = FromHex(hex);
        request.setData(bytes.data(), bytes.size());
        ASSERT_EQ(0, ShmPostRequest(page, request));
    };
    ZoShmService earlier;
    ASSERT_EQ(0, earlier.Open(ShmSwapFilePath(dir.Path()), &error)) << error;
    page = const_cast<void*>(earlier.Page());
    post("12000000 " + args);
    line.clear();
    ASSERT_EQ(0, service.Open(ShmSwapFilePath(dir.Path()), &error)) << error;
    ZoShmService::Outcome outcome = service.ServeOne();
    EXPECT_EQ(ZoShmService::kStatusStaleRequest, outcome.status);
    EXPECT_EQ(ZoShmService::Served::kAnswered, outcome.served);
    EXPECT_EQ("", line) << "the handler did not run";
    post("12000000 " + args);
    outcome = service.ServeOne();
    EXPECT_EQ(0, outcome.status) << "the same bytes again are a new request";
    EXPECT_EQ(0x12, outcome.code);
    EXPECT_NE("", line);
}
