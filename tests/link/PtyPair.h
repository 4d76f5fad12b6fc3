#pragma once
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
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
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::write(master_, bytes.data() + done, bytes.size() - done);
            if (n > 0)
                done += static_cast<std::size_t>(n);
            else
                WaitReady(POLLOUT, 100);
        }
    }

    // What the slave side wrote, until `count` bytes or the time is up.
    std::string Receive(std::size_t count, int timeoutMs = 5000) const {
        std::string got;
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        while (got.size() < count && std::chrono::steady_clock::now() < end) {
            char chunk[4096];
            const ssize_t n = ::read(master_, chunk, sizeof chunk);
            if (n > 0)
                got.append(chunk, static_cast<std::size_t>(n));
            else
                WaitReady(POLLIN, 20);
        }
        return got;
    }

    // The device goes away, as an unplugged module does.
    void Vanish() {
        if (master_ >= 0) ::close(master_);
        master_ = -1;
    }

private:
    void WaitReady(short events, int ms) const {
        pollfd p{master_, events, 0};
        ::poll(&p, 1, ms);
    }

    int master_ = -1;
    std::string slavePath_;
};

}  // namespace sb::test
