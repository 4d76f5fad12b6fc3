#pragma once
#include <poll.h>
#include <pty.h>
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
// opens the slave by its path, and the test sees its line settings and bytes
// from the master side.
struct PtyPair {
    PtyPair() {
        int slave = -1;
        char name[128] = {};
        ::openpty(&master, &slave, name, nullptr, nullptr);
        ::close(slave);
        slavePath = name;
    }
    ~PtyPair() { ::close(master); }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;

    int master = -1;
    std::string slavePath;
};

}  // namespace sb::test
