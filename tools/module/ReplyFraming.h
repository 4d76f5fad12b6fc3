#pragma once
#include <string>
#include <vector>

#include "Faults.h"

namespace sb::module {

// Bytes for the wire, sent after a pause.
struct Piece {
    int delayMs = 0;
    std::string bytes;
};

// The reply to a framed command: the echo of the whole line with its CR,
// LF, the answer, and the prompt CR LF ">" blank. A healthy module sends it
// in one piece; the framing faults split, delay, spoil and pad it.
std::vector<Piece> FrameReply(const std::string& line, const std::string& answer, const FramingFaults& faults);

}  // namespace sb::module
