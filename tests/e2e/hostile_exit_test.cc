// The ways the console ends: a wrong command line, a swap file, process or
// resources turned against it, or the engineer's keys. Each one but the Ctrl-C
// kill leaves the terminal as the console found it, and the shell sees the
// status or the signal it expects.
#include "console_run.h"

#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace {

TEST(ConsoleEnds, MissingOrExtraArgumentPrintsUsageAndExits2)
{
    for (const std::vector<std::string>& args : {std::vector<std::string>{}, std::vector<std::string>{"a", "b"}}) {
        ConsoleRun run;
        ASSERT_TRUE(run.StartProgram(args));
        EXPECT_EQ("exit 2", run.Exit());
        EXPECT_EQ(0u, run.Pty().Screen().find("usage: ")) << run.Pty().Screen();
    }
}

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
        {"directory", [](const std::string& p) { mkdir(p.c_str(), 0700); },
         "swap file PAGE is a directory" + notRegular, true},
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
        ConsoleRun run;
        struct rlimit stack {};
        getrlimit(RLIMIT_STACK, &stack);
        struct rlimit huge = stack;
        huge.rlim_cur = static_cast<rlim_t>(3) << (sizeof(void*) == 8 ? 46 : 30);  // beyond the address space
        if (c.setup != nullptr) {
            c.setup(run.Dir().File(".tv"));
        } else {
            run.WritePage();
            setrlimit(RLIMIT_STACK, &huge);
        }
        const bool started = run.StartProgram({run.Dir().Path()});
        setrlimit(RLIMIT_STACK, &stack);
        ASSERT_TRUE(started);

        EXPECT_EQ("exit 1", run.Exit());
        std::string message = c.message;
        if (message.find("PAGE") != std::string::npos) {
            message.replace(message.find("PAGE"), 4, run.Dir().File(".tv"));
        }
        EXPECT_EQ(message, run.Pty().Screen());
        struct stat info;
        EXPECT_EQ(c.pageLeft, lstat(run.Dir().File(".tv").c_str(), &info) == 0);
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
        {SIGPIPE, nullptr, "signal 13"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.signo);
        ConsoleRun run;
        run.WritePage();
        ASSERT_TRUE(run.StartProgram({run.Dir().Path()}));
        ASSERT_TRUE(run.Pty().WaitFor("TV $")) << run.Pty().Screen();
        ASSERT_TRUE(c.keys != nullptr ? run.Pty().Write(c.keys) : kill(run.Pty().Pid(), c.signo) == 0);
        EXPECT_EQ(c.end, run.Exit());
    }
}

// Ctrl-Z and Ctrl-C typed on the terminal: the terminal raises the signals, the console's own thread acts on them.
TEST(ConsoleEnds, CtrlZStopsAndFgResumesCtrlCKillsWithSignal9AlsoDuringAWait)
{
    ConsoleRun run;
    ASSERT_TRUE(run.StartSim({"--no-reply"}));
    ASSERT_EQ("", run.StartConsole());
    ASSERT_TRUE(run.Pty().Write("\x1a"));
    siginfo_t info{};
    for (int ms = 0; ms < 5000 && info.si_code != CLD_STOPPED && poll(nullptr, 0, 2) == 0; ms += 2) {
        waitid(P_PID, static_cast<id_t>(run.Pty().Pid()), &info, WSTOPPED | WNOHANG | WNOWAIT);
    }
    ASSERT_EQ(CLD_STOPPED, info.si_code);
    EXPECT_EQ("cooked", run.TerminalMode());  // stopped, it leaves the terminal as it found it
    ASSERT_EQ(0, kill(run.Pty().Pid(), SIGCONT));
    // Raw again at the signal thread's next look (keys typed before that would be echoed twice); it reads and
    // answers again, although it now sends itself SIGCONT every 10 ms.
    ASSERT_TRUE(WaitFor([&] { return run.TerminalMode() == "raw"; })) << run.TerminalMode();
    EXPECT_EQ("tun\nTuner@", run.Type("tun\n"));
    ASSERT_TRUE(run.Pty().Write("scan\n"));
    ASSERT_EQ("scan", run.SimLine());  // a request the service never answers
    ASSERT_TRUE(run.Pty().Write("\x03"));
    EXPECT_EQ("signal 9, terminal raw", run.Exit());
}

// The file is cut to 0 bytes between two commands.
TEST(ConsoleEnds, TruncatedSwapFileEndsWith1InsteadOfSigbus)
{
    if (std::getenv("ZO_TEST_EMULATOR") != nullptr) {
        GTEST_SKIP() << "qemu-arm dies of the bus error itself instead of passing it to the program";
    }
    ConsoleRun run;
    run.WritePage();
    ASSERT_TRUE(run.StartProgram({run.Dir().Path()}));
    ASSERT_TRUE(run.Pty().Write("fmt\n"));
    ASSERT_TRUE(run.Pty().WaitFor("Formats@TV $")) << run.Pty().Screen();
    ASSERT_EQ(0, truncate(run.Dir().File(".tv").c_str(), 0));
    ASSERT_TRUE(run.Pty().Write("int 5\n"));
    EXPECT_EQ("exit 1", run.Exit());
    const std::string message =
        "swap file " + run.Dir().File(".tv") + " was truncated while mapped: the shared page is lost\r\n";
    EXPECT_NE(std::string::npos, run.Pty().Screen().find(message)) << run.Pty().Screen();
}

}  // namespace
