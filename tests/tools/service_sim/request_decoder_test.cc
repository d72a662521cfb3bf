#include "request_decoder.h"

#include <gtest/gtest.h>

#include <binder/Parcel.h>

namespace {

CommandIndex OneCommand(const std::string& paraFmt)
{
    CommandIndex index;
    SimCommand cmd;
    cmd.module = "Channel";
    cmd.word = "set";
    cmd.instruct = 0x30;
    cmd.paraFmt = paraFmt;
    index.Add(cmd);
    return index;
}

std::vector<uint8_t> Bytes(const android::Parcel& p)
{
    return std::vector<uint8_t>(p.data(), p.data() + p.dataSize());
}

}  // namespace

TEST(RequestDecoder, SkipsSAndRefusesBrokenStrings)
{
    const CommandIndex index = OneCommand("sSs");
    android::Parcel good;
    good.writeInt32(0x30);
    good.writeString16(android::String16("\xc3\xa9t\xc3\xa9"));  // UTF-8 passes through
    good.writeString16(android::String16("x\\y\x7f"));
    DecodedRequest ok = DecodeRequest(Bytes(good), index);
    EXPECT_EQ(ok.kind, DecodedRequest::Kind::kCommand);
    EXPECT_EQ(ok.line, "set \"\xc3\xa9t\xc3\xa9\" \"x\\\\y\\x7f\"");

    // A count that runs past the end, and a block without its zero terminator unit.
    android::Parcel overlong;
    overlong.writeInt32(0x30);
    overlong.writeInt32(100);
    EXPECT_EQ(DecodeRequest(Bytes(overlong), index).line, "set [bad request: broken string for 's']");
    std::vector<uint8_t> unterminated = Bytes(good);
    unterminated[4 + 4 + 6] = 'z';  // the zero unit behind the three units of the first string
    EXPECT_EQ(DecodeRequest(unterminated, index).kind, DecodedRequest::Kind::kBadRequest);
}

TEST(RequestDecoder, ShortRequestsAndUnsupportedLetters)
{
    EXPECT_EQ(DecodeRequest({1, 0}, OneCommand("")).line, "bad request: 2 bytes, too short for an instruction code");
    android::Parcel request;
    request.writeInt32(0x30);
    request.writeInt32(1);
    const DecodedRequest bad = DecodeRequest(Bytes(request), OneCommand("dx"));
    EXPECT_EQ(bad.kind, DecodedRequest::Kind::kBadRequest);
    EXPECT_EQ(bad.line, "set 1 [bad request: parameter format letter 'x' has no encoding]");
    // An int64 needs 8 bytes; 4 are not enough.
    EXPECT_EQ(DecodeRequest(Bytes(request), OneCommand("D")).line, "set [bad request: nothing left for 'D']");
}
