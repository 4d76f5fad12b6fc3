#include "helpers/NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "helpers/NumberScan.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

// Walks a text the way the number rule sees it: skipped characters are
// invisible, the end of the text reads as NUL (which ends a number anyway).
class NumberScanner {
public:
    explicit NumberScanner(std::string_view text) : p_(text.data()), end_(text.data() + text.size()) {}

    char Peek() {
        while (p_ < end_ && IsSkippedInNumber(*p_)) ++p_;
        return p_ < end_ ? *p_ : '\0';
    }
    void Next() { ++p_; }
    std::string_view Rest() const { return {p_, static_cast<size_t>(end_ - p_)}; }

private:
    const char* p_;
    const char* end_;
};

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Exponents beyond this cannot change the outcome (overflow or zero), so the
// scan stops growing them and needs no big arithmetic.
constexpr int64_t kExponentCap = 1'000'000;

struct DecimalParts {
    std::string digits;        // integer and fraction digits, no point
    int64_t integerDigits = 0;  // how many of them stand before the point
    int64_t exponent = 0;
    bool negative = false;
};

// The decimal power of the first non-zero digit; INT64_MIN for a mantissa of
// zeros only.
int64_t LeadingPower(const DecimalParts& parts) {
    const auto first = parts.digits.find_first_not_of('0');
    if (first == std::string::npos) return INT64_MIN;
    return parts.integerDigits - 1 - static_cast<int64_t>(first) + parts.exponent;
}

double ConvertDecimal(const DecimalParts& parts) {
    // Correctly rounded conversion of the cleaned text "ddd.ddde+x".
    std::string text;
    text.reserve(parts.digits.size() + 24);
    if (parts.integerDigits == 0) text += '0';
    text.append(parts.digits, 0, static_cast<size_t>(parts.integerDigits));
    if (static_cast<size_t>(parts.integerDigits) < parts.digits.size()) {
        text += '.';
        text.append(parts.digits, static_cast<size_t>(parts.integerDigits));
    }
    text += 'e';
    text += std::to_string(parts.exponent);

    double value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    (void)end;
    if (ec == std::errc::result_out_of_range || !std::isfinite(value)) {
        const int64_t power = LeadingPower(parts);
        if (power > 0) throw OverflowError("number too large: " + text);
        value = 0;  // too small for a double: it reads as zero
    }
    return parts.negative ? -value : value;
}

}  // namespace

double ReadHexBody(std::string_view digits) {
    NumberScanner scan(digits);
    uint64_t value = 0;
    int count = 0;
    for (int d; (d = HexDigitValue(scan.Peek())) >= 0; scan.Next()) {
        if (++count > 8) throw OverflowError("more than eight hex digits behind &h");
        value = value * 16 + static_cast<uint64_t>(d);
    }
    if (count <= 4) return static_cast<int16_t>(static_cast<uint16_t>(value));
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

double ReadNumber(const std::string& text) {
    NumberScanner scan(text);
    char c = scan.Peek();
    if (c == '&') {
        scan.Next();
        c = scan.Peek();
        if (c != 'h' && c != 'H') return 0;
        scan.Next();
        return ReadHexBody(scan.Rest());
    }

    DecimalParts parts;
    if (c == '+' || c == '-') {
        parts.negative = c == '-';
        scan.Next();
    }
    // Whole numbers of up to 19 digits, the common case, convert exactly
    // without building a text.
    uint64_t whole = 0;
    for (; IsDigit(c = scan.Peek()); scan.Next()) {
        parts.digits += c;
        if (parts.digits.size() <= 19) whole = whole * 10 + static_cast<uint64_t>(c - '0');
    }
    parts.integerDigits = static_cast<int64_t>(parts.digits.size());
    if (c == '.') {
        scan.Next();
        for (; IsDigit(c = scan.Peek()); scan.Next()) parts.digits += c;
    }
    if (parts.digits.empty()) return 0;

    if (c == 'E' || c == 'e' || c == 'D' || c == 'd') {
        scan.Next();
        bool negativeExponent = false;
        c = scan.Peek();
        if (c == '+' || c == '-') {
            negativeExponent = c == '-';
            scan.Next();
        }
        // An "E" without digits leaves the number as it stands.
        int64_t exponent = 0;
        for (; IsDigit(c = scan.Peek()); scan.Next())
            if (exponent < kExponentCap) exponent = exponent * 10 + (c - '0');
        parts.exponent = negativeExponent ? -exponent : exponent;
    }

    const bool plainWhole = parts.exponent == 0 && parts.integerDigits == static_cast<int64_t>(parts.digits.size()) &&
                            parts.digits.size() <= 19;
    if (plainWhole) {
        const double value = static_cast<double>(whole);
        return parts.negative ? -value : value;
    }
    return ConvertDecimal(parts);
}

std::string NumberText(double value) {
    if (!std::isfinite(value)) throw OverflowError("number out of range");
    if (value == 0) return "0";  // also for -0

    char buffer[40];
    // Whole numbers below 1E+15 are written as they are.
    if (std::fabs(value) < 1e15 && value == std::trunc(value)) {
        const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<int64_t>(value)).ptr;
        return std::string(buffer, end);
    }

    // Round to 15 significant digits first: the rounding decides the
    // exponent, and the exponent decides the form (as %.15G does).
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 14).ptr;
    const std::string_view sci(buffer, static_cast<size_t>(end - buffer));  // [-]d.ddddddddddddddde[+-]xx
    const bool negative = sci.front() == '-';
    const auto ePos = sci.find('e');
    int exponent = 0;
    std::from_chars(sci.data() + ePos + (sci[ePos + 1] == '+' ? 2 : 1), sci.data() + sci.size(), exponent);

    std::string digits;
    for (char c : sci.substr(0, ePos))
        if (IsDigit(c)) digits += c;
    digits.erase(digits.find_last_not_of('0') + 1);

    std::string text;
    text.reserve(24);
    if (negative) text += '-';
    if (exponent < -4 || exponent >= 15) {
        text += digits[0];
        if (digits.size() > 1) {
            text += '.';
            text.append(digits, 1);
        }
        text += 'E';
        text += exponent < 0 ? '-' : '+';
        const int magnitude = exponent < 0 ? -exponent : exponent;
        if (magnitude < 10) text += '0';
        text += std::to_string(magnitude);
    } else if (exponent >= 0) {
        const auto integerDigits = static_cast<size_t>(exponent) + 1;
        text.append(digits, 0, integerDigits);
        if (digits.size() < integerDigits) text.append(integerDigits - digits.size(), '0');
        if (digits.size() > integerDigits) {
            text += '.';
            text.append(digits, integerDigits);
        }
    } else {
        text += "0.";
        text.append(static_cast<size_t>(-exponent - 1), '0');
        text += digits;
    }
    return text;
}

}  // namespace sb
