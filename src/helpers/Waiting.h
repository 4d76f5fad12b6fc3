#pragma once
#include <cstdint>

// The one way to wait. A wait runs the event loop until its time has passed,
// at least once, and sleeps while nothing happens. The platform is reached
// through a WaitContext: the programs install the Qt event loop, tests a
// virtual clock in which a wait advances time and lets a fake module act.
namespace sb {

class WaitContext {
public:
    virtual ~WaitContext() = default;
    // The machine's millisecond counter as a signed 32-bit value; it wraps.
    virtual int32_t Tick() = 0;
    // Handles every pending event once and returns without sleeping.
    virtual void PumpEvents() = 0;
    // Handles events for up to ms, sleeping while none come; may return
    // earlier. With stopOnInput it returns as soon as serial input has been
    // announced through NotifyInput, and then answers true.
    virtual bool Sleep(double ms, bool stopOnInput) = 0;
    // Called by a port when input has arrived.
    virtual void NotifyInput() = 0;
    // Drops a notice of input that came before this moment: a wait that
    // ends on input ends on input that came while it waited, not on input
    // its caller has taken already.
    virtual void ForgetInput() {}
};

// nullptr installs the plain context: a steady clock and a thread sleep.
void SetWaitContext(WaitContext* context);
WaitContext& CurrentWaitContext();

void PumpEvents();
// Runs the event loop until the tick is past start + ms; ends early when the
// tick wraps below its start. Whatever a handler that runs inside the wait
// throws passes through to the waiting caller.
void WaitMs(double ms);
// The same, but it also ends as soon as serial input arrives. Only for a
// polling loop that takes one byte a pass: it reacts to the byte at once, and
// the pass that took it is the pass that would have taken it after the whole
// wait. A loop that takes everything waiting must wait its whole poll, or it
// splits a reply that arrives in packets.
void WaitMsOrInput(double ms);

}  // namespace sb
