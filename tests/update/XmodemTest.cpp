#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "../link/ScriptedModule.h"
#include "FirmwareImage.h"
#include "update/Xmodem.h"

// The sender against a receiver played on the fake port, in virtual time.
namespace sb {
namespace {

const std::string ACK = "\x06", NAK = "\x15", CAN = "\x18", EOT = "\x04";

bool IsBlock(const std::string& write) { return write.size() >= 1028 && write[0] == '\x02'; }

// A receiver: its handshake text, then its answers to the blocks and EOTs in
// turn, the last one for all that follow; the first comes after firstAckMs.
struct Transfer {
    explicit Transfer(const std::string& handshake, std::vector<std::string> answers = {ACK}, int64_t firstAckMs = 1)
        : module(port, clock, [this, answers, firstAckMs](const std::string& write) {
              if (!IsBlock(write) && write != EOT) return test::Reply{};
              blockSends += IsBlock(write);
              if (++sends == failAt) (failInput ? port.failInput : port.failOutput) = true;
              const std::string& answer = answers[std::min(sends, answers.size()) - 1];
              return answer.empty() ? test::Reply{} : test::Reply{{sends == 1 ? firstAckMs : 1, answer}};
          }) {
        port.SetPortOpen(true);
        XmodemInit(port, status, [this](const XmodemProgress& p) { progress.push_back(p); });
        clock.After(5, [this, handshake] { port.Feed(handshake); });
    }

    int32_t Run(const std::string& data) { return XmodemTransmit(data, static_cast<int32_t>(data.size())); }
    std::string Written() const { return std::accumulate(port.written.begin(), port.written.end(), std::string()); }

    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;
    test::ScriptedModule module;
    const int64_t start = clock.Now();
    std::vector<XmodemProgress> progress;
    size_t sends = 0, failAt = 0;  // the port fails as the receiver answers send failAt
    bool failInput = false;
    int blockSends = 0;
};

// A block's check: the CRC-16 high byte first, or the sum of the data bytes.
std::string Check(const std::string& field, bool crc) {
    const int32_t value = XmodemCrc16(field, 0, 1024);
    if (crc) return {static_cast<char>(value >> 8), static_cast<char>(value)};
    return std::string(1, static_cast<char>(std::accumulate(field.begin(), field.end(), 0)));
}

TEST(XmodemCrc16, IsCrc16XmodemOfTheGivenRange) {
    EXPECT_EQ(XmodemCrc16("xyz123456789", 3, 9), 0x31C3);
    EXPECT_EQ(XmodemCrc16("\xFF", 0, 1), 0x1EF0);
    EXPECT_EQ(XmodemCrc16("123456789", 0, -5), 0);
}

TEST(XmodemTransmit, SendsWholeBlocksNumberedFrom1PastTheWrapWithTheEndMarkBehindTheDataThenEot) {
    for (const bool crc : {true, false}) {
        for (const size_t size : {0, 1, 1023, 1024, 2048, 256 * 1024 + 1}) {
            Transfer t(crc ? "C" : NAK);
            const std::string data = test::RandomBytes(size, 3);
            const std::string padded = test::PaddedToWholeBlocks(data);
            std::string blocks;
            for (size_t at = 0; at < padded.size(); at += 1024) {
                const std::string field = padded.substr(at, 1024);
                const auto number = static_cast<char>(at / 1024 + 1);
                blocks += std::string{'\x02', number, static_cast<char>(255 - number)} + field + Check(field, crc);
            }
            EXPECT_EQ(t.Run(data), static_cast<int32_t>(padded.size())) << crc << " " << size;
            EXPECT_TRUE(t.Written() == blocks + EOT) << crc << " " << size;
        }
    }
}

TEST(XmodemTransmit, EndsEachRoadWithItsResultItsLastBytesItsTimeAndAnEmptyInput) {
    const struct {
        const char* name;
        std::string handshake;
        std::vector<std::string> answers;
        int32_t result, blockSends;
        std::string tail;
        int64_t seconds, firstAckMs = 1;
    } cases[] = {
        {"cancel at the handshake", CAN + CAN + "junk", {ACK}, -1, 0, ACK, 0},
        {"no handshake: 16 tries of a second", "", {ACK}, -1, 0, CAN + CAN + CAN, 16},
        {"a single CAN uses up the byte behind it", CAN + "C", {ACK}, -1, 0, CAN + CAN + CAN, 15},
        {"a stray byte uses up a try without a wait", "boot loader 1\r\n!C", {ACK}, -1, 0, CAN + CAN + CAN, 0},
        {"cancel during the transfer", "C", {ACK, CAN + CAN + "junk"}, -1, 2, ACK, 0},
        {"a single CAN and another byte is a failed send", "C", {CAN + NAK, ACK}, 2048, 3, EOT, 0},
        {"noise is a failed send", "C", {"x", ACK}, 2048, 3, EOT, 0},
        {"every block refused", "C", {NAK}, -4, 25, CAN + CAN + CAN, 0},
        {"30 s for the first answer only", "C", {""}, -4, 25, CAN + CAN + CAN, 30 + 24},
        {"the first answer late", "C", {ACK}, 2048, 2, EOT, 29, 29000},
        {"the end unanswered", "C", {ACK, ACK, ""}, -5, 2, std::string(10, '\x04'), 10},
        {"the end acknowledged at the third", "C", {ACK, ACK, "", "", ACK + "Flash OK"}, 2048, 2, EOT + EOT + EOT, 2},
    };
    for (const auto& c : cases) {
        Transfer t(c.handshake, c.answers, c.firstAckMs);
        EXPECT_EQ(t.Run(test::RandomBytes(1500, 1)), c.result) << c.name;
        EXPECT_EQ(t.blockSends, c.blockSends) << c.name;
        // Behind the blocks, 1029 bytes each in CRC mode.
        EXPECT_EQ(t.Written().substr(t.blockSends * 1029), c.tail) << c.name;
        // A wait ends in the first tick past it: a second of polls takes up to a tenth more.
        const int64_t elapsed = t.clock.Now() - t.start;
        EXPECT_TRUE(elapsed >= c.seconds * 1000 && elapsed < c.seconds * 1100 + 100) << c.name << elapsed;
        // Silence: sixteen tries of a hundred polls between the two flushes and the last.
        EXPECT_TRUE(!c.handshake.empty() || t.port.inputReads == 2 + 16 * 100 + 1) << t.port.inputReads;
        // Whatever came behind the last answer is thrown away.
        EXPECT_EQ(XmodemGetByte(10), -1) << c.name;
    }
}

TEST(XmodemTransmit, ShowsEachBlockOnceAndTellsTheProgressOfTheFile) {
    Transfer t("C", {NAK, ACK, NAK, ACK, NAK, ACK, ACK});
    EXPECT_EQ(t.Run(std::string(2500, 'p')), 3072);
    EXPECT_EQ(t.status.texts, (std::vector<std::string>{"Sending block:  1", "Sending block:  2", "Sending block:  3",
                                                        "Sending block:  4"}));
    std::vector<int32_t> bytes;
    for (const auto& p : t.progress) bytes.push_back(p.Bytes * 10 + p.Blocks);
    EXPECT_EQ(bytes, (std::vector<int32_t>{0, 10241, 20482, 25003}));
    EXPECT_EQ(t.progress.back().Total, 2500);
}

TEST(XmodemTransmit, APortFailureLeavesAtOnceWithoutCanOrEot) {
    for (const bool failInput : {true, false}) {
        Transfer t("C");
        t.failAt = 2;
        t.failInput = failInput;
        EXPECT_THROW(t.Run(std::string(3000, 'f')), PortError) << failInput;
        EXPECT_EQ(t.port.written.size(), 2u) << failInput;
    }
}

}  // namespace
}  // namespace sb
