#pragma once
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include "../link/PtyPair.h"

namespace sb::test {

// A pseudo-terminal for the program under test, whose far end is a socket
// for a peer program: a thread passes every byte between the master side and
// the socket. A peer on a terminal of its own would flush its line as it
// exits (lrzsz does), and on a pseudo-terminal that flush throws away its
// last answer before the other side has read it; a socket keeps it.
class PtySocketCable {
public:
    PtySocketCable() {
        int ends[2] = {-1, -1};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
        near_ = ends[0];
        far_ = ends[1];
        ::fcntl(near_, F_SETFL, ::fcntl(near_, F_GETFL) | O_NONBLOCK);
        thread_ = std::thread([this] { Serve(); });
    }
    ~PtySocketCable() {
        stop_ = true;
        if (thread_.joinable()) thread_.join();
        if (near_ >= 0) ::close(near_);
        if (far_ >= 0) ::close(far_);
    }
    PtySocketCable(const PtySocketCable&) = delete;
    PtySocketCable& operator=(const PtySocketCable&) = delete;

    bool Ok() const { return pty_.Ok() && near_ >= 0; }
    // The device the program under test opens.
    const std::string& DevicePath() const { return pty_.SlavePath(); }
    // The peer's end, for its standard input and output. The cable holds it
    // open too, so a peer that exits never makes the thread's writes fail.
    int PeerFd() const { return far_; }

private:
    void Serve() {
        while (!stop_) {
            pollfd ends[2] = {{pty_.MasterFd(), POLLIN, 0}, {near_, POLLIN, 0}};
            ::poll(ends, 2, 5);
            const bool moved = Pass(pty_.MasterFd(), near_) | Pass(near_, pty_.MasterFd());
            // A device that nobody holds open reports a hang-up at every poll.
            if (!moved && (ends[0].revents & POLLHUP)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    // What one end wrote, to the other. Bytes that the other end does not
    // take before the cable is taken down are lost, as on a wire.
    bool Pass(int from, int to) const {
        char chunk[4096];
        const ssize_t got = ::read(from, chunk, sizeof chunk);
        if (got <= 0) return false;
        for (ssize_t done = 0; done < got && !stop_;) {
            const ssize_t written = ::write(to, chunk + done, static_cast<std::size_t>(got - done));
            if (written > 0) {
                done += written;
            } else if (written < 0 && errno != EAGAIN && errno != EINTR) {
                break;
            } else {
                pollfd writable{to, POLLOUT, 0};
                ::poll(&writable, 1, 5);
            }
        }
        return true;
    }

    PtyPair pty_;
    int near_ = -1;
    int far_ = -1;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

}  // namespace sb::test
