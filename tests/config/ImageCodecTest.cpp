#include <gtest/gtest.h>

#include "CatalogText.h"
#include "config/ConfigTool.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

const std::string kImageHex = "785634120CA3F1005A";

OptionRec Field(const std::string& type, int32_t bitPos, int32_t bitLen) {
    OptionRec option;
    option.Type = type;
    option.BitPos = bitPos;
    option.BitLen = bitLen;
    return option;
}

TEST(ImageCodec, EachCaseReadsOrWritesItsFieldAcrossByteBordersOrIsRefused) {
    const auto cases = TestCases("config/image-cases.json");
    for (const auto& c : cases.at("get")) {
        if (c.is_string()) continue;
        const std::string raw = c[3];
        std::string shown = "old";
        EXPECT_EQ(GetOptionValue(HexToBytes(kImageHex), Field(c[0], c[1], c[2]), shown), raw) << c;
        EXPECT_EQ(shown, raw.empty() ? kWrongValue : raw) << c;
    }
    for (const auto& c : cases.at("set")) {
        if (c.is_string()) continue;
        std::string image = HexToBytes(kImageHex), value = c[3];
        EXPECT_EQ(SetOptionValue(image, Field(c[0], c[1], c[2]), value), c[5]) << c;
        const std::string after = c[4];
        EXPECT_EQ(BytesToHex(image), after.empty() ? kImageHex : after) << c;
        EXPECT_EQ(value, c.size() > 6 ? c[6] : c[3]) << c;
    }
}

TEST(ImageCodec, SetsExactlyTheFieldsBitsForEveryPositionAndLength) {
    // Ones into zeros and zeros into ones, for fields that begin and end
    // anywhere in three bytes; reading back gives the value's bits.
    for (int32_t bitPos = 0; bitPos < 24; ++bitPos)
        for (int32_t bitLen = 0; bitPos + bitLen <= 48; ++bitLen)
            for (const char fill : {'\x00', '\xFF'}) {
                std::string image(6, fill), value(6, static_cast<char>(~fill)), shown;
                SetOptionValue(image, Field("STR", bitPos, bitLen), value);
                std::string expected((bitLen + 7) / 8, '\0');
                for (int bit = 0; bit < 48; ++bit) {
                    const bool inField = bit >= bitPos && bit < bitPos + bitLen;
                    const bool set = (static_cast<unsigned char>(image[bit / 8]) >> (bit % 8)) & 1;
                    ASSERT_EQ(set, inField == (fill == '\0')) << bitPos << " " << bitLen << " bit " << bit;
                    if (inField && set) expected[(bit - bitPos) / 8] |= static_cast<char>(1 << ((bit - bitPos) % 8));
                }
                ASSERT_EQ(GetOptionValue(image, Field("BIN", bitPos, bitLen), shown), BytesToHex(expected));
            }
}

TEST(ImageCodec, ShowsTheFirstListTextOfTheValueWithTheUnits) {
    OptionRec option = Field("INT", 32, 8);
    option.Units = " ms";
    option.Values.Items = {Entry("Off", "00000000"), Entry("Twelve", "0000000C"), Entry("Also", "0000000C")};
    const std::vector<std::vector<std::string>> cases = {
        {"INT", "C", "Twelve ms"}, {"INT", "30", "00000030 ms"}, {"BITFIELD", "0C", "0C"}};
    for (const auto& c : cases) {
        option.Type = c[0];
        std::string image = HexToBytes(kImageHex), value = c[1], shown;
        EXPECT_EQ(SetOptionValue(image, option, value), c[2]);
        GetOptionValue(image, option, shown);
        EXPECT_EQ(shown, c[2]);
    }
}

}  // namespace
}  // namespace sb::test
