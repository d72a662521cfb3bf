// Completion: the registry of candidate names and the Tab key.
//
// The registry borrows the candidate arrays; see RegistTab in the header for
// how long they must live.
#include "zo_stream.h"

#include <cstring>

#include "zo_stream_screen.h"

namespace {

// Candidates shown on one screen line of a listing.
constexpr unsigned int kNamesPerLine = 10;

// A group's banner: it opens with a line feed, which ends the screen line
// holding the prompt and the typed text (or the previous group's last line).
std::string Banner(const std::string& group)
{
    const std::string rule(34, '=');
    return "\n" + rule + group + rule + "\n";
}

}  // namespace

// Registrations are not looked up by name: registering a name twice searches both.
int ZoStream::RegistTab(std::string name, unsigned int count, const char** list, ZO_BOOL clear)
{
    if (clear) {
        m_vecTabInfo.clear();
    }
    m_vecTabInfo.push_back(TabInfo{std::move(name), count, list});
    return 0;
}

// A candidate matches when it begins with the whole typed line, blanks
// included; an empty line matches everything. Names are separated by a tab
// and every tenth ends its screen line. A null list or a null name never
// matches.
void ZoStream::ParseModeInfo(std::list<std::string>& matches)
{
    const size_t typed = m_strInbuffer.size();
    for (const TabInfo& info : m_vecTabInfo) {
        if (info.ppList == nullptr) {
            continue;
        }
        bool hasBanner = false;
        unsigned int column = 0;
        for (unsigned int i = 0; i < info.u32Count; ++i) {
            const char* name = info.ppList[i];
            if (name == nullptr || std::strncmp(name, m_strInbuffer.c_str(), typed) != 0) {
                continue;
            }
            if (!hasBanner) {
                matches.push_back(Banner(info.strTabName));
                hasBanner = true;
            }
            ++column;
            std::string entry = column >= 2 ? "\t" : "";
            entry += name;
            if (column == kNamesPerLine) {
                entry += '\n';
                column = 0;
            }
            matches.push_back(entry);
        }
    }
}

// One match in all groups (a banner and one name) is completed in place; more
// are listed and the caller prints the prompt again. The typed line is never
// extended by a common prefix of several matches.
int ZoStream::OnTab()
{
    std::list<std::string> matches;
    ParseModeInfo(matches);
    if (matches.empty()) {
        return -1;
    }
    if (matches.size() == 2) {
        const std::string& name = matches.back();
        // A NUL byte in the typed line ends the comparison early, so the
        // name may be shorter than what was typed.
        if (name.size() > m_strInbuffer.size()) {
            zo_screen::ShowText(name.c_str() + m_strInbuffer.size());
        }
        m_strInbuffer = name;
        return -1;
    }
    for (const std::string& element : matches) {
        zo_screen::ShowText(element.c_str());
    }
    return zo_screen::EndListing() ? 0 : -1;
}
