#pragma once
#include <cstdint>
#include <deque>
#include <fstream>
#include <functional>
#include <string>

// The bytes on the wire to the module, as support reads them: each piece
// that went out or came in, with a monotonic time in microseconds.
namespace sb::support {

enum class WireDirection { Out, In, Note };

struct WireChunk {
    uint64_t Micros = 0;  // since the trace began
    WireDirection Direction = WireDirection::Out;
    std::string Bytes;    // a note: its text
};

class WireSink {
public:
    virtual ~WireSink() = default;
    virtual void Take(WireChunk chunk) = 0;
};

// The lines of one chunk (README, "The wire trace"): "[seconds.micros] > "
// (out) or "< " (in), up to 16 bytes in hex, then the same bytes as text
// between bars; an XMODEM block that goes out is one summary line unless
// wholeBlocks asks for its bytes.
std::string WireLines(const WireChunk& chunk, bool wholeBlocks);

// A file of the lines, added behind what it holds (each opening of a port
// starts with a note), each chunk written through at once.
class WireFile final : public WireSink {
public:
    // Throws std::runtime_error when the file cannot be made.
    WireFile(const std::string& path, bool wholeBlocks);
    void Take(WireChunk chunk) override;

private:
    std::ofstream out_;
    bool wholeBlocks_;
};

// The last `capacity` bytes of traffic, whole chunks; older ones fall out.
class WireRing final : public WireSink {
public:
    explicit WireRing(std::size_t capacity) : capacity_(capacity) {}
    void Take(WireChunk chunk) override;
    std::string Text(bool wholeBlocks = false) const;
    std::size_t Bytes() const { return bytes_; }

private:
    std::size_t capacity_;
    std::size_t bytes_ = 0;
    std::deque<WireChunk> chunks_;
};

// Microseconds of the steady clock since the first call.
uint64_t MonotonicMicros();

}  // namespace sb::support
