#include <gtest/gtest.h>

#include <functional>

#include "TempFolder.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

using test::Bytes;

// The conversions between numbers, bytes and their texts: the cases of
// hex-cases.json, and here those of long texts.
TEST(HexText, TextsFollowTheirRules) {
    const auto cases = test::TestCases("helpers/hex-cases.json");
    for (const auto& c : cases.at("NumberToHex")) EXPECT_EQ(NumberToHex(c[0], c[1], c[2]), c[3]) << c;
    for (const auto& c : cases.at("HexToNumber")) EXPECT_EQ(HexToNumber(c[0], c[1], c[2]), c[3]) << c;
    for (const auto& c : cases.at("NormalizeHex")) EXPECT_EQ(NormalizeHex(c[0]), c[1]) << c;
    for (const auto& c : cases.at("Uint32ToHex")) EXPECT_EQ(Uint32ToHex(c[0]), c[1]) << c;
    for (const auto& c : cases.at("HexToUint32")) EXPECT_EQ(HexToUint32(c[0]), c[1].get<double>()) << c;
    for (const auto& c : cases.at("BytesToHexSpaced")) EXPECT_EQ(BytesToHexSpaced(Bytes(c[0])), c[1]) << c;
    for (const auto& c : cases.at("BytesToHex")) EXPECT_EQ(BytesToHex(Bytes(c[0])), c[1]) << c;
    for (const auto& c : cases.at("Uint32ToBytes")) EXPECT_EQ(Uint32ToBytes(c[0]), Bytes(c[1])) << c;
    for (const auto& c : cases.at("BytesToUint32")) EXPECT_EQ(BytesToUint32(Bytes(c[0])), c[1].get<double>()) << c;
    for (const auto& c : cases.at("IsHexText")) EXPECT_EQ(IsHexText(c[0]), c[1]) << c;
    for (const auto& c : cases.at("IsDecText")) EXPECT_EQ(IsDecText(c[0]), c[1]) << c;
    // Weights beyond the double range.
    const std::string zeros(398, '0');
    EXPECT_EQ(NumberToHex("1", 200, false), "01" + zeros);
    EXPECT_EQ(HexToNumber("01" + zeros, 200, false), "1");
}

TEST(HexText, HexToBytesKeepsHexDigitsAndCleansAnEvenText) {
    const auto cases = test::TestCases("helpers/hex-cases.json");
    for (const auto& c : cases.at("HexToBytes")) {
        if (c.is_string()) continue;
        std::string text = c[0];
        EXPECT_EQ(HexToBytes(text), Bytes(c[1])) << c;
        EXPECT_EQ(text, c[2]) << c;
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
