#include <gtest/gtest.h>

#include <algorithm>

#include "../helpers/TempFolder.h"
#include "FakeSerialPort.h"
#include "helpers/HexText.h"
#include "support/TracingPort.h"

namespace sb {
namespace {

using support::WireChunk;
using support::WireDirection;

support::WireDirection DirectionOf(const std::string& word) {
    return word == "out" ? WireDirection::Out : word == "in" ? WireDirection::In : WireDirection::Note;
}

// [start, number, complement, data length, check in hex]
std::string Block(const nlohmann::json& b) {
    return std::string{static_cast<char>(b[0].get<int>()), static_cast<char>(b[1].get<int>()),
                       static_cast<char>(b[2].get<int>())} +
           std::string(b[3].get<std::size_t>(), '\x1A') + HexToBytes(b[4].get<std::string>());
}

TEST(WireTrace, LinesShowTimeDirectionHexAndTextAndSumUpBlocks) {
    for (const auto& c : test::TestCases("fieldsupport/trace-lines.json")) {
        const std::string bytes = c.contains("block") ? Block(c["block"])
                                  : c.contains("text") ? c["text"].get<std::string>()
                                                       : HexToBytes(c["hex"].get<std::string>());
        const WireChunk chunk{c["us"], DirectionOf(c["dir"]), bytes};
        const std::string lines = support::WireLines(chunk, false);
        if (c.contains("expect")) EXPECT_EQ(lines, c["expect"]) << c["name"];
        if (c.contains("lines")) EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), c["lines"]) << c["name"];
        const std::string whole = support::WireLines(chunk, true);
        if (c.contains("whole lines")) EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), c["whole lines"]) << c["name"];
    }
}

struct Recorder final : support::WireSink {
    void Take(WireChunk chunk) override { chunks.push_back(std::move(chunk)); }
    std::vector<WireChunk> chunks;
};

// Every byte that passes the port, in the order it passed, each piece with
// the clock's time; polls that find nothing leave no trace.
TEST(WireTrace, ThePortTellsEveryPieceInOrderWithItsTime) {
    auto inner = std::make_unique<test::FakeSerialPort>();
    test::FakeSerialPort& fake = *inner;
    Recorder sink;
    uint64_t now = 0;
    support::TracingPort port(std::move(inner), sink, [&now] { return now += 10; });
    OpenPort(port, "ttyACM0", kSettings300);
    fake.Feed("GETSN\r");
    port.Output("GETSN\r");
    EXPECT_EQ(port.Input(), "GETSN\r");
    EXPECT_EQ(port.Input(), "");
    fake.Feed("\r\n1\r\n> ");
    EXPECT_EQ(port.Input(), "\r\n1\r\n> ");
    port.SetPortOpen(false);
    fake.failOpen = true;
    EXPECT_THROW(port.SetPortOpen(true), PortError);

    const std::vector<std::tuple<uint64_t, WireDirection, std::string>> expected = {
        {10, WireDirection::Note, "open ttyACM0 300, N, 8, 1"},
        {20, WireDirection::Out, "GETSN\r"},
        {30, WireDirection::In, "GETSN\r"},
        {40, WireDirection::In, "\r\n1\r\n> "},
        {50, WireDirection::Note, "close ttyACM0"},
    };
    ASSERT_EQ(sink.chunks.size(), expected.size() + 1);
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(std::tie(sink.chunks[i].Micros, sink.chunks[i].Direction, sink.chunks[i].Bytes), expected[i]) << i;
    EXPECT_EQ(sink.chunks.back().Bytes.rfind("open ttyACM0 failed: ", 0), 0u) << sink.chunks.back().Bytes;
}

TEST(WireTrace, TheRingKeepsTheNewestWholePiecesWithinItsSize) {
    support::WireRing ring(10);
    for (const char* piece : {"aaaa", "bbbb", "cccc"}) ring.Take({1, WireDirection::In, piece});
    EXPECT_EQ(ring.Bytes(), 8u);
    const std::string text = ring.Text();
    EXPECT_EQ(text.find("aaaa"), std::string::npos);
    EXPECT_NE(text.find("|bbbb|"), std::string::npos);
    EXPECT_LT(text.find("|bbbb|"), text.find("|cccc|"));
}

}  // namespace
}  // namespace sb
