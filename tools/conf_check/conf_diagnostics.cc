// Collecting, counting and printing the diagnostics of a catalogue.
#include "conf_diagnostics.h"

#include <algorithm>

namespace
{

std::string Counted(long n, const char* noun)
{
    return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

// text with bytes outside printable ASCII as \xHH and "\" as "\\".
std::string Escaped(const std::string& text)
{
    std::string shown;
    shown.reserve(text.size());
    for (const char c : text) {
        const unsigned char value = static_cast<unsigned char>(c);
        if (c == '\\') {
            shown += "\\\\";
        } else if (value >= 0x20 && value < 0x7f) {
            shown += c;
        } else {
            char hex[8];
            snprintf(hex, sizeof hex, "\\x%02x", value);
            shown += hex;
        }
    }
    return shown;
}

}  // namespace

std::string ShownByte(char byte)
{
    return std::string("'") + byte + "'";
}

ConfDiagnostics::ConfDiagnostics(size_t shown) : m_shown(shown) {}

void ConfDiagnostics::Error(const std::string& file, int line, const std::string& text)
{
    Add(file, line, true, text);
}

void ConfDiagnostics::Warning(const std::string& file, int line, const std::string& text)
{
    Add(file, line, false, text);
}

bool ConfDiagnostics::Before(const Diagnostic& a, const Diagnostic& b)
{
    if (a.file != b.file) {
        return a.file < b.file;
    }
    return a.line != b.line ? a.line < b.line : a.found < b.found;
}

void ConfDiagnostics::Add(const std::string& file, int line, bool error, const std::string& text)
{
    const long found = m_errors + m_warnings;
    ++(error ? m_errors : m_warnings);
    if (m_shown == 0) {
        return;
    }
    Diagnostic diagnostic{file, line, found, error, text};
    if (m_kept.size() == m_shown) {
        if (!Before(diagnostic, m_kept.front())) {
            return;  // after every kept one: counted only
        }
        std::pop_heap(m_kept.begin(), m_kept.end(), Before);
        m_kept.back() = std::move(diagnostic);
    } else {
        m_kept.push_back(std::move(diagnostic));
    }
    std::push_heap(m_kept.begin(), m_kept.end(), Before);
}

std::string ConfDiagnostics::Count() const
{
    return Counted(m_errors, "error") + ", " + Counted(m_warnings, "warning");
}

void ConfDiagnostics::Print(FILE* out) const
{
    std::vector<Diagnostic> sorted = m_kept;
    std::sort_heap(sorted.begin(), sorted.end(), Before);
    for (const Diagnostic& d : sorted) {
        fprintf(out, "%s:%d: %s: %s\n", d.file.c_str(), d.line, d.error ? "error" : "warning",
                Escaped(d.text).c_str());
    }
    const long more = m_errors + m_warnings - static_cast<long>(sorted.size());
    if (more > 0 && !sorted.empty()) {
        fprintf(out, "%s not shown (only the first %u are printed)\n", Counted(more, "more diagnostic").c_str(),
                static_cast<unsigned>(sorted.size()));
    }
}
