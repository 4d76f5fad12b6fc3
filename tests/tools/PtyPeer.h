#pragma once
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "../link/PtyPair.h"

namespace sb::test {

// The far end of a pseudo-terminal, played by a thread of the test: it
// answers each line that ends in CR with the pieces a script gives, and
// notes every opening of the slave with the speed it was set to and what
// was written during it. It stands in for a module where
// a test needs a module that misbehaves in one exact way.
class PtyPeer {
public:
    struct Piece {
        int delayMs;
        std::string bytes;
    };
    // Gets the line with its CR (a leading LF dropped); may close the line
    // for good by calling Vanish().
    using Script = std::function<std::vector<Piece>(const std::string& line)>;

    struct Opening {
        speed_t speed = B0;
        std::string received;
    };

    explicit PtyPeer(Script script) : script_(std::move(script)), thread_([this] { Serve(); }) {}
    ~PtyPeer() {
        stop_ = true;
        thread_.join();
    }
    PtyPeer(const PtyPeer&) = delete;
    PtyPeer& operator=(const PtyPeer&) = delete;

    const std::string& SlavePath() const { return pty_.SlavePath(); }
    void Vanish() { vanish_ = true; }

    // The openings that have ended; waits up to 5 s for `expected` of them.
    std::vector<Opening> Openings(std::size_t expected = 1) {
        Eventually([&] {
            std::lock_guard<std::mutex> lock(mutex_);
            return openings_.size() >= expected;
        });
        std::lock_guard<std::mutex> lock(mutex_);
        return openings_;
    }

private:
    void Serve() {
        bool open = false;
        Opening current;
        std::string pending;
        while (!stop_ && !vanish_) {
            pollfd p{pty_.MasterFd(), POLLIN, 0};
            ::poll(&p, 1, 5);
            const bool hungUp = (p.revents & POLLHUP) != 0;
            if (open && hungUp) {
                std::lock_guard<std::mutex> lock(mutex_);
                openings_.push_back(std::exchange(current, Opening{}));
            }
            open = !hungUp;
            if (!open) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                continue;
            }
            const termios tio = pty_.SlaveSettings();
            current.speed = ::cfgetospeed(&tio);
            char chunk[4096];
            const ssize_t n = ::read(pty_.MasterFd(), chunk, sizeof chunk);
            if (n <= 0) continue;
            current.received.append(chunk, static_cast<std::size_t>(n));
            pending.append(chunk, static_cast<std::size_t>(n));
            for (auto cr = pending.find('\r'); cr != std::string::npos && !vanish_; cr = pending.find('\r')) {
                const std::size_t start = pending[0] == '\n' ? 1 : 0;
                const std::string line = pending.substr(start, cr + 1 - start);
                pending.erase(0, cr + 1);
                for (const Piece& piece : script_(line)) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(piece.delayMs));
                    pty_.Send(piece.bytes);
                }
            }
        }
        if (vanish_) pty_.Vanish();
    }

    Script script_;
    PtyPair pty_;
    std::atomic<bool> stop_{false};
    std::atomic<bool> vanish_{false};
    std::mutex mutex_;
    std::vector<Opening> openings_;
    std::thread thread_;
};

}  // namespace sb::test
