#pragma once
#include <map>
#include <string>
#include <vector>

#include "FakeSerialPort.h"
#include "VirtualClock.h"

namespace sb::test {

// The module's boot loader on the fake port, in virtual time: framed
// commands answered with echo, line break and prompt; behind CR "BOOT" CR a
// CRC-mode XMODEM receiver that asks with "C" once a second, keeps the data
// fields of the blocks it takes, and sends its report 200 ms after the end.
class FakeBootLoader {
public:
    FakeBootLoader(FakeSerialPort& port, VirtualClock& clock) : port_(port), clock_(clock) {
        port.onOutput = [this](const std::string& bytes) { Take(bytes); };
    }

    std::map<std::string, std::string> answers = {
        {"GETSN", "00004711"},      {"GETVER", " 1.04.02 "},        {"GETNAME", "Sniffer"},
        {"GETPDATE", "17.01.2024"}, {"GETUID", "3A0F5C21D4E8B907"}, {"CLROTP", "OTP cleared: OK"},
    };
    std::string reportOk = "Flash OK\r\n";
    std::string reportFailed = "Flash ERROR\r\n";

    // Faults of the receiver.
    int cancelTransfers = 0;     // this many transfers end in CAN CAN at their first block
    int vanishAfterBlocks = -1;  // the port fails behind this many blocks

    std::string image;                  // the data fields of the last transfer
    int boots = 0;                      // CR "BOOT" CR received
    std::vector<std::string> commands;  // framed command lines, without their CR

private:
    enum class Mode { Commands, Handshake, Blocks };

    void Take(const std::string& bytes) {
        if (bytes == "\rBOOT\r") return Boot();
        if (mode_ == Mode::Commands) return Command(bytes);
        if (bytes.size() >= 1029 && bytes[0] == '\x02') return Block(bytes);
        if (bytes == "\x04" && mode_ == Mode::Blocks) return End("\x06", reportOk);
        if (bytes == "\x18" && mode_ == Mode::Blocks) return End("", reportFailed);
    }

    void Boot() {
        ++boots;
        image.clear();
        mode_ = Mode::Handshake;
        Ask(++generation_, 100);
    }

    // "C" once a second until the first block comes.
    void Ask(int generation, int64_t after) {
        clock_.After(after, [this, generation] {
            if (mode_ != Mode::Handshake || generation != generation_) return;
            port_.Feed("C");
            Ask(generation, 1000);
        });
    }

    void Block(const std::string& block) {
        mode_ = Mode::Blocks;
        if (vanishAfterBlocks >= 0 && blocks_ == vanishAfterBlocks) {
            port_.failInput = port_.failOutput = true;
            return;
        }
        if (transfers_ < cancelTransfers) {
            ++transfers_;
            return End("\x18\x18", reportFailed);
        }
        if (static_cast<uint8_t>(block[1]) == static_cast<uint8_t>(blocks_ + 1)) {
            image += block.substr(3, 1024);
            ++blocks_;
        }
        Answer("\x06");
    }

    void End(const std::string& answer, const std::string& report) {
        mode_ = Mode::Commands;
        blocks_ = 0;
        if (!answer.empty()) Answer(answer);
        clock_.After(200, [this, report] { port_.Feed(report); });
    }

    void Command(const std::string& line) {
        if (line.empty() || line.back() != '\r') return;
        const std::string command = line.substr(0, line.size() - 1);
        commands.push_back(command);
        std::string answer = "Error!";
        const auto blank = command.find(' ');
        const std::string word = command.substr(0, blank);
        if (const auto known = answers.find(word); known != answers.end()) answer = known->second;
        if (word == "CLROTP" && command.substr(blank + 1) != answers["GETUID"]) answer = "Error!";
        Answer(line + "\n" + answer + "\r\n> ");
    }

    void Answer(const std::string& bytes) {
        clock_.After(1, [this, bytes] { port_.Feed(bytes); });
    }

    FakeSerialPort& port_;
    VirtualClock& clock_;
    Mode mode_ = Mode::Commands;
    int generation_ = 0;
    int blocks_ = 0;
    int transfers_ = 0;
};

}  // namespace sb::test
