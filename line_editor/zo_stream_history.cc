// History: recalling earlier lines with Up and Down.
//
// m_itHistory is the entry last recalled, or the end position when none is.
// Entries never change: editing a recalled line edits only the typed copy, and
// Enter stores the result as a new entry.
#include "zo_stream.h"

#include <iterator>

#include "zo_stream_screen.h"

// From the end position the first Up recalls the newest entry; at the oldest
// entry Up does nothing.
int ZoStream::OnUp()
{
    if (m_listHistory.empty() || m_itHistory == m_listHistory.begin()) {
        return -1;
    }
    --m_itHistory;
    Recall(*m_itHistory);
    return 0;
}

// Moving past the newest entry leaves the line as it is, so the newest entry,
// when it was recalled, stays on the screen to be edited or entered.
int ZoStream::OnDown()
{
    if (m_listHistory.empty() || m_itHistory == m_listHistory.end()) {
        return -1;
    }
    ++m_itHistory;
    if (m_itHistory == m_listHistory.end()) {
        return -1;
    }
    Recall(*m_itHistory);
    return 0;
}

// The typed line is erased byte by byte, as the engineer would with Backspace.
void ZoStream::Recall(const std::string& entry)
{
    while (!m_strInbuffer.empty()) {
        OnBackspace();
    }
    zo_screen::ShowText(entry.c_str());
    m_strInbuffer = entry;
}

// A recall position on the dropped entry moves to the entry after it, which
// becomes the oldest; the position never points at a removed entry.
void ZoStream::DropOldestEntry()
{
    if (m_itHistory == m_listHistory.begin()) {
        m_itHistory = std::next(m_itHistory);
    }
    m_listHistory.pop_front();
}
