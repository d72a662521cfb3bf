// ConfRecorder: watches the catalogue read "mods.conf" and "cmds.conf" and
// keeps what a check of the whole catalogue needs.
//
// While the files are read it reports, through ConfDiagnostics, what the
// reader passes over or cuts: rows that end a block early and the key rows
// lost behind them, keys given twice in a block, over-long titles and
// values, values cut at a NUL byte and instructions that are no number. It
// keeps every finished block, taken by the catalogue or dropped, with the
// rows of its keys, for the checks that need the whole catalogue
// (conf_rules.h).
//
// Diagnostics name the files by the paths given to the constructor.
#ifndef ZO_TOOLS_CONF_CHECK_CONF_RECORDER_H
#define ZO_TOOLS_CONF_CHECK_CONF_RECORDER_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "conf_diagnostics.h"
#include "zo_file_parse_observer.h"

using ConfKey = ZoFileParse::Key;

// The key as written in the files, "belong module" for kBelongModule.
const char* KeyName(ConfKey key);

// One finished block of either file: the row of its title, the row that set
// each key last, the record as offered and what the catalogue made of it.
template <typename Info>
struct RecordedBlock {
    int row;
    std::map<ConfKey, int> keyRows;
    Info info;
    ZoFileParse::Entry entry;

    // The row of key, or the title row when the block lacks it.
    int RowOf(ConfKey key) const
    {
        const auto found = keyRows.find(key);
        return found != keyRows.end() ? found->second : row;
    }
    bool Has(ConfKey key) const { return keyRows.count(key) != 0; }
};
using RecordedModule = RecordedBlock<ZoFileParse::ZoModInfo>;
using RecordedCommand = RecordedBlock<ZoFileParse::ZoCmdInfo>;

class ConfRecorder : public ZoFileParseObserver
{
public:
    ConfRecorder(const std::string& modsPath, const std::string& cmdsPath, ConfDiagnostics& diagnostics);

    const std::string& ModsPath() const { return m_modsPath; }
    const std::string& CmdsPath() const { return m_cmdsPath; }
    // Every finished block, in file order.
    const std::vector<RecordedModule>& Modules() const { return m_modules; }
    const std::vector<RecordedCommand>& Commands() const { return m_commands; }
    // True when the file at path holds rows but no title opened a block in it.
    bool HoldsNoBlock(const std::string& path) const
    {
        return m_withBlocks.count(path) == 0 && m_empty.count(path) == 0;
    }

    void OnFileEmpty(const char* file) override;
    void OnBlockOpened(const char* file, int row, const std::string& name) override;
    void OnKeyTaken(const char* file, int row, Key key, const std::string& value) override;
    void OnBlockEndedEarly(const char* file, int row, const std::string& text, bool keyTooLong) override;
    void OnRowSkipped(const char* file, int row, const std::string& text, Key key) override;
    void OnLongTitleRow(const char* file, int row, const std::string& text, size_t length) override;
    void OnValueTooLong(const char* file, int row, Key key, size_t length) override;
    void OnValueCut(const char* file, int row, Key key) override;
    void OnInstructionNotFigure(const char* file, int row, const std::string& value) override;
    void OnModule(const char* file, int row, const ZoFileParse::ZoModInfo& mod, Entry entry) override;
    void OnCommand(const char* file, int row, const ZoFileParse::ZoCmdInfo& cmd, Entry entry) override;

private:
    // The path of file, after forgetting the block state of the other file.
    const std::string& Follow(const char* file);

    std::string m_modsPath;
    std::string m_cmdsPath;
    ConfDiagnostics& m_diagnostics;
    std::vector<RecordedModule> m_modules;
    std::vector<RecordedCommand> m_commands;
    std::set<std::string> m_withBlocks;  // paths of the files in which a block opened
    std::set<std::string> m_empty;       // paths of the files without rows

    // The file being read and its block state.
    std::string m_file;
    std::string m_blockName;  // of the open block, or of the last one
    int m_blockRow = 0;       // title row of that block
    std::map<ConfKey, int> m_keyRows;
    int m_endRow = 0;             // the row that ended the last block early; read again outside
    int m_pendingEnd = 0;         // such a row not yet reported, worth reporting once a key row is lost behind it
    bool m_pendingBlank = false;  // that row holds blanks only
};

#endif  // ZO_TOOLS_CONF_CHECK_CONF_RECORDER_H
