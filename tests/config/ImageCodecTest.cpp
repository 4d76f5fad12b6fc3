#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CatalogText.h"
#include "config/ConfigTool.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

const std::string kImage = HexToBytes(std::string("785634120CA3F1005A"));

OptionRec Field(const char* type, int32_t bitPos, int32_t bitLen) {
    OptionRec option;
    option.Type = type;
    option.BitPos = bitPos;
    option.BitLen = bitLen;
    return option;
}

TEST(ImageCodecGet, ReadsFieldsAcrossByteBorders) {
    const struct {
        const char* type;
        int32_t bitPos, bitLen;
        std::string raw;  // empty: refused
    } cases[] = {
        {"INT", 0, 32, "12345678"}, {"INT", 36, 12, "00000A30"}, {"BIN", 36, 12, "300A"}, {"BITFIELD", 4, 8, "67"},
        {"STR", 0, 16, "\x78\x56"}, {"INT", 0, 72, "12345678"},  // wider than 32 bits: the low 32 count
        {"BIN", 71, 1, "00"}, {"INT", 72, 0, "00000000"}, {"INT", 68, 8, ""}, {"BIN", 65, 8, ""},
        {"INT", 0x7FFFFFFF, 0x7FFFFFFF, ""}, {"STRING", 0, 8, ""},
    };
    for (const auto& c : cases) {
        std::string shown = "old";
        EXPECT_EQ(GetOptionValue(kImage, Field(c.type, c.bitPos, c.bitLen), shown), c.raw) << c.type << c.bitPos;
        EXPECT_EQ(shown, c.raw.empty() ? "Wrong Value" : c.raw) << c.type << c.bitPos;
    }
}

TEST(ImageCodecSet, WritesTheFieldFromTheValuesFirstBitsOrRefuses) {
    const std::string same = "785634120CA3F1005A";
    const struct {
        const char* type;
        int32_t bitPos, bitLen;
        std::string value, image, shown;  // the image as hex
        std::string valueAfter = {};      // empty: the caller's value stays
    } cases[] = {
        {"INT", 36, 12, "00000ABC", "78563412CCABF1005A", "00000ABC"},
        {"INT", 36, 6, "FF", "78563412FCA3F1005A", "000000FF"},
        {"INT", 0, 32, "0x 12 34", "341200000CA3F1005A", "00001234"}, {"BIN", 44, 3, "05", "785634120CD3F1005A", "05"},
        {"BIN", 36, 12, "ff ff ff", "78563412FCFFF1005A", "FFFFFF", "ffffff"},  // longer: its first bits
        {"BIN", 36, 12, "30", same, "Wrong Value"}, {"BIN", 36, 12, "FF F", same, "Wrong Value"},
        {"BITFIELD", 64, 8, "A5", "785634120CA3F100A5", "A5"}, {"STR", 56, 16, "ab", "785634120CA3F16162", "ab"},
        {"STR", 56, 16, "a", same, "Wrong Value"}, {"INT", 0, 40, "1", same, "Wrong Value"},
        {"BIN", 68, 8, "0 0", same, "Wrong Value"}, {"BOOL", 0, 1, "1", same, "Wrong Value"},
    };
    for (const auto& c : cases) {
        std::string image = kImage, value = c.value;
        EXPECT_EQ(SetOptionValue(image, Field(c.type, c.bitPos, c.bitLen), value), c.shown) << c.type << c.bitPos;
        EXPECT_EQ(BytesToHex(image), c.image) << c.type << c.bitPos;
        EXPECT_EQ(value, c.valueAfter.empty() ? c.value : c.valueAfter) << c.type << c.bitPos;
    }
}

TEST(ImageCodecSet, SetsExactlyTheFieldsBitsForEveryPositionAndLength) {
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
    const struct {
        const char *type, *value, *shown;
    } cases[] = {{"INT", "C", "Twelve ms"}, {"INT", "30", "00000030 ms"}, {"BITFIELD", "0C", "0C"}};
    for (const auto& c : cases) {
        option.Type = c.type;
        std::string image = kImage, value = c.value, shown;
        EXPECT_EQ(SetOptionValue(image, option, value), c.shown);
        GetOptionValue(image, option, shown);
        EXPECT_EQ(shown, c.shown);
    }
}

}  // namespace
}  // namespace sb::test
