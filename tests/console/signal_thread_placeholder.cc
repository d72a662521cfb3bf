// The console object names SignalDectThread as the body of its signal thread,
// so linking the object needs that function. The signal handling is not in
// the console library yet; until it is, the unit tests link this body, which
// is never run (no test starts the thread). Remove this file when the signal
// handling joins the library.
#include "zo_cmd_debug.h"

void ZoCmdDebug::SignalDectThread(const void* /*arg*/) {}
