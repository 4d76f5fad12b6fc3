#include "ReplyFraming.h"

#include <algorithm>

namespace sb::module {
namespace {

constexpr const char* kPrompt = "\r\n> ";

// As even as can be, the longer pieces first; never an empty piece.
std::vector<std::string> Split(const std::string& text, int count) {
    const size_t pieces =
        std::clamp<size_t>(static_cast<size_t>(std::max(count, 1)), 1, std::max<size_t>(text.size(), 1));
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t i = 0; i < pieces; ++i) {
        const size_t length = text.size() / pieces + (i < text.size() % pieces ? 1 : 0);
        parts.push_back(text.substr(start, length));
        start += length;
    }
    return parts;
}

}  // namespace

std::vector<Piece> FrameReply(const std::string& line, const std::string& answer, const FramingFaults& faults) {
    std::vector<Piece> pieces;
    int delay = faults.echoDelayMs;
    for (const std::string& part : Split(faults.noise + line, faults.echoPieces)) {
        pieces.push_back({delay, part});
        delay = faults.pieceGapMs;
    }
    const std::string rest = (faults.noLineFeed ? "" : "\n") + answer + kPrompt + faults.afterPrompt;
    const bool apart = faults.answerPieces > 1 || faults.answerDelayMs > 0;
    if (!apart) {
        pieces.back().bytes += rest;
        return pieces;
    }
    delay = std::max(faults.answerDelayMs, faults.answerPieces > 1 ? faults.pieceGapMs : 0);
    for (const std::string& part : Split(rest, faults.answerPieces)) {
        pieces.push_back({delay, part});
        delay = faults.pieceGapMs;
    }
    return pieces;
}

}  // namespace sb::module
