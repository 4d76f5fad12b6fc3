#pragma once
#include <string>

#include "PseudoTerminal.h"

namespace sb::module {

// Ends of a conversation that unwind whatever the module was doing.
struct LineClosed {};      // the opener closed the device
struct StopRequested {};   // SIGTERM, SIGINT or SIGHUP
struct DeviceVanished {};  // a fault switch pulled the plug

// The module's side of the line: blocking reads and writes with time limits
// over the pseudo-terminal's master, all of them waiting in poll() and all of
// them ending at once when a stop is requested (the stop descriptor turns
// readable) or, while the device is open, when the opener closes it.
class Wire {
public:
    Wire(const PseudoTerminal& pty, int stopFd) : pty_(pty), stopFd_(stopFd) {}

    // Sleeps until some program opens the device.
    void WaitForOpening();
    // What has come in, as soon as anything has; empty when timeoutMs
    // passed first (a negative limit waits for ever).
    std::string Receive(int timeoutMs);
    // One byte, or -1 when none came in time.
    int ReadByte(int timeoutMs);
    // Bytes taken from the line that the next read is to hand out again.
    void PutBack(const std::string& bytes) { received_.insert(0, bytes); }
    // Drops what comes in until the line has been quiet for quietMs.
    void Purge(int quietMs);
    void Send(const std::string& bytes);
    void Pause(int ms);

private:
    // Waits for the master (events) or the stop; false on time-out.
    bool WaitFor(short events, int timeoutMs);

    const PseudoTerminal& pty_;
    int stopFd_;
    std::string received_;
};

}  // namespace sb::module
