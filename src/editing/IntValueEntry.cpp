#include "editing/IntValueEntry.h"

#include "helpers/HexText.h"
#include "helpers/NumberText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

constexpr int kIntBytes = 4;

std::string ToHex(const std::string& decimal) { return NumberToHex(decimal, kIntBytes, true); }
std::string ToDec(const std::string& hex) { return HexToNumber(hex, kIntBytes, true); }

// A box that the conversion can't take keeps its text.
void Convert(std::string& box, Radix to) {
    try {
        box = to == Radix::Hex ? ToHex(box) : ToDec(box);
    } catch (const OverflowError&) {
    }
}

bool InRange(double entered, double min, double max) { return entered >= min && entered <= max; }

EntryCheck Refuse(Radix radix, const std::string& editValue) {
    std::string box = editValue;
    if (radix == Radix::Dec) Convert(box, Radix::Dec);
    return {false, editValue, box};
}

EntryCheck CheckDec(const IntBoxes& boxes, const std::string& editValue) {
    if (!IsDecText(boxes.Value)) return Refuse(Radix::Dec, editValue);
    const double max = HexToUint32(ToHex(boxes.Max));
    const double min = HexToUint32(ToHex(boxes.Min));
    const double entered = ReadNumber(boxes.Value);
    if (!InRange(entered, min, max)) return Refuse(Radix::Dec, editValue);
    return {true, Uint32ToHex(entered), boxes.Value};
}

EntryCheck CheckHex(const IntBoxes& boxes, const std::string& editValue) {
    // The test runs on the raw text: a blank or a 0x prefix fails here,
    // although the normalized text would drop it.
    const std::string clean = NormalizeHex(boxes.Value);
    if (clean.size() > 8 || !IsHexText(boxes.Value)) return Refuse(Radix::Hex, editValue);
    const double entered = HexToUint32(clean);
    const double min = HexToUint32(boxes.Min);
    const double max = HexToUint32(boxes.Max);
    if (!InRange(entered, min, max)) return Refuse(Radix::Hex, editValue);
    return {true, clean, boxes.Value};
}

}  // namespace

void SwitchIntRadix(IntBoxes& boxes, Radix to) {
    Convert(boxes.Max, to);
    Convert(boxes.Min, to);
    Convert(boxes.Value, to);
}

EntryCheck CheckIntEntry(Radix radix, const IntBoxes& boxes, const std::string& editValue) {
    try {
        return radix == Radix::Dec ? CheckDec(boxes, editValue) : CheckHex(boxes, editValue);
    } catch (const OverflowError&) {
        // A number beyond every range, such as a decimal text of 400 digits.
        return Refuse(radix, editValue);
    }
}

}  // namespace sb
