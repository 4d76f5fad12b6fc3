#include "Wire.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace sb::module {
namespace {

using Clock = std::chrono::steady_clock;

int MsLeft(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

Clock::time_point Deadline(int timeoutMs) { return Clock::now() + std::chrono::milliseconds(timeoutMs); }

}  // namespace

void Wire::WaitForOpening() {
    for (;;) {
        pty_.DrainOpeningWatch();
        // Looked at behind the drain: an opening from now on leaves an event.
        if (pty_.SlaveOpen()) return;
        pollfd fds[2] = {{stopFd_, POLLIN, 0}, {pty_.OpeningWatchFd(), POLLIN, 0}};
        if (::poll(fds, 2, -1) < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "poll");
        if (fds[0].revents) throw StopRequested{};
    }
}

bool Wire::WaitFor(short events, int timeoutMs) {
    pollfd fds[2] = {{stopFd_, POLLIN, 0}, {pty_.MasterFd(), events, 0}};
    const int ready = ::poll(fds, 2, timeoutMs);
    if (ready < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "poll");
    if (fds[0].revents) throw StopRequested{};
    // Input that came before the closing is read first; the hang-up counts
    // only once it is all taken.
    if ((fds[1].revents & POLLHUP) && !(fds[1].revents & POLLIN)) throw LineClosed{};
    return ready > 0;
}

std::string Wire::Receive(int timeoutMs) {
    if (taken_ < received_.size()) {
        std::string rest = received_.substr(taken_);
        received_.clear();
        taken_ = 0;
        return rest;
    }
    const auto end = Deadline(timeoutMs);
    for (;;) {
        if (!WaitFor(POLLIN, timeoutMs < 0 ? -1 : MsLeft(end))) {
            if (timeoutMs >= 0 && MsLeft(end) == 0) return {};
            continue;
        }
        char chunk[4096];
        const ssize_t n = ::read(pty_.MasterFd(), chunk, sizeof chunk);
        if (n > 0) return std::string(chunk, static_cast<size_t>(n));
        if (n < 0 && errno == EIO) throw LineClosed{};
    }
}

int Wire::ReadByte(int timeoutMs) {
    if (taken_ == received_.size()) {
        received_ = Receive(timeoutMs);
        taken_ = 0;
    }
    if (received_.empty()) return -1;
    return static_cast<unsigned char>(received_[taken_++]);
}

void Wire::Purge(int quietMs) {
    received_.clear();
    taken_ = 0;
    while (!Receive(quietMs).empty()) {
    }
}

void Wire::Send(const std::string& bytes) {
    if (delivery_ == Delivery::WholeWrites) return Write(bytes.data(), bytes.size());
    constexpr auto kPacketTime = std::chrono::microseconds(1000) / kUsbPacketsPerFrame;
    // An idle bus takes the first packet at once.
    auto slot = std::max(Clock::now(), nextPacket_);
    for (size_t at = 0; at < bytes.size(); at += kUsbPacketBytes, slot += kPacketTime) {
        // A late wake sends its packet at once and leaves the later slots where they are.
        SleepUntil(slot);
        Write(bytes.data() + at, std::min(kUsbPacketBytes, bytes.size() - at));
    }
    nextPacket_ = slot;
}

void Wire::Write(const char* bytes, size_t size) {
    size_t done = 0;
    while (done < size) {
        const ssize_t n = ::write(pty_.MasterFd(), bytes + done, size - done);
        if (n > 0) {
            done += static_cast<size_t>(n);
            continue;
        }
        if (n < 0 && errno != EAGAIN && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "write to " + pty_.SlavePath());
        // The opener has not read what is queued yet: wait for room.
        WaitFor(POLLOUT, -1);
    }
}

void Wire::Pause(int ms) { SleepUntil(Deadline(ms)); }

void Wire::SleepUntil(Clock::time_point end) {
    for (auto left = end - Clock::now(); left > Clock::duration::zero(); left = end - Clock::now()) {
        const auto s = std::chrono::duration_cast<std::chrono::seconds>(left);
        const timespec timeout{static_cast<time_t>(s.count()),
                               static_cast<long>(std::chrono::nanoseconds(left - s).count())};
        pollfd stop{stopFd_, POLLIN, 0};
        ::ppoll(&stop, 1, &timeout, nullptr);
        if (stop.revents) throw StopRequested{};
    }
}

}  // namespace sb::module
