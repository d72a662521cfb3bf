#include "zo_file_parse.h"

#include <string>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "catalogue_loader.h"

namespace {

TEST(ZoFileParse, ExampleCatalogueLoadsWithoutAMessage)
{
    ZoFileParse parse;
    EXPECT_EQ(InitCaptured(parse, ZO_EXAMPLES_DIR), "");
    EXPECT_EQ(parse.GetIOExceptionStatus(), 0);
    EXPECT_EQ(Items(parse.GetModNames()), (Rows{"Channel", "Picture", "Sound", "System", "Video"}));
    EXPECT_EQ(Items(parse.GetModCmds()), (Rows{"chan", "pic", "snd", "sys", "vid"}));
    EXPECT_EQ(Items(parse.GetModHoldCmds(parse.GetModInstruct("Channel"))), (Rows{"count", "info", "rename", "tune"}));
    EXPECT_EQ(parse.GetCmdParaFmt(0x10, "rename"), "dS");
    EXPECT_EQ(parse.GetCmdInstruct(0x40, "res"), 0x41);
    EXPECT_EQ(Items(parse.GetCmdPrintTags(0x40, "res")), (Rows{"width", "height", "frame rate"}));
    ZoFileParse again;
    EXPECT_EQ(again.Init(ZO_EXAMPLES_DIR), 0);
}

TEST(ZoFileParse, ModulesComeOutInByteOrderWithTheirWords)
{
    ZoFileParse parse;
    Load(parse, "[beta]\ncommand = b\n[Zeta]\ninstruction = 5\n[alpha]\ncommand = a\n", "");
    EXPECT_EQ(Items(parse.GetModNames()), (Rows{"Zeta", "alpha", "beta"}));
    EXPECT_EQ(Items(parse.GetModCmds()), (Rows{"", "a", "b"}));
}

TEST(ZoFileParse, FirstModuleAndFirstCommandOfANameWin)
{
    ZoFileParse parse;
    EXPECT_EQ(Load(parse,
                   "[Channel]\ncommand = chan\ninstruction = 0x10\n[Channel]\ncommand = other\ninstruction = 0x30\n"
                   "[Alias]\ninstruction = 0x10\n[Picture]\ninstruction = 0x20\n",
                   "[a]\ncommand = info\nbelong module = Channel\ninstruction = 1\n"
                   "[b]\ncommand = info\nbelong module = Channel\ninstruction = 2\n"
                   "[c]\ncommand = list\nbelong module = Alias\n"
                   "[d]\ncommand = info\nbelong module = Picture\ninstruction = 3\n"),
              "");
    EXPECT_EQ(parse.GetModToCmd("Channel"), "chan");
    EXPECT_EQ(parse.GetModInstruct("Channel"), 0x10);
    EXPECT_EQ(Items(parse.GetModHoldCmds(0x10)), (Rows{"info", "list"}));  // modules sharing a code share commands
    EXPECT_EQ(parse.GetCmdInstruct(0x10, "info"), 1);
    EXPECT_EQ(parse.GetCmdInstruct(0x20, "info"), 3);
    EXPECT_TRUE(Items(parse.GetModHoldCmds(0x30)).empty());
}

TEST(ZoFileParse, CommandsWithoutAModuleCodeAreDroppedAndMissesCreateNothing)
{
    ZoFileParse parse;
    Load(parse, "[Channel]\ncommand = chan\ninstruction = 0x10\n[Bare]\ncommand = bare\n",
         "[by word]\ncommand = a\nbelong module = chan\n[codeless]\ncommand = b\nbelong module = Bare\n"
         "[no word]\nbelong module = Channel\ndescription = nameless\n[no tags]\ncommand = c\nbelong module = Channel\n");
    EXPECT_EQ(Items(parse.GetModHoldCmds(0x10)), (Rows{"", "c"}));
    EXPECT_EQ(parse.GetCmdDescrip(0x10, ""), "nameless");
    EXPECT_TRUE(Items(parse.GetCmdPrintTags(0x10, "c")).empty());
    EXPECT_EQ(parse.GetCmdInstruct(0x10, "c"), -1);
    EXPECT_TRUE(Items(parse.GetModHoldCmds(-1)).empty());

    EXPECT_EQ(parse.GetModToCmd("chan") + parse.GetModDescrip("x") + parse.GetCmdPrintFmt(0x99, "c") +
                  parse.GetCmdParaFmt(0x10, "x") + parse.GetCmdDescrip(0x10, "x"),
              "");
    EXPECT_EQ(parse.GetModInstruct("x"), -1);
    EXPECT_EQ(parse.GetCmdInstruct(0x99, "c"), -1);
    EXPECT_TRUE(Items(parse.GetCmdPrintTags(0x10, "x")).empty());
    EXPECT_EQ(Items(parse.GetModNames()), (Rows{"Bare", "Channel"}));
    EXPECT_EQ(Items(parse.GetModHoldCmds(0x10)), (Rows{"", "c"}));
    EXPECT_TRUE(Items(parse.GetModHoldCmds(0x99)).empty());
}

TEST(ZoFileParse, FailedFilesAreReportedInOrderAndBothAreRead)
{
    TempDir dir;
    dir.Write("cmds.conf", "[x]\ncommand = x\nbelong module = M\n");
    ZoFileParse missingMods;
    EXPECT_EQ(InitCaptured(missingMods, dir.Path()), "file path error or open file failure\nParseModules fail\n");
    EXPECT_EQ(missingMods.GetIOExceptionStatus(), 1);
    EXPECT_TRUE(Items(missingMods.GetModNames()).empty());
    ZoFileParse again;
    EXPECT_EQ(again.Init(dir.Path()), -1);  // its messages go to the test's own output

    ZoFileParse emptyBoth;
    EXPECT_EQ(Load(emptyBoth, "", ""), "mods.conf is empty!\nParseModules fail\ncmds.conf is empty!\nParseCmds fail\n");
    EXPECT_EQ(emptyBoth.GetIOExceptionStatus(), 1);

    // Folders where the files should be cannot be read.
    mkdir(dir.File("x").c_str(), 0700);
    mkdir(dir.File("x/mods.conf").c_str(), 0700);
    mkdir(dir.File("x/cmds.conf").c_str(), 0700);
    ZoFileParse folders;
    EXPECT_EQ(InitCaptured(folders, dir.File("x")),
              dir.File("x/mods.conf") + " is not a regular file\nfile path error or open file failure\nParseModules fail\n" +
                  dir.File("x/cmds.conf") + " is not a regular file\nfile path error or open file failure\nParseCmds fail\n");
}

TEST(ZoFileParse, ThousandsOfModulesAndCommands)
{
    std::string mods;
    std::string cmds;
    for (int m = 0; m < 2000; ++m) {
        // Decimal digits read as hexadecimal: two modules per code.
        mods += "[mod" + std::to_string(m) + "]\ncommand = w" + std::to_string(m) +
                "\ninstruction = " + std::to_string(m % 1000) + "\n";
        for (int c = 0; c < 5; ++c) {
            cmds += "[c]\ncommand = cmd" + std::to_string(c) + "\nbelong module = mod" + std::to_string(m) + "\n";
        }
    }
    ZoFileParse parse;
    EXPECT_EQ(Load(parse, mods, cmds), "");
    EXPECT_EQ(parse.GetModNames().Size(), 2000u);
    EXPECT_EQ(parse.GetModCmds().Size(), 2000u);
    EXPECT_EQ(Items(parse.GetModHoldCmds(0x999)), (Rows{"cmd0", "cmd1", "cmd2", "cmd3", "cmd4"}));
    EXPECT_EQ(parse.GetModToCmd("mod1999"), "w1999");
}

}  // namespace
