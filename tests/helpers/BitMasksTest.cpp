#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "helpers/BitMasks.h"

namespace sb {
namespace {

using namespace std::string_literals;

TEST(BitMasks, TestBitFindsExactlyTheSetBits) {
    struct Case {
        const char* text;
        int order;
        std::vector<int> setBits;  // all others of 0 to 31 are clear
    };
    const std::vector<Case> cases = {
        {"0001", 1, {0}},
        {"8000", 1, {15}},
        {"FF", 1, {0, 1, 2, 3, 4, 5, 6, 7}},  // bit 8 lies outside the text
        {"ABC", 1, {2, 3, 4, 5, 7, 9, 11}},  // pairs BC and 0A
        {"0100", 0, {0}},
        {"8000", 0, {7}},
        {"ABC", 0, {0, 1, 3, 5, 7}},  // pairs AB and C0, but bit 12 lies outside
        {"abcd", 1, {0, 2, 3, 6, 7, 8, 9, 11, 13, 15}},
        {"", 1, {}},
        {"", 0, {}},
        {"FFFF", 2, {}},
        {"G1", 1, {}},  // a pair that starts with no digit reads 0
    };
    for (const auto& c : cases)
        for (int bit = 0; bit < 32; ++bit) {
            const bool expected = std::find(c.setBits.begin(), c.setBits.end(), bit) != c.setBits.end();
            EXPECT_EQ(TestBit(c.text, bit, c.order), expected) << c.text << " order " << c.order << " bit " << bit;
        }
    EXPECT_FALSE(TestBit("FFFF", -1, 1));
}

TEST(BitMasks, HexCombinationsLineUpAtTheRightEnd) {
    struct Case {
        const char* operation;
        std::string a;
        std::string b;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"and", "F0F0", "0FF0", "00F0"},
        {"or", "F0F0", "0F0F", "FFFF"},
        {"not", "00FF", "", "FF00"},
        {"not", "0f", "", "F0"},
        {"not", "", "", ""},
        {"and", "FFFF", "0F", "000F"},
        {"or", "FFFF", "0F", "00FF"},  // the unmatched first byte becomes 00
        {"and", "0F", "FFFF", "0F"},
        {"or", "0F", "F0F0", "FF"},
        {"or", "ff ff", "0f", "00FF"},
        {"and", "123", "FF", ""},  // an odd first operand is empty
        {"or", "FF", "123", "00"},  // an odd second operand is no byte at all
    };
    for (const auto& c : cases) {
        const std::string op = c.operation;
        const std::string result = op == "and" ? HexAnd(c.a, c.b) : op == "or" ? HexOr(c.a, c.b) : HexNot(c.a);
        EXPECT_EQ(result, c.expected) << c.operation << ' ' << c.a << ' ' << c.b;
    }
}

TEST(BitMasks, ByteCombinationsWorkInPlaceOnAnyByte) {
    std::string a = "\xF0\x00\xF0"s;
    BytesAnd(a, "\xFF\x0F\xF0"s);
    EXPECT_EQ(a, "\xF0\x00\xF0"s);
    BytesOr(a, "\x0F\x0F"s);
    EXPECT_EQ(a, "\x00\x0F\xFF"s);
    BytesNot(a);
    EXPECT_EQ(a, "\xFF\xF0\x00"s);
    BytesAnd(a, ""s);
    EXPECT_EQ(a, "\0\0\0"s);
}

}  // namespace
}  // namespace sb
