#include "helpers/Waiting.h"

#include <chrono>
#include <thread>

namespace sb {
namespace {

class PlainWaitContext final : public WaitContext {
public:
    int32_t Tick() override {
        const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                            std::chrono::steady_clock::now().time_since_epoch())
                            .count();
        return static_cast<int32_t>(static_cast<uint32_t>(ms));
    }
    void PumpEvents() override {}
    bool Sleep(double ms, bool stopOnInput) override {
        if (stopOnInput && inputArrived_) {
            inputArrived_ = false;
            return true;
        }
        // Short slices, so that a port polled from this thread is seen soon.
        const double slice = stopOnInput ? 1.0 : ms;
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(slice > 0 ? slice : 0));
        return false;
    }
    void NotifyInput() override { inputArrived_ = true; }
    void ForgetInput() override { inputArrived_ = false; }

private:
    bool inputArrived_ = false;
};

PlainWaitContext plainContext;
WaitContext* current = &plainContext;

void Wait(double ms, bool stopOnInput) {
    WaitContext& context = *current;
    const double start = context.Tick();
    const double target = static_cast<double>(context.Tick()) + ms;
    if (stopOnInput) context.ForgetInput();
    context.PumpEvents();
    for (;;) {
        const double t = context.Tick();
        if (t > target || t < start) return;
        if (context.Sleep(target - t + 1, stopOnInput) && stopOnInput) return;
    }
}

}  // namespace

void SetWaitContext(WaitContext* context) { current = context ? context : &plainContext; }
WaitContext& CurrentWaitContext() { return *current; }

void PumpEvents() { current->PumpEvents(); }
void WaitMs(double ms) { Wait(ms, false); }
void WaitMsOrInput(double ms) { Wait(ms, true); }

}  // namespace sb
