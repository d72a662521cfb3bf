// The checks of one command's "para format", "print format" and "print tags":
// the letters the console knows (d D f F s, and S, which it passes over) and
// the pairing of print tags with print format letters, position by position.
#ifndef ZO_TOOLS_CONF_CHECK_FORMAT_RULES_H
#define ZO_TOOLS_CONF_CHECK_FORMAT_RULES_H

#include <string>

#include "conf_diagnostics.h"
#include "conf_recorder.h"

// Reports the command's format problems at the rows of its keys in path.
void CheckFormats(const std::string& path, const RecordedCommand& cmd, ConfDiagnostics& diagnostics);

#endif  // ZO_TOOLS_CONF_CHECK_FORMAT_RULES_H
