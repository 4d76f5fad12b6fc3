#include "support/WireTrace.h"

#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>

namespace sb::support {
namespace {

constexpr std::size_t kBytesPerLine = 16;

std::string Stamp(uint64_t micros, WireDirection direction) {
    char stamp[40];
    const char mark = direction == WireDirection::Out ? '>' : direction == WireDirection::In ? '<' : '*';
    std::snprintf(stamp, sizeof stamp, "[%6llu.%06llu] %c ", static_cast<unsigned long long>(micros / 1000000),
                  static_cast<unsigned long long>(micros % 1000000), mark);
    return stamp;
}

std::string Hex(const std::string& bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += {digits[byte >> 4], digits[byte & 15], ' '};
    }
    return hex;
}

// Printable ASCII as it is; CR, LF, backslash and bar as \r, \n, \\, \|; the rest \xNN.
std::string Text(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r') text += "\\r";
        else if (c == '\n') text += "\\n";
        else if (c == '\\') text += "\\\\";
        else if (c == '|') text += "\\|";
        else if (byte >= 0x20 && byte < 0x7F) text += c;
        else text += "\\x" + Hex(std::string(1, c)).substr(0, 2);
    }
    return text;
}

// The answers of an XMODEM receiver, named where they come alone.
const char* ControlName(const std::string& bytes) {
    if (bytes.size() != 1) return nullptr;
    switch (bytes[0]) {
        case 0x04: return "EOT";
        case 0x06: return "ACK";
        case 0x15: return "NAK";
        case 0x18: return "CAN";
        default: return nullptr;
    }
}

struct XmodemBlock {
    unsigned Number;
    std::size_t Length;
    bool Crc;
    unsigned Check;
};

// SOH or STX, the number and its complement, 128 or 1024 bytes of data, and
// a CRC of two bytes or a checksum of one.
std::optional<XmodemBlock> AsBlock(const std::string& bytes) {
    if (bytes.size() < 4 || (bytes[0] != 0x01 && bytes[0] != 0x02)) return std::nullopt;
    const std::size_t length = bytes[0] == 0x01 ? 128 : 1024;
    const auto number = static_cast<unsigned char>(bytes[1]);
    if (static_cast<unsigned char>(bytes[2]) != 255 - number) return std::nullopt;
    const auto last = [&bytes](std::size_t back) { return static_cast<unsigned char>(bytes[bytes.size() - back]); };
    if (bytes.size() == 3 + length + 2) return XmodemBlock{number, length, true, last(2) * 256u + last(1)};
    if (bytes.size() == 3 + length + 1) return XmodemBlock{number, length, false, last(1)};
    return std::nullopt;
}

std::string BlockSummary(const XmodemBlock& block) {
    char summary[80];
    std::snprintf(summary, sizeof summary, "block %u: %zu bytes, %s %0*X\n", block.Number, block.Length,
                  block.Crc ? "CRC" : "checksum", block.Crc ? 4 : 2, block.Check);
    return summary;
}

}  // namespace

std::string WireLines(const WireChunk& chunk, bool wholeBlocks) {
    const std::string stamp = Stamp(chunk.Micros, chunk.Direction);
    if (chunk.Direction == WireDirection::Note) return stamp + Text(chunk.Bytes) + "\n";
    if (chunk.Direction == WireDirection::Out && !wholeBlocks)
        if (const auto block = AsBlock(chunk.Bytes)) return stamp + BlockSummary(*block);
    std::string lines;
    for (std::size_t at = 0; at < chunk.Bytes.size(); at += kBytesPerLine) {
        const std::string piece = chunk.Bytes.substr(at, kBytesPerLine);
        std::string hex = Hex(piece);
        hex.resize(kBytesPerLine * 3, ' ');
        lines += stamp + hex + "|" + Text(piece) + "|";
        if (const char* name = ControlName(chunk.Bytes)) lines += std::string(" ") + name;
        lines += "\n";
    }
    return lines;
}

WireFile::WireFile(const std::string& path, bool wholeBlocks)
    : out_(path, std::ios::binary | std::ios::app), wholeBlocks_(wholeBlocks) {
    if (!out_) throw std::runtime_error("The trace file " + path + " cannot be written.");
}

void WireFile::Take(WireChunk chunk) { out_ << WireLines(chunk, wholeBlocks_) << std::flush; }

void WireRing::Take(WireChunk chunk) {
    bytes_ += chunk.Bytes.size();
    chunks_.push_back(std::move(chunk));
    while (bytes_ > capacity_ && !chunks_.empty()) {
        bytes_ -= chunks_.front().Bytes.size();
        chunks_.pop_front();
    }
}

std::string WireRing::Text(bool wholeBlocks) const {
    std::string text;
    for (const auto& chunk : chunks_) text += WireLines(chunk, wholeBlocks);
    return text;
}

uint64_t MonotonicMicros() {
    static const auto start = std::chrono::steady_clock::now();
    return static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start).count());
}

}  // namespace sb::support
