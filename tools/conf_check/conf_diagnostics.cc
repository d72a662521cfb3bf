// Collecting, counting and printing the diagnostics of a catalogue.
#include "conf_diagnostics.h"

#include <algorithm>

namespace
{

std::string Counted(int n, const char* noun)
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

void ConfDiagnostics::Error(const std::string& file, int line, const std::string& text)
{
    Add(file, line, true, text);
}

void ConfDiagnostics::Warning(const std::string& file, int line, const std::string& text)
{
    Add(file, line, false, text);
}

void ConfDiagnostics::Add(const std::string& file, int line, bool error, const std::string& text)
{
    // A row that ends a block is read twice, and so may be reported twice.
    if (!m_seen.emplace(file, line, error, text).second) {
        return;
    }
    m_diagnostics.push_back(Diagnostic{file, line, error, text});
}

int ConfDiagnostics::Errors() const
{
    return static_cast<int>(
        std::count_if(m_diagnostics.begin(), m_diagnostics.end(), [](const Diagnostic& d) { return d.error; }));
}

int ConfDiagnostics::Warnings() const
{
    return static_cast<int>(m_diagnostics.size()) - Errors();
}

std::string ConfDiagnostics::Count() const
{
    return Counted(Errors(), "error") + ", " + Counted(Warnings(), "warning");
}

void ConfDiagnostics::Print(FILE* out) const
{
    std::vector<Diagnostic> sorted = m_diagnostics;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Diagnostic& a, const Diagnostic& b) {
        return a.file != b.file ? a.file < b.file : a.line < b.line;
    });
    for (const Diagnostic& d : sorted) {
        fprintf(out, "%s:%d: %s: %s\n", d.file.c_str(), d.line, d.error ? "error" : "warning",
                Escaped(d.text).c_str());
    }
}
