// The image codec: options lie bit-packed in the image, without regard for
// byte borders. Image bit p is bit p mod 8 of byte p / 8, and bit i of an
// option's value is image bit BitPos + i, so a value always starts at bit 0
// of its first byte however its field lies.
#include <cstdint>

#include "config/ConfigTool.h"
#include "helpers/HexText.h"

namespace sb {
namespace {

enum class RawForm { Number, Hex, Bytes, Unknown };

RawForm FormOf(const std::string& type) {
    if (type == "INT") return RawForm::Number;
    if (type == "BIN" || type == "BITFIELD") return RawForm::Hex;
    if (type == "STR") return RawForm::Bytes;
    return RawForm::Unknown;
}

// Bytes that hold BitLen bits; bit bounds in 64 bits, for a catalog's
// positions and lengths may each be near 2^31.
int64_t ValueBytes(const OptionRec& option) { return (static_cast<int64_t>(option.BitLen) + 7) / 8; }

bool LiesInside(const OptionRec& option, const std::string& image) {
    if (option.BitPos < 0 || option.BitLen < 0) return false;
    const int64_t end = (static_cast<int64_t>(option.BitPos) + option.BitLen + 7) / 8;
    return end <= static_cast<int64_t>(image.size());
}

// Copies count bits one by one; every other bit of `to` keeps its state.
void CopyBits(const std::string& from, int64_t fromBit, std::string& to, int64_t toBit, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        const int64_t source = fromBit + i;
        const int64_t target = toBit + i;
        const bool set = (static_cast<unsigned char>(from[source / 8]) >> (source % 8)) & 1;
        const auto mask = static_cast<unsigned char>(1u << (target % 8));
        auto& byte = reinterpret_cast<unsigned char&>(to[target / 8]);
        byte = set ? (byte | mask) : (byte & ~mask);
    }
}

// Only the first four bytes of a value make its number; fewer count as
// filled with zero bytes.
std::string IntText(const std::string& valueBytes) { return Uint32ToHex(BytesToUint32(valueBytes.substr(0, 4))); }

std::string RawValue(RawForm form, const std::string& valueBytes) {
    switch (form) {
        case RawForm::Number: return IntText(valueBytes);
        case RawForm::Hex: return BytesToHex(valueBytes);
        default: return valueBytes;
    }
}

// The text of the first list entry of the raw value, or the raw value,
// with the units behind; a BITFIELD shows its raw value alone.
std::string ShownText(const OptionRec& option, const std::string& raw) {
    if (option.Type == "BITFIELD") return raw;
    for (const OptValue& entry : option.Values.Items)
        if (entry.Value == raw) return entry.Text + option.Units;
    return raw + option.Units;
}

}  // namespace

std::string GetOptionValue(const std::string& image, const OptionRec& option, std::string& shown) {
    shown = kWrongValue;
    const RawForm form = FormOf(option.Type);
    if (!LiesInside(option, image) || form == RawForm::Unknown) return {};
    std::string value(static_cast<size_t>(ValueBytes(option)), '\0');
    CopyBits(image, option.BitPos, value, 0, option.BitLen);
    std::string raw = RawValue(form, value);
    shown = ShownText(option, raw);
    return raw;
}

std::string SetOptionValue(std::string& image, const OptionRec& option, std::string& value) {
    if (!LiesInside(option, image)) return kWrongValue;
    const RawForm form = FormOf(option.Type);
    std::string valueBytes;
    switch (form) {
        case RawForm::Number: valueBytes = Uint32ToBytes(HexToUint32(value)); break;
        case RawForm::Hex: valueBytes = HexToBytes(value); break;
        case RawForm::Bytes: valueBytes = value; break;
        case RawForm::Unknown: return kWrongValue;
    }
    // A longer value is welcome; its bits beyond the field stay out.
    if (static_cast<int64_t>(valueBytes.size()) < ValueBytes(option)) return kWrongValue;
    CopyBits(valueBytes, 0, image, option.BitPos, option.BitLen);
    return ShownText(option, RawValue(form, valueBytes));
}

}  // namespace sb
