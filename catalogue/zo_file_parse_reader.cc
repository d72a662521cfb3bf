// Reading "mods.conf" and "cmds.conf": opening each file through the platform
// row reader and cutting its rows into blocks, one record per block.
//
// A block is a title row followed by key rows. Empty rows are passed over
// anywhere; any other row that is no key row of the file ends the block and is
// put back, so that it is read again outside a block: a title there opens the
// next block, anything else is skipped up to the next title.
#include "zo_file_parse.h"

#include <cstdio>
#include <utility>

namespace {

// What differs between the two files when they are opened and read.
struct FileNames {
    const char* fileName;      // appended to the directory after a "/"
    const char* emptyMessage;  // the file holds no rows
    const char* failedFormat;  // the block reader failed, with its result
};

constexpr FileNames kModsFile = {"mods.conf", "mods.conf is empty!", "ParseModulePtr call failed ,ret = %d\n"};
constexpr FileNames kCmdsFile = {"cmds.conf", "cmds.conf is empty!", "ParseCmdPtr call failed ,ret = %d\n"};

// Opens the file, or prints why not and returns null.
std::unique_ptr<ZoFile> OpenRows(const std::string& dir, const FileNames& names)
{
    std::unique_ptr<ZoFile> file(new ZoFile());
    file->Init(dir + "/" + names.fileName, "r");
    if (file->GetIOExceptionStatus() != 0) {
        puts("file path error or open file failure");
        return nullptr;
    }
    if (file->IsEmpty()) {
        puts(names.emptyMessage);
        return nullptr;
    }
    return file;
}

// Judges a block reader's result; the reader is released here unless the
// block reader already released it.
int FinishFile(std::unique_ptr<ZoFile>& file, int ret, const FileNames& names)
{
    file.reset();
    if (ret != 0) {
        printf(names.failedFormat, ret);
        return -1;
    }
    return 0;
}

}  // namespace

int ZoFileParse::ParseModules(const std::string& dir)
{
    std::unique_ptr<ZoFile> file = OpenRows(dir, kModsFile);
    if (!file) {
        return -1;
    }
    return FinishFile(file, ParseModulePtr(file), kModsFile);
}

int ZoFileParse::ParseCmds(const std::string& dir)
{
    std::unique_ptr<ZoFile> file = OpenRows(dir, kCmdsFile);
    if (!file) {
        return -1;
    }
    return FinishFile(file, ParseCmdPtr(file), kCmdsFile);
}

int ZoFileParse::ParseModulePtr(std::unique_ptr<ZoFile>& file)
{
    ZoModInfo mod;
    return ParseBlocks(
        file, [&mod](const std::string& name) { mod.strName = name; },
        [&mod](const std::string& row) { return SetModKey(row, mod); },
        [this, &mod]() {
            EnterModule(std::move(mod));
            mod = ZoModInfo();
        });
}

int ZoFileParse::ParseCmdPtr(std::unique_ptr<ZoFile>& file)
{
    ZoCmdInfo cmd;
    return ParseBlocks(
        file, [&cmd](const std::string& name) { cmd.strName = name; },
        [&cmd](const std::string& row) { return SetCmdKey(row, cmd); },
        [this, &cmd]() {
            EnterCommand(std::move(cmd));
            cmd.Clear();
        });
}

int ZoFileParse::ParseBlocks(std::unique_ptr<ZoFile>& file, const std::function<void(const std::string&)>& openBlock,
                             const std::function<bool(const std::string&)>& setKey,
                             const std::function<void()>& closeBlock)
{
    bool blockOpen = false;
    while (!file->IsEOF()) {
        const std::string row = file->NextRow();
        if (row.empty()) {
            continue;
        }
        // Tested on every row, so an over-long row is reported even between blocks.
        const bool title = IsBlockTitile(row);
        if (!blockOpen) {
            if (title) {
                openBlock(GetBlockTitile(row));
                blockOpen = true;
            }
            continue;
        }
        if (setKey(row)) {
            continue;
        }
        closeBlock();
        blockOpen = false;
        if (file->RollBack() != 0) {
            puts("rollBack failed");
            file.reset();
            return -1;
        }
    }
    if (blockOpen) {
        closeBlock();
    }
    return 0;
}

bool ZoFileParse::SetModKey(const std::string& row, ZoModInfo& mod)
{
    if (IsCommand(row)) {
        mod.strCommand = GetCommand(row);
    } else if (IsInstruction(row)) {
        mod.s32Instruct = GetInstruction(row);
    } else if (IsDescription(row)) {
        mod.strDescrip = GetDescription(row);
    } else {
        return false;
    }
    return true;
}

bool ZoFileParse::SetCmdKey(const std::string& row, ZoCmdInfo& cmd)
{
    if (IsCommand(row)) {
        cmd.strCommand = GetCommand(row);
    } else if (IsBelongMod(row)) {
        cmd.strBelongMod = GetBelongMod(row);
    } else if (IsInstruction(row)) {
        cmd.s32Instruct = GetInstruction(row);
    } else if (IsParaFormat(row)) {
        cmd.strParaFmt = GetParaFormat(row);
    } else if (IsPrintFmt(row)) {
        cmd.strPrintFmt = GetPrintFmt(row);
    } else if (IsPrintTags(row)) {
        cmd.arrPrintTags = GetPrintTags(row);
    } else if (IsDescription(row)) {
        cmd.strDescrip = GetDescription(row);
    } else {
        return false;
    }
    return true;
}
