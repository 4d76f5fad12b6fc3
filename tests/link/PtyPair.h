#pragma once
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

// What the tests on pseudo-terminals share: whole writes, waits that look
// every few milliseconds, and the pair whose master side the test holds.
namespace sb::test {

using Clock = std::chrono::steady_clock;

inline long MsSince(Clock::time_point start) {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

// Waits up to timeoutMs, looking every 5 ms, for the condition to hold.
template <typename Condition>
bool Eventually(Condition condition, long timeoutMs = 5000) {
    for (const auto start = Clock::now(); !condition(); std::this_thread::sleep_for(std::chrono::milliseconds(5)))
        if (MsSince(start) > timeoutMs) return false;
    return true;
}

inline void WaitFor(int fd, short events, int ms) {
    pollfd p{fd, events, 0};
    ::poll(&p, 1, ms);
}

// Writes all of bytes to a non-blocking descriptor.
inline void WriteAll(int fd, const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n > 0) done += static_cast<std::size_t>(n);
        if (n <= 0) WaitFor(fd, POLLOUT, 50);
    }
}

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

    int MasterFd() const { return master_; }
    const std::string& SlavePath() const { return slavePath_; }

    termios SlaveSettings() const {
        termios tio{};
        ::tcgetattr(master_, &tio);
        return tio;
    }

    void Send(const std::string& bytes) const { WriteAll(master_, bytes); }

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
