#pragma once
#include <chrono>
#include <cstddef>
#include <string>

#include "PseudoTerminal.h"

namespace sb::module {

// Ends of a conversation that unwind whatever the module was doing.
struct LineClosed {};      // the opener closed the device
struct StopRequested {};   // SIGTERM, SIGINT or SIGHUP
struct DeviceVanished {};  // a fault switch pulled the plug

// How a module on USB full speed hands its bytes to the host: in bulk
// packets of at most 64 bytes, in frames of 1 ms. A frame has room for 19
// such packets at most; a CDC-ACM device gets about 16 through, since its
// firmware has to refill the endpoint between packets and the host gives
// part of the frame to others: about 1 MB/s, one packet every 62.5 us. A
// reader of the port sees a long reply arrive in these pieces.
inline constexpr std::size_t kUsbPacketBytes = 64;
inline constexpr int kUsbPacketsPerFrame = 16;

// How the module's writes leave it.
enum class Delivery {
    UsbPackets,  // paced as a full-speed bus delivers them
    WholeWrites  // each write at once, as one piece
};

// The module's side of the line: blocking reads and writes with time limits
// over the pseudo-terminal's master, all of them waiting in poll() and all of
// them ending at once when a stop is requested (the stop descriptor turns
// readable) or, while the device is open, when the opener closes it.
class Wire {
public:
    Wire(const PseudoTerminal& pty, int stopFd, Delivery delivery = Delivery::UsbPackets)
        : pty_(pty), stopFd_(stopFd), delivery_(delivery) {}

    // Sleeps until some program opens the device.
    void WaitForOpening();
    // What has come in, as soon as anything has; empty when timeoutMs
    // passed first (a negative limit waits for ever).
    std::string Receive(int timeoutMs);
    // One byte, or -1 when none came in time.
    int ReadByte(int timeoutMs);
    // Bytes taken from the line that the next read is to hand out again.
    void PutBack(const std::string& bytes) {
        received_ = bytes + received_.substr(taken_);
        taken_ = 0;
    }
    // Drops what comes in until the line has been quiet for quietMs.
    void Purge(int quietMs);
    // Returns when the last byte has been handed to the line.
    void Send(const std::string& bytes);
    void Pause(int ms);

private:
    using Clock = std::chrono::steady_clock;

    // Waits for the master (events) or the stop; false on time-out.
    bool WaitFor(short events, int timeoutMs);
    void SleepUntil(Clock::time_point end);
    void Write(const char* bytes, std::size_t size);

    const PseudoTerminal& pty_;
    int stopFd_;
    Delivery delivery_;
    // Bytes taken from the line; the first taken_ of them are handed out.
    // A block of a transfer is read byte by byte: moving the rest forward at
    // each byte would cost the square of a block's length.
    std::string received_;
    std::size_t taken_ = 0;
    // The bus's next free packet slot: a write goes on where the last left off.
    Clock::time_point nextPacket_{};
};

}  // namespace sb::module
