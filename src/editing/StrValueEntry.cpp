#include "editing/StrValueEntry.h"

#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

EntryCheck CheckHex(const std::string& entry, int length, const std::string& editValue) {
    const EntryCheck refused{false, editValue, BytesToHexSpaced(editValue)};
    const std::string clean = NormalizeHex(entry);
    if (!IsHexText(clean)) return refused;
    try {
        const std::string bytes = HexToBytes(clean);
        if (static_cast<int64_t>(bytes.size()) != length) return refused;
        return {true, bytes, entry};
    } catch (const OverflowError&) {
        return refused;
    }
}

EntryCheck CheckAscii(const std::string& entry, int length, const std::string& editValue) {
    if (static_cast<int64_t>(entry.size()) != length) return {false, editValue, editValue};
    return {true, entry, entry};
}

std::string InMode(const std::string& text, TextMode mode) {
    return mode == TextMode::Hex ? BytesToHex(text) : HexToBytes(text);
}

}  // namespace

EntryCheck CheckStrEntry(TextMode mode, const std::string& entry, int length, const std::string& editValue) {
    return mode == TextMode::Hex ? CheckHex(entry, length, editValue) : CheckAscii(entry, length, editValue);
}

ModeSwitch SwitchTextMode(const std::string& box, TextMode to, const std::string& editValue) {
    try {
        return {false, InMode(box, to)};
    } catch (const OverflowError&) {
        // A box beyond the conversion's limit: the last good value, in the
        // mode switched to.
        return {true, to == TextMode::Hex ? BytesToHex(editValue) : editValue};
    }
}

}  // namespace sb
