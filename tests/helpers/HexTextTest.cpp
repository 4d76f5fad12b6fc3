#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

using namespace std::string_literals;

// The conversions between numbers, bytes and their texts: the cases of
// hex-cases.json, and here those of bytes and of lengths.
TEST(HexText, TextsFollowTheirRules) {
    const auto cases = test::TestCases("helpers/hex-cases.json");
    for (const auto& c : cases["NumberToHex"]) EXPECT_EQ(NumberToHex(c[0], c[1], c[2]), c[3]) << c;
    for (const auto& c : cases["HexToNumber"]) EXPECT_EQ(HexToNumber(c[0], c[1], c[2]), c[3]) << c;
    for (const auto& c : cases["NormalizeHex"]) EXPECT_EQ(NormalizeHex(c[0]), c[1]) << c;
    for (const auto& c : cases["Uint32ToHex"]) EXPECT_EQ(Uint32ToHex(c[0]), c[1]) << c;
    for (const auto& c : cases["HexToUint32"]) EXPECT_EQ(HexToUint32(c[0]), c[1].get<double>()) << c;

    const std::string zeros(398, '0');
    const std::vector<std::pair<std::string, std::string>> texts = {
        {BytesToHexSpaced("\x0A"), "0A"}, {BytesToHexSpaced("\0\xFF\x01"s), "00 FF 01"}, {BytesToHex("\x12\xab"), "12AB"},
        {NumberToHex("1", 200, false), "01" + zeros}, {Uint32ToBytes(258), "\x02\x01\0\0"s},
        {HexToNumber("01" + zeros, 200, false), "1"},  // weights beyond the double range
    };
    for (size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(texts[i].first, texts[i].second) << "text " << i;
    EXPECT_EQ(BytesToUint32("\x02\x01"), 258);
    EXPECT_EQ(BytesToUint32(""), 0);
    EXPECT_EQ(BytesToUint32("\x01\x02\x03\x04\x05"), 0x04030201);

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
