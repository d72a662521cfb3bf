// One end-to-end run of the console: a small catalogue in a fresh directory, the page DIR/.tv (a plain 4096-byte
// file, or the simulator answering on it) and zo_cmd_debug_host on a pseudo-terminal. Every wait has a deadline.
#ifndef ZO_TESTS_E2E_CONSOLE_RUN_H
#define ZO_TESTS_E2E_CONSOLE_RUN_H

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <string>
#include <vector>

#include "pty_session.h"
#include "sim_process.h"

class ConsoleRun {
public:
    // Formats holds a command per format letter, the same letter for its argument and its reply; Tuner one command.
    explicit ConsoleRun(bool withCatalogue = true)
    {
        if (!withCatalogue) {
            return;
        }
        const char* const words[] = {"int", "long", "float", "double", "str"};
        std::string cmds = "[scan]\ncommand = scan\nbelong module = Tuner\ninstruction = 6\n";
        for (int i = 0; i < 5; ++i) {
            const std::string word = words[i], letter(1, "dDfFs"[i]), code = std::to_string(i + 1);
            cmds += "[" + word + "]\ncommand = " + word + "\nbelong module = Formats\ninstruction = " + code +
                    "\npara format = " + letter + "\nprint format = " + letter + "\nprint tags = " + word +
                    "\ndescription = the " + word + "\n";
        }
        Dir().Write("mods.conf", "[Formats]\ncommand = fmt\ninstruction = 0x10\ndescription = one per letter\n"
                                 "[Tuner]\ncommand = tun\ninstruction = 0x20\ndescription = tuner state\n");
        Dir().Write("cmds.conf", cmds);
    }

    // The service, a second process on the same directory: the simulator; or a plain page when no line reaches one.
    const TempDir& Dir() const { return m_sim.dir; }
    bool StartSim(const std::vector<std::string>& options = {}) { return m_sim.Start(options); }
    std::string SimLine() { return m_sim.ReadLine(std::chrono::milliseconds(5000)); }
    std::string Page() const { return ShmSwapFilePath(Dir().Path()); }
    void WritePage() const { Dir().Write(kShmSwapFileName, std::string(SHM_SIZE, '\0')); }

    // Starts the program on a terminal with the system's default settings, which Exit compares with.
    bool StartProgram(const std::vector<std::string>& args, PtySession::Options options = {})
    {
        options.initialTermios = &m_found;
        return PtySession::DefaultTermios(&m_found) && m_pty.Start(ZO_CMD_DEBUG_HOST_PATH, args, options);
    }
    // Starts the console on the directory; what it printed before its first prompt.
    std::string StartConsole(const PtySession::Options& options = {})
    {
        return StartProgram({Dir().Path()}, options) ? Type("") : "<no start>";
    }

    // Sends keys ("\n" is Enter); the screen up to the next prompt, without it and without carriage returns.
    std::string Type(const std::string& keys)
    {
        std::string screen;
        if (!m_pty.Write(keys) || !m_pty.WaitFor("TV $", &screen, 10000)) {
            return "<no prompt> " + m_pty.Screen();
        }
        screen.erase(std::remove(screen.begin(), screen.end(), '\r'), screen.end());
        return screen.substr(0, screen.size() - 4);
    }

    // How the program ended: "exit N" or "signal N", with ", terminal raw" when it left the terminal's settings
    // other than it found them; "running" when it did not end in time.
    std::string Exit()
    {
        int status = 0;
        struct termios now {};
        if (!m_pty.WaitForExit(&status) || m_pty.GetAttr(&now) != 0) {
            return "running";
        }
        const bool same = now.c_iflag == m_found.c_iflag && now.c_oflag == m_found.c_oflag &&
                          now.c_lflag == m_found.c_lflag && std::equal(now.c_cc, now.c_cc + NCCS, m_found.c_cc);
        return (WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                                  : "signal " + std::to_string(WTERMSIG(status))) + (same ? "" : ", terminal raw");
    }

    // "raw" as the line editor sets it, "cooked" (line input and echo) as a shell reads lines, or "mixed".
    std::string TerminalMode() const
    {
        struct termios now {};
        const tcflag_t bits = m_pty.GetAttr(&now) == 0 ? now.c_lflag & (ICANON | ECHO) : ICANON;
        return bits == 0 ? "raw" : bits == (ICANON | ECHO) ? "cooked" : "mixed";
    }

    PtySession& Pty() { return m_pty; }

private:
    SimProcess m_sim;
    PtySession m_pty;  // after m_sim: the console ends before its service
    struct termios m_found {};
};

#endif  // ZO_TESTS_E2E_CONSOLE_RUN_H
