// The checks that need the whole catalogue: what became of each block
// (dropped duplicates, commands of unknown modules or of modules without a
// code), missing or colliding instruction codes, words that cannot be typed
// (white space, or a byte the line editor or the terminal takes as a key) or
// that another module or the console takes first, modules with no command,
// files with no block, and each command's formats (format_rules.h).
#ifndef ZO_TOOLS_CONF_CHECK_CONF_RULES_H
#define ZO_TOOLS_CONF_CHECK_CONF_RULES_H

#include "conf_diagnostics.h"
#include "conf_recorder.h"

// Runs every check on the blocks recorded from a finished load.
void CheckCatalogue(const ConfRecorder& recorder, ConfDiagnostics& diagnostics);

#endif  // ZO_TOOLS_CONF_CHECK_CONF_RULES_H
