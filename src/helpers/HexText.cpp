#include "helpers/HexText.h"

#include <cmath>
#include <cstdint>

#include "helpers/NumberScan.h"
#include "helpers/NumberText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

// The conversions count characters and bytes in 16-bit signed integers.
constexpr size_t kMaxTextLength = 32767;
constexpr int kMaxCount = 16383;

constexpr char kHexDigits[] = "0123456789ABCDEF";

void CheckTextLength(size_t length) {
    if (length > kMaxTextLength) throw OverflowError("text longer than 32767 characters");
}

void CheckCount(int count) {
    if (count > kMaxCount) throw OverflowError("byte count above 16383");
}

constexpr char ToUpperAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

void AppendHexPair(std::string& text, unsigned char byte) {
    text += kHexDigits[byte >> 4];
    text += kHexDigits[byte & 0x0F];
}

// A number that went through its decimal text: 15 significant digits, so a
// fraction like 4294967295.9999999 comes back as 4294967296.
double ThroughDecimalText(double value) {
    if (std::fabs(value) < 1e15 && value == std::trunc(value)) return value;  // the text is exact
    return ReadNumber(NumberText(value));
}

// The whole part of value in count bytes, most significant first. Higher
// bytes than count are lost; a negative value gives its two's complement.
std::string ValueToBytes(double value, int count) {
    std::string bytes(static_cast<size_t>(count), '\0');
    const bool negative = value < 0;
    double rest = std::fabs(std::trunc(value));
    for (int k = count - 1; k >= 0; --k) {
        // Weights past the double range leave nothing to take: their byte is 0.
        if (8 * k >= 1024) continue;
        const double weight = std::ldexp(1.0, 8 * k);
        const double quotient = std::floor(rest / weight);
        // The first quotient must fit a 32-bit signed integer.
        if (k == count - 1 && quotient >= 2147483648.0) throw OverflowError("number too large for the byte count");
        bytes[static_cast<size_t>(count - 1 - k)] = static_cast<char>(static_cast<uint64_t>(quotient) & 0xFF);
        rest -= quotient * weight;
    }
    if (negative) {
        unsigned carry = 1;
        for (auto it = bytes.rbegin(); it != bytes.rend(); ++it) {
            const unsigned sum = (static_cast<unsigned char>(*it) ^ 0xFFu) + carry;
            *it = static_cast<char>(sum & 0xFF);
            carry = sum >> 8;
        }
    }
    return bytes;
}

std::string ValueToHex(double value, int count, bool bigEndian) {
    const std::string bytes = ValueToBytes(value, count);
    std::string text;
    text.reserve(bytes.size() * 2);
    if (bigEndian)
        for (auto it = bytes.begin(); it != bytes.end(); ++it) AppendHexPair(text, static_cast<unsigned char>(*it));
    else
        for (auto it = bytes.rbegin(); it != bytes.rend(); ++it) AppendHexPair(text, static_cast<unsigned char>(*it));
    return text;
}

// The value of the first 2 x count digits of a hex text, after blanks and a
// leading "0X" are dropped and the text is filled with "0" to that length.
double HexValue(const std::string& hexText, int count, bool bigEndian) {
    CheckTextLength(hexText.size());
    CheckCount(count);
    if (count <= 0) return 0;
    const size_t wanted = 2 * static_cast<size_t>(count);

    // Only the first digits count, so collect no more than them and a prefix.
    std::string digits;
    digits.reserve(wanted + 2);
    for (char c : hexText) {
        if (c == ' ') continue;
        digits += c;
        if (digits.size() == wanted + 2) break;
    }
    if (digits.size() >= 2 && digits[0] == '0' && ToUpperAscii(digits[1]) == 'X') digits.erase(0, 2);
    if (digits.size() > wanted) digits.resize(wanted);
    if (digits.size() < wanted) {
        if (bigEndian)
            digits.insert(0, wanted - digits.size(), '0');
        else
            digits.append(wanted - digits.size(), '0');
    }

    double sum = 0;
    if (bigEndian) {
        // Scaling by 256 is exact, so this equals adding pair x weight from
        // the highest weight down.
        for (size_t i = 0; i < wanted; i += 2) sum = sum * 256 + ReadHexPair(digits[i], digits[i + 1]);
    } else {
        for (size_t i = 0; i < wanted; i += 2) {
            const int byte = ReadHexPair(digits[i], digits[i + 1]);
            if (byte != 0) sum += byte * std::ldexp(1.0, static_cast<int>(4 * i));
        }
    }
    if (!std::isfinite(sum)) throw OverflowError("hex value beyond the number range");
    return sum;
}

// Keeps the hex digits of text and pairs them into bytes; false (and no
// bytes) when their number is odd. kept receives the digits as they stood.
bool DecodeHexDigits(const std::string& text, std::string& bytes, std::string* kept) {
    CheckTextLength(text.size());
    bytes.clear();
    bytes.reserve(text.size() / 2);
    if (kept) kept->reserve(text.size());
    int high = -1;
    for (char c : text) {
        const int digit = HexDigitValue(c);
        if (digit < 0) continue;
        if (kept) *kept += c;
        if (high < 0) {
            high = digit;
        } else {
            bytes += static_cast<char>(high * 16 + digit);
            high = -1;
        }
    }
    if (high >= 0) {
        bytes.clear();
        return false;
    }
    return true;
}

template <typename Accept>
bool AllCharacters(const std::string& text, Accept accept) {
    if (text.empty()) return false;
    for (char c : text)
        if (!accept(ToUpperAscii(c))) return false;
    return true;
}

}  // namespace

std::string BytesToHexSpaced(const std::string& bytes) {
    CheckTextLength(bytes.size());
    std::string text;
    if (bytes.empty()) return text;
    text.reserve(bytes.size() * 3);
    for (unsigned char byte : bytes) {
        AppendHexPair(text, byte);
        text += ' ';
    }
    text.pop_back();
    return text;
}

std::string BytesToHex(const std::string& bytes) {
    CheckTextLength(bytes.size());
    std::string text;
    text.reserve(bytes.size() * 2);
    for (unsigned char byte : bytes) AppendHexPair(text, byte);
    return text;
}

std::string NumberToHex(const std::string& decimalText, int count, bool bigEndian) {
    CheckCount(count);
    if (count <= 0) return {};
    return ValueToHex(ReadNumber(decimalText), count, bigEndian);
}

std::string HexToNumber(const std::string& hexText, int count, bool bigEndian) {
    return NumberText(HexValue(hexText, count, bigEndian));
}

std::string HexToBytes(std::string& hexText) {
    if (hexText.empty()) return {};
    std::string bytes;
    std::string kept;
    if (DecodeHexDigits(hexText, bytes, &kept) && kept.size() != hexText.size()) hexText = std::move(kept);
    return bytes;
}

std::string HexToBytes(const std::string& hexText) {
    std::string bytes;
    DecodeHexDigits(hexText, bytes, nullptr);
    return bytes;
}

bool IsHexText(const std::string& text) {
    return AllCharacters(text, [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); });
}

bool IsDecText(const std::string& text) {
    return AllCharacters(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::string Uint32ToHex(double value) { return ValueToHex(ThroughDecimalText(value), 4, true); }

// The sum of four pairs is below 2^32, whose decimal text is exact, so the
// value needs no trip through that text.
double HexToUint32(const std::string& hex) { return HexValue(hex, 4, true); }

std::string Uint32ToBytes(double value) {
    const std::string bigEndianBytes = ValueToBytes(ThroughDecimalText(value), 4);
    return std::string(bigEndianBytes.rbegin(), bigEndianBytes.rend());
}

double BytesToUint32(const std::string& bytes) {
    // The value goes through the hex text of all the bytes, two characters
    // each, which must stay within the text limit.
    CheckTextLength(bytes.size() * 2);
    double sum = 0;
    for (size_t i = 0; i < 4 && i < bytes.size(); ++i)
        sum += static_cast<unsigned char>(bytes[i]) * std::ldexp(1.0, static_cast<int>(8 * i));
    return sum;
}

std::string NormalizeHex(const std::string& text) {
    std::string cleaned;
    cleaned.reserve(text.size());
    for (char c : text)
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n') cleaned += ToUpperAscii(c);

    // Every "0X" goes, in one pass from the left, as a text replace does.
    std::string result;
    result.reserve(cleaned.size());
    for (size_t i = 0; i < cleaned.size(); ++i) {
        if (cleaned[i] == '0' && i + 1 < cleaned.size() && cleaned[i + 1] == 'X') {
            ++i;
            continue;
        }
        result += cleaned[i];
    }
    return IsHexText(result) ? result : std::string();
}

}  // namespace sb
