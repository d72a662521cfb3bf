// Reading keys: the reading loop over the key table (zo_stream_key_table.h),
// and the actions of the keys that edit the line (Enter, Backspace, space,
// ordinary bytes).
#include "zo_stream.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "zo_stream_key_table.h"
#include "zo_stream_screen.h"

namespace {

// The last entered line, shared by every editor.
char s_achLine[ZoStream::kLineBufferSize];
// Returned after a completion listing; callers recognise it by its text.
char s_achTab[] = "TAB";

// The next byte, or EOF at the end of input or on an error. A read cut short
// by a signal is neither: the console's handlers ask for restarted reads, but
// an emulator may still hand the interruption on (qemu-user, for a signal the
// program ignores). A read from the background stops the process (SIGTTIN)
// until the shell brings it to the foreground; valgrind fails the read
// instead, again and again, so the process then stops itself as the terminal
// would have stopped it.
int NextByte()
{
    for (;;) {
        errno = 0;
        const int byte = std::getchar();
        if (byte != EOF || errno != EINTR) {
            return byte;
        }
        std::clearerr(stdin);
        const pid_t owner = tcgetpgrp(STDIN_FILENO);
        if (owner > 0 && owner != getpgrp()) {
            kill(getpid(), SIGSTOP);
        }
    }
}

}  // namespace

// A partial line kept across a completion listing is shown again first: the
// caller has just printed the prompt in front of it.
char* ZoStream::Gets()
{
    if (!m_strInbuffer.empty()) {
        zo_screen::ShowText(m_strInbuffer.c_str());
    }
    for (;;) {
        const int byte = NextByte();
        if (byte == EOF) {
            return nullptr;
        }
        switch (ZoKeyActionOf(byte)) {
        case ZoKeyAction::kDiscard:
            break;
        case ZoKeyAction::kBackspace:
            OnBackspace();
            break;
        case ZoKeyAction::kComplete:
            if (OnTab() == 0) {
                return s_achTab;
            }
            break;
        case ZoKeyAction::kEnter:
            return OnEnter();
        case ZoKeyAction::kSpace:
            OnSpace();
            break;
        case ZoKeyAction::kHistoryUp:
            OnUp();
            break;
        case ZoKeyAction::kHistoryDown:
            OnDown();
            break;
        case ZoKeyAction::kInsert:
            if (OnInsert(byte) != 0) {
                return nullptr;
            }
            break;
        }
    }
}

// The history is trimmed before the line is looked at, so a full history
// loses its oldest entry even on an empty Enter. A line too long for the
// buffer is refused but stays typed (and stays in the history).
char* ZoStream::OnEnter()
{
    if (m_listHistory.size() >= kMaxHistory) {
        DropOldestEntry();
    }
    if (!m_strInbuffer.empty()) {
        m_listHistory.push_back(m_strInbuffer);
    }
    if (!zo_screen::EndEnteredLine()) {
        return nullptr;
    }
    zo_screen::Flush();
    const size_t length = m_strInbuffer.size();
    if (length >= kLineBufferSize) {
        std::puts("Error:m_strInbuffer too large");
        zo_screen::Flush();
        return nullptr;
    }
    const int rc = strncpy_s(s_achLine, kLineBufferSize, m_strInbuffer.c_str(), length);
    if (rc != 0) {
        std::printf("strncpy_s failed, rc = %d", rc);
        zo_screen::Flush();
        return nullptr;
    }
    s_achLine[length] = '\0';
    m_strInbuffer.clear();
    m_itHistory = m_listHistory.end();
    return s_achLine;
}

// Removes one byte, not one character: a UTF-8 character takes one Backspace per byte.
int ZoStream::OnBackspace()
{
    if (m_strInbuffer.empty()) {
        return 0;
    }
    m_strInbuffer.pop_back();
    return zo_screen::EraseLastByte() ? 0 : -1;
}

void ZoStream::OnSpace()
{
    m_strInbuffer.push_back(' ');
    zo_screen::EchoByte(' ');  // a lost echo of a blank is not worth ending the line for
}

// A byte is stored only once the terminal has shown it.
int ZoStream::OnInsert(int byte)
{
    if (!zo_screen::EchoByte(byte)) {
        return -1;
    }
    m_strInbuffer.push_back(static_cast<char>(byte));
    return 0;
}
