// Reading "mods.conf" and "cmds.conf": opening each file through the platform
// row reader and cutting its rows into blocks, one record per block.
//
// A block is a title row followed by key rows. Empty rows are passed over
// anywhere; any other row that is no key row of the file ends the block and is
// put back, so that it is read again outside a block: a title there opens the
// next block, anything else is skipped up to the next title.
#include "zo_file_parse.h"

#include "zo_file_parse_observer.h"

#include <cstdio>
#include <utility>

struct ZoFileParse::FileNames {
    const char* fileName;      // appended to the directory after a "/"
    const char* emptyMessage;  // the file holds no rows
    const char* failedFormat;  // the block reader failed, with its result
};

const ZoFileParse::FileNames ZoFileParse::kModsFile = {"mods.conf", "mods.conf is empty!",
                                                       "ParseModulePtr call failed ,ret = %d"};
const ZoFileParse::FileNames ZoFileParse::kCmdsFile = {"cmds.conf", "cmds.conf is empty!",
                                                       "ParseCmdPtr call failed ,ret = %d"};

std::unique_ptr<ZoFile> ZoFileParse::OpenRows(const std::string& dir, const FileNames& names) const
{
    std::unique_ptr<ZoFile> file(new ZoFile());
    file->Init(dir + "/" + names.fileName, "r");
    if (file->GetIOExceptionStatus() != 0) {
        Say("file path error or open file failure");
        return nullptr;
    }
    if (file->IsEmpty()) {
        Say("%s", names.emptyMessage);
        if (m_pObserver != nullptr) {
            m_pObserver->OnFileEmpty(names.fileName);
        }
        return nullptr;
    }
    return file;
}

int ZoFileParse::FinishFile(std::unique_ptr<ZoFile>& file, int ret, const FileNames& names) const
{
    file.reset();
    if (ret != 0) {
        Say(names.failedFormat, ret);
        return -1;
    }
    return 0;
}

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
        file, kModsFile.fileName, &ZoFileParse::ModKeyOf, [&mod](const std::string& name) { mod.strName = name; },
        [this, &mod](const std::string& row) { return SetModKey(row, mod); },
        [this, &mod](int titleRow) {
            if (m_pObserver == nullptr) {
                EnterModule(std::move(mod));
            } else {
                const ZoModInfo offered = mod;
                m_pObserver->OnModule(kModsFile.fileName, titleRow, offered, EnterModule(std::move(mod)));
            }
            mod = ZoModInfo();
        });
}

int ZoFileParse::ParseCmdPtr(std::unique_ptr<ZoFile>& file)
{
    ZoCmdInfo cmd;
    return ParseBlocks(
        file, kCmdsFile.fileName, &ZoFileParse::CmdKeyOf, [&cmd](const std::string& name) { cmd.strName = name; },
        [this, &cmd](const std::string& row) { return SetCmdKey(row, cmd); },
        [this, &cmd](int titleRow) {
            if (m_pObserver == nullptr) {
                EnterCommand(std::move(cmd));
            } else {
                const ZoCmdInfo offered = cmd;
                m_pObserver->OnCommand(kCmdsFile.fileName, titleRow, offered, EnterCommand(std::move(cmd)));
            }
            cmd.Clear();
        });
}

int ZoFileParse::ParseBlocks(std::unique_ptr<ZoFile>& file, const char* fileName,
                             Key (ZoFileParse::*keyOf)(const std::string&) const,
                             const std::function<void(const std::string&)>& openBlock,
                             const std::function<Key(const std::string&)>& setKey,
                             const std::function<void(int)>& closeBlock)
{
    ZoFileParseObserver* const observer = m_pObserver;
    bool blockOpen = false;
    int titleRow = 0;
    int rowNumber = 0;  // of the row last delivered; a put-back row counts again
    while (!file->IsEOF()) {
        const std::string row = file->NextRow();
        ++rowNumber;
        if (row.empty()) {
            continue;
        }
        // Tested on every row, so an over-long row is reported even between blocks.
        const bool title = IsBlockTitile(row);
        if (observer != nullptr && row.size() > kMaxTitleRow) {
            observer->OnLongTitleRow(fileName, rowNumber, row, row.size());
        }
        if (!blockOpen) {
            if (title) {
                openBlock(GetBlockTitile(row));
                blockOpen = true;
                titleRow = rowNumber;
                if (observer != nullptr) {
                    observer->OnBlockOpened(fileName, rowNumber, GetBlockTitile(row));
                }
            } else if (observer != nullptr) {
                observer->OnRowSkipped(fileName, rowNumber, row, (this->*keyOf)(row));
            }
            continue;
        }
        const Key key = setKey(row);
        if (key != Key::kNone) {
            if (observer != nullptr) {
                ObserveKey(fileName, rowNumber, row, key);
            }
            continue;
        }
        if (observer != nullptr && !title) {
            const size_t n = row.find('=');
            observer->OnBlockEndedEarly(fileName, rowNumber, row, n != std::string::npos && n > kMaxKeyPart);
        }
        closeBlock(titleRow);
        blockOpen = false;
        if (file->RollBack() != 0) {
            Say("rollBack failed");
            file.reset();
            return -1;
        }
        --rowNumber;
    }
    if (blockOpen) {
        closeBlock(titleRow);
    }
    return 0;
}

ZoFileParse::Key ZoFileParse::ModKeyOf(const std::string& row) const
{
    static const Key keys[] = {Key::kCommand, Key::kInstruction, Key::kDescription};
    return KeyOf(row, keys, sizeof keys / sizeof keys[0]);
}

ZoFileParse::Key ZoFileParse::CmdKeyOf(const std::string& row) const
{
    static const Key keys[] = {Key::kCommand,     Key::kBelongModule, Key::kInstruction, Key::kParaFormat,
                               Key::kPrintFormat, Key::kPrintTags,    Key::kDescription};
    return KeyOf(row, keys, sizeof keys / sizeof keys[0]);
}

ZoFileParse::Key ZoFileParse::SetModKey(const std::string& row, ZoModInfo& mod) const
{
    const Key key = ModKeyOf(row);
    switch (key) {
        case Key::kCommand:
            mod.strCommand = GetCommand(row);
            break;
        case Key::kInstruction:
            mod.s32Instruct = GetInstruction(row);
            break;
        case Key::kDescription:
            mod.strDescrip = GetDescription(row);
            break;
        default:
            break;
    }
    return key;
}

ZoFileParse::Key ZoFileParse::SetCmdKey(const std::string& row, ZoCmdInfo& cmd) const
{
    const Key key = CmdKeyOf(row);
    switch (key) {
        case Key::kCommand:
            cmd.strCommand = GetCommand(row);
            break;
        case Key::kBelongModule:
            cmd.strBelongMod = GetBelongMod(row);
            break;
        case Key::kInstruction:
            cmd.s32Instruct = GetInstruction(row);
            break;
        case Key::kParaFormat:
            cmd.strParaFmt = GetParaFormat(row);
            break;
        case Key::kPrintFormat:
            cmd.strPrintFmt = GetPrintFmt(row);
            break;
        case Key::kPrintTags:
            cmd.arrPrintTags = GetPrintTags(row);
            break;
        case Key::kDescription:
            cmd.strDescrip = GetDescription(row);
            break;
        case Key::kNone:
        case Key::kCount:
            break;
    }
    return key;
}
