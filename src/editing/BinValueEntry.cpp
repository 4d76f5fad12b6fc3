#include "editing/BinValueEntry.h"

#include <cmath>

#include "helpers/HexText.h"
#include "helpers/NumberText.h"
#include "helpers/Overflow.h"

namespace sb {

EntryCheck CheckBinEntry(const std::string& entry, int length, const std::string& editValue) {
    const EntryCheck refused{false, editValue, editValue};
    const std::string clean = NormalizeHex(entry);
    if (!IsHexText(clean)) return refused;
    try {
        // An odd number of digits gives no bytes, and so the wrong length.
        const std::string bytes = HexToBytes(clean);
        if (static_cast<int64_t>(bytes.size()) != length) return refused;
        return {true, BytesToHexSpaced(bytes), entry};
    } catch (const OverflowError&) {
        // More digits than the conversion takes: no value of any option.
        return refused;
    }
}

int LengthOfBox(const std::string& lenText) {
    try {
        const double length = std::trunc(ReadNumber(lenText));
        return length < 0 || length > 1e9 ? -1 : static_cast<int>(length);
    } catch (const OverflowError&) {
        return -1;
    }
}

std::string LengthBoxText(int length) { return " " + NumberText(length); }

}  // namespace sb
