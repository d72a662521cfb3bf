// Linked into a second driver: the program's own calls to tcgetattr fail with EIO while the C library's isatty still
// sees a terminal, the one situation in which the editor finds a terminal whose settings it cannot read.
#include <termios.h>

#include <cerrno>

extern "C" int tcgetattr(int, struct termios*)
{
    errno = EIO;
    return -1;
}
