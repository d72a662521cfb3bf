// Turning the reader's events into diagnostics and recorded blocks.
#include "conf_recorder.h"

#include <cctype>
#include <cstring>

#include "conf_rules.h"

namespace
{

bool IsBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string Trimmed(const std::string& text)
{
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && IsBlank(text[begin])) {
        ++begin;
    }
    while (end > begin && IsBlank(text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

// An author meant a key row: the row holds "=" and is no comment ("#" or ";"
// first). The files know no comments, but authors write them, "=" and all.
bool MeantAsKeyRow(const std::string& text)
{
    const std::string row = Trimmed(text);
    return row.find('=') != std::string::npos && row[0] != '#' && row[0] != ';';
}

// The text before the first "=", trimmed and shortened for a message.
std::string KeyPart(const std::string& text)
{
    std::string key = Trimmed(text.substr(0, text.find('=')));
    if (key.size() > 40) {
        key = key.substr(0, 37) + "...";
    }
    return key;
}

// " (at most N)": a row limit of the console's reader.
std::string AtMost(size_t limit)
{
    return " (at most " + std::to_string(limit) + ")";
}

// An "instruction" value whose "0x" has no hexadecimal digit after it ("0x",
// "-0x", "0x-11"): the number read is the 0 before the x.
bool PrefixWithoutDigit(const std::string& value)
{
    const size_t zero = (!value.empty() && (value[0] == '-' || value[0] == '+')) ? 1 : 0;
    return value.size() >= zero + 2 && value[zero] == '0' && (value[zero + 1] == 'x' || value[zero + 1] == 'X') &&
           !std::isxdigit(static_cast<unsigned char>(value.c_str()[zero + 2]));
}

// Editors on Windows may start a UTF-8 file with these bytes; the console
// reads them as the first characters of line 1.
const char kByteOrderMark[] = "\xef\xbb\xbf";

bool StartsWithByteOrderMark(const std::string& text)
{
    return text.compare(0, 3, kByteOrderMark) == 0;
}

// "mods.conf" out of "DIR/mods.conf".
std::string BaseName(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

const char* KeyName(ConfKey key)
{
    switch (key) {
        case ConfKey::kCommand:
            return "command";
        case ConfKey::kBelongModule:
            return "belong module";
        case ConfKey::kInstruction:
            return "instruction";
        case ConfKey::kParaFormat:
            return "para format";
        case ConfKey::kPrintFormat:
            return "print format";
        case ConfKey::kPrintTags:
            return "print tags";
        case ConfKey::kDescription:
            return "description";
        case ConfKey::kNone:
        case ConfKey::kCount:
            break;
    }
    return "";
}

ConfRecorder::ConfRecorder(const std::string& modsPath, const std::string& cmdsPath, ConfDiagnostics& diagnostics,
                           ConfRules& rules)
    : m_modsPath(modsPath), m_cmdsPath(cmdsPath), m_diagnostics(diagnostics), m_rules(rules)
{
}

void ConfRecorder::Finish()
{
    for (const std::string* path : {&m_modsPath, &m_cmdsPath}) {
        if (m_withBlocks.count(*path) == 0 && m_empty.count(*path) == 0 && m_marked.count(*path) == 0) {
            m_diagnostics.Error(*path, 1,
                                "the file holds no block (no \"[title]\" row): the console loads nothing from it");
        }
    }
    m_rules.Finish();
}

const std::string& ConfRecorder::Follow(const char* file)
{
    if (m_file != file) {
        m_file = file;
        m_blockName.clear();
        m_blockRow = 0;
        m_keyRows.fill(0);
        m_endRow = 0;
        m_pendingEnd = 0;
        m_markHides = false;
    }
    return std::strcmp(file, "mods.conf") == 0 ? m_modsPath : m_cmdsPath;
}

void ConfRecorder::OnFileEmpty(const char* file)
{
    const std::string& path = Follow(file);
    m_empty.insert(path);
    m_diagnostics.Error(path, 1, "the file holds no rows: the console reports a failed load");
}

void ConfRecorder::OnBlockOpened(const char* file, int row, const std::string& name)
{
    m_withBlocks.insert(Follow(file));
    m_blockName = name;
    m_blockRow = row;
    m_markHides = false;
    m_keyRows.fill(0);
    m_endRow = 0;
    m_pendingEnd = 0;
}

void ConfRecorder::OnKeyTaken(const char* file, int row, Key key, const std::string& value)
{
    const std::string& path = Follow(file);
    int& keyRow = m_keyRows[static_cast<size_t>(key)];
    if (keyRow != 0) {
        m_diagnostics.Warning(path, row,
                              std::string("\"") + KeyName(key) + "\" is given again in block '" + m_blockName +
                                  "': this row replaces line " + std::to_string(keyRow));
    }
    keyRow = row;
    // The console reads such a value as 0 without a word, as it would a value
    // with no digit at all: judged alike.
    if (key == Key::kInstruction && PrefixWithoutDigit(value)) {
        OnInstructionNotFigure(file, row, value);
    }
}

void ConfRecorder::OnBlockEndedEarly(const char* file, int row, const std::string& text, bool keyTooLong)
{
    const std::string& path = Follow(file);
    m_endRow = row;
    const std::string block = "block '" + m_blockName + "' (line " + std::to_string(m_blockRow) + ")";
    if (keyTooLong) {
        m_diagnostics.Error(path, row,
                            "the text before \"=\" is " + std::to_string(text.find('=')) + " characters long" +
                                AtMost(ZoFileParse::kMaxKeyPart) + ", so the row is no key row: it ends " + block);
    } else if (MeantAsKeyRow(text)) {
        m_diagnostics.Error(
            path, row,
            "'" + KeyPart(text) + "' is no key of " + BaseName(path) + ": the row ends " + block + " and is ignored");
    } else {
        m_pendingEnd = row;  // a blank or comment row: harmless unless keys follow it
        m_pendingBlank = Trimmed(text).empty();
    }
}

void ConfRecorder::OnRowSkipped(const char* file, int row, const std::string& text, Key key)
{
    const std::string& path = Follow(file);
    if (row == m_endRow || m_markHides) {
        return;  // the row that ended the block, read again, or one lost to the mark: reported already
    }
    if (row == 1 && StartsWithByteOrderMark(text)) {
        OnByteOrderMark(path, text);
        return;
    }
    if (key != Key::kNone) {
        std::string where = "there is no block title above it";
        if (m_blockRow != 0) {
            where = "block '" + m_blockName + "' (line " + std::to_string(m_blockRow) + ") ended at line " +
                    std::to_string(m_endRow);
        }
        if (m_pendingEnd != 0) {
            m_diagnostics.Error(path, m_pendingEnd,
                                std::string(m_pendingBlank ? "a row of only blanks" : "this row is no key row and") +
                                    " ends block '" + m_blockName + "' (line " + std::to_string(m_blockRow) +
                                    "): the key rows after it up to the next block title are ignored");
            m_pendingEnd = 0;
        }
        m_diagnostics.Error(path, row,
                            std::string("\"") + KeyName(key) + "\" row outside a block is ignored (" + where + ")");
    } else if (MeantAsKeyRow(text)) {
        m_diagnostics.Warning(
            path, row,
            "'" + KeyPart(text) + "' is no key of " + BaseName(path) + ", and the row is outside a block: ignored");
    }
}

// One diagnostic for the mark and all it costs: the rows it keeps out of the
// catalogue up to the next title are not named one by one.
void ConfRecorder::OnByteOrderMark(const std::string& path, const std::string& text)
{
    m_marked.insert(path);
    const std::string rest = Trimmed(text.substr(3));
    const std::string what = std::string("the file starts with a UTF-8 byte-order mark (") + kByteOrderMark +
                             "), which the console reads as text: ";
    if (rest.empty() || rest[0] == '#' || rest[0] == ';') {
        m_diagnostics.Warning(path, 1, what + "harmless here, as line 1 is no title or key row anyway");
        return;
    }
    m_markHides = true;
    m_diagnostics.Error(path, 1,
                        what + "line 1 is no " + (rest[0] == '[' ? "block title" : "key row") +
                            ", and every row up to the next block title is ignored; save the file without it");
}

void ConfRecorder::OnLongTitleRow(const char* file, int row, const std::string& text, size_t length)
{
    const std::string& path = Follow(file);
    if (row == m_endRow) {
        return;  // the row that ended the block, read again; reported already
    }
    // The reader cuts a longer line to its row length, closing "]" and all, so
    // a row of that length that begins like a title is taken for one.
    const bool cut = length >= ZoFile::kMaxRowLength;
    const std::string title = Trimmed(text);
    if (!title.empty() && title.front() == '[' && (cut || title.back() == ']')) {
        m_diagnostics.Error(path, row,
                            "block title of " + std::to_string(length) + " characters" + (cut ? " or more" : "") +
                                " is too long" + AtMost(ZoFileParse::kMaxTitleRow) + ": no block opens here");
    }
}

void ConfRecorder::OnValueTooLong(const char* file, int row, Key key, size_t length)
{
    m_diagnostics.Error(Follow(file), row,
                        std::string("the text after \"=\" of \"") + KeyName(key) + "\" is " +
                            std::to_string(length) + " characters long" + AtMost(ZoFileParse::kMaxValue) +
                            ": the console takes " + (key == Key::kInstruction ? "0" : "an empty value"));
}

void ConfRecorder::OnValueCut(const char* file, int row, Key key)
{
    m_diagnostics.Error(Follow(file), row,
                        std::string("the value of \"") + KeyName(key) +
                            "\" holds a NUL byte: the console takes only the text before it");
}

void ConfRecorder::OnInstructionNotFigure(const char* file, int row, const std::string& value)
{
    m_diagnostics.Error(Follow(file), row, "instruction '" + value + "' is no hexadecimal number: the console takes 0");
}

void ConfRecorder::OnModule(const char* file, int row, const ZoFileParse::ZoModInfo& mod, Entry entry)
{
    Follow(file);
    m_rules.Module(RecordedModule{row, m_keyRows, mod, entry});
}

void ConfRecorder::OnCommand(const char* file, int row, const ZoFileParse::ZoCmdInfo& cmd, Entry entry)
{
    Follow(file);
    m_rules.Command(RecordedCommand{row, m_keyRows, cmd, entry});
}
