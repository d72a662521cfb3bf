// The line editor on arbitrary key streams, with completion lists registered.
//
// Input: the bytes typed, read by a fresh ZoStream through standard input (a stream on the input's bytes here, over a
// descriptor 0 that is no terminal), with Gets called until the input ends.
//
// Checked besides memory safety: every result of Gets is what a plain model of the key table predicts (the line, "TAB"
// after a listing, null for a line too long and at the end of input), so keys, history recall and completion are
// followed byte for byte.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

#include "fuzz_support.h"
#include "zo_stream.h"

namespace {

// Groups as the console registers them before a prompt: module words, then the selected module's commands; names share
// prefixes, one name is in two groups, one group fills a listing line and one wraps to a second, and one is empty.
// Every Tab scans them all, so they are no longer than that.
const char* kModWords[] = {"chan", "channel", "pic", "picture", "snd", "sys", "system", "vid", "video", "vi"};
const char* kVideoCmds[] = {"view",  "vi",    "set",      "set_mode", "set mode", "get",
                            "reset", "scan", "get_info", "set_info", "get_state"};
const char* kNoCmds[] = {"never"};

// The bytes that standard input delivers, from at on.
struct Keys {
    const uint8_t* data;
    size_t size;
    size_t at;
};
Keys g_keys = {nullptr, 0, 0};

struct Group {
    const char* name;
    const char** list;
    unsigned int count;
};
std::vector<Group> g_groups;

// The editor as the key table describes it, without a screen.
class Model {
public:
    Model(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    // What Gets should return next: the line, "TAB" after a listing, or nothing.
    std::optional<std::string> Next()
    {
        while (m_at < m_size) {
            const uint8_t byte = m_data[m_at++];
            switch (byte) {
            case 27: case '[': case 'C': case 'D':
                break;
            case 8:
                if (!m_line.empty()) {
                    m_line.pop_back();
                }
                break;
            case 9:
                if (Complete()) {
                    return "TAB";
                }
                break;
            case 10:
                return Enter();
            case 'A':
                if (!m_history.empty() && m_pos != 0) {
                    m_pos = (m_pos == kEnd ? m_history.size() : m_pos) - 1;
                    m_line = m_history[m_pos];
                }
                break;
            case 'B':
                m_pos = m_pos == kEnd || m_pos + 1 >= m_history.size() ? kEnd : m_pos + 1;
                m_line = m_pos == kEnd ? m_line : m_history[m_pos];
                break;
            default:
                m_line.push_back(static_cast<char>(byte));
                break;
            }
        }
        return std::nullopt;
    }

    bool AtEnd() const { return m_at == m_size; }

private:
    // strncmp(name, line, line's length) == 0, without the sanitizers' costly strncmp; uninstrumented, as coverage of
    // the model guides nothing.
    __attribute__((no_sanitize("coverage"))) static bool Begins(const char* name, const std::string& line)
    {
        size_t i = 0;
        while (i < line.size() && name[i] == line[i] && name[i] != '\0') {
            ++i;
        }
        return i == line.size() || name[i] == line[i];
    }

    // True when several names matched and were listed.
    bool Complete()
    {
        const char* only = nullptr;
        unsigned int matches = 0;
        for (const Group& group : g_groups) {
            for (unsigned int i = 0; i < group.count; ++i) {
                if (Begins(group.list[i], m_line)) {
                    only = group.list[i];
                    ++matches;
                }
            }
        }
        if (matches == 1) {
            m_line = only;
        }
        return matches > 1;
    }

    std::optional<std::string> Enter()
    {
        if (m_history.size() >= ZoStream::kMaxHistory) {
            m_history.erase(m_history.begin());
            if (m_pos != kEnd && m_pos != 0) {
                --m_pos;
            }
        }
        if (!m_line.empty()) {
            m_history.push_back(m_line);
        }
        std::optional<std::string> entered;
        if (m_line.size() < ZoStream::kLineBufferSize) {
            entered = m_line;  // a copy: the line keeps its room for the next one
            m_line.clear();
            m_pos = kEnd;
        }
        return entered;
    }

    const uint8_t* m_data;
    size_t m_size;
    size_t m_at = 0;
    std::string m_line;
    std::vector<std::string> m_history;
    // The entry last recalled, or kEnd; it stays put when an entry is added.
    static constexpr size_t kEnd = SIZE_MAX;
    size_t m_pos = kEnd;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    QuietProcess();
    g_groups = {{" all mods ", kModWords, sizeof kModWords / sizeof *kModWords},
                {"video cmds", kVideoCmds, sizeof kVideoCmds / sizeof *kVideoCmds},
                {"empty cmds", kNoCmds, 0}};
    // Descriptor 0 is no terminal, so Init leaves every setting alone; the keys come from memory through one stream,
    // made here and used by every input: no system call and no allocation per input.
    const int null = open("/dev/null", O_RDONLY);
    FUZZ_CHECK(null >= 0 && dup2(null, STDIN_FILENO) == STDIN_FILENO);
    close(null);
    cookie_io_functions_t source = {};
    source.read = [](void*, char* buffer, size_t size) -> ssize_t {
        const size_t n = std::min(size, g_keys.size - g_keys.at);
        if (n != 0) {
            std::memcpy(buffer, g_keys.data + g_keys.at, n);
        }
        g_keys.at += n;
        return static_cast<ssize_t>(n);
    };
    FILE* const keys = fopencookie(nullptr, "r", source);
    FUZZ_CHECK(keys != nullptr);
    __fsetlocking(keys, FSETLOCKING_BYCALLER);  // one thread reads it: no lock per getchar
    stdin = keys;  // glibc lets stdin be replaced
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    g_keys = {data, size, 0};
    clearerr(stdin);  // the last input was read to its end: nothing is left in the buffer

    ZoStream stream;
    stream.Init();
    for (const Group& group : g_groups) {
        stream.RegistTab(group.name, group.count, group.list, &group == &g_groups[0]);
    }
    Model model(data, size);
    for (;;) {
        const char* got = stream.Gets();
        const std::optional<std::string> want = model.Next();
        // Bytes after a NUL are not copied into the returned line.
        FUZZ_CHECK(want ? got != nullptr && std::strcmp(got, want->c_str()) == 0 : got == nullptr);
        if (got == nullptr && model.AtEnd()) {
            FUZZ_CHECK(std::getchar() == EOF);
            return 0;
        }
    }
}
