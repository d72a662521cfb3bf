// ConfDiagnostics: the problems found in a catalogue, printed the way a
// compiler prints them ("FILE:LINE: error: text") so that editors can jump to
// the row.
//
// Diagnostics come out sorted by file, then by line; within one line in the
// order they were reported. Every diagnostic is counted, but only the first
// ones in that order are kept for printing, so that a file of millions of bad
// rows costs no more memory than a short one; the rest are counted in one
// line after them.
//
// Texts quote the files' bytes, which may be anything but a line feed: they
// are printed with every byte outside printable ASCII as \xHH and the
// backslash as \\, so that no NUL cuts a line and no escape sequence reaches
// the terminal.
#ifndef ZO_TOOLS_CONF_CHECK_CONF_DIAGNOSTICS_H
#define ZO_TOOLS_CONF_CHECK_CONF_DIAGNOSTICS_H

#include <cstdio>
#include <string>
#include <vector>

// A byte as a message names it: in quotes ('C'), escaped when printed.
std::string ShownByte(char byte);

class ConfDiagnostics
{
public:
    // The number of diagnostics printed by default; the report of a file
    // with more ends with a count of the others.
    static constexpr size_t kDefaultShown = 100;

    // Keeps at most shown diagnostics for printing (0: keeps none, counts all).
    explicit ConfDiagnostics(size_t shown = kDefaultShown);

    // An error: the console will drop something or silently do the wrong
    // thing. A warning: suspicious, but the console does what the file says.
    void Error(const std::string& file, int line, const std::string& text);
    void Warning(const std::string& file, int line, const std::string& text);

    long Errors() const { return m_errors; }
    long Warnings() const { return m_warnings; }
    // "2 errors, 1 warning".
    std::string Count() const;
    // The kept diagnostics, one a line, in the order described above, then
    // how many more there are, if any.
    void Print(FILE* out) const;

private:
    struct Diagnostic {
        std::string file;
        int line;
        long found;  // order in which it was reported
        bool error;
        std::string text;
    };
    // Printing order: file, line, then order found.
    static bool Before(const Diagnostic& a, const Diagnostic& b);
    void Add(const std::string& file, int line, bool error, const std::string& text);

    size_t m_shown;
    // The first m_shown diagnostics in printing order, as a heap with the
    // last of them on top.
    std::vector<Diagnostic> m_kept;
    long m_errors = 0;
    long m_warnings = 0;
};

#endif  // ZO_TOOLS_CONF_CHECK_CONF_DIAGNOSTICS_H
