#pragma once
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <string>

namespace sb::test {

// A pseudo-terminal whose master side the test holds: the device under test
// opens the slave by its path, and the test sees the slave's line settings
// and its bytes from the master side.
class PtyPair {
public:
    PtyPair() {
        int slave = -1;
        char name[128] = {};
        if (::openpty(&master_, &slave, name, nullptr, nullptr) != 0) return;
        ::close(slave);
        slavePath_ = name;
        ::fcntl(master_, F_SETFL, ::fcntl(master_, F_GETFL) | O_NONBLOCK);
        // A program the test starts must not keep the device alive.
        ::fcntl(master_, F_SETFD, FD_CLOEXEC);
    }
    ~PtyPair() { Vanish(); }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;

    bool Ok() const { return master_ >= 0; }
    int MasterFd() const { return master_; }
    const std::string& SlavePath() const { return slavePath_; }

    termios SlaveSettings() const {
        termios tio{};
        ::tcgetattr(master_, &tio);
        return tio;
    }

    void Send(const std::string& bytes) const {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t n = ::write(master_, bytes.data() + done, bytes.size() - done);
            if (n > 0) done += static_cast<std::size_t>(n);
            pollfd writable{master_, POLLOUT, 0};
            if (n <= 0) ::poll(&writable, 1, 100);
        }
    }

    // The device goes away, as an unplugged module does.
    void Vanish() {
        if (master_ >= 0) ::close(master_);
        master_ = -1;
    }

private:
    int master_ = -1;
    std::string slavePath_;
};

}  // namespace sb::test
