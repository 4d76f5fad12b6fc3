#pragma once
#include "FakeSerialPort.h"
#include "VirtualClock.h"
#include "link/StatusText.h"

namespace sb::test {

// What the module sends back: pieces, each after its delay in ms counted
// from the write that it answers.
struct Piece {
    int64_t after;
    std::string bytes;
};
using Reply = std::vector<Piece>;

// A module on the fake port: each write is answered by the reply that
// replyTo gives for it, fed in through the virtual clock.
struct ScriptedModule {
    ScriptedModule(FakeSerialPort& port, VirtualClock& clock, std::function<Reply(const std::string&)> replyTo) {
        port.onOutput = [&port, &clock, replyTo = std::move(replyTo)](const std::string& bytes) {
            for (const auto& piece : replyTo(bytes))
                clock.After(piece.after, [&port, sent = piece.bytes] { port.Feed(sent); });
        };
    }
};

// A status text that keeps every text it was given.
struct RecordingStatus final : StatusText {
    std::string Text() const override { return texts.empty() ? std::string() : texts.back(); }
    void SetText(const std::string& text) override { texts.push_back(text); }
    std::vector<std::string> texts;
};

}  // namespace sb::test
