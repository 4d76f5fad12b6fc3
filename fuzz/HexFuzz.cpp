// The hex conversions and bit masks on any text: nothing may crash, and the
// results keep the forms their rules promise. Texts beyond the data model's
// limits throw OverflowError, which is their defined failure.
#include <cstddef>
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

std::string HexDigitsOf(const std::string& text) {
    std::string digits;
    for (const char c : text)
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')) digits += c;
    return digits;
}

std::string Upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

void Conversions(const std::string& text, int count, bool bigEndian) {
    const std::string normal = sb::NormalizeHex(text);
    Require(normal.empty() || sb::IsHexText(normal));
    Require(Upper(normal) == normal);

    const std::string digits = HexDigitsOf(text);
    const std::string bytes = sb::HexToBytes(text);
    std::string rewritten = text;
    const std::string sameBytes = sb::HexToBytes(rewritten);
    Require(bytes == sameBytes);
    if (digits.size() % 2 == 0 && !text.empty()) {
        Require(bytes.size() * 2 == digits.size());
        Require(sb::BytesToHex(bytes) == Upper(digits));
        Require(rewritten == digits);
    } else {
        Require(bytes.empty());
        Require(rewritten == text);
    }
    const std::string spaced = sb::BytesToHexSpaced(bytes);
    Require(spaced.size() == (bytes.empty() ? 0 : bytes.size() * 3 - 1));

    const double value = sb::HexToUint32(text);
    Require(value >= 0 && value <= 4294967295.0);
    const std::string hex = sb::Uint32ToHex(value);
    Require(hex.size() == 8 && sb::HexToUint32(hex) == value);
    Require(sb::BytesToUint32(sb::Uint32ToBytes(value)) == value);

    sb::HexToNumber(text, count, bigEndian);
    const std::string number = sb::NumberToHex(text, count, bigEndian);
    Require(number.size() == static_cast<size_t>(count > 0 ? 2 * count : 0));
}

void Masks(const std::string& a, const std::string& b, int bit) {
    const std::string aBytes = sb::HexToBytes(a);
    Require(sb::HexAnd(a, b).size() == aBytes.size() * 2);
    Require(sb::HexOr(a, b).size() == aBytes.size() * 2);
    Require(sb::HexNot(sb::HexNot(a)) == sb::BytesToHex(aBytes));
    const bool set = sb::TestBit(a, bit, 1);
    sb::TestBit(a, bit, 0);
    // On a text of whole bytes, bit n of order 1 is bit n mod 8 of the n / 8th
    // byte from the end.
    if (bit >= 0 && !aBytes.empty() && a.size() == aBytes.size() * 2 && sb::IsHexText(a)) {
        const size_t index = static_cast<size_t>(bit) / 8;
        const bool expected =
            index < aBytes.size() && ((static_cast<unsigned char>(aBytes[aBytes.size() - 1 - index]) >> (bit % 8)) & 1);
        Require(set == expected);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    // Two bytes of parameters, then the text; a "|" splits it for the masks.
    const int count = data[0] % 10;
    const bool bigEndian = data[0] & 0x80;
    const int bit = static_cast<int8_t>(data[1]) * 3;
    const std::string text(reinterpret_cast<const char*>(data + 2), size - 2);
    const size_t bar = text.find('|');
    try {
        Conversions(text, count, bigEndian);
        Masks(text.substr(0, bar), bar == std::string::npos ? std::string() : text.substr(bar + 1), bit);
    } catch (const sb::OverflowError&) {
    }
    return 0;
}
