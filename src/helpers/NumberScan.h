#pragma once
#include <string_view>

// Pieces of the number rule shared by the conversions and the bit tests.
namespace sb {

// Blank, tab and line feed: the characters the number rule skips wherever
// they stand.
constexpr bool IsSkippedInNumber(char c) { return c == ' ' || c == '\t' || c == '\n'; }

// 0-15 for a hex digit of either case, -1 for any other character.
constexpr int HexDigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// The value of the text behind "&h": hex digits up to the first character
// that is none; up to four digits are a 16-bit two's complement value, five
// to eight a 32-bit one, no digit is 0. More than eight digits throw
// OverflowError.
double ReadHexBody(std::string_view digits);

// A hex pair read as "&h" followed by the pair: "1F" is 31, "G1" is 0, "1G" 1.
inline int ReadHexPair(char high, char low) {
    const int h = HexDigitValue(high);
    const int l = HexDigitValue(low);
    if (h >= 0 && l >= 0) return h * 16 + l;
    const char pair[2] = {high, low};
    return static_cast<int>(ReadHexBody(std::string_view(pair, 2)));
}

}  // namespace sb
