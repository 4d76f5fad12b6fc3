#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../link/ScriptedModule.h"
#include "update/Xmodem.h"

// The sender against a receiver played on the fake port, in virtual time.
namespace sb {
namespace {

const std::string ACK = "\x06";
const std::string NAK = "\x15";
const std::string CAN = "\x18";
const std::string EOT = "\x04";
const std::string CANx3 = CAN + CAN + CAN;

std::string Bytes(size_t size) {
    std::string data(size, '\0');
    for (size_t i = 0; i < size; ++i) data[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    return data;
}

uint16_t BitwiseCrc(const std::string& data) {
    uint16_t crc = 0;
    for (const char c : data) {
        crc ^= static_cast<uint16_t>(static_cast<uint8_t>(c) << 8);
        for (int bit = 0; bit < 8; ++bit) crc = static_cast<uint16_t>(crc & 0x8000 ? (crc << 1) ^ 0x1021 : crc << 1);
    }
    return crc;
}

bool IsBlock(const std::string& write) { return write.size() >= 1028 && write[0] == '\x02'; }

// A receiver: the handshake text it sends first, and its answer to each
// send of a block (counted over the whole transfer) and to each EOT.
struct Receiver {
    std::string handshake = "C";
    std::function<std::string(int blockSend, const std::string& block)> onBlock = [](int, const std::string&) {
        return ACK;
    };
    std::function<std::string(int eot)> onEot = [](int) { return ACK; };
    int64_t answerAfterMs = 1;
    int64_t firstAnswerAfterMs = 1;  // to the first send of the first block
};

// One transfer on a fake port with the receiver behind it.
struct Transfer {
    explicit Transfer(Receiver r) : receiver(std::move(r)) {
        module = std::make_unique<test::ScriptedModule>(port, clock, [this](const std::string& write) {
            sendTimes.push_back(clock.Now());
            std::string answer;
            const bool first = IsBlock(write) && blockSends == 0;
            if (IsBlock(write)) answer = receiver.onBlock(blockSends++, write);
            if (write == EOT) answer = receiver.onEot(eots++);
            if (answer.empty()) return test::Reply{};
            return test::Reply{{first ? receiver.firstAnswerAfterMs : receiver.answerAfterMs, answer}};
        });
        port.SetPortOpen(true);
    }

    int32_t Run(const std::string& data) {
        XmodemInit(port, status, [this](const XmodemProgress& p) { progress.push_back(p); });
        start = clock.Now();
        clock.After(5, [this] { port.Feed(receiver.handshake); });
        return XmodemTransmit(data, static_cast<int32_t>(data.size()));
    }

    std::vector<std::string> Blocks() const {
        std::vector<std::string> blocks;
        for (const auto& w : port.written)
            if (IsBlock(w)) blocks.push_back(w);
        return blocks;
    }
    // The single bytes written behind the last block.
    std::string Tail() const {
        std::string tail;
        for (const auto& w : port.written) tail = IsBlock(w) ? std::string() : tail + w;
        return tail;
    }

    Receiver receiver;
    test::VirtualClock clock;
    test::FakeSerialPort port;
    test::RecordingStatus status;
    std::unique_ptr<test::ScriptedModule> module;
    std::vector<XmodemProgress> progress;
    std::vector<int64_t> sendTimes;
    int blockSends = 0;
    int eots = 0;
    int64_t start = 0;
};

TEST(XmodemCrc16, IsTheCrcOfTheGivenRange) {
    const struct {
        std::string bytes;
        int16_t start, count;
        int32_t crc;
    } cases[] = {
        {"123456789", 0, 9, 0x31C3},
        {"xyz123456789", 3, 9, 0x31C3},
        {std::string(1, '\x01'), 0, 1, 0x1021},
        {std::string(1, '\x03'), 0, 1, 0x3063},
        {std::string(1, '\xFF'), 0, 1, 0x1EF0},
        {"123456789", 0, 0, 0},
        {"123456789", 0, -5, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(XmodemCrc16(c.bytes, c.start, c.count), c.crc) << c.bytes;
    const std::string block = Bytes(1024);
    EXPECT_EQ(XmodemCrc16(block, 0, 1024), BitwiseCrc(block));
}

TEST(XmodemTransmit, SendsWholeBlocksWithTheEndMarkBehindTheData) {
    // Behind the data one 0x1A and zeros; a file that ends on a block border
    // is followed by a block that holds the 0x1A alone.
    for (const char* mode : {"C", "\x15"}) {
        const bool crc = mode[0] == 'C';
        for (const size_t size : {size_t{0}, size_t{1}, size_t{1023}, size_t{1024}, size_t{1025}, size_t{2048}}) {
            const std::string name = std::string(crc ? "crc " : "checksum ") + std::to_string(size);
            Receiver receiver;
            receiver.handshake = mode;
            Transfer t(receiver);
            const std::string data = Bytes(size);
            const size_t blocks = size / 1024 + 1;
            EXPECT_EQ(t.Run(data), static_cast<int32_t>(1024 * blocks)) << name;

            const auto sent = t.Blocks();
            ASSERT_EQ(sent.size(), blocks) << name;
            std::string fields;
            for (size_t i = 0; i < sent.size(); ++i) {
                const std::string& b = sent[i];
                ASSERT_EQ(b.size(), crc ? 1029u : 1028u) << name;
                EXPECT_EQ(static_cast<uint8_t>(b[1]), i + 1) << name;
                EXPECT_EQ(static_cast<uint8_t>(b[2]), 255 - (i + 1)) << name;
                const std::string field = b.substr(3, 1024);
                if (crc) {
                    EXPECT_EQ((static_cast<uint8_t>(b[1027]) << 8) | static_cast<uint8_t>(b[1028]), BitwiseCrc(field))
                        << name;
                } else {
                    unsigned sum = 0;
                    for (const char c : field) sum += static_cast<uint8_t>(c);
                    EXPECT_EQ(static_cast<uint8_t>(b[1027]), sum & 0xFF) << name;
                }
                fields += field;
            }
            const std::string padded = data + "\x1A" + std::string(1024 * blocks - size - 1, '\0');
            EXPECT_EQ(fields, padded) << name;
            EXPECT_EQ(t.Tail(), EOT) << name;
        }
    }
}

TEST(XmodemTransmit, BlockNumbersWrapFrom255To0) {
    Transfer t(Receiver{});
    EXPECT_EQ(t.Run(Bytes(256 * 1024 + 1)), 257 * 1024);
    const auto blocks = t.Blocks();
    ASSERT_EQ(blocks.size(), 257u);
    const std::vector<std::pair<int, int>> expected = {{254, 1}, {255, 0}, {0, 255}, {1, 254}};
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(static_cast<uint8_t>(blocks[253 + i][1]), expected[i].first);
        EXPECT_EQ(static_cast<uint8_t>(blocks[253 + i][2]), expected[i].second);
    }
}

TEST(XmodemTransmit, EndsEachRoadWithItsResultAndItsLastBytes) {
    const auto answers = [](std::vector<std::string> script) {
        return [script](int send, const std::string&) {
            return send < static_cast<int>(script.size()) ? script[send] : std::string();
        };
    };
    const struct {
        const char* name;
        Receiver receiver;
        int32_t result;
        int blockSends;
        std::string tail;  // the bytes behind the last block sent
    } cases[] = {
        {"cancel at the handshake", {CAN + CAN}, -1, 0, ACK},
        {"no handshake", {""}, -1, 0, CANx3},
        {"a single CAN uses up the byte behind it", {CAN + "C"}, -1, 0, CANx3},
        {"cancel during the transfer", {"C", answers({ACK, CAN + CAN})}, -1, 2, ACK},
        {"a single CAN and another byte is a failed send", {"C", answers({CAN + NAK, ACK, ACK})}, 2048, 3, EOT},
        {"every block refused", {"C", [](int, const std::string&) { return NAK; }}, -4, 25, CANx3},
        {"noise is a failed send", {"C", answers({"x", ACK, ACK})}, 2048, 3, EOT},
        {"the end unanswered", {"C", answers({ACK, ACK}), [](int) { return NAK; }}, -5, 2, std::string(10, '\x04')},
        {"the end acknowledged at the third",
         {"C", answers({ACK, ACK}), [](int eot) { return eot == 2 ? ACK : ""; }},
         2048,
         2,
         EOT + EOT + EOT},
    };
    for (const auto& c : cases) {
        Transfer t(c.receiver);
        EXPECT_EQ(t.Run(Bytes(1500)), c.result) << c.name;
        EXPECT_EQ(t.blockSends, c.blockSends) << c.name;
        EXPECT_EQ(t.Tail(), c.tail) << c.name;
    }
}

TEST(XmodemTransmit, AHandshakeTryIsOneSecondOfPollsOrOneStrayByte) {
    // Sixteen tries of 100 polls each, between the two flushes and the last.
    Transfer silent(Receiver{""});
    EXPECT_EQ(silent.Run(Bytes(10)), -1);
    EXPECT_EQ(silent.port.inputReads, 2 + 16 * 100 + 1);

    // A line of text uses up one try per byte without a wait.
    const std::string fifteen = "boot loader 1\r\n";
    Transfer late(Receiver{fifteen + "C"});
    EXPECT_EQ(late.Run(Bytes(10)), 1024);
    Transfer lost(Receiver{fifteen + "!C"});
    EXPECT_EQ(lost.Run(Bytes(10)), -1);
    EXPECT_LT(lost.clock.Now() - lost.start, 100);
}

TEST(XmodemTransmit, WaitsThirtySecondsForTheFirstAcknowledgementAndOneSecondForOthers) {
    Receiver silent;
    silent.onBlock = [](int, const std::string&) { return std::string(); };
    Transfer t(silent);
    EXPECT_EQ(t.Run(Bytes(10)), -4);
    ASSERT_EQ(t.sendTimes.size(), 25u + 3u);
    const auto gap = [&t](size_t i) { return t.sendTimes[i + 1] - t.sendTimes[i]; };
    EXPECT_GE(gap(0), 30000);
    EXPECT_LT(gap(0), 34000);
    for (size_t i = 1; i < 24; ++i) {
        EXPECT_GE(gap(i), 1000) << i;
        EXPECT_LT(gap(i), 1200) << i;
    }

    // An ACK late in the first wait takes the first block at its first send.
    Receiver slow;
    slow.firstAnswerAfterMs = 29000;
    Transfer late(slow);
    EXPECT_EQ(late.Run(Bytes(1500)), 2048);
    EXPECT_EQ(late.blockSends, 2);

    // The second block has one second.
    Receiver second;
    second.onBlock = [](int send, const std::string&) { return send == 1 ? std::string() : ACK; };
    Transfer resent(second);
    EXPECT_EQ(resent.Run(Bytes(1500)), 2048);
    ASSERT_EQ(resent.blockSends, 3);
    EXPECT_GE(resent.sendTimes[2] - resent.sendTimes[1], 1000);
    EXPECT_LT(resent.sendTimes[2] - resent.sendTimes[1], 1200);
}

TEST(XmodemTransmit, TakesAnAcknowledgementAsSoonAsItArrives) {
    // Polling with plain 10 ms pauses would need at least 10 ms a block.
    Transfer t(Receiver{});
    EXPECT_EQ(t.Run(Bytes(100 * 1024 - 1)), 100 * 1024);
    EXPECT_LT(t.clock.Now() - t.start, 100 * 3);
}

TEST(XmodemTransmit, ShowsEachBlockOnceAndTheNextNumberBeforeTheEnd) {
    Receiver resends;
    resends.onBlock = [](int send, const std::string&) { return send % 2 == 0 ? NAK : ACK; };
    Transfer t(resends);
    EXPECT_EQ(t.Run(Bytes(1024)), 2048);
    const std::vector<std::string> expected = {"Sending block:  1", "Sending block:  2", "Sending block:  3"};
    EXPECT_EQ(t.status.texts, expected);
}

TEST(XmodemTransmit, TellsTheProgressOfTheFileAtEachAcknowledgedBlock) {
    Transfer t(Receiver{});
    EXPECT_EQ(t.Run(Bytes(2500)), 3072);
    const std::vector<std::pair<int32_t, int32_t>> expected = {{0, 0}, {1, 1024}, {2, 2048}, {3, 2500}};
    ASSERT_EQ(t.progress.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(t.progress[i].Blocks, expected[i].first);
        EXPECT_EQ(t.progress[i].Bytes, expected[i].second);
        EXPECT_EQ(t.progress[i].Total, 2500);
    }
}

TEST(XmodemTransmit, APortFailureLeavesAtOnceWithoutCanOrEot) {
    for (const bool failInput : {true, false}) {
        Receiver receiver;
        Transfer* transfer = nullptr;
        receiver.onBlock = [&transfer, failInput](int send, const std::string&) {
            if (send == 1) (failInput ? transfer->port.failInput : transfer->port.failOutput) = true;
            return ACK;
        };
        Transfer t(receiver);
        transfer = &t;
        EXPECT_THROW(t.Run(Bytes(3000)), PortError) << failInput;
        EXPECT_EQ(t.Tail(), "") << failInput;
        EXPECT_EQ(t.Blocks().size(), 2u) << failInput;
    }
}

}  // namespace
}  // namespace sb
