// Line rates that have no name of their own.
#include <asm/termbits.h>
#include <sys/ioctl.h>

#include <cerrno>

#ifndef TCGETS2
#include <asm/ioctls.h>
#endif

namespace orvik::detail {
int SetAnySpeed(int fd, unsigned rate);

int SetAnySpeed(int fd, unsigned rate) {
    struct termios2 settings;
    if (ioctl(fd, TCGETS2, &settings) != 0) return errno;
    settings.c_cflag &= ~static_cast<tcflag_t>(CBAUD | (CBAUD << IBSHIFT));
    settings.c_cflag |= BOTHER;
    settings.c_ispeed = settings.c_ospeed = rate;
    return ioctl(fd, TCSETS2, &settings) == 0 ? 0 : errno;
}
}  // namespace orvik::detail
