// What each byte typed at the console's prompt does: the line editor's key
// table, and the bytes the terminal keeps for itself before the editor reads.
// The editor acts by ZoKeyActionOf; the catalogue checker uses ZoKeyEffect to
// find words that cannot be typed.
#ifndef ZO_LINE_EDITOR_ZO_STREAM_KEY_TABLE_H
#define ZO_LINE_EDITOR_ZO_STREAM_KEY_TABLE_H

enum class ZoKeyAction {
    kDiscard,      // nothing stored, nothing echoed
    kBackspace,    // OnBackspace
    kComplete,     // OnTab
    kEnter,        // OnEnter
    kSpace,        // OnSpace
    kHistoryUp,    // OnUp
    kHistoryDown,  // OnDown
    kInsert,       // OnInsert
};

// The key table. It looks at one byte at a time and keeps no escape-sequence
// state: the arrow keys ESC '[' 'A' and ESC '[' 'B' work because ESC and '['
// are dropped wherever they occur, which also makes a typed 'A' or 'B' recall
// history and leaves 'C', 'D' and '[' impossible to enter (Left and Right do
// nothing). DEL (127), CR (13) and Ctrl-D (4) are ordinary bytes.
constexpr ZoKeyAction ZoKeyActionOf(int byte)
{
    switch (byte) {
    case 27:  // ESC
    case '[':
    case 'C':  // Right arrow's last byte
    case 'D':  // Left arrow's last byte
        return ZoKeyAction::kDiscard;
    case 8:
        return ZoKeyAction::kBackspace;
    case 9:
        return ZoKeyAction::kComplete;
    case 10:
        return ZoKeyAction::kEnter;
    case ' ':
        return ZoKeyAction::kSpace;
    case 'A':  // also the Up arrow's last byte
        return ZoKeyAction::kHistoryUp;
    case 'B':  // also the Down arrow's last byte
        return ZoKeyAction::kHistoryDown;
    default:
        return ZoKeyAction::kInsert;
    }
}

// What typing byte at the prompt does instead of entering it into the line,
// worded to follow "which": null when it is entered. Besides the key table,
// the terminal acts on some bytes before the editor reads them: the editor
// leaves signal keys on (Ctrl-C, Ctrl-\, Ctrl-Z), and the usual settings
// keep flow control (Ctrl-S, Ctrl-Q) and turn CR into a line feed.
constexpr const char* ZoKeyEffect(int byte)
{
    switch (byte) {
    case 3:
        return "the terminal turns into SIGINT (Ctrl-C)";
    case 13:
        return "the terminal turns into a line feed, which ends the line (Enter)";
    case 17:
        return "the terminal takes to restart its output (Ctrl-Q)";
    case 19:
        return "the terminal takes to stop its output (Ctrl-S)";
    case 26:
        return "the terminal turns into SIGTSTP (Ctrl-Z)";
    case 28:
        return "the terminal turns into SIGQUIT (Ctrl-\\)";
    default:
        break;
    }
    switch (ZoKeyActionOf(byte)) {
    case ZoKeyAction::kDiscard:
        return "the line editor drops";
    case ZoKeyAction::kBackspace:
        return "erases the last byte (Backspace)";
    case ZoKeyAction::kComplete:
        return "completes the word (Tab)";
    case ZoKeyAction::kEnter:
        return "ends the line (Enter)";
    case ZoKeyAction::kHistoryUp:
        return "recalls the previous line of the history";
    case ZoKeyAction::kHistoryDown:
        return "recalls the next line of the history";
    case ZoKeyAction::kSpace:
    case ZoKeyAction::kInsert:
        break;
    }
    return nullptr;
}

#endif  // ZO_LINE_EDITOR_ZO_STREAM_KEY_TABLE_H
