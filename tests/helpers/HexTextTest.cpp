#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

using namespace std::string_literals;

TEST(HexText, BytesBecomeTwoDigitsEach) {
    struct Case {
        std::string bytes;
        const char* spaced;
        const char* plain;
    };
    const std::vector<Case> cases = {
        {"", "", ""},
        {"\x0A", "0A", "0A"},
        {"\x12\xAB", "12 AB", "12AB"},
        {"\0\xFF\x01"s, "00 FF 01", "00FF01"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(BytesToHexSpaced(c.bytes), c.spaced);
        EXPECT_EQ(BytesToHex(c.bytes), c.plain);
    }
}

TEST(HexText, NumberToHexGivesExactlyTwoDigitsPerByte) {
    struct Case {
        const char* text;
        int count;
        bool bigEndian;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"&h1F", 2, true, "001F"},
        {"abc", 2, true, "0000"},
        {"", 2, true, "0000"},
        {"255", 4, true, "000000FF"},
        {"4294967295", 4, true, "FFFFFFFF"},
        {"4294967295", 4, false, "FFFFFFFF"},
        {"305419896", 4, false, "78563412"},
        {"1.9", 1, true, "01"},
        {"5000000000", 4, true, "2A05F200"},
        {"300", 1, true, "2C"},
        {"2147483647", 1, true, "FF"},  // the largest first quotient
        {"300", 2, true, "012C"},
        {"300", 2, false, "2C01"},
        {"300", 0, true, ""},
        {"300", -1, true, ""},
        {"-1", 4, true, "FFFFFFFF"},
        {"-1.9", 2, true, "FFFF"},
        {"-256", 2, false, "00FF"},
        {"1", 200, true, std::string(398, '0') + "01"},  // weights beyond the double range
        {"1", 200, false, "01" + std::string(398, '0')},
    };
    for (const auto& c : cases)
        EXPECT_EQ(NumberToHex(c.text, c.count, c.bigEndian), c.expected)
            << c.text << " count " << c.count << " bigEndian " << c.bigEndian;
}

TEST(HexText, HexToNumberReadsTheFirstPairsWithTheirWeights) {
    struct Case {
        std::string text;
        int count;
        bool bigEndian;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"ABC", 2, true, "2748"},  // filled to 0ABC
        {"ABC", 2, false, "49323"},  // filled to ABC0
        {"1234", 1, true, "18"},
        {"FFFFFFFF", 4, true, "4294967295"},
        {"ffffffff", 4, false, "4294967295"},
        {"", 4, true, "0"},
        {"0x 12 34", 2, true, "4660"},  // blanks go first, then the prefix
        {"12 0x34", 2, true, "4608"},  // a prefix further on is read as a pair
        {"12345678", 4, false, "2018915346"},
        {"12345678", 4, true, "305419896"},
        {"G1", 1, true, "0"},
        {"1G", 1, true, "1"},
        {"\t1", 1, true, "1"},
        {"FF", 0, true, "0"},
        {"FF", -3, true, "0"},
        {"FFFFFFFFFFFFFFFF", 8, true, "1.84467440737096E+19"},
        {"01" + std::string(398, '0'), 200, false, "1"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(HexToNumber(c.text, c.count, c.bigEndian), c.expected)
            << c.text << " count " << c.count << " bigEndian " << c.bigEndian;
}

TEST(HexText, NumbersSurviveTheTripThroughHex) {
    for (const char* number : {"0", "1", "255", "256", "65535", "16777216", "305419896", "4294967295"})
        for (bool bigEndian : {true, false})
            EXPECT_EQ(HexToNumber(NumberToHex(number, 4, bigEndian), 4, bigEndian), number) << number;
}

TEST(HexText, HexToBytesKeepsHexDigitsAndCleansAnEvenText) {
    struct Case {
        std::string text;
        std::string bytes;
        std::string textAfter;
    };
    const std::vector<Case> cases = {
        {"", "", ""},
        {"1234", "\x12\x34", "1234"},
        {"12 34", "\x12\x34", "1234"},
        {"ab\r\nCD", "\xAB\xCD", "abCD"},
        {"x12", "\x12", "12"},
        {"0000", "\0\0"s, "0000"},
        {"123", "", "123"},
        {"0x1F", "", "0x1F"},  // no prefix rule: 0, 1, F are three digits
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        EXPECT_EQ(HexToBytes(text), c.bytes) << c.text;
        EXPECT_EQ(text, c.textAfter) << c.text;
        EXPECT_EQ(HexToBytes(static_cast<const std::string&>(c.text)), c.bytes) << c.text;
    }
}

TEST(HexText, HexAndDecimalTextTests) {
    struct Case {
        const char* text;
        bool hex;
        bool dec;
    };
    const std::vector<Case> cases = {
        {"", false, false},
        {"0123456789", true, true},
        {"abcdef", true, false},
        {"ABCDEF", true, false},
        {"12 3", false, false},
        {"G", false, false},
        {"-1", false, false},
        {"1.5", false, false},
        {"0x1", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsHexText(c.text), c.hex) << '"' << c.text << '"';
        EXPECT_EQ(IsDecText(c.text), c.dec) << '"' << c.text << '"';
    }
}

TEST(HexText, NormalizeHexCleansOrGivesNothing) {
    struct Case {
        const char* text;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"0x12 0x34\r\n", "1234"},
        {"10X2", "12"},
        {"12 3G", ""},
        {"   ", ""},
        {"", ""},
        {"\tab\tcd", "ABCD"},
        {"abc", "ABC"},
        {"0X0x1", "1"},
        {"0\tx1", "1"},  // the tab goes before the prefixes are looked for
        {"00XX", ""},  // one pass leaves 0X, which is no hex
    };
    for (const auto& c : cases) EXPECT_EQ(NormalizeHex(c.text), c.expected) << '"' << c.text << '"';
}

TEST(HexText, ThirtyTwoBitForms) {
    EXPECT_EQ(Uint32ToHex(255), "000000FF");
    EXPECT_EQ(Uint32ToHex(0), "00000000");
    EXPECT_EQ(Uint32ToHex(4294967295.0), "FFFFFFFF");
    EXPECT_EQ(Uint32ToHex(1.9), "00000001");
    EXPECT_EQ(HexToUint32("FF"), 255);
    EXPECT_EQ(HexToUint32("000000ff"), 255);
    EXPECT_EQ(HexToUint32("FFFFFFFF"), 4294967295.0);
    EXPECT_EQ(HexToUint32("123456789"), 0x12345678);
    EXPECT_EQ(HexToUint32(""), 0);
    EXPECT_EQ(Uint32ToBytes(258), "\x02\x01\0\0"s);
    EXPECT_EQ(Uint32ToBytes(4294967295.0), "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(BytesToUint32("\x02\x01"), 258);
    EXPECT_EQ(BytesToUint32(""), 0);
    EXPECT_EQ(BytesToUint32("\x01\x02\x03\x04\x05"), 0x04030201);
    EXPECT_EQ(BytesToUint32("\xFF\xFF\xFF\xFF"), 4294967295.0);
}

TEST(HexText, ThirtyTwoBitFormsGoThroughTheDecimalText) {
    // Fifteen significant digits round this up to 4294967296, whose low four
    // bytes are zero.
    EXPECT_EQ(Uint32ToHex(4294967295.9999999), "00000000");
    EXPECT_EQ(Uint32ToBytes(4294967295.9999999), "\0\0\0\0"s);
}

TEST(HexText, DataModelLimitsOverflow) {
    const std::string longestText(32767, 'A');
    const std::string tooLongText(32768, 'A');
    const std::string longestBytes(16383, '\x01');
    const std::string tooManyBytes(16384, '\x01');
    struct Case {
        const char* what;
        std::function<void()> call;
        bool overflows;
    };
    const std::vector<Case> cases = {
        {"BytesToHex at the limit", [&] { BytesToHex(longestText); }, false},
        {"BytesToHex over it", [&] { BytesToHex(tooLongText); }, true},
        {"BytesToHexSpaced at the limit", [&] { BytesToHexSpaced(longestText); }, false},
        {"BytesToHexSpaced over it", [&] { BytesToHexSpaced(tooLongText); }, true},
        {"HexToBytes at the limit", [&] { HexToBytes(static_cast<const std::string&>(longestText)); }, false},
        {"HexToBytes over it", [&] { HexToBytes(static_cast<const std::string&>(tooLongText)); }, true},
        {"HexToNumber text at the limit", [&] { HexToNumber(longestText, 4, true); }, false},
        {"HexToNumber text over it", [&] { HexToNumber(tooLongText, 4, true); }, true},
        {"HexToNumber count at the limit", [&] { HexToNumber("", 16383, true); }, false},
        {"HexToNumber count over it", [&] { HexToNumber("", 16384, true); }, true},
        {"NumberToHex count at the limit", [&] { NumberToHex("1", 16383, true); }, false},
        {"NumberToHex count over it", [&] { NumberToHex("1", 16384, true); }, true},
        {"NumberToHex first quotient 2^31", [&] { NumberToHex("2147483648", 1, true); }, true},
        {"NumberToHex first quotient far above", [&] { NumberToHex("1E20", 4, true); }, true},
        {"NumberToHex negative first quotient", [&] { NumberToHex("-2147483649", 1, true); }, true},
        {"HexToNumber beyond the double range", [&] { HexToNumber(std::string(300, 'F'), 150, true); }, true},
        {"BytesToUint32 whose hex fits", [&] { BytesToUint32(longestBytes); }, false},
        {"BytesToUint32 whose hex is too long", [&] { BytesToUint32(tooManyBytes); }, true},
    };
    for (const auto& c : cases) {
        if (c.overflows)
            EXPECT_THROW(c.call(), OverflowError) << c.what;
        else
            EXPECT_NO_THROW(c.call()) << c.what;
    }
}

}  // namespace
}  // namespace sb
