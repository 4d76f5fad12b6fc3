#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "helpers/BitMasks.h"

namespace sb {
namespace {

using namespace std::string_literals;

TEST(BitMasks, TestBitFindsExactlyTheSetBits) {
    const struct {
        const char* text;
        int order;
        uint32_t setBits;  // bit n of 0 to 31 set when TestBit is true for n
    } cases[] = {
        {"0001", 1, 0x1},  {"8000", 1, 0x8000}, {"FF", 1, 0xFF},  // bit 8 lies outside the text
        {"ABC", 1, 0xABC}, {"abcd", 1, 0xABCD}, {"0100", 0, 0x1}, {"8000", 0, 0x80},
        {"ABC", 0, 0xAB},  // pairs AB and C0, but bit 12 lies outside
        {"", 1, 0},        {"FFFF", 2, 0},      {"G1", 1, 0},     // a pair that starts with no digit reads 0
    };
    for (const auto& c : cases)
        for (int bit = 0; bit < 32; ++bit)
            EXPECT_EQ(TestBit(c.text, bit, c.order), ((c.setBits >> bit) & 1) != 0)
                << c.text << " order " << c.order << " bit " << bit;
    EXPECT_FALSE(TestBit("FFFF", -1, 1));
}

TEST(BitMasks, CombinationsLineUpAtTheRightEndAndKeepTheFirstLength) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {HexAnd("F0F0", "0FF0"), "00F0"}, {HexOr("F0F0", "0F0F"), "FFFF"}, {HexNot("00ff"), "FF00"},
        {HexAnd("FFFF", "0F"), "000F"},   {HexOr("FFFF", "0F"), "00FF"},   {HexAnd("0F", "FFFF"), "0F"},
        {HexOr("ff ff", "0f"), "00FF"},   {HexAnd("123", "FF"), ""},       {HexOr("FF", "123"), "00"},
    };
    for (size_t i = 0; i < cases.size(); ++i) EXPECT_EQ(cases[i].first, cases[i].second) << "case " << i;

    std::string a = "\xF0\x00\xF0"s;
    BytesOr(a, "\x0F\x0F"s);
    EXPECT_EQ(a, "\x00\x0F\xFF"s);
    BytesNot(a);
    BytesAnd(a, "\x0F\xF0"s);
    EXPECT_EQ(a, "\x00\x00\x00"s);
}

}  // namespace
}  // namespace sb
