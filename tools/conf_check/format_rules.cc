// Format letters and print tags of a command.
#include "format_rules.h"

#include <algorithm>

#include "zo_format_letters.h"

namespace
{

// Reports the first letter the console does not know (an error, since it
// refuses the whole format) or else a letter it does not support (a
// warning). consequence says what the console does with an unknown letter.
void CheckLetters(const std::string& path, int row, const char* key, const std::string& format,
                  const std::string& consequence, const std::string& sConsequence, ConfDiagnostics& diagnostics)
{
    const std::string what = std::string("\"") + key + "\" '" + format + "'";
    const size_t bad = format.find_first_not_of(kZoFormatLetters);
    const auto unsupported = std::find_if(format.begin(), format.end(), [](char c) {
        const ZoFormatLetter* letter = ZoFormatLetterOf(c);
        return letter != nullptr && !letter->supported;
    });
    if (bad != std::string::npos) {
        std::string letters;
        for (const char* letter = kZoFormatLetters; *letter != '\0'; ++letter) {
            letters += std::string(letters.empty() ? "" : " ") + *letter;
        }
        diagnostics.Error(path, row,
                          what + ": " + ShownByte(format[bad]) + " is no format letter (" + letters +
                              "): " + consequence);
    } else if (unsupported != format.end()) {
        diagnostics.Warning(path, row,
                            what + ": the letter " + *unsupported + " is not supported: " + sConsequence);
    }
}

std::string Labels(unsigned int n)
{
    return std::to_string(n) + (n == 1 ? " label" : " labels");
}

std::string Letters(size_t n)
{
    return std::to_string(n) + (n == 1 ? " letter" : " letters");
}

// The reply pairs letter i of the print format with tag i: letters without
// a tag are never read, tags without a letter never shown, and with no
// letter or no tag at all nothing of the reply is printed.
void CheckTags(const std::string& path, const RecordedCommand& cmd, ConfDiagnostics& diagnostics)
{
    const std::string& format = cmd.info.strPrintFmt;
    const Array<std::string>& tags = cmd.info.arrPrintTags;
    const int tagsRow = cmd.RowOf(ConfKey::kPrintTags);
    const std::string printFormat = "\"print format\" '" + format + "'";
    if (!format.empty() && tags.Size() == 0) {
        diagnostics.Error(path, cmd.RowOf(ConfKey::kPrintFormat),
                          printFormat + " has no \"print tags\": the console prints nothing of the reply");
    } else if (format.empty() && tags.Size() != 0) {
        diagnostics.Warning(path, tagsRow,
                            "\"print tags\" without a \"print format\": the console prints nothing of the reply");
    } else if (format.size() > tags.Size()) {
        diagnostics.Error(path, tagsRow,
                          "\"print tags\" has " + Labels(tags.Size()) + " for the " + Letters(format.size()) + " of " +
                              printFormat + ": the letters beyond the labels are never read");
    } else if (format.size() < tags.Size()) {
        diagnostics.Warning(path, tagsRow,
                            "\"print tags\" has " + Labels(tags.Size()) + " for the " + Letters(format.size()) +
                                " of " + printFormat + ": the labels beyond the letters are never shown");
    }
    for (unsigned int i = 0; i < tags.Size(); ++i) {
        if (tags[i].empty()) {
            diagnostics.Warning(path, tagsRow, "\"print tags\": label " + std::to_string(i + 1) + " is empty");
            break;
        }
    }
}

}  // namespace

void CheckFormats(const std::string& path, const RecordedCommand& cmd, ConfDiagnostics& diagnostics)
{
    if (cmd.Has(ConfKey::kParaFormat)) {
        CheckLetters(path, cmd.RowOf(ConfKey::kParaFormat), "para format", cmd.info.strParaFmt,
                     "the console refuses the command with \"para format err.\"", "the console sends no value for it",
                     diagnostics);
    }
    if (cmd.Has(ConfKey::kPrintFormat)) {
        CheckLetters(path, cmd.RowOf(ConfKey::kPrintFormat), "print format", cmd.info.strPrintFmt,
                     "the console prints \"invalid fmt info!\" instead of the reply", "no value is read for it",
                     diagnostics);
    }
    CheckTags(path, cmd, diagnostics);
}
