#include "editing/StrValueEntry.h"

#include "helpers/HexText.h"

namespace sb {
namespace {

EntryCheck CheckHex(const std::string& entry, int length, const std::string& editValue) {
    const std::string clean = NormalizeHex(entry);
    const std::string fallback = BytesToHexSpaced(editValue);
    if (!IsHexText(clean)) return {false, editValue, fallback};
    const std::string bytes = HexToBytes(clean);
    if (static_cast<int64_t>(bytes.size()) != length) return {false, editValue, fallback};
    return {true, bytes, entry};
}

EntryCheck CheckAscii(const std::string& entry, int length, const std::string& editValue) {
    if (static_cast<int64_t>(entry.size()) != length) return {false, editValue, editValue};
    return {true, entry, entry};
}

}  // namespace

EntryCheck CheckStrEntry(TextMode mode, const std::string& entry, int length, const std::string& editValue) {
    return mode == TextMode::Hex ? CheckHex(entry, length, editValue) : CheckAscii(entry, length, editValue);
}

std::string SwitchTextMode(const std::string& box, TextMode to) {
    return to == TextMode::Hex ? BytesToHex(box) : HexToBytes(box);
}

}  // namespace sb
