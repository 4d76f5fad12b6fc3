// The hex conversions and bit masks on any text: nothing may crash, and the
// results keep the forms their rules promise. Texts beyond the data model's
// limits throw OverflowError, which is their defined failure.
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "helpers/BitMasks.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

void Check(const std::string& text, const std::string& other, int count, bool bigEndian, int bit) {
    std::string digits, cleaned = text;
    for (const char c : text)
        if (std::isxdigit(static_cast<unsigned char>(c))) digits += c;
    const std::string bytes = sb::HexToBytes(cleaned);
    const bool even = digits.size() % 2 == 0 && !text.empty();
    Require(bytes.size() * 2 == (even ? digits.size() : 0) && cleaned == (even ? digits : text));
    Require(sb::HexToBytes(text) == bytes && (!even || sb::BytesToHex(bytes) == sb::NormalizeHex(digits)));
    Require(sb::BytesToHexSpaced(bytes).size() == (bytes.empty() ? 0 : bytes.size() * 3 - 1));
    const std::string normal = sb::NormalizeHex(text);
    Require(normal.empty() || (sb::IsHexText(normal) && normal.find_first_of("abcdef") == std::string::npos));

    const double value = sb::HexToUint32(text);
    Require(value >= 0 && value <= 4294967295.0 && sb::HexToUint32(sb::Uint32ToHex(value)) == value);
    Require(sb::BytesToUint32(sb::Uint32ToBytes(value)) == value);
    sb::HexToNumber(text, count, bigEndian);
    Require(sb::NumberToHex(text, count, bigEndian).size() == static_cast<size_t>(count > 0 ? 2 * count : 0));

    Require(sb::HexAnd(text, other).size() == bytes.size() * 2 && sb::HexOr(text, other).size() == bytes.size() * 2);
    Require(sb::HexNot(sb::HexNot(text)) == sb::BytesToHex(bytes));
    // On whole bytes, bit n of order 1 is bit n mod 8 of the n / 8th byte from the end.
    const size_t index = static_cast<size_t>(bit) / 8;
    const auto byte = [&] { return static_cast<unsigned char>(bytes[bytes.size() - 1 - index]); };
    if (bit >= 0 && digits.size() == text.size() && even)
        Require(sb::TestBit(text, bit, 1) == (index < bytes.size() && ((byte() >> (bit % 8)) & 1)));
    sb::TestBit(text, bit, 0);
}

}  // namespace

// Two bytes of parameters, then the text; a "|" splits off the second operand of the masks.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const std::string text(reinterpret_cast<const char*>(data + 2), size - 2);
    const size_t bar = text.find('|');
    try {
        Check(text.substr(0, bar), bar == std::string::npos ? "" : text.substr(bar + 1), data[0] % 10, data[0] & 0x80,
              static_cast<int8_t>(data[1]) * 3);
    } catch (const sb::OverflowError&) {
    }
    return 0;
}
