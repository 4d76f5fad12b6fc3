#include <gtest/gtest.h>

#include <cstdint>

#include "TempFolder.h"
#include "helpers/BitMasks.h"

namespace sb {
namespace {

using namespace std::string_literals;

TEST(BitMasks, TestBitFindsExactlyTheSetBits) {
    const auto cases = test::TestCases("helpers/bitmask-cases.json");
    for (const auto& c : cases.at("TestBit")) {
        if (c.is_string()) continue;
        for (int bit = 0; bit < 32; ++bit)
            EXPECT_EQ(TestBit(c[0], bit, c[1]), ((c[2].get<uint32_t>() >> bit) & 1) != 0) << c << " bit " << bit;
    }
    EXPECT_FALSE(TestBit("FFFF", -1, 1));
}

TEST(BitMasks, CombinationsLineUpAtTheRightEndAndKeepTheFirstLength) {
    const auto cases = test::TestCases("helpers/bitmask-cases.json");
    for (const auto& c : cases.at("HexAnd")) EXPECT_EQ(HexAnd(c[0], c[1]), c[2]) << c;
    for (const auto& c : cases.at("HexOr")) EXPECT_EQ(HexOr(c[0], c[1]), c[2]) << c;
    for (const auto& c : cases.at("HexNot")) EXPECT_EQ(HexNot(c[0]), c[1]) << c;

    std::string a = "\xF0\x00\xF0"s;
    BytesOr(a, "\x0F\x0F"s);
    EXPECT_EQ(a, "\x00\x0F\xFF"s);
    BytesNot(a);
    BytesAnd(a, "\x0F\xF0"s);
    EXPECT_EQ(a, "\x00\x00\x00"s);
}

}  // namespace
}  // namespace sb
