#pragma once
#include <functional>
#include <string>
#include <utility>
#include <vector>

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

// The usual reply: echo, LF, answer, prompt, all at once.
inline Reply Answers(const std::string& command, const std::string& answer) {
    return {{0, command + "\r\n" + answer + "\r\n> "}};
}

// A module on the fake port: each write is answered by the reply that
// replyTo gives for it, fed in through the virtual clock.
class ScriptedModule {
public:
    ScriptedModule(FakeSerialPort& port, VirtualClock& clock, std::function<Reply(const std::string&)> replyTo)
        : replyTo_(std::move(replyTo)) {
        port.onOutput = [this, &port, &clock](const std::string& bytes) {
            for (const auto& piece : replyTo_(bytes)) {
                const std::string sent = piece.bytes;
                clock.After(piece.after, [&port, sent] { port.Feed(sent); });
            }
        };
    }

private:
    std::function<Reply(const std::string&)> replyTo_;
};

// A status text that keeps every text it was given.
class RecordingStatus final : public StatusText {
public:
    std::string Text() const override { return texts.empty() ? std::string() : texts.back(); }
    void SetText(const std::string& text) override { texts.push_back(text); }
    std::vector<std::string> texts;
};

}  // namespace sb::test
