// ConfDiagnostics: the problems found in a catalogue, printed the way a
// compiler prints them ("FILE:LINE: error: text") so that editors can jump to
// the row.
//
// Diagnostics come out sorted by file, then by line; within one line in the
// order they were reported. A diagnostic reported twice with the same file,
// line, severity and text is printed once and counted once.
//
// Texts quote the files' bytes, which may be anything but a line feed: they
// are printed with every byte outside printable ASCII as \xHH and the
// backslash as \\, so that no NUL cuts a line and no escape sequence reaches
// the terminal.
#ifndef ZO_TOOLS_CONF_CHECK_CONF_DIAGNOSTICS_H
#define ZO_TOOLS_CONF_CHECK_CONF_DIAGNOSTICS_H

#include <cstdio>
#include <set>
#include <string>
#include <tuple>
#include <vector>

// A byte as a message names it: in quotes ('C'), escaped when printed.
std::string ShownByte(char byte);

class ConfDiagnostics
{
public:
    // An error: the console will drop something or silently do the wrong
    // thing. A warning: suspicious, but the console does what the file says.
    void Error(const std::string& file, int line, const std::string& text);
    void Warning(const std::string& file, int line, const std::string& text);

    int Errors() const;
    int Warnings() const;
    // "2 errors, 1 warning".
    std::string Count() const;
    // Every diagnostic, one a line, in the order described above.
    void Print(FILE* out) const;

private:
    struct Diagnostic {
        std::string file;
        int line;
        bool error;
        std::string text;
    };
    void Add(const std::string& file, int line, bool error, const std::string& text);

    std::vector<Diagnostic> m_diagnostics;  // as reported, repeats left out
    std::set<std::tuple<std::string, int, bool, std::string>> m_seen;
};

#endif  // ZO_TOOLS_CONF_CHECK_CONF_DIAGNOSTICS_H
