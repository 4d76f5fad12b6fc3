#include <gtest/gtest.h>

#include "ModuleProcess.h"

// The boot loader's XMODEM receiver against a sender that the test plays
// block by block, so that every answer of the receiver can be checked.
namespace sb::test {
namespace {

const std::string ACK = "\x06";
const std::string NAK = "\x15";
const std::string CAN2 = "\x18\x18";
const std::string EOT = "\x04";

uint16_t Crc16(const std::string& data) {
    uint16_t crc = 0;
    for (const char c : data) {
        crc ^= static_cast<uint16_t>(static_cast<uint8_t>(c) << 8);
        for (int bit = 0; bit < 8; ++bit) crc = static_cast<uint16_t>(crc & 0x8000 ? (crc << 1) ^ 0x1021 : crc << 1);
    }
    return crc;
}

enum class Check { Crc, Sum, BadCrc };

// A block of 1024 (STX) or 128 (SOH) bytes of `fill`.
std::string Block(int number, char fill, Check check = Check::Crc, size_t size = 1024) {
    const std::string data(size, fill);
    std::string block = std::string(1, size == 1024 ? '\x02' : '\x01') + static_cast<char>(number) +
                        static_cast<char>(255 - number) + data;
    if (check == Check::Sum) {
        uint8_t sum = 0;
        for (const char c : data) sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(c));
        return block + static_cast<char>(sum);
    }
    const uint16_t crc = Crc16(data) ^ (check == Check::BadCrc ? 1 : 0);
    return block + static_cast<char>(crc >> 8) + static_cast<char>(crc & 0xFF);
}

struct Step {
    std::string send;
    // What the receiver says to it; empty: nothing (looked at for less time
    // than the module waits before its report).
    std::string answer;
};

struct TransferCase {
    const char* name;
    std::vector<std::string> switches;
    std::string handshake;
    std::vector<Step> steps;
    std::string report;
    std::string outcome;
    std::string image;  // what the module keeps, for a transfer that ended well
};

using BootLoaderXmodem = ModuleTest;

TEST_F(BootLoaderXmodem, AnswersEachBlockAndReportsBehindTheTransfer) {
    const std::vector<TransferCase> cases = {
        {"duplicates, bad blocks and a short last block",
         {},
         "C",
         {{Block(1, 'a'), ACK},
          {Block(1, 'a'), ACK},
          {Block(2, 'b', Check::BadCrc), NAK},
          {Block(2, 'b').substr(0, 500), NAK},             // the rest never comes
          {"\x02\x02\x02" + std::string(1026, 'b'), NAK},  // complement wrong
          {Block(2, 'b'), ACK},
          {Block(3, 'c', Check::Crc, 128), ACK},
          {EOT, ACK}},
         "Flash OK\r\n",
         "complete",
         std::string(1024, 'a') + std::string(1024, 'b') + std::string(128, 'c')},
        {"checksum mode",
         {"--xmodem", "checksum"},
         NAK,
         {{Block(1, 'x', Check::Sum), ACK}, {Block(2, 'y', Check::Crc), NAK}, {EOT, ACK}},
         "Flash OK\r\n",
         "complete",
         std::string(1024, 'x')},
        {"nothing but the EOT", {}, "C", {{EOT, ACK}}, "Flash OK\r\n", "complete", ""},
        {"refused",
         {"--xmodem-refuse"},
         "C",
         {{Block(1, 'a'), NAK}, {Block(1, 'a'), NAK}, {CAN2 + "\x18", ""}},
         "Flash ERROR\r\n",
         "cancelled-by-sender",
         ""},
        {"cancelled after one block",
         {"--xmodem-cancel-after", "1"},
         "C",
         {{Block(1, 'a'), ACK}, {Block(2, 'b'), CAN2}},
         "Flash ERROR\r\n",
         "cancelled-by-module",
         ""},
        {"out of sequence",
         {},
         "C",
         {{Block(1, 'a'), ACK}, {Block(3, 'c'), CAN2}},
         "Flash ERROR\r\n",
         "cancelled-by-module",
         ""},
        {"EOT never acknowledged",
         {"--xmodem-no-eot-ack"},
         "C",
         {{Block(1, 'a'), ACK}, {EOT, ""}, {EOT, ""}},
         "Flash ERROR\r\n",
         "eot-unanswered",
         ""},
    };
    const std::string profile = WriteProfile("ReportOk = Flash OK\\r\\n\nReportFailed = Flash ERROR\\r\\n\n");
    for (const TransferCase& c : cases) {
        std::vector<std::string> args = {"--boot", "--profile", profile, "--firmware-out", folder.File("fw.bin")};
        args.insert(args.end(), c.switches.begin(), c.switches.end());
        ModuleProcess module(folder, args);
        DeviceLine line(module.Device());
        line.Send("\rBOOT\r");
        EXPECT_EQ(line.Read(3000, 1), c.handshake) << c.name;
        for (const Step& step : c.steps) {
            line.Send(step.send);
            EXPECT_EQ(line.Read(step.answer.empty() ? 150 : 3000, step.answer.size()), step.answer) << c.name;
        }
        EXPECT_EQ(line.Read(3000, c.report.size()), c.report) << c.name;
        EXPECT_EQ(module.State("Transfer"), c.outcome) << c.name;
        if (c.outcome == "complete") {
            EXPECT_EQ(TempFolder::Read(folder.File("fw.bin")), c.image) << c.name;
            EXPECT_EQ(module.State("FirmwareSize"), std::to_string(c.image.size())) << c.name;
        }
        // Back to the commands behind every transfer.
        EXPECT_EQ(line.Exchange("GETNAME\r"), "GETNAME\r\nSniffer\r\n> ") << c.name;
        std::remove(folder.File("fw.bin").c_str());
    }
}

TEST_F(BootLoaderXmodem, VanishesInTheMiddleOfATransfer) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile(), "--vanish-after-blocks", "1"});
    DeviceLine line(module.Device());
    line.Send("\rBOOT\r");
    EXPECT_EQ(line.Read(3000, 1), "C");
    line.Send(Block(1, 'a'));
    EXPECT_EQ(line.Read(3000, 1), ACK);
    line.Send(Block(2, 'b'));
    EXPECT_EQ(module.WaitForExit(), 0);
    EXPECT_EQ(module.State("Mode"), "vanished");
    EXPECT_TRUE(line.Gone());
}

TEST_F(BootLoaderXmodem, ClosingTheDeviceEndsTheTransferButNotTheBootLoader) {
    ModuleProcess module(folder, {"--boot", "--profile", WriteProfile()});
    {
        DeviceLine line(module.Device());
        line.Send("\rBOOT\r");
        EXPECT_EQ(line.Read(3000, 1), "C");
        line.Send(Block(1, 'a'));
        EXPECT_EQ(line.Read(3000, 1), ACK);
    }
    EXPECT_TRUE(module.WaitForState("Transfer", "interrupted"));
    DeviceLine line(module.Device());
    EXPECT_EQ(line.Exchange("GETNAME\r"), "GETNAME\r\nSniffer\r\n> ");
}

}  // namespace
}  // namespace sb::test
