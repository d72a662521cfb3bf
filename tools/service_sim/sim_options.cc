#include "sim_options.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "zo_format_letters.h"
#include "zo_shm_page.h"

namespace {

// The text of --help after its usage line.
const char kHelp[] =
    "\n"
    "Stands in for the middleware service: creates DIR/.tv (4096 bytes) when it is\n"
    "missing or short, maps it, and answers the console's requests, decoding each\n"
    "by the catalogue in DIR (mods.conf, cmds.conf). One line per request goes to\n"
    "standard output: the command word and its decoded arguments.\n"
    "\n"
    "options:\n"
    "  --delay MS      wait MS milliseconds before each answer\n"
    "  --no-reply      take each request but never answer it\n"
    "  --status N      answer every known command with status N and no values\n"
    "  --garbage N     answer with status 0 followed by N random bytes (N <= 4084)\n"
    "  --size N        put N in u32Size whatever the reply's length (N > 4088: oversized)\n"
    "  --replies FILE  answer from FILE instead of the built-in values\n"
    "  --help          print this text\n"
    "--no-reply, --status and --garbage exclude each other. Numbers may be decimal\n"
    "(a leading zero is decimal too) or 0x hexadecimal. Unknown instruction codes\n"
    "get status 0xffffffff, requests that do not match their parameter format\n"
    "0xfffffffe.\n"
    "\n"
    "Built-in values, one row per reply: d 42, D 9000000000, f 1.5, F 2.25, s \"sim\";\n"
    "nothing for S, which the console does not read.\n"
    "\n"
    "Replies file: one line per instruction code, '#' starts a comment line:\n"
    "  CODE STATUS [VALUE ...]\n"
    "CODE is a command's own instruction code, STATUS the reply status (both\n"
    "0x hex, decimal or negative). The values follow the command's print format,\n"
    "letter by letter, starting again at the first letter for the next row; a\n"
    "string is one word or a \"quoted text\" (\\\" and \\\\ inside quotes). Example,\n"
    "for the catalogue in examples/ (count, list, tune):\n"
    "  0x11 0 3\n"
    "  0x15 0 1 474000 \"Northgate One\" 2 474000 News\n"
    "  0x13 0x80000001\n"
    "Codes without a line get the built-in values.\n"
    "\n"
    "Ends on SIGINT or SIGTERM with status 0; a usage error exits with 2.\n";

// Reads a whole-word unsigned number (decimal or 0x hex) no larger than max.
bool ParseUnsigned(const char* text, uint64_t max, uint64_t& value)
{
    ZoFormatValue v;
    if (text == nullptr || *text == '-' || *text == '+' || !ZoFormatLetterOf('D')->parse(text, v) ||
        v.integer < 0 || static_cast<uint64_t>(v.integer) > max) {
        return false;
    }
    value = static_cast<uint64_t>(v.integer);
    return true;
}

// Reads a whole-word 32-bit number as the letter d parses it.
bool ParseInt32Word(const char* text, int32_t& value)
{
    ZoFormatValue v;
    if (text == nullptr || !ZoFormatLetterOf('d')->parse(text, v)) {
        return false;
    }
    value = static_cast<int32_t>(v.integer);
    return true;
}

}  // namespace

const char* SimSynopsis()
{
    return "zo_service_sim DIR [options]";
}

const char* SimUsage()
{
    static const std::string usage = std::string("usage: ") + SimSynopsis() + "\n" + kHelp;
    return usage.c_str();
}

bool ParseSimOptions(int argc, char* const argv[], SimOptions& opts, std::string& error)
{
    opts = SimOptions();
    error.clear();
    int faultModes = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        // The option's value: the next word, or null when there is none.
        const char* text = i + 1 < argc ? argv[i + 1] : nullptr;
        uint64_t n = 0;
        if (arg == "--help" || arg == "-h") {
            opts.help = true;
            continue;
        }
        if (arg == "--no-reply") {
            opts.noReply = true;
            ++faultModes;
            continue;
        }
        if (arg == "--delay") {
            if (!ParseUnsigned(text, 3600000, n)) {
                error = "--delay takes milliseconds (0 to 3600000)";
                return false;
            }
            opts.delayMs = static_cast<unsigned>(n);
        } else if (arg == "--status") {
            if (!ParseInt32Word(text, opts.status)) {
                error = "--status takes a 32-bit number";
                return false;
            }
            opts.forceStatus = true;
            ++faultModes;
        } else if (arg == "--garbage") {
            if (!ParseUnsigned(text, SHM_DATA_SIZE - 4, n)) {
                error = "--garbage takes a byte count (0 to " + std::to_string(SHM_DATA_SIZE - 4) + ")";
                return false;
            }
            opts.garbage = true;
            opts.garbageBytes = static_cast<uint32_t>(n);
            ++faultModes;
        } else if (arg == "--size") {
            if (!ParseUnsigned(text, UINT32_MAX, n)) {
                error = "--size takes an unsigned 32-bit number";
                return false;
            }
            opts.forceSize = true;
            opts.sizeValue = static_cast<uint32_t>(n);
        } else if (arg == "--replies") {
            if (text == nullptr || *text == '\0') {
                error = "--replies takes a file";
                return false;
            }
            opts.repliesPath = text;
        } else if (arg.size() > 1 && arg[0] == '-') {
            error = "unknown option " + arg;
            return false;
        } else if (opts.dir.empty() && !arg.empty()) {
            opts.dir = arg;
            continue;
        } else {
            error = "unexpected argument '" + arg + "'";
            return false;
        }
        ++i;  // past the option's value
    }
    if (opts.help) {
        return true;
    }
    if (faultModes > 1) {
        error = "--no-reply, --status and --garbage exclude each other";
        return false;
    }
    if (opts.dir.empty()) {
        error = "missing DIR";
        return false;
    }
    return true;
}
