#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

using namespace std::string_literals;

// Each pair: what a call gave and what its rule says.
TEST(HexText, TextsFollowTheirRules) {
    const std::string zeros(398, '0');
    const std::vector<std::pair<std::string, std::string>> cases = {
        {BytesToHexSpaced("\x0A"), "0A"}, {BytesToHexSpaced("\0\xFF\x01"s), "00 FF 01"},
        {BytesToHex("\x12\xab"), "12AB"}, {NumberToHex("&h1F", 2, true), "001F"},
        {NumberToHex("abc", 2, true), "0000"}, {NumberToHex("1.9", 1, true), "01"},
        {NumberToHex("305419896", 4, false), "78563412"}, {NumberToHex("5000000000", 4, true), "2A05F200"},
        {NumberToHex("4294967295", 4, false), "FFFFFFFF"}, {NumberToHex("2147483647", 1, true), "FF"},
        {NumberToHex("300", 2, true), "012C"}, {NumberToHex("300", 2, false), "2C01"},
        {NumberToHex("300", 0, true), ""}, {NumberToHex("-1.9", 2, true), "FFFF"},
        {NumberToHex("-256", 2, false), "00FF"}, {NumberToHex("1", 200, false), "01" + zeros},
        {HexToNumber("1234", 1, true), "18"}, {HexToNumber("ABC", 2, true), "2748"},
        {HexToNumber("ABC", 2, false), "49323"}, {HexToNumber("ffffffff", 4, false), "4294967295"},
        {HexToNumber("", 4, true), "0"}, {HexToNumber("0x 12 34", 2, true), "4660"},
        {HexToNumber("12 0x34", 2, true), "4608"}, {HexToNumber("12345678", 4, false), "2018915346"},
        {HexToNumber("G1", 1, true), "0"}, {HexToNumber("1G", 1, true), "1"},
        {HexToNumber("FF", -3, true), "0"}, {HexToNumber("FFFFFFFFFFFFFFFF", 8, true), "1.84467440737096E+19"},
        {HexToNumber("01" + zeros, 200, false), "1"},  // weights beyond the double range
        {NormalizeHex("0x12 0x34\r\n"), "1234"}, {NormalizeHex("10X2"), "12"}, {NormalizeHex("12 3G"), ""},
        {NormalizeHex("   "), ""}, {NormalizeHex("\tab\tcd"), "ABCD"}, {NormalizeHex("0\tx1"), "1"},
        {NormalizeHex("00XX"), ""},  // one pass leaves 0X
        {Uint32ToHex(255), "000000FF"}, {Uint32ToHex(1.9), "00000001"}, {Uint32ToBytes(258), "\x02\x01\0\0"s},
        {Uint32ToHex(4294967295.9999999), "00000000"},  // its decimal text rounds it to 2^32
    };
    for (size_t i = 0; i < cases.size(); ++i) EXPECT_EQ(cases[i].first, cases[i].second) << "case " << i;

    const std::vector<std::pair<double, double>> numbers = {
        {HexToUint32("FF"), 255}, {HexToUint32("FFFFFFFF"), 4294967295.0}, {HexToUint32("123456789"), 0x12345678},
        {BytesToUint32("\x02\x01"), 258}, {BytesToUint32(""), 0}, {BytesToUint32("\x01\x02\x03\x04\x05"), 0x04030201},
    };
    for (size_t i = 0; i < numbers.size(); ++i) EXPECT_EQ(numbers[i].first, numbers[i].second) << "number " << i;

    for (const char* text : {"", "12 3", "G", "-1", "0x1"}) EXPECT_FALSE(IsHexText(text) || IsDecText(text)) << text;
    EXPECT_TRUE(IsHexText("09afAF") && IsDecText("0123456789") && !IsDecText("1A"));
}

TEST(HexText, HexToBytesKeepsHexDigitsAndCleansAnEvenText) {
    const struct {
        std::string text, bytes, textAfter;
    } cases[] = {
        {"", "", ""}, {"12 34", "\x12\x34", "1234"}, {"ab\r\nCD", "\xAB\xCD", "abCD"}, {"0000", "\0\0"s, "0000"},
        {"123", "", "123"}, {"0x1F", "", "0x1F"},  // no prefix rule: 0, 1, F are three digits
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        EXPECT_EQ(HexToBytes(text), c.bytes) << c.text;
        EXPECT_EQ(text, c.textAfter) << c.text;
    }
}

TEST(HexText, TheDataModelsLimitsOverflow) {
    const std::string longest(32767, 'A'), tooLong(32768, 'A');
    const std::vector<std::function<void()>> within = {
        [&] { BytesToHexSpaced(longest); }, [&] { HexToBytes(longest); }, [&] { HexToNumber(longest, 4, true); },
        [&] { NumberToHex("1", 16383, true); }, [&] { BytesToUint32(std::string(16383, '\1')); },
    };
    const std::vector<std::function<void()>> beyond = {
        [&] { BytesToHex(tooLong); }, [&] { BytesToHexSpaced(tooLong); }, [&] { HexToBytes(tooLong); },
        [&] { HexToNumber(tooLong, 4, true); }, [&] { HexToNumber("", 16384, true); },
        [&] { NumberToHex("1", 16384, true); }, [&] { NumberToHex("2147483648", 1, true); },
        [&] { NumberToHex("-2147483649", 1, true); }, [&] { HexToNumber(std::string(300, 'F'), 150, true); },
        [&] { BytesToUint32(std::string(16384, '\1')); },
    };
    for (size_t i = 0; i < within.size(); ++i) EXPECT_NO_THROW(within[i]()) << "within " << i;
    for (size_t i = 0; i < beyond.size(); ++i) EXPECT_THROW(beyond[i](), OverflowError) << "beyond " << i;
}

}  // namespace
}  // namespace sb
