// ConfRecorder: watches the catalogue read "mods.conf" and "cmds.conf" and
// reports, through ConfDiagnostics, what the reader passes over or cuts: rows
// that end a block early and the key rows lost behind them, keys given twice
// in a block, over-long titles and values, values cut at a NUL byte,
// instructions that are no number, and a UTF-8 byte-order mark on line 1.
// Each finished block, taken by the catalogue or dropped, is handed to
// ConfRules as it is finished; nothing is kept per row or per block.
//
// Diagnostics name the files by the paths given to the constructor.
#ifndef ZO_TOOLS_CONF_CHECK_CONF_RECORDER_H
#define ZO_TOOLS_CONF_CHECK_CONF_RECORDER_H

#include <array>
#include <set>
#include <string>

#include "conf_diagnostics.h"
#include "zo_file_parse_observer.h"

using ConfKey = ZoFileParse::Key;

// The key as written in the files, "belong module" for kBelongModule.
const char* KeyName(ConfKey key);

// Rows of the keys of one block, by key; 0 for a key the block lacks.
using ConfKeyRows = std::array<int, static_cast<size_t>(ConfKey::kCount)>;

// One finished block of either file: the row of its title, the row that set
// each key last, the record as offered and what the catalogue made of it.
template <typename Info>
struct RecordedBlock {
    int row;
    ConfKeyRows keyRows;
    Info info;
    ZoFileParse::Entry entry;

    // The row of key, or the title row when the block lacks it.
    int RowOf(ConfKey key) const { return Has(key) ? keyRows[static_cast<size_t>(key)] : row; }
    bool Has(ConfKey key) const { return keyRows[static_cast<size_t>(key)] != 0; }
};
using RecordedModule = RecordedBlock<ZoFileParse::ZoModInfo>;
using RecordedCommand = RecordedBlock<ZoFileParse::ZoCmdInfo>;

class ConfRules;

class ConfRecorder : public ZoFileParseObserver
{
public:
    ConfRecorder(const std::string& modsPath, const std::string& cmdsPath, ConfDiagnostics& diagnostics,
                 ConfRules& rules);

    // After the load: reports a file that holds rows but no block, then runs
    // the checks of the whole catalogue (ConfRules::Finish).
    void Finish();

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
    // Line 1 of path, text, starts with a UTF-8 byte-order mark.
    void OnByteOrderMark(const std::string& path, const std::string& text);

    std::string m_modsPath;
    std::string m_cmdsPath;
    ConfDiagnostics& m_diagnostics;
    ConfRules& m_rules;
    std::set<std::string> m_withBlocks;  // paths of the files in which a block opened
    std::set<std::string> m_empty;       // paths of the files without rows
    std::set<std::string> m_marked;      // paths of the files that start with a byte-order mark

    // The file being read and its block state.
    std::string m_file;
    std::string m_blockName;  // of the open block, or of the last one
    int m_blockRow = 0;       // title row of that block
    ConfKeyRows m_keyRows{};
    int m_endRow = 0;             // the row that ended the last block early; read again outside
    int m_pendingEnd = 0;         // such a row not yet reported, worth reporting once a key row is lost behind it
    bool m_pendingBlank = false;  // that row holds only blanks
    bool m_markHides = false;     // rows outside a block are lost to a byte-order mark on line 1: not named again
};

#endif  // ZO_TOOLS_CONF_CHECK_CONF_RECORDER_H
