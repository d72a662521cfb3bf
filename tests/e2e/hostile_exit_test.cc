// The ways the console ends when its swap file, its process or its resources
// turn against it: each one but the Ctrl-C kill leaves the terminal as the
// console found it, and the shell sees the status or the signal it expects.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "pty_session.h"
#include "temp_dir.h"

namespace {

// The console on a one-command catalogue and a fresh terminal whose settings are known.
struct ConsoleOnPty {
    TempDir dir;
    PtySession pty;
    struct termios found {};

    ConsoleOnPty()
    {
        dir.Write("mods.conf", "[Formats]\ncommand = fmt\ninstruction = 0x10\n");
        dir.Write("cmds.conf", "[int]\ncommand = int\nbelong module = Formats\ninstruction = 0x11\npara format = d\n");
    }
    std::string Page() const { return dir.File(".tv"); }
    void WritePage() const { dir.Write(".tv", std::string(4096, '\0')); }
    bool Start()
    {
        PtySession::Options options;
        options.initialTermios = &found;
        return PtySession::DefaultTermios(&found) && pty.Start(ZO_CMD_DEBUG_HOST_PATH, {dir.Path()}, options);
    }
    // "exit N" or "signal N", with ", terminal raw" when the settings differ from those found.
    std::string End()
    {
        int status = 0;
        if (!pty.WaitForExit(&status)) {
            return "running";
        }
        struct termios now {};
        const bool same = pty.GetAttr(&now) == 0 && now.c_iflag == found.c_iflag && now.c_oflag == found.c_oflag &&
                          now.c_lflag == found.c_lflag && std::memcmp(now.c_cc, found.c_cc, sizeof now.c_cc) == 0;
        return (WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                                  : "signal " + std::to_string(WTERMSIG(status))) +
               (same ? "" : ", terminal raw");
    }
};

TEST(ConsoleEnds, StartupRefusalsExitWith1AndRestoreTheTerminal)
{
    const std::string tooShort = " bytes long, it needs at least 4096 bytes: start the service first\r\n";
    const std::string notRegular = ", not a regular file\r\n";
    struct Case {
        const char* what;
        void (*setup)(const std::string& page);
        std::string message;  // PAGE stands for the swap file's path
        bool pageLeft;
    };
    const Case cases[] = {
        {"missing: created, refused, removed", [](const std::string&) {}, "swap file PAGE is 0" + tooShort, false},
        {"one byte short", [](const std::string& p) { std::ofstream(p) << std::string(4095, 'x'); },
         "swap file PAGE is 4095" + tooShort, true},
        {"directory", [](const std::string& p) { mkdir(p.c_str(), 0700); }, "swap file PAGE is a directory" + notRegular,
         true},
        {"FIFO", [](const std::string& p) { mkfifo(p.c_str(), 0600); }, "swap file PAGE is a FIFO" + notRegular, true},
        {"device", [](const std::string& p) { (void)!symlink("/dev/null", p.c_str()); },
         "swap file PAGE is a character device" + notRegular, true},
        {"not openable", [](const std::string& p) { (void)!symlink("gone/.tv", p.c_str()); },
         "can't open swap file PAGE, errno = 2\r\n", true},
        // Thread stacks as large as the address space: the signal thread cannot start.
        {"no signal thread", nullptr, "can't start the signal thread: Resource temporarily unavailable\r\n", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        if (c.setup == nullptr && std::getenv("ZO_TEST_EMULATOR") != nullptr) {
            continue;  // the emulator keeps stack limits to itself, so the thread starts there
        }
        ConsoleOnPty run;
        struct rlimit stack {};
        getrlimit(RLIMIT_STACK, &stack);
        struct rlimit huge = stack;
        huge.rlim_cur = static_cast<rlim_t>(3) << (sizeof(void*) == 8 ? 46 : 30);  // beyond the address space
        if (c.setup != nullptr) {
            c.setup(run.Page());
        } else {
            run.WritePage();
            setrlimit(RLIMIT_STACK, &huge);
        }
        const bool started = run.Start();
        setrlimit(RLIMIT_STACK, &stack);
        ASSERT_TRUE(started);

        EXPECT_EQ("exit 1", run.End());
        std::string message = c.message;
        if (message.find("PAGE") != std::string::npos) {
            message.replace(message.find("PAGE"), 4, run.Page());
        }
        EXPECT_EQ(message, run.pty.Screen());
        struct stat info;
        EXPECT_EQ(c.pageLeft, lstat(run.Page().c_str(), &info) == 0);
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
        {SIGTERM, nullptr, "signal 15"}, {SIGHUP, nullptr, "signal 1"}, {SIGQUIT, "\x1c", "signal 3"},
        {SIGPIPE, nullptr, "signal 13"}, {SIGINT, "\x03", "signal 9, terminal raw"},  // Ctrl-C, as it always was
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.signo);
        ConsoleOnPty run;
        run.WritePage();
        ASSERT_TRUE(run.Start());
        ASSERT_TRUE(run.pty.WaitFor("TV $")) << run.pty.Screen();
        ASSERT_TRUE(c.keys != nullptr ? run.pty.Write(c.keys) : kill(run.pty.Pid(), c.signo) == 0);
        EXPECT_EQ(c.end, run.End());
    }
}

// The file is cut to 0 bytes between two commands.
TEST(ConsoleEnds, TruncatedSwapFileEndsWith1InsteadOfSigbus)
{
    ConsoleOnPty run;
    run.WritePage();
    ASSERT_TRUE(run.Start());
    ASSERT_TRUE(run.pty.Write("fmt\n"));
    ASSERT_TRUE(run.pty.WaitFor("Formats@TV $")) << run.pty.Screen();
    ASSERT_EQ(0, truncate(run.Page().c_str(), 0));
    ASSERT_TRUE(run.pty.Write("int 5\n"));
    EXPECT_EQ("exit 1", run.End());
    const std::string message = "swap file " + run.Page() + " was truncated while mapped: the shared page is lost\r\n";
    EXPECT_NE(std::string::npos, run.pty.Screen().find(message)) << run.pty.Screen();
}

}  // namespace
