// The ways the console ends: a wrong command line, a swap file, process or resources turned against it, or the
// engineer's keys. Each one but the Ctrl-C kill leaves the terminal as the console found it, and the shell sees the
// status or the signal it expects.
#include "console_run.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace {

// What a console says when another one, started by run, uses the page too.
std::string AlsoUsedBy(ConsoleRun& run)
{
    return "swap file " + run.Page() + " is also used by another console (process " +
           std::to_string(run.Pty().Pid()) + "): replies may cross\n";
}

// No core files from the abort and SIGQUIT below.
const int kNoCore = [] { const struct rlimit none = {0, 0}; return setrlimit(RLIMIT_CORE, &none); }();

#ifdef __SANITIZE_ADDRESS__
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

TEST(ConsoleEnds, UsageErrorsAndStartupRefusalsExitAndRestoreTheTerminal)
{
    const std::string tooShort = " bytes long, it needs at least 4096 bytes: start the service first\r\n";
    const std::string notRegular = ", not a regular file\r\n";
    const std::string usage = "\r\nusage: zo_cmd_debug_host DIR (zo_cmd_debug_host --help tells more)\r\n";
    const auto none = [](const std::string&) {};
    const auto fullPage = [](const std::string& p) { std::ofstream(p) << std::string(SHM_SIZE, '\0'); };
    struct Case {
        const char* what;
        void (*setup)(const std::string& page);
        std::string message;  // PAGE stands for the swap file's path
        bool pageLeft;
        int resource = RLIMIT_STACK;  // and a limit the console starts with, 0 for the one it finds
        rlim_t limit = 0;
        std::string end = "exit 1";
        std::vector<std::string> args = {"DIR"};  // DIR stands for the directory
    };
    const Case cases[] = {
        {"no directory", none, "zo_cmd_debug_host: missing DIR" + usage, false, RLIMIT_STACK, 0, "exit 2", {}},
        {"two", none, "zo_cmd_debug_host: one directory expected, got 2 arguments" + usage, false, RLIMIT_STACK, 0,
         "exit 2", {"DIR", "b"}},
        {"missing: created, refused, removed", none, "swap file PAGE is 0" + tooShort, false},
        {"one byte short", [](const std::string& p) { std::ofstream(p) << std::string(4095, 'x'); },
         "swap file PAGE is 4095" + tooShort, true},
        {"dangling link: its target created, refused, removed", [](const std::string& p) {
             (void)!symlink("made.tv", p.c_str());
         }, "swap file PAGE is 0" + tooShort, true},
        {"directory", [](const std::string& p) { mkdir(p.c_str(), 0700); }, "can't open swap file PAGE, errno = 21\r\n",
         true},
        {"socket", [](const std::string& p) {
             struct sockaddr_un at = {AF_UNIX, {}};
             p.copy(at.sun_path, sizeof at.sun_path - 1);
             const int s = socket(AF_UNIX, SOCK_STREAM, 0);
             (void)!bind(s, reinterpret_cast<sockaddr*>(&at), sizeof at);
             close(s);
         }, "can't open swap file PAGE, errno = 6\r\n", true},
        {"FIFO", [](const std::string& p) { mkfifo(p.c_str(), 0600); }, "swap file PAGE is a FIFO" + notRegular, true},
        {"device", [](const std::string& p) { (void)!symlink("/dev/null", p.c_str()); },
         "swap file PAGE is a character device" + notRegular, true},
        {"not openable", [](const std::string& p) { (void)!symlink("gone/.tv", p.c_str()); },
         "can't open swap file PAGE, errno = 2\r\n", true},
        // Thread stacks as large as the address space: the signal thread cannot start.
        {"no signal thread", fullPage, "can't start the signal thread: Resource temporarily unavailable\r\n", true,
         RLIMIT_STACK, static_cast<rlim_t>(3) << (sizeof(void*) == 8 ? 46 : 30)},
        // 100,000 commands need some 30 MB: std::bad_alloc, uncaught.
        {"catalogue beyond the memory", [](const std::string& p) {
             std::ofstream(p) << std::string(SHM_SIZE, '\0');
             std::ofstream cmds(p.substr(0, p.size() - 3) + "cmds.conf");
             for (int i = 0; i < 100000; ++i) {
                 cmds << "[c" << i << "]\ncommand = c" << i << "\nbelong module = Tuner\ninstruction = " << i << "\n";
             }
         }, "terminate called after throwing an instance of 'std::bad_alloc'\r\n  what():  std::bad_alloc\r\n", true,
         RLIMIT_AS, 24 << 20, "signal 6"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        // The emulator keeps limits to itself; the sanitizers and valgrind need more address space than this.
        if (c.limit != 0 && (std::getenv("ZO_TEST_EMULATOR") != nullptr || (kSanitized && c.resource == RLIMIT_AS))) {
            continue;
        }
        ConsoleRun run;
        c.setup(run.Page());
        struct rlimit found {};
        getrlimit(c.resource, &found);
        const struct rlimit limited = {c.limit != 0 ? c.limit : found.rlim_cur, found.rlim_max};
        setrlimit(c.resource, &limited);
        std::vector<std::string> args = c.args;
        std::replace(args.begin(), args.end(), std::string("DIR"), run.Dir().Path());
        const bool started = run.StartProgram(args);
        setrlimit(c.resource, &found);
        ASSERT_TRUE(started);

        EXPECT_EQ(c.end, run.Exit());
        std::string message = c.message;
        const size_t page = message.find("PAGE");
        EXPECT_EQ(page == std::string::npos ? message : message.replace(page, 4, run.Page()), run.Pty().Screen());
        struct stat info;
        EXPECT_EQ(c.pageLeft, lstat(run.Page().c_str(), &info) == 0);
        EXPECT_NE(0, lstat(run.Dir().File("made.tv").c_str(), &info));  // the console removed what it created
    }
}

TEST(ConsoleEnds, EndSignalsRestoreTheTerminalAndEndByTheSameSignal)
{
    // keys: typed instead of the signal sent when set, after it when the signal is ignored from the start (nohup).
    struct Case { int signo; const char* keys; std::string end; bool ignored = false; };
    const Case cases[] = {
        {SIGTERM, nullptr, "signal 15"}, {SIGHUP, nullptr, "signal 1"}, {SIGQUIT, "\x1c", "signal 3"},
        {SIGPIPE, nullptr, "signal 13"}, {SIGHUP, "q\n", "exit 0", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.signo);
        ConsoleRun run;
        run.WritePage();
        ASSERT_EQ("", run.StartConsole({nullptr, "", /*hangUpIgnored=*/c.ignored})) << run.Pty().Screen();
        ASSERT_TRUE((c.keys != nullptr && !c.ignored) || kill(run.Pty().Pid(), c.signo) == 0);
        if (c.ignored) {  // still reading, in raw mode
            EXPECT_EQ("\n", run.Type("\n"));
            EXPECT_EQ("raw", run.TerminalMode());
        }
        ASSERT_TRUE(c.keys == nullptr || run.Pty().Write(c.keys));
        EXPECT_EQ(c.end, run.Exit());
    }
}

// Nothing arbitrates between two consoles on one page. The second one says so once and runs like the first; a
// console killed by Ctrl-C's SIGKILL leaves nothing behind that warns the next one.
TEST(ConsoleEnds, SecondConsoleOnThePageNamesTheFirstOnceAndRuns)
{
    ConsoleRun first, second(false), third(false);
    ASSERT_TRUE(first.StartSim());
    ASSERT_EQ("", first.StartConsole());
    ASSERT_TRUE(second.StartProgram({first.Dir().Path()}));
    EXPECT_EQ(AlsoUsedBy(first), second.Type(""));
    EXPECT_EQ("fmt\nFormats@", second.Type("fmt\n"));
    EXPECT_NE(std::string::npos, second.Type("int 5\n").find("int:42")) << second.Pty().Screen();
    EXPECT_EQ("fmt\nFormats@", first.Type("fmt\n"));
    EXPECT_NE(std::string::npos, first.Type("int 5\n").find("int:42")) << first.Pty().Screen();
    ASSERT_TRUE(second.Pty().Write("q\nq\n"));
    EXPECT_EQ("exit 0", second.Exit());
    ASSERT_EQ(0, kill(first.Pty().Pid(), SIGKILL));
    EXPECT_EQ("signal 9, terminal raw", first.Exit());
    ASSERT_TRUE(third.StartProgram({first.Dir().Path()}));
    EXPECT_EQ("", third.Type(""));
}

// Started with some of descriptors 0, 1 and 2 closed (beside another console, or on a page too short), a console
// writes only where its open ones lead: the prompt to standard output, the other console's name once to standard
// error, never anything into the swap file.
TEST(ConsoleEnds, ClosedStandardDescriptorsNeverLeadIntoTheSwapFile)
{
    // What the console writes to its standard output and error; FIRST stands for the other console's warning.
    const struct { const char* what; bool closed[3]; size_t pageBytes; std::string out, err; int status; } cases[] = {
        {"all three", {true, true, true}, SHM_SIZE, "", "", 0},
        {"input and error", {true, false, true}, SHM_SIZE, "TV $", "", 0},
        {"output", {false, true, false}, SHM_SIZE, "", "FIRST", 0},
        {"output, page too short", {false, true, false}, SHM_SIZE - 1, "", "", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ConsoleRun first;
        const std::string page(c.pageBytes, '\0');
        first.Dir().Write(kShmSwapFileName, page);
        ASSERT_TRUE(c.pageBytes < SHM_SIZE || first.StartConsole() == "") << first.Pty().Screen();
        const std::string out = first.Dir().File("out"), err = first.Dir().File("err");
        const int status = RunChild({ZO_CMD_DEBUG_HOST_PATH, first.Dir().Path()},  // input at its end at once
                                    {c.closed[0] ? "" : "/dev/null", c.closed[1] ? "" : out, c.closed[2] ? "" : err});
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == c.status) << status;
        EXPECT_EQ(c.out, ReadFile(out));
        EXPECT_EQ(c.err == "FIRST" ? AlsoUsedBy(first) : c.err, ReadFile(err));
        EXPECT_EQ(page, ReadFile(first.Page()));
    }
}

// Ctrl-C typed on the terminal, also while a request waits for its reply: the console's own thread ends it with
// SIGKILL. (Ctrl-Z and fg, under a shell, are the job-control tests'.)
TEST(ConsoleEnds, CtrlCKillsWithSignal9AlsoDuringAWait)
{
    ConsoleRun run;
    ASSERT_TRUE(run.StartSim({"--no-reply"}));
    ASSERT_EQ("", run.StartConsole());
    ASSERT_TRUE(run.Pty().Write("tun\nscan\n"));
    ASSERT_EQ("scan", run.SimLine());  // a request the service never answers
    ASSERT_TRUE(run.Pty().Write("\x03"));
    EXPECT_EQ("signal 9, terminal raw", run.Exit());
}

// The page lost under the mapping between two commands: the file cut to 0 bytes, or a sparse page of full size on a
// full file system (a small one, mounted in a namespace of the console's own, filled up before the console starts;
// the simulator, on the service library, cannot reserve the page and says so).
TEST(ConsoleEnds, PageLostUnderTheMappingEndsWith1InsteadOfSigbus)
{
    if (std::getenv("ZO_TEST_EMULATOR") != nullptr) {
        GTEST_SKIP() << "qemu-arm dies of the bus error itself instead of passing it to the program";
    }
    for (const bool full : {false, true}) {
        SCOPED_TRACE(full ? "file system full" : "truncated");
        if (full && system("unshare -rm true >/dev/null 2>&1") != 0) {
            GTEST_SKIP() << "needs the console run in a mount namespace of its own";
        }
        ConsoleRun run;
        const std::string fs = full ? run.Dir().File("fs") : run.Dir().Path(), page = ShmSwapFilePath(fs);
        std::vector<std::string> messages{"swap file " + page + " was truncated while mapped: the shared page is lost"};
        if (full) {
            messages = {"can't reserve 4096 bytes for " + page + ": No space left on device\r\n",
                        "swap file " + page + " could not back the shared page (is its file system"};
            const std::string script = "mkdir " + fs + " && mount -t tmpfs -o size=16k zo " + fs + " && cp " +
                                       run.Dir().Path() + "/*.conf " + fs + " && truncate -s 4096 " + page +
                                       " && { cat /dev/zero >" + fs + "/fill 2>/dev/null; " + ZO_SERVICE_SIM_PATH +
                                       " " + fs + "; exec " + ZO_CMD_DEBUG_HOST_PATH + " " + fs + "; }";
            ASSERT_TRUE(run.Pty().Start("unshare", {"-rm", "sh", "-c", script}));
        } else {
            run.WritePage();
            ASSERT_TRUE(run.StartProgram({fs}));
        }
        ASSERT_TRUE(run.Pty().Write("fmt\n") && run.Pty().WaitFor("Formats@TV $")) << run.Pty().Screen();
        ASSERT_TRUE(full || truncate(page.c_str(), 0) == 0);
        ASSERT_TRUE(run.Pty().Write("int 5\n"));
        // Under unshare the terminal's settings at the start are unknown.
        EXPECT_EQ("exit 1", run.Exit().substr(0, full ? 6 : std::string::npos));
        for (const std::string& message : messages) {
            EXPECT_NE(std::string::npos, run.Pty().Screen().find(message)) << run.Pty().Screen();
        }
    }
}

}  // namespace
