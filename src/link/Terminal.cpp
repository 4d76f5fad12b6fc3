#include "link/Terminal.h"

#include <cstdint>

#include "helpers/Waiting.h"

namespace sb {
namespace {

// Bound by each exchange and left bound afterwards.
SerialPort* boundPort = nullptr;
StatusText* boundStatus = nullptr;
std::string receiveBuffer;

constexpr int kEchoReads = 2;
constexpr int kAnswerTests = 3;
constexpr int16_t kIdlePolls = 100;
constexpr double kPollMs = 10;

// Where a read stands when the answer stage tests it: the answer between the
// first LF and a prompt that is the very last thing in the text.
bool TakeAnswer(const std::string& collected, std::string& answer) {
    const auto lf = collected.find('\n');
    // The text behind the LF; without an LF the search starts at the second
    // character, and finds no prompt since every prompt holds an LF.
    const std::string::size_type answerStart = lf == std::string::npos ? 0 : lf + 1;
    const auto prompt = collected.find(kPrompt, answerStart + 1);
    if (prompt == std::string::npos || prompt + std::char_traits<char>::length(kPrompt) != collected.size())
        return false;
    answer = collected.substr(answerStart, prompt - answerStart);
    return true;
}

std::string Fail() {
    boundStatus->SetText(kNoAnswer);
    return kNoAnswer;
}

}  // namespace

void TerminalSend(const std::string& text) { boundPort->Output(text); }

std::string TerminalRead() {
    int16_t idle = 0;
    for (;;) {
        boundStatus->SetText(boundStatus->Text() + ".");
        const std::string taken = boundPort->Input();
        receiveBuffer += taken;
        if (taken.empty()) {
            ++idle;
            // The whole poll, not up to the first byte: a module on USB hands a
            // reply over in packets a fraction of a millisecond apart, and the
            // exchange counts reads, so a read must gather them all.
            WaitMs(kPollMs);
        }
        if (idle == kIdlePolls) return {};
        if (!receiveBuffer.empty()) break;
    }
    std::string result;
    result.swap(receiveBuffer);
    return result;
}

void TerminalFlush() {
    boundPort->Input();
    receiveBuffer.clear();
}

std::string TerminalExecute(const std::string& command, SerialPort& port, StatusText& status) {
    boundPort = &port;
    boundStatus = &status;

    status.SetText("Clearing input buffer");
    receiveBuffer.clear();
    TerminalFlush();

    status.SetText("Sending command");
    const std::string line = command + kCommandEnd;
    TerminalSend(line);

    status.SetText("Waiting echo");
    std::string collected;
    std::string::size_type echo = std::string::npos;
    for (int reads = kEchoReads;;) {
        collected += TerminalRead();
        echo = collected.find(line);
        if (echo != std::string::npos) break;
        if (--reads == 0) return Fail();
    }
    // Whatever stood in front of the echo goes with it.
    collected.erase(0, echo + line.size());

    status.SetText("Echo received");
    status.SetText("Waiting answer");
    // Each test has a read behind it, so what the last read brings is never tested.
    for (int tests = kAnswerTests;;) {
        std::string answer;
        if (TakeAnswer(collected, answer)) {
            status.SetText("Answer received");
            return answer;
        }
        --tests;
        collected += TerminalRead();
        if (tests == 0) return Fail();
    }
}

}  // namespace sb
