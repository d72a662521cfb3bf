// The editor's screen writes; see the header for what each one does.
#include "zo_stream_screen.h"

#include <cstdio>

namespace zo_screen {

namespace {

constexpr int kBackspace = 8;
constexpr int kLineFeed = 10;
constexpr int kCarriageReturn = 13;

bool Put(int byte)
{
    return std::putchar(byte) != EOF;
}

}  // namespace

bool EchoByte(int byte)
{
    // A byte can sit in the stdio buffer and still fail to be written: only
    // a successful flush means the echo reached the terminal.
    const bool written = Put(byte);
    return std::fflush(stdout) == 0 && written;
}

bool EraseLastByte()
{
    const bool written = Put(kBackspace) && Put(' ') && Put(kBackspace);
    std::fflush(stdout);
    return written;
}

bool EndEnteredLine()
{
    return Put(kLineFeed) && Put(kCarriageReturn);
}

void ShowText(const char* text)
{
    std::printf("%s", text);
    std::fflush(stdout);
}

bool EndListing()
{
    if (!Put(kLineFeed)) {
        return false;
    }
    std::fflush(stdout);
    return true;
}

void Flush()
{
    std::fflush(stdout);
}

}  // namespace zo_screen
