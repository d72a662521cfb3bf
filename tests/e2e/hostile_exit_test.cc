// The ways the console ends when its swap file, its process or its resources
// turn against it: each one but the Ctrl-C kill leaves the terminal as the
// console found it, and the shell sees the status or the signal it expects.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include "pty_session.h"
#include "temp_dir.h"

namespace {

// One run of the console on a one-command catalogue, on a fresh terminal whose settings are known.
class ConsoleOnPty {
public:
    ConsoleOnPty()
    {
        m_dir.Write("mods.conf", "[Formats]\ncommand = fmt\ninstruction = 0x10\n");
        m_dir.Write("cmds.conf", "[int]\ncommand = int\nbelong module = Formats\ninstruction = 0x11\npara format = d\n");
    }
    std::string Page() const { return m_dir.File(".tv"); }
    void WritePage() const { m_dir.Write(".tv", std::string(4096, '\0')); }
    PtySession& Pty() { return m_pty; }

    bool Start()
    {
        PtySession::Options options;
        options.initialTermios = &m_found;
        return PtySession::DefaultTermios(&m_found) && m_pty.Start(ZO_CMD_DEBUG_HOST_PATH, {m_dir.Path()}, options);
    }
    // "exit N" or "signal N", with ", terminal raw" when the settings differ from those found.
    std::string End()
    {
        int status = 0;
        if (!m_pty.WaitForExit(&status)) {
            return "running";
        }
        std::string how = WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                                            : "signal " + std::to_string(WTERMSIG(status));
        struct termios now {};
        const bool same = m_pty.GetAttr(&now) == 0 && now.c_iflag == m_found.c_iflag &&
                          now.c_oflag == m_found.c_oflag && now.c_lflag == m_found.c_lflag &&
                          std::memcmp(now.c_cc, m_found.c_cc, sizeof now.c_cc) == 0;
        return same ? how : how + ", terminal raw";
    }
    // The whole screen, carriage returns taken out.
    std::string Screen() const
    {
        std::string text = m_pty.Screen();
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }

private:
    TempDir m_dir;
    PtySession m_pty;
    struct termios m_found {};
};

bool Exists(const std::string& path)
{
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

// Thread stacks as large as the address space: the console's signal thread cannot start.
struct HugeThreadStacks {
    struct rlimit saved {};
    HugeThreadStacks()
    {
        getrlimit(RLIMIT_STACK, &saved);
        struct rlimit huge = saved;
        huge.rlim_cur = sizeof(void*) == 8 ? static_cast<rlim_t>(1) << 46 : static_cast<rlim_t>(3) << 30;
        setrlimit(RLIMIT_STACK, &huge);
    }
    ~HugeThreadStacks() { setrlimit(RLIMIT_STACK, &saved); }
};

TEST(ConsoleEnds, StartupRefusalsExitWith1AndRestoreTheTerminal)
{
    const std::string tooShort = " bytes long, it needs at least 4096 bytes: start the service first\n";
    struct Case {
        const char* what;
        void (*setup)(const ConsoleOnPty&);
        std::string message;  // PAGE stands for the swap file's path
        bool pageLeft;
        bool hugeStacks;
    };
    const Case cases[] = {
        {"missing: created, refused, removed", [](const ConsoleOnPty&) {}, "swap file PAGE is 0" + tooShort, false, false},
        {"short", [](const ConsoleOnPty& r) { std::ofstream(r.Page()) << "x"; }, "swap file PAGE is 1" + tooShort, true, false},
        {"directory", [](const ConsoleOnPty& r) { mkdir(r.Page().c_str(), 0700); },
         "swap file PAGE is a directory, not a regular file\n", true, false},
        {"FIFO", [](const ConsoleOnPty& r) { mkfifo(r.Page().c_str(), 0600); }, "swap file PAGE is a FIFO, not a regular file\n",
         true, false},
        {"device", [](const ConsoleOnPty& r) { (void)!symlink("/dev/null", r.Page().c_str()); },
         "swap file PAGE is a character device, not a regular file\n", true, false},
        {"not openable", [](const ConsoleOnPty& r) { (void)!symlink("gone/.tv", r.Page().c_str()); },
         "can't open swap file PAGE, errno = 2\n", true, false},
        {"no signal thread", [](const ConsoleOnPty& r) { r.WritePage(); },
         "can't start the signal thread: Resource temporarily unavailable\n", true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        if (c.hugeStacks && std::getenv("ZO_TEST_EMULATOR") != nullptr) {
            continue;  // the emulator keeps stack limits to itself, so the thread starts there
        }
        ConsoleOnPty run;
        c.setup(run);
        {
            std::unique_ptr<HugeThreadStacks> stacks(c.hugeStacks ? new HugeThreadStacks : nullptr);
            ASSERT_TRUE(run.Start());
        }
        EXPECT_EQ("exit 1", run.End());
        std::string message = c.message;
        if (message.find("PAGE") != std::string::npos) {
            message.replace(message.find("PAGE"), 4, run.Page());
        }
        EXPECT_EQ(message, run.Screen());
        EXPECT_EQ(c.pageLeft, Exists(run.Page()));
    }
}

TEST(ConsoleEnds, EndSignalsRestoreTheTerminalAndEndByTheSameSignal)
{
    const struct rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);  // SIGQUIT would leave a core file
    struct Case {
        int signo;
        const char* keys;  // typed instead of sent when set
        std::string end;
    };
    const Case cases[] = {
        {SIGTERM, nullptr, "signal 15"},  {SIGHUP, nullptr, "signal 1"},
        {SIGQUIT, "\x1c", "signal 3"},    {SIGPIPE, nullptr, "signal 13"},
        {SIGINT, "\x03", "signal 9, terminal raw"},  // Ctrl-C: killed, as it always was
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.signo);
        ConsoleOnPty run;
        run.WritePage();
        ASSERT_TRUE(run.Start());
        ASSERT_TRUE(run.Pty().WaitFor("TV $")) << run.Screen();
        if (c.keys != nullptr) {
            ASSERT_TRUE(run.Pty().Write(c.keys));
        } else {
            ASSERT_EQ(0, kill(run.Pty().Pid(), c.signo));
        }
        EXPECT_EQ(c.end, run.End());
    }
}

// The file is cut to 0 bytes between two commands, or while the console waits for a reply.
TEST(ConsoleEnds, TruncatedSwapFileEndsWith1InsteadOfSigbus)
{
    for (const bool whileWaiting : {false, true}) {
        SCOPED_TRACE(whileWaiting ? "while waiting" : "between commands");
        ConsoleOnPty run;
        run.WritePage();
        ASSERT_TRUE(run.Start());
        ASSERT_TRUE(run.Pty().Write("fmt\n"));
        ASSERT_TRUE(run.Pty().WaitFor("Formats@TV $")) << run.Screen();
        if (whileWaiting) {
            ASSERT_TRUE(run.Pty().Write("int 5\n"));
            // The request flag in the file's first byte says the console now polls the page.
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
            while (std::ifstream(run.Page()).get() != 1 && std::chrono::steady_clock::now() < deadline) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        }
        ASSERT_EQ(0, truncate(run.Page().c_str(), 0));
        if (!whileWaiting) {
            ASSERT_TRUE(run.Pty().Write("int 5\n"));
        }
        EXPECT_EQ("exit 1", run.End());
        const std::string message = "swap file " + run.Page() + " was truncated while mapped: the shared page is lost\n";
        EXPECT_NE(std::string::npos, run.Screen().find(message)) << run.Screen();
    }
}

}  // namespace
