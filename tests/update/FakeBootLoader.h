#pragma once
#include <map>
#include <string>
#include <vector>

#include "FakeSerialPort.h"
#include "VirtualClock.h"

namespace sb::test {

// The module's boot loader on a fake port, in virtual time: framed
// commands answered with echo, line break and prompt; behind CR "BOOT" CR a
// CRC-mode XMODEM receiver that asks with "C" once a second, keeps the data
// fields of the blocks, and sends its report 200 ms after the end.
class FakeBootLoader {
public:
    FakeBootLoader() {
        port.onOutput = [this](const std::string& bytes) { Take(bytes); };
    }

    VirtualClock clock;
    FakeSerialPort port;

    std::map<std::string, std::string> answers = {
        {"GETSN", "00004711"},      {"GETVER", " 1.04.02 "},        {"GETNAME", "Sniffer"},
        {"GETPDATE", "17.01.2024"}, {"GETUID", "3A0F5C21D4E8B907"}, {"CLROTP", "OTP cleared: OK"},
    };
    int cancelTransfers = 0;  // the next this many transfers end in CAN CAN at their first block
    bool vanish = false;      // the port fails at the first block

    std::string image;                  // the data fields of the blocks taken
    int boots = 0;                      // CR "BOOT" CR received
    std::vector<std::string> commands;  // framed command lines, without their CR

private:
    enum class Mode { Commands, Handshake, Blocks };

    void Take(const std::string& bytes) {
        if (bytes == "\rBOOT\r") return Boot();
        if (mode_ == Mode::Commands) return Command(bytes);
        if (bytes.size() >= 1029 && bytes[0] == '\x02') return Block(bytes);
        if (bytes == "\x04" && mode_ == Mode::Blocks) return End("\x06", "Flash OK\r\n");
    }

    void Boot() {
        mode_ = Mode::Handshake;
        Ask(++boots, 100);
    }

    // "C" once a second until the first block comes.
    void Ask(int boot, int64_t after) {
        clock.After(after, [this, boot] {
            if (mode_ != Mode::Handshake || boot != boots) return;
            port.Feed("C");
            Ask(boot, 1000);
        });
    }

    void Block(const std::string& block) {
        mode_ = Mode::Blocks;
        if (vanish) {
            port.failInput = port.failOutput = true;
        } else if (cancelTransfers > 0) {
            --cancelTransfers;
            End("\x18\x18", "Flash ERROR\r\n");
        } else {
            image += block.substr(3, 1024);
            Answer("\x06");
        }
    }

    void End(const std::string& answer, const std::string& report) {
        mode_ = Mode::Commands;
        Answer(answer);
        clock.After(200, [this, report] { port.Feed(report); });
    }

    void Command(const std::string& line) {
        if (line.empty() || line.back() != '\r') return;
        const std::string command = line.substr(0, line.size() - 1);
        commands.push_back(command);
        Answer(line + "\n" + answers[command.substr(0, command.find(' '))] + "\r\n> ");
    }

    void Answer(const std::string& bytes) { clock.After(1, [this, bytes] { port.Feed(bytes); }); }

    Mode mode_ = Mode::Commands;
};

}  // namespace sb::test
