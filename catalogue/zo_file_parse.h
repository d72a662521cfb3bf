// ZoFileParse: the catalogue of modules and commands.
//
// Filled once by Init from "mods.conf" and "cmds.conf" in a directory, then
// only asked questions. Modules are keyed by name (the block title in
// "mods.conf") in byte-wise ascending order; commands are filed under their
// module's instruction code and keyed by command word, also byte-wise. The
// first module of a name and the first command of a word within a code win;
// later ones are dropped silently, as are commands whose module is unknown or
// has no instruction.
//
// Lookups never fail and never change the catalogue: a miss yields an empty
// string, an empty Array or -1. Results are copies.
//
// An optional observer (zo_file_parse_observer.h) watches the load row by row;
// without one the load does no more than described above.
//
// The load's messages ("cmds.conf is empty!" and the others) are lines printed
// on standard output, each ended by a line feed; a program whose standard
// output carries something else gives a message sink instead, which receives
// each line without its line feed. The process's descriptors are never touched.
//
// Not thread-safe: filled and read by the console's main thread only.
#ifndef ZO_CATALOGUE_ZO_FILE_PARSE_H
#define ZO_CATALOGUE_ZO_FILE_PARSE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "zo_mw_array.h"
#include "zo_tv_support.h"

class ZoFileParseObserver;

class ZoFileParse {
public:
    // The keys of the two files; kNone for a row that is no key row.
    enum class Key {
        kNone,
        kCommand,
        kBelongModule,
        kInstruction,
        kParaFormat,
        kPrintFormat,
        kPrintTags,
        kDescription,
        kCount,  // the number of keys above, kNone included; keep it last
    };

    // What became of a finished block offered to the catalogue.
    enum class Entry {
        kEntered,
        kDuplicateModule,           // a module of that name was entered before
        kUnknownModule,             // "belong module" names no module
        kModuleWithoutInstruction,  // the module it belongs to has no code
        kDuplicateCommand,          // the word is taken within the module's code
    };

    // One module of "mods.conf".
    struct ZoModInfo {
        std::string strName;      // block title: the module's name
        std::string strCommand;   // word that enters the module at the prompt
        int32_t s32Instruct = -1; // instruction code; -1 when the block has none
        std::string strDescrip;
    };

    // One command of "cmds.conf".
    struct ZoCmdInfo {
        std::string strName;       // block title; stored, never a key
        std::string strCommand;    // word typed at the prompt; key within its module
        std::string strBelongMod;  // owning module's name
        int32_t s32Instruct = -1;  // instruction code sent with the request; -1 when absent
        std::string strParaFmt;    // parameter format letters
        std::string strPrintFmt;   // reply format letters
        Array<std::string> arrPrintTags;  // reply labels, split at commas
        std::string strDescrip;

        // Back to the defaults: empty texts, no tags, instruction -1.
        void Clear();
    };

    // The row limits, in characters as the reader delivers them (before
    // trimming): a row tested as a block title, the key part before the
    // first "=", and the value after it. A longer part is reported and
    // refused: it is no title, names no key, or gives the empty value.
    static constexpr size_t kMaxTitleRow = 255;
    static constexpr size_t kMaxKeyPart = 255;
    static constexpr size_t kMaxValue = 254;

    // Receives one message of the load, without a line feed.
    using MessageSink = std::function<void(const std::string& message)>;

    ZoFileParse();

    // Sends the messages of the next Init to sink instead of standard output;
    // an empty sink (the default) prints them there.
    void SetMessageSink(MessageSink sink);

    // Lets observer watch the next Init; null (the default) for none. The
    // observer is borrowed and must outlive Init.
    void SetObserver(ZoFileParseObserver* observer);

    // Reads "mods.conf", then "cmds.conf" (also when the first failed) from
    // dir; messages go to the message sink, or standard output without one. The result is not meaningful: the
    // outcome is read with GetIOExceptionStatus.
    int Init(const std::string& dir);
    // 0 when both files were read, 1 when either failed.
    int GetIOExceptionStatus() const;

    Array<std::string> GetModNames() const;
    // Every module's command word, in the order of GetModNames.
    Array<std::string> GetModCmds() const;
    std::string GetModToCmd(const std::string& modName) const;
    std::string GetModDescrip(const std::string& modName) const;
    int32_t GetModInstruct(const std::string& modName) const;
    // The command words filed under a module instruction code, byte-wise ascending.
    Array<std::string> GetModHoldCmds(int32_t modInstruct) const;

    // Command lookups: the module's instruction code, then the command word.
    std::string GetCmdPrintFmt(int32_t modInstruct, const std::string& cmd) const;
    Array<std::string> GetCmdPrintTags(int32_t modInstruct, const std::string& cmd) const;
    std::string GetCmdParaFmt(int32_t modInstruct, const std::string& cmd) const;
    int32_t GetCmdInstruct(int32_t modInstruct, const std::string& cmd) const;
    std::string GetCmdDescrip(int32_t modInstruct, const std::string& cmd) const;

private:
    // Rows are tested and their parts trimmed in buffers of this size: a
    // title row, a key part, or the "=" with the value, and a terminator.
    static constexpr size_t kRowBufSize = kMaxTitleRow + 1;
    static_assert(kMaxKeyPart + 1 == kRowBufSize && kMaxValue + 2 == kRowBufSize, "one row buffer for every part");

    // What differs between the two files when they are opened and read
    // (zo_file_parse_reader.cc).
    struct FileNames;
    static const FileNames kModsFile;
    static const FileNames kCmdsFile;

    // One message of the load: printf's format without a line feed, and its
    // arguments; to the sink, or printed with a line feed.
    void Say(const char* format, ...) const __attribute__((format(printf, 2, 3)));

    // --- Reading the files (zo_file_parse_reader.cc) ---
    // Opens the file, or says why not and returns null.
    std::unique_ptr<ZoFile> OpenRows(const std::string& dir, const FileNames& names) const;
    // Judges a block reader's result; the reader is released here unless the
    // block reader already released it.
    int FinishFile(std::unique_ptr<ZoFile>& file, int ret, const FileNames& names) const;
    // 0 when the file was read to its end; -1 after a missing or empty file or
    // a failed block reader, with the message printed.
    int ParseModules(const std::string& dir);
    int ParseCmds(const std::string& dir);
    // Block readers: 0 at the end of the rows; -1 when a row could not be put
    // back, in which case they have already released the reader (file is null).
    int ParseModulePtr(std::unique_ptr<ZoFile>& file);
    int ParseCmdPtr(std::unique_ptr<ZoFile>& file);
    // The block loop both files share: openBlock gets a title's name, setKey
    // sets one field from a row and returns its key (Key::kNone when the row
    // is no key row of the file), closeBlock enters and resets the record
    // being filled, given the row of its title. fileName and keyOf (which
    // names a row's key without setting anything) serve the observer only.
    int ParseBlocks(std::unique_ptr<ZoFile>& file, const char* fileName,
                    Key (ZoFileParse::*keyOf)(const std::string&) const,
                    const std::function<void(const std::string&)>& openBlock,
                    const std::function<Key(const std::string&)>& setKey, const std::function<void(int)>& closeBlock);
    // The first key of the file that names the row; SetModKey and SetCmdKey
    // also set its field.
    Key ModKeyOf(const std::string& row) const;
    Key CmdKeyOf(const std::string& row) const;
    Key SetModKey(const std::string& row, ZoModInfo& mod) const;
    Key SetCmdKey(const std::string& row, ZoCmdInfo& cmd) const;
    // Tells the observer of a key row just taken and what became of its
    // value, from the outcome of the same extraction.
    void ObserveKey(const char* fileName, int rowNumber, const std::string& row, Key key) const;

    // --- Entering records (zo_file_parse.cc) ---
    // Records are taken by value: the block reader moves each finished record
    // in and starts the next from the defaults.
    // First module of a name wins; its code always gets a command table entry.
    Entry EnterModule(ZoModInfo mod);
    // Dropped silently when its module is unknown or has no instruction; the
    // first command of a word within a code wins.
    Entry EnterCommand(ZoCmdInfo cmd);
    // The command filed under a module code and word; null on a miss.
    const ZoCmdInfo* FindCmd(int32_t modInstruct, const std::string& cmd) const;

    // --- Row tests and values (zo_file_parse_rows.cc) ---
    // Trims isspace characters at both ends in place; -1 for a null or empty text.
    static int RemoveSpace(char* text);
    // Copies length bytes of text into buf and trims them there; returns the
    // trimmed length, or kRefused, with buf empty, when they do not fit with a
    // terminator.
    static size_t CopyTrimmed(const char* text, size_t length, char (&buf)[kRowBufSize]);
    static constexpr size_t kRefused = static_cast<size_t>(-1);
    // True when the trimmed row is "[...]"; a row of kRowBufSize bytes or more
    // is reported and is no title.
    bool IsBlockTitile(const std::string& row) const;
    // The text between the brackets of a title row, untrimmed; empty otherwise.
    static std::string GetBlockTitile(const std::string& row);

    // Key tests: the row holds "=" and its trimmed key part names the key.
    // The first of the count keys, tried in order, that names the row, or
    // kNone. A key part too long for the row buffer names none, and is
    // reported once for every key tried ("IsCommand string str.size(): ...").
    Key KeyOf(const std::string& row, const Key* keys, size_t count) const;

    // Values: the trimmed text after the first "="; a value that does not fit
    // the row buffer is reported and yields the empty value.
    std::string GetCommand(const std::string& row) const;
    std::string GetDescription(const std::string& row) const;
    std::string GetBelongMod(const std::string& row) const;
    std::string GetPrintFmt(const std::string& row) const;
    std::string GetParaFormat(const std::string& row) const;
    // Hexadecimal, clamped to 32 bits; 0 for a value without a digit.
    int32_t GetInstruction(const std::string& row) const;
    // Reads a trimmed "instruction" value as GetInstruction does, without a
    // message; false when it holds no hexadecimal number.
    static bool ReadInstruction(const char* text, int32_t& value);
    // Split at every ",", untrimmed; an empty value gives one empty tag.
    Array<std::string> GetPrintTags(const std::string& row) const;
    // The one extraction behind the seven: fills buf with the trimmed value
    // and returns 0, or leaves buf empty and returns 1 for a value too long
    // (reported with tooLongFormat unless it is null) and -1 when the copy
    // was refused.
    int GetValue(const std::string& row, const char* tooLongFormat, char (&buf)[kRowBufSize]) const;
    std::string GetText(const std::string& row, const char* tooLongFormat) const;

    std::map<std::string, ZoModInfo> m_mapModInfo;
    std::map<int32_t, std::map<std::string, ZoCmdInfo>> m_mapCmdInfo;
    int32_t m_s32IOExceptionStatus;
    ZoFileParseObserver* m_pObserver;
    MessageSink m_sink;
};

#endif  // ZO_CATALOGUE_ZO_FILE_PARSE_H
