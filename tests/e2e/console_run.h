// One end-to-end run of the console: a small catalogue in a fresh directory,
// the page DIR/.tv (a plain 4096-byte file, or the simulator answering on it)
// and zo_cmd_debug_host on a pseudo-terminal. Every wait has a deadline.
//
//     ConsoleRun run;
//     ASSERT_TRUE(run.StartSim());
//     ASSERT_TRUE(run.StartConsole());
//     EXPECT_EQ("fmt\nFormats@", run.Type("fmt\n"));
//
// Type returns the screen up to the next prompt with carriage returns taken
// out and without the "TV $" itself, so a result ends with "Formats@" inside
// a module and with nothing at the top level.
#ifndef ZO_TESTS_E2E_CONSOLE_RUN_H
#define ZO_TESTS_E2E_CONSOLE_RUN_H

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>

#include <memory>
#include <string>
#include <vector>

#include "pty_session.h"
#include "sim_process.h"
#include "temp_dir.h"

// Two modules: Formats has one command per format letter, the same letter for
// its argument and its reply, and "wide" adds the unsupported S to both;
// Tuner has two commands without arguments.
constexpr char kModsConf[] =
    "[Formats]\ncommand = fmt\ninstruction = 0x10\ndescription = one command per format letter\n\n"
    "[Tuner]\ncommand = tun\ninstruction = 0x20\ndescription = tuner state\n";

inline std::string CmdsConf()
{
    struct Row {
        const char* word;
        const char* module;
        const char* code;
        const char* para;
        const char* print;
        const char* tags;
    };
    static const Row rows[] = {
        {"int", "Formats", "0x11", "d", "d", "int"},         {"long", "Formats", "0x12", "D", "D", "long"},
        {"float", "Formats", "0x13", "f", "f", "float"},     {"double", "Formats", "0x14", "F", "F", "double"},
        {"str", "Formats", "0x15", "s", "s", "str"},         {"wide", "Formats", "0x16", "dS", "dS", "num,wide"},
        {"scan", "Tuner", "0x21", "", "d", "found"},         {"seek", "Tuner", "0x22", "", "d", "found"},
    };
    std::string text;
    for (const Row& r : rows) {
        text += std::string("[") + r.word + "]\ncommand = " + r.word + "\nbelong module = " + r.module +
                "\ninstruction = " + r.code + "\n";
        if (r.para[0] != '\0') {
            text += std::string("para format = ") + r.para + "\n";
        }
        text += std::string("print format = ") + r.print + "\nprint tags = " + r.tags + "\ndescription = the " + r.word +
                " command\n\n";
    }
    return text;
}

// The reply rows as the console prints them, carriage returns taken out.
inline std::string Reply(const std::string& rows)
{
    return "===========================\n" + rows + "===========================\n";
}

// A wait status in words: "exit 0", "signal 9", "stopped 19"; "running" when
// the process has not changed state in time.
inline std::string DescribeStatus(bool changed, int status)
{
    if (!changed) {
        return "running";
    }
    if (WIFEXITED(status)) {
        return "exit " + std::to_string(WEXITSTATUS(status));
    }
    if (WIFSIGNALED(status)) {
        return "signal " + std::to_string(WTERMSIG(status));
    }
    if (WIFSTOPPED(status)) {
        return "stopped " + std::to_string(WSTOPSIG(status));
    }
    return "status " + std::to_string(status);
}

class ConsoleRun {
public:
    // withCatalogue false leaves mods.conf and cmds.conf out.
    explicit ConsoleRun(bool withCatalogue = true)
    {
        if (withCatalogue) {
            Dir().Write("mods.conf", kModsConf);
            Dir().Write("cmds.conf", CmdsConf());
        }
    }

    // The simulator's directory is the console's.
    const TempDir& Dir() const { return m_sim.dir; }
    std::string PagePath() const { return Dir().File(".tv"); }

    // The page without a service, for runs whose lines never reach one.
    void WritePage() const { Dir().Write(".tv", std::string(4096, '\0')); }

    // Starts zo_service_sim on the directory and waits until it has grown the page to full size.
    bool StartSim(const std::vector<std::string>& options = {}) { return m_sim.Start(options); }
    // The simulator's next request line ("<timeout>" when none comes).
    std::string SimLine() { return m_sim.ReadLine(std::chrono::milliseconds(5000)); }

    // Starts the console with args (the directory by default) and waits for
    // its first prompt; what came before it, carriage returns taken out, goes to *banner.
    bool StartConsole(const PtySession::Options& options = PtySession::Options(), std::string* banner = nullptr)
    {
        return StartProgram({Dir().Path()}, options) && WaitPrompt(banner);
    }
    bool StartProgram(const std::vector<std::string>& args, const PtySession::Options& options = PtySession::Options())
    {
        const bool started = m_pty.Start(ZO_CMD_DEBUG_HOST_PATH, args, options);
        EXPECT_TRUE(started) << m_pty.Error();
        return started;
    }

    // Sends keys (a line ends with "\n", the Enter key) and returns the screen
    // up to the next prompt; "<no prompt>" when none comes in time.
    std::string Type(const std::string& keys)
    {
        std::string screen;
        if (!m_pty.Write(keys) || !WaitPrompt(&screen)) {
            return "<no prompt>";
        }
        return screen;
    }

    // How the console ended: see DescribeStatus.
    std::string Exit(int timeoutMs = PtySession::kDefaultTimeoutMs)
    {
        int status = 0;
        const bool ended = m_pty.WaitForExit(&status, timeoutMs);
        return DescribeStatus(ended, status);
    }

    PtySession& Pty() { return m_pty; }

    static std::string NoCr(const std::string& text)
    {
        std::string out;
        for (char c : text) {
            if (c != '\r') {
                out += c;
            }
        }
        return out;
    }

private:
    bool WaitPrompt(std::string* before)
    {
        static const std::string kPrompt = "TV $";
        std::string screen;
        if (!m_pty.WaitFor(kPrompt, &screen, 10000)) {
            ADD_FAILURE() << "no prompt; screen so far:\n" << m_pty.Screen();
            return false;
        }
        if (before != nullptr) {
            *before = NoCr(screen.substr(0, screen.size() - kPrompt.size()));
        }
        return true;
    }

    SimProcess m_sim;
    PtySession m_pty;  // after m_sim: the console ends before its service
};

#endif  // ZO_TESTS_E2E_CONSOLE_RUN_H
