#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CatalogText.h"
#include "config/ConfigTool.h"
#include "helpers/HexText.h"

namespace sb::test {
namespace {

// 78 56 34 12 0C A3 F1 00 5A
const std::string kImage = HexToBytes(std::string("78563412") + "0CA3F1005A");

OptionRec Field(const char* type, int32_t bitPos, int32_t bitLen) {
    OptionRec option;
    option.Name = "F";
    option.Type = type;
    option.BitPos = bitPos;
    option.BitLen = bitLen;
    return option;
}

std::string Hex(const std::string& bytes) { return BytesToHex(bytes); }

TEST(ImageCodecGet, ReadsFieldsAcrossByteBorders) {
    struct Case {
        const char* type;
        int32_t bitPos;
        int32_t bitLen;
        std::string raw;
        bool refused = false;
    };
    const std::vector<Case> cases = {
        {"INT", 0, 32, "12345678"},
        {"INT", 32, 16, "0000A30C"},
        {"INT", 36, 6, "00000030"},
        {"INT", 36, 12, "00000A30"},
        {"BIN", 36, 12, "300A"},
        {"BITFIELD", 36, 12, "300A"},
        {"INT", 34, 3, "00000003"},
        {"STR", 64, 8, "\x5A"},
        {"STR", 0, 16, "\x78\x56"},
        {"BIN", 4, 8, "67"},                   // high half of one byte, low half of the next
        {"INT", 0, 72, "12345678"},            // wider than 32 bits: the low 32 count
        {"BIN", 71, 1, "00"},                  // ends on the last bit of the image
        {"BIN", 64, 8, "5A"},
        {"INT", 68, 8, "", true},                    // 76 bits need 10 bytes
        {"BIN", 65, 8, "", true},                    // one bit beyond the end
        {"INT", 72, 0, "00000000"},            // no bits, just behind the end
        {"BIN", 72, 0, ""},
        {"INT", 0x7FFFFFFF, 0x7FFFFFFF, "", true},   // bit bounds beyond 32 bits
        {"STRING", 0, 8, "", true},                  // an unknown type
        {"", 0, 8, "", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + std::to_string(c.bitPos) + " " + std::to_string(c.bitLen));
        std::string shown = "old";
        const std::string raw = GetOptionValue(kImage, Field(c.type, c.bitPos, c.bitLen), shown);
        EXPECT_EQ(raw, c.raw);
        EXPECT_EQ(shown, c.refused ? "Wrong Value" : c.raw);
    }
}

TEST(ImageCodecSet, WritesEveryBitOfTheFieldAndNoOther) {
    struct Case {
        const char* type;
        int32_t bitPos;
        int32_t bitLen;
        std::string value;
        std::string image;  // afterwards, hex
        std::string shown;
    };
    const std::string same = "78563412" "0CA3F1005A";
    const std::vector<Case> cases = {
        {"INT", 36, 12, "00000ABC", "78563412" "CCABF1005A", "00000ABC"},
        {"INT", 36, 6, "000000FF", "78563412" "FCA3F1005A", "000000FF"},
        {"INT", 0, 32, "ABC", "BC0A0000" "0CA3F1005A", "00000ABC"},
        {"INT", 0, 32, "0x 12 34", "34120000" "0CA3F1005A", "00001234"},
        {"BIN", 44, 3, "05", "78563412" "0CD3F1005A", "05"},
        {"BIN", 36, 12, "30", same, "Wrong Value"},
        {"BIN", 36, 12, "FFFFFF", "78563412" "FCFFF1005A", "FFFFFF"},  // longer: the first bits only
        {"BIN", 36, 12, "FFF", same, "Wrong Value"},                   // odd digits: no bytes
        {"BITFIELD", 64, 8, "A5", "78563412" "0CA3F100A5", "A5"},
        {"STR", 56, 16, "ab", "78563412" "0CA3F16162", "ab"},
        {"STR", 56, 16, "a", same, "Wrong Value"},
        {"STR", 60, 4, std::string(1, '\0'), "78563412" "0CA3F1005A", std::string(1, '\0')},
        {"INT", 40, 40, "1", same, "Wrong Value"},  // wider than 32 bits can't be written
        {"INT", 68, 8, "0", same, "Wrong Value"},
        {"BOOL", 0, 1, "1", same, "Wrong Value"},
        {"INT", 0x7FFFFFFF, 0x7FFFFFFF, "0", same, "Wrong Value"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " " + std::to_string(c.bitPos) + " " + c.value);
        std::string image = kImage;
        std::string value = c.value;
        EXPECT_EQ(SetOptionValue(image, Field(c.type, c.bitPos, c.bitLen), value), c.shown);
        EXPECT_EQ(Hex(image), c.image);
    }
}

TEST(ImageCodecSet, SetsExactlyTheFieldsBitsForEveryPositionAndLength) {
    // Ones into zeros and zeros into ones, for fields that begin and end
    // anywhere in three bytes.
    for (int32_t bitPos = 0; bitPos < 24; ++bitPos) {
        for (int32_t bitLen = 0; bitPos + bitLen <= 48; ++bitLen) {
            for (const char fill : {'\x00', '\xFF'}) {
                std::string image(6, fill);
                std::string value(6, static_cast<char>(~fill));
                SetOptionValue(image, Field("STR", bitPos, bitLen), value);
                for (int bit = 0; bit < 48; ++bit) {
                    const bool inField = bit >= bitPos && bit < bitPos + bitLen;
                    const bool set = (static_cast<unsigned char>(image[bit / 8]) >> (bit % 8)) & 1;
                    ASSERT_EQ(set, inField == (fill == '\0')) << bitPos << " " << bitLen << " bit " << bit;
                }
                std::string shown;
                const std::string back = GetOptionValue(image, Field("BIN", bitPos, bitLen), shown);
                std::string expected((bitLen + 7) / 8, '\0');
                for (int i = 0; i < bitLen; ++i)
                    if (fill == '\0') expected[i / 8] = static_cast<char>(expected[i / 8] | (1 << (i % 8)));
                ASSERT_EQ(back, Hex(expected)) << bitPos << " " << bitLen;
            }
        }
    }
}

TEST(ImageCodec, ShowsListTextsAndUnits) {
    OptionRec option = Field("INT", 32, 8);
    option.Units = " ms";
    option.Values.Items = {Entry("Off", "00000000"), Entry("Twelve", "0000000C"), Entry("Also twelve", "0000000C")};
    struct Case {
        const char* type;
        std::string value;  // raw, as written
        const char* shown;
    };
    const std::vector<Case> cases = {
        {"INT", "0000000C", "Twelve ms"},  // the first entry of the value names it
        {"INT", "30", "00000030 ms"},
        {"BITFIELD", "0C", "0C"},  // no list, no units
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        option.Type = c.type;
        std::string image = kImage;
        std::string value = c.value;
        EXPECT_EQ(SetOptionValue(image, option, value), c.shown);
        std::string shown;
        GetOptionValue(image, option, shown);
        EXPECT_EQ(shown, c.shown);
    }
}

TEST(ImageCodec, FindsShortIntEntriesButOnlyFullWidthBinEntries) {
    const auto r = Load(CatalogXml(
        "5", R"(<O T="INT" S="20" L="8"><L V="C">Twelve</L></O><O T="BIN" S="20" L="8"><L V="C">Twelve</L></O>)",
        Cfg5("", "000000000C")));
    ASSERT_TRUE(r.ok);
    const std::string& image = r.device.PredefCfgs.Items[0].Data;
    std::string shown;
    EXPECT_EQ(GetOptionValue(image, r.device.Options.Items[0], shown), "0000000C");
    EXPECT_EQ(shown, "Twelve");
    EXPECT_EQ(GetOptionValue(image, r.device.Options.Items[1], shown), "0C");
    EXPECT_EQ(shown, "0C");
}

TEST(ImageCodecSet, CleansTheCallersHexValueOnlyWhenItConverts) {
    struct Case {
        const char* type;
        int32_t bitLen;
        std::string value;
        std::string after;
    };
    const std::vector<Case> cases = {
        {"BIN", 16, "0c a3", "0ca3"},        // even digits: replaced by the digits
        {"BIN", 16, "0c a", "0c a"},         // odd: left alone
        {"INT", 16, "0c a3", "0c a3"},       // HexToUint32 doesn't rewrite
        {"BIN", 80, "0c a3", "0c a3"},       // refused before the conversion
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        std::string image = kImage;
        std::string value = c.value;
        SetOptionValue(image, Field(c.type, 0, c.bitLen), value);
        EXPECT_EQ(value, c.after);
    }
}

}  // namespace
}  // namespace sb::test
