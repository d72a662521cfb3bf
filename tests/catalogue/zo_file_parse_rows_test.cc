#include "zo_file_parse.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "catalogue_loader.h"

namespace {

TEST(ZoFileParseRows, TitlesAreTrimmedButTheirNamesAreNot)
{
    ZoFileParse parse;
    Load(parse, "[ tv ]\ninstruction = 1\n  [x]\t\n[]\n[\n[y] z\ninstruction = 2\n",
         "[c]\ncommand = c\nbelong module = tv\n");
    EXPECT_EQ(Items(parse.GetModNames()), (Rows{"", " tv ", "x"}));
    EXPECT_TRUE(Items(parse.GetModHoldCmds(1)).empty());  // 'tv' does not name ' tv '
}

TEST(ZoFileParseRows, KeyPartMatchesUpToTheEqualsSign)
{
    ZoFileParse parse;
    LoadCmds(parse,
             "[a]\ncommand=a\n  belong module   =   M  \ndesc=short\nprint=d\n"
             "[b]\n= b\nbelong module = M\ndesc = lost\n"
             "[c]\ncommand = c\nbelong module = M\nCommand = C\n"
             "[d]\ncommand = d\nbelong module = M\nbelong  module = lost\n"
             "[e]\ncommand = e\nbelong module = M\ndescription = 1\ndescription = 2\n");
    EXPECT_EQ(Items(parse.GetModHoldCmds(0x10)), (Rows{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(parse.GetCmdDescrip(0x10, "a"), "short");
    EXPECT_EQ(parse.GetCmdPrintFmt(0x10, "a"), "d");  // "print" is tested as "print format" first
    EXPECT_EQ(parse.GetCmdDescrip(0x10, "b"), "");
    EXPECT_EQ(parse.GetCmdDescrip(0x10, "e"), "2");
}

TEST(ZoFileParseRows, InstructionIsHexadecimalClampedTo32Bits)
{
    const std::vector<std::pair<std::string, int32_t>> cases = {
        {"10", 16},     {"0x1F", 31},           {"-1", -1},          {"12zz", 0x12},
        {"zz", 0},      {"0xFFFFFFFF", INT32_MAX}, {"-0x80000001", INT32_MIN}, {"", 0},
    };
    std::string mods;
    for (size_t i = 0; i < cases.size(); ++i) {
        mods += "[" + std::to_string(i) + "]\ninstruction = " + cases[i].first + "\n";
    }
    ZoFileParse parse;
    EXPECT_EQ(Load(parse, mods, "[c]\nbelong module = 0\n"), "strtol:zz is not figure\nstrtol: is not figure\n");
    for (size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(parse.GetModInstruct(std::to_string(i)), cases[i].second) << cases[i].first;
    }
}

TEST(ZoFileParseRows, ValuesKeepInnerEqualsAndTagsSplitAtEveryComma)
{
    ZoFileParse parse;
    LoadCmds(parse,
             "[a]\ncommand = a\nbelong module = M\ndescription = a = b\nprint tags = number,name,\n"
             "[b]\ncommand = b\nbelong module = M\nprint tags = a, b,,c\n"
             "[c]\ncommand = c\nbelong module = M\nprint tags =   \n");
    EXPECT_EQ(parse.GetCmdDescrip(0x10, "a"), "a = b");
    EXPECT_EQ(Items(parse.GetCmdPrintTags(0x10, "a")), (Rows{"number", "name", ""}));
    EXPECT_EQ(Items(parse.GetCmdPrintTags(0x10, "b")), (Rows{"a", " b", "", "c"}));
    EXPECT_EQ(Items(parse.GetCmdPrintTags(0x10, "c")), (Rows{""}));
}

TEST(ZoFileParseRows, ValueLimitIs254Characters)
{
    // Rows this long are also reported as too long for a title.
    const std::string fits(254, 'v');
    const std::string tooLong(255, 'v');
    ZoFileParse parse;
    EXPECT_EQ(LoadCmds(parse, "[a]\ncommand = a\nbelong module = M\ndescription=" + fits + "\npara format=" + tooLong +
                                  "\nprint tags=" + tooLong + "\ninstruction=" + tooLong + "\n"),
              "str size:266 too large, max len:256\n"
              "str size:267 too large, max len:256\nGetParaFormat string size: 256\n"
              "str size:266 too large, max len:256\nGetPrintTags string size: 256\n"
              "str size:267 too large, max len:256\nGetInstruction string size: 256\n");
    EXPECT_EQ(parse.GetCmdDescrip(0x10, "a"), fits);
    EXPECT_EQ(parse.GetCmdParaFmt(0x10, "a"), "");
    EXPECT_TRUE(Items(parse.GetCmdPrintTags(0x10, "a")).empty());
    EXPECT_EQ(parse.GetCmdInstruct(0x10, "a"), 0);
}

TEST(ZoFileParseRows, KeyPartLimitIs255Characters)
{
    // 248 blanks and "command": a key part of 255, still a command row.
    // 245 blanks and "instruction": 256, reported, and the block ends.
    ZoFileParse parse;
    EXPECT_EQ(Load(parse, "[A]\n" + std::string(248, ' ') + "command=a\n" + std::string(245, ' ') + "instruction=1\n",
                   "[c]\n"),
              "str size:257 too large, max len:256\nstr size:258 too large, max len:256\n"
              "IsCommand string str.size(): 256\nIsInstruction string str.size(): 256\n"
              "IsDescription string str.size(): 256\nstr size:258 too large, max len:256\n");
    EXPECT_EQ(parse.GetModToCmd("A"), "a");
    EXPECT_EQ(parse.GetModInstruct("A"), -1);
}

}  // namespace
