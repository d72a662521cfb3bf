// ZoStream: the console's line editor on standard input.
//
// Init switches a terminal on descriptor 0 to non-canonical, no-echo input
// (VMIN 1, VTIME 0; signals and output translation untouched) and
// ResetTermios restores the settings Init read. Gets reads byte by byte,
// echoes and edits the line itself (Backspace, history recall with Up and
// Down, Tab completion against registered name lists) and returns each line.
// When standard input is not a terminal nothing is applied or restored and
// lines are still read byte by byte.
//
// Used by one thread only, but for the static calls that put the terminal
// back (RestoreFoundTermios) or take it up again (SuspendRawMode,
// ResumeRawMode), which any thread may make. The line returned by Gets lives
// in one static buffer, overwritten by the next successful Enter.
#ifndef ZO_LINE_EDITOR_ZO_STREAM_H
#define ZO_LINE_EDITOR_ZO_STREAM_H

#include <termios.h>

#include <cstddef>
#include <list>
#include <string>
#include <vector>

#include "zo_tv_support.h"

class ZoStream {
public:
    // The line buffer: the longest line Gets returns is one byte shorter, as the buffer holds the terminator.
    static constexpr size_t kLineBufferSize = 1024;
    // At most this many lines are remembered; the oldest goes first.
    static constexpr size_t kMaxHistory = 10000;

    ZoStream();
    // Restores the terminal like ResetTermios, then frees the registry and the history.
    ~ZoStream();
    ZoStream(const ZoStream&) = delete;
    ZoStream& operator=(const ZoStream&) = delete;

    // Puts a terminal on descriptor 0 into raw mode; failures are reported by message only.
    // When its settings cannot be read, the terminal is left as it is and
    // ResetTermios has nothing to restore.
    void Init();
    // 0, or the non-zero result of tcsetattr. Restores only settings Init has read.
    int ResetTermios();
    // Puts back the settings the last Init of any editor read, with one
    // tcsetattr and nothing else: safe in a signal handler and at exit, where
    // the console ends without going through ResetTermios. Like SuspendRawMode
    // it acts only while the process's group owns the terminal, so that a
    // process ending in the background neither changes its shell's settings
    // nor stops for SIGTTOU. Prints nothing; does nothing when no Init has
    // read settings.
    static void RestoreFoundTermios();

    // Job control: the shell owns the terminal while the console is stopped or
    // runs in the background, and expects it as it left it. SuspendRawMode puts
    // back the settings the last Init found, before the process stops;
    // ResumeRawMode applies that Init's raw settings again once the process is
    // continued. Each makes one tcsetattr, and only while the process's group
    // is the terminal's foreground group: a process in the background must not
    // change the settings under its shell. SIGTTOU is blocked in the calling
    // thread meanwhile, so that the terminal changing hands in between cannot
    // stop the process. Both print nothing. ResumeRawMode returns false when
    // nothing was applied because another group owns the terminal (call it
    // again once the process is in the foreground), true otherwise, also when
    // no Init has read settings.
    static void SuspendRawMode();
    static bool ResumeRawMode();
    // True while the process's group is the terminal's foreground group, and
    // when no Init has read settings (there is no terminal to look after).
    // Async-signal-safe, like the three calls above.
    static bool OwnsTerminal();

    // The entered line (in the static buffer), the constant text "TAB" after a
    // completion listing (the caller prints the prompt again and calls Gets
    // again), or null at the end of input or on an error.
    char* Gets();

    // Registers a borrowed list of count candidate names under a group name;
    // clear drops every earlier registration first. The caller keeps the list
    // and its strings alive and unchanged until the next clearing registration.
    // Always 0.
    int RegistTab(std::string name, unsigned int count, const char** list, ZO_BOOL clear);

    // Appends to matches the completion listing of the typed line: a banner per
    // group with matches, then the matching names, ten to a line.
    void ParseModeInfo(std::list<std::string>& matches);

    // Key actions, called only from Gets.
    char* OnEnter();
    int OnBackspace();
    int OnUp();
    int OnDown();
    int OnTab();

private:
    // Key actions that need no public entry point.
    void OnSpace();
    // Echoes and stores an ordinary byte: 0, or -1 when the echo failed.
    int OnInsert(int byte);
    // Replaces the line on the screen and in the buffer by a history entry.
    void Recall(const std::string& entry);
    // Drops the oldest history entry, keeping the recall position valid.
    void DropOldestEntry();

    struct TabInfo {
        std::string strTabName;
        unsigned int u32Count;
        const char** ppList;
    };

    std::list<std::string> m_listHistory;
    std::string m_strInbuffer;
    std::list<std::string>::iterator m_itHistory;
    struct termios m_stOldTermios;
    struct termios m_stNewTermios;
    std::vector<TabInfo> m_vecTabInfo;
    // True once Init has read the settings that ResetTermios puts back.
    bool m_bTermiosSaved;
};

#endif  // ZO_LINE_EDITOR_ZO_STREAM_H
