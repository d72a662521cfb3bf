#include "request_decoder.h"

#include <gtest/gtest.h>

#include "sim_harness.h"

namespace {

CommandIndex OneCommand(const std::string& paraFmt)
{
    CommandIndex index;
    index.Add({"Channel", "set", 0x30, paraFmt, ""});
    return index;
}

}  // namespace

TEST(RequestDecoder, SkipsSAndRefusesBrokenStrings)
{
    const Bytes good = Encode([](android::Parcel& p) {
        p.writeInt32(0x30);
        p.writeString16(android::String16("\xc3\xa9t\xc3\xa9"));  // UTF-8 passes through
        p.writeString16(android::String16("x\\y\x7f"));
    });
    const DecodedRequest ok = DecodeRequest(good, OneCommand("sSs"));
    EXPECT_EQ(ok.kind, DecodedRequest::Kind::kCommand);
    EXPECT_EQ(ok.line, "set \"\xc3\xa9t\xc3\xa9\" \"x\\\\y\\x7f\"");

    // A count that runs past the end, and a block without its zero terminator unit.
    EXPECT_EQ(DecodeRequest(Ints({0x30, 100}), OneCommand("s")).line, "set [bad request: broken string for 's']");
    Bytes unterminated = good;
    unterminated[4 + 4 + 6] = 'z';  // the zero unit behind the three units of the first string
    EXPECT_EQ(DecodeRequest(unterminated, OneCommand("sSs")).kind, DecodedRequest::Kind::kBadRequest);
}

TEST(RequestDecoder, ShortRequestsAndUnsupportedLetters)
{
    EXPECT_EQ(DecodeRequest({1, 0}, OneCommand("")).line, "bad request: 2 bytes, too short for an instruction code");
    const DecodedRequest bad = DecodeRequest(Ints({0x30, 1}), OneCommand("dx"));
    EXPECT_EQ(bad.kind, DecodedRequest::Kind::kBadRequest);
    EXPECT_EQ(bad.line, "set 1 [bad request: parameter format letter 'x' has no encoding]");
    EXPECT_EQ(DecodeRequest(Ints({0x30, 1}), OneCommand("D")).line, "set [bad request: nothing left for 'D']");
}
