#include "zo_file_parse.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "catalogue_loader.h"

namespace {

using namespace std::string_literals;

const char kCmdsEmpty[] = "cmds.conf is empty!\nParseCmds fail\n";

TEST(ZoFileParseReader, BlankOnlyRowsCommentsAndForeignKeysEndABlock)
{
    ZoFileParse parse;
    Load(parse,
         "# modules\ncommand = x\n[A]\ncommand = a\n\n\ninstruction = 1\n \ndescription = lost\n"
         "[B]\ninstruction = 2\n# note\ndescription = lost\n[C]\ncommand = c\nbelong module = x\ninstruction = 3\n",
         "");
    EXPECT_EQ(Items(parse.GetModNames()), (Rows{"A", "B", "C"}));
    EXPECT_EQ(parse.GetModInstruct("A"), 1);  // empty rows do not end a block
    EXPECT_EQ(parse.GetModDescrip("A") + parse.GetModDescrip("B"), "");
    EXPECT_EQ(parse.GetModToCmd("C"), "c");
    EXPECT_EQ(parse.GetModInstruct("C"), -1);
}

TEST(ZoFileParseReader, CrlfRowsAndAFinalRowWithoutLineFeed)
{
    ZoFileParse parse;
    EXPECT_EQ(Load(parse, "[A]\r\ncommand = a\r\ninstruction = 1\r\n\r\n[B]\r\ninstruction = 2",
                   "[x]\r\ncommand = x \r\nbelong module = A\r\nprint tags = p,q\r\n"),
              "");
    EXPECT_EQ(parse.GetModInstruct("B"), 2);
    EXPECT_EQ(Items(parse.GetCmdPrintTags(1, "x")), (Rows{"p", "q"}));

    // A lone carriage return is a blank-only row.
    ZoFileParse cr;
    Load(cr, "[A]\r\ncommand = a\r\n\r\ninstruction = 1\r\n", "");
    EXPECT_EQ(cr.GetModInstruct("A"), -1);
}

TEST(ZoFileParseReader, TitleAsLastRowEntersADefaultRecord)
{
    ZoFileParse parse;
    Load(parse, "[A]\ninstruction = 1\n[Last]", "[c]\nbelong module = A\n[d]\n");
    EXPECT_EQ(Items(parse.GetModNames()), (Rows{"A", "Last"}));
    EXPECT_EQ(parse.GetModInstruct("Last"), -1);
    EXPECT_EQ(Items(parse.GetModHoldCmds(1)), (Rows{""}));
}

TEST(ZoFileParseReader, OverlongRowsAreReportedEachTimeTheyAreRead)
{
    // Between blocks once; inside a block once as it ends the block and again
    // when it is read back outside.
    const std::string longRow(300, 'x');
    const std::string title = "str size:300 too large, max len:256\n";
    ZoFileParse parse;
    EXPECT_EQ(Load(parse, longRow + "\n[A]\ncommand = a\n" + longRow + "\ninstruction = 1\n", ""),
              title + title + title + kCmdsEmpty);
    EXPECT_EQ(parse.GetModInstruct("A"), -1);

    // A key part of 256 characters: every key test of the file reports it.
    const std::string keyTitle = "str size:259 too large, max len:256\n";
    ZoFileParse keys;
    EXPECT_EQ(LoadCmds(keys, "[x]\ncommand = x\nbelong module = M\n" + std::string(256, ' ') + "= 1\n"),
              keyTitle +
                  "IsCommand string str.size(): 256\nIsBelongMod string str.size(): 256]\n"
                  "IsInstruction string str.size(): 256\nIsParaFormat string str.size(): 256\n"
                  "IsPrintFmt string str.size(): 256\nIsPrintTags string str.size(): 256\n"
                  "IsDescription string str.size(): 256\n" +
                  keyTitle);
    EXPECT_EQ(Items(keys.GetModHoldCmds(0x10)), (Rows{"x"}));

    // The platform reader cuts a row at 4096 bytes.
    ZoFileParse huge;
    EXPECT_EQ(Load(huge, std::string(100000, '[') + "\n", ""),
              "str size:4096 too large, max len:256\n"s + kCmdsEmpty);
}

TEST(ZoFileParseReader, NulAndBinaryBytesStayInsideTheRow)
{
    ZoFileParse parse;
    EXPECT_EQ(Load(parse, "[A]\ncommand = a\0junk\ninstruction = 1\n[B\0]\ninstruction = 2\n"s,
                   "[x]\ncommand = \xff\x01\xfe\nbelong module = A\n"s),
              "");
    EXPECT_EQ(Items(parse.GetModNames()), (Rows{"A"}));
    EXPECT_EQ(parse.GetModToCmd("A"), "a");
    EXPECT_EQ(Items(parse.GetModHoldCmds(1)), (Rows{"\xff\x01\xfe"}));

    // Arbitrary bytes load without a fault (the sanitizer build checks).
    uint32_t seed = 12345;
    for (int file = 0; file < 50; ++file) {
        std::string bytes;
        for (int i = 0; i < 2000 + file * 97; ++i) {
            seed = seed * 1103515245u + 12345u;
            const char alphabet[] = "[]= \t\r\n,x\0\xff";
            bytes.push_back((seed >> 24) % 4 == 0 ? static_cast<char>(seed >> 16) : alphabet[(seed >> 16) % 12]);
        }
        ZoFileParse random;
        Load(random, bytes, bytes);
    }
}

}  // namespace
