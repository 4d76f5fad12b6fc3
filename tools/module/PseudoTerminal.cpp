#include "PseudoTerminal.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace sb::module {
namespace {

[[noreturn]] void Fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

// Raw from the start: no echo by the line discipline, no CR/LF translation,
// 8 bits, no parity; the bytes of the module's protocol pass unchanged even
// for an opener that sets nothing. The speed is a common default, not 300
// baud, so that only an opener that asks for 300 baud looks like the switch
// to the boot loader.
void MakeRaw(int slave) {
    termios tio{};
    if (::tcgetattr(slave, &tio) != 0) Fail("tcgetattr on the new pseudo-terminal");
    ::cfmakeraw(&tio);
    tio.c_cflag |= CLOCAL | CREAD;
    tio.c_cc[VMIN] = 1;
    tio.c_cc[VTIME] = 0;
    ::cfsetispeed(&tio, B9600);
    ::cfsetospeed(&tio, B9600);
    if (::tcsetattr(slave, TCSANOW, &tio) != 0) Fail("tcsetattr on the new pseudo-terminal");
}

}  // namespace

PseudoTerminal::PseudoTerminal() {
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0) Fail("posix_openpt");
    try {
        if (::grantpt(master_) != 0 || ::unlockpt(master_) != 0) Fail("unlockpt");
        char name[128] = {};
        if (::ptsname_r(master_, name, sizeof name) != 0) Fail("ptsname_r");
        slavePath_ = name;

        const int slave = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (slave < 0) Fail("open " + slavePath_);
        MakeRaw(slave);
        ::close(slave);

        watch_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        if (watch_ < 0) Fail("inotify_init1");
        if (::inotify_add_watch(watch_, name, IN_OPEN | IN_CLOSE) < 0) Fail("inotify_add_watch " + slavePath_);
    } catch (...) {
        if (watch_ >= 0) ::close(watch_);
        ::close(master_);
        throw;
    }
}

PseudoTerminal::~PseudoTerminal() {
    ::close(watch_);
    ::close(master_);
}

bool PseudoTerminal::SlaveOpen() const {
    pollfd p{master_, 0, 0};
    ::poll(&p, 1, 0);
    return (p.revents & POLLHUP) == 0;
}

speed_t PseudoTerminal::SlaveSpeed() const {
    termios tio{};
    if (::tcgetattr(master_, &tio) != 0) return B0;
    return ::cfgetospeed(&tio);
}

void PseudoTerminal::DrainOpeningWatch() const {
    char events[4096];
    while (::read(watch_, events, sizeof events) > 0) {
    }
}

}  // namespace sb::module
