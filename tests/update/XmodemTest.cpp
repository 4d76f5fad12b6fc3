#include <gtest/gtest.h>

#include <functional>
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

// A receiver: its handshake text, and its answer to each send of a block
// (counted over the transfer) and to each EOT; the first send of the first
// block is answered after firstAckMs.
struct Receiver {
    std::string handshake = "C";
    std::function<std::string(int send)> onBlock = [](int) { return ACK; };
    std::function<std::string(int eot)> onEot = [](int) { return ACK; };
    int64_t firstAckMs = 1;
};

struct Transfer {
    explicit Transfer(Receiver r) : receiver(std::move(r)) {
        module = std::make_unique<test::ScriptedModule>(port, clock, [this](const std::string& write) {
            sendTimes.push_back(clock.Now());
            std::string answer = write == EOT ? receiver.onEot(eots++) : "";
            if (IsBlock(write)) answer = receiver.onBlock(blockSends++);
            const int64_t after = IsBlock(write) && blockSends == 1 ? receiver.firstAckMs : 1;
            return answer.empty() ? test::Reply{} : test::Reply{{after, answer}};
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
    // The bytes written behind the last block.
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
    int blockSends = 0, eots = 0;
    int64_t start = 0;
};

TEST(XmodemCrc16, IsCrc16XmodemOfTheGivenRange) {
    EXPECT_EQ(XmodemCrc16("xyz123456789", 3, 9), 0x31C3);
    EXPECT_EQ(XmodemCrc16("\xFF", 0, 1), 0x1EF0);
    EXPECT_EQ(XmodemCrc16("123456789", 0, -5), 0);
}

TEST(XmodemTransmit, SendsWholeBlocksNumberedFrom1PastTheWrapWithTheEndMarkBehindTheData) {
    for (const char* mode : {"C", "\x15"}) {
        const bool crc = mode[0] == 'C';
        for (const size_t size : {0, 1, 1023, 1024, 2048, 256 * 1024 + 1}) {
            SCOPED_TRACE(std::string(crc ? "crc " : "checksum ") + std::to_string(size));
            Transfer t(Receiver{mode});
            const std::string data = test::RandomBytes(size, 3);
            const std::string padded = test::PaddedToWholeBlocks(data);
            EXPECT_EQ(t.Run(data), static_cast<int32_t>(padded.size()));
            const auto blocks = t.Blocks();
            ASSERT_EQ(blocks.size(), padded.size() / 1024);
            std::string fields;
            for (size_t i = 0; i < blocks.size(); ++i) {
                const std::string& b = blocks[i];
                const std::string field = b.substr(3, 1024);
                unsigned sum = 0;
                for (const char c : field) sum += static_cast<uint8_t>(c);
                const std::string check = crc ? std::string{static_cast<char>(XmodemCrc16(field, 0, 1024) >> 8),
                                                            static_cast<char>(XmodemCrc16(field, 0, 1024))}
                                              : std::string(1, static_cast<char>(sum));
                const std::string head = {'\x02', static_cast<char>(i + 1), static_cast<char>(254 - i)};
                ASSERT_EQ(b.substr(0, 3), head);
                ASSERT_EQ(b.substr(1027), check);
                fields += field;
            }
            EXPECT_TRUE(fields == padded);
            EXPECT_EQ(t.Tail(), EOT);
        }
    }
}

TEST(XmodemTransmit, EndsEachRoadWithItsResultItsLastBytesAndAnEmptyInput) {
    const auto answers = [](std::vector<std::string> script) {
        return [script](int send) { return send < static_cast<int>(script.size()) ? script[send] : ""; };
    };
    const auto always = [](std::string answer) { return [answer](int) { return answer; }; };
    const struct {
        const char* name;
        Receiver receiver;
        int32_t result;
        int blockSends;
        std::string tail;
    } cases[] = {
        {"cancel at the handshake", {CAN + CAN + "junk"}, -1, 0, ACK},
        {"no handshake", {""}, -1, 0, CAN + CAN + CAN},
        {"a single CAN uses up the byte behind it", {CAN + "C"}, -1, 0, CAN + CAN + CAN},
        {"cancel during the transfer", {"C", answers({ACK, CAN + CAN + "junk"})}, -1, 2, ACK},
        {"a single CAN and another byte is a failed send", {"C", answers({CAN + NAK, ACK, ACK})}, 2048, 3, EOT},
        {"noise is a failed send", {"C", answers({"x", ACK, ACK})}, 2048, 3, EOT},
        {"every block refused", {"C", always(NAK)}, -4, 25, CAN + CAN + CAN},
        {"the end unanswered", {"C", always(ACK), always(NAK)}, -5, 2, std::string(10, '\x04')},
        {"the end acknowledged at the third",
         {"C", always(ACK), answers({"", "", ACK + "Flash OK"})},
         2048,
         2,
         EOT + EOT + EOT},
    };
    for (const auto& c : cases) {
        Transfer t(c.receiver);
        EXPECT_EQ(t.Run(test::RandomBytes(1500, 1)), c.result) << c.name;
        EXPECT_EQ(t.blockSends, c.blockSends) << c.name;
        EXPECT_EQ(t.Tail(), c.tail) << c.name;
        // Whatever came behind the last answer is thrown away.
        EXPECT_EQ(XmodemGetByte(10), -1) << c.name;
    }
}

TEST(XmodemTransmit, AHandshakeTryIsOneSecondOfPollsOrOneStrayByte) {
    // Sixteen tries of 100 polls each, between the two flushes and the last.
    Transfer silent(Receiver{""});
    EXPECT_EQ(silent.Run("x"), -1);
    EXPECT_EQ(silent.port.inputReads, 2 + 16 * 100 + 1);

    // A line of text uses up one try per byte, without a wait.
    Transfer lost(Receiver{"boot loader 1\r\n!C"});
    EXPECT_EQ(lost.Run("x"), -1);
    EXPECT_LT(lost.clock.Now() - lost.start, 100);
}

TEST(XmodemTransmit, WaitsThirtySecondsForTheFirstAcknowledgementOnlyAndTakesAnAckAtOnce) {
    Transfer silent(Receiver{"C", [](int) { return ""; }});
    EXPECT_EQ(silent.Run("x"), -4);
    const auto gap = [&silent](size_t i) { return silent.sendTimes[i + 1] - silent.sendTimes[i]; };
    EXPECT_TRUE(gap(0) >= 30000 && gap(0) < 34000) << gap(0);
    for (size_t i = 1; i < 24; ++i) EXPECT_TRUE(gap(i) >= 1000 && gap(i) < 1200) << gap(i);

    Receiver slow;
    slow.firstAckMs = 29000;
    Transfer late(slow);
    EXPECT_EQ(late.Run("x"), 1024);
    EXPECT_EQ(late.blockSends, 1);

    // Polling with plain 10 ms pauses would need at least 10 ms a block.
    Transfer quick(Receiver{});
    EXPECT_EQ(quick.Run(std::string(100 * 1024 - 1, 'q')), 100 * 1024);
    EXPECT_LT(quick.clock.Now() - quick.start, 100 * 3);
}

TEST(XmodemTransmit, ShowsEachBlockOnceAndTellsTheProgressOfTheFile) {
    Transfer t(Receiver{"C", [](int send) { return send % 2 == 0 ? NAK : ACK; }});
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
        Transfer* transfer = nullptr;
        Transfer t(Receiver{"C", [&transfer, failInput](int send) {
                                if (send == 1)
                                    (failInput ? transfer->port.failInput : transfer->port.failOutput) = true;
                                return ACK;
                            }});
        transfer = &t;
        EXPECT_THROW(t.Run(std::string(3000, 'f')), PortError) << failInput;
        EXPECT_EQ(t.Tail(), "") << failInput;
        EXPECT_EQ(t.Blocks().size(), 2u) << failInput;
    }
}

}  // namespace
}  // namespace sb
