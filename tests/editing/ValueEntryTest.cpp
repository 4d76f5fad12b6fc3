#include <gtest/gtest.h>

#include "editing/BinValueEntry.h"
#include "editing/IntValueEntry.h"
#include "editing/StrValueEntry.h"

namespace sb {
namespace {

struct IntCase {
    Radix radix;
    std::string entry;
    bool accepted;
    std::string editValue;  // after the check
    std::string box;        // after a refusal
};

TEST(IntValueEntry, EntryIsHeldAgainstTheRangeInTheFormsRadix) {
    // Range 10..20 hex (16..32 decimal); the last good value is 00000011.
    const IntCase cases[] = {
        {Radix::Hex, "10", true, "10", ""},
        {Radix::Hex, "20", true, "20", ""},
        {Radix::Hex, "1f", true, "1F", ""},
        {Radix::Hex, "0F", false, "00000011", "00000011"},
        {Radix::Hex, "21", false, "00000011", "00000011"},
        {Radix::Hex, "123456789", false, "00000011", "00000011"},
        {Radix::Hex, "0x10", false, "00000011", "00000011"},
        {Radix::Hex, "", false, "00000011", "00000011"},
        {Radix::Dec, "16", true, "00000010", ""},
        {Radix::Dec, "15", false, "00000011", "17"},
        {Radix::Dec, "99999999999", false, "00000011", "17"},
        {Radix::Dec, "-16", false, "00000011", "17"},
        {Radix::Dec, "16.0", false, "00000011", "17"},
        {Radix::Dec, std::string(400, '9'), false, "00000011", "17"},
    };
    for (const auto& c : cases) {
        const IntBoxes boxes = c.radix == Radix::Hex ? IntBoxes{"00000010", "00000020", c.entry}
                                                     : IntBoxes{"16", "32", c.entry};
        const EntryCheck result = CheckIntEntry(c.radix, boxes, "00000011");
        SCOPED_TRACE(c.entry);
        EXPECT_EQ(result.Accepted, c.accepted);
        EXPECT_EQ(result.EditValue, c.editValue);
        if (!c.accepted) {
            EXPECT_EQ(result.BoxText, c.box);
        }
    }
}

TEST(IntValueEntry, MinAboveMaxRefusesEverything) {
    for (const char* entry : {"0", "15", "20", "FFFFFFFF"}) {
        EXPECT_FALSE(CheckIntEntry(Radix::Hex, {"00000020", "00000010", entry}, "00000015").Accepted) << entry;
    }
}

TEST(IntValueEntry, RadixSwitchConvertsAllThreeBoxesAndComesBack) {
    IntBoxes boxes{"00000000", "FFFFFFFF", "00000010"};
    SwitchIntRadix(boxes, Radix::Dec);
    EXPECT_EQ(boxes.Min, "0");
    EXPECT_EQ(boxes.Max, "4294967295");
    EXPECT_EQ(boxes.Value, "16");
    SwitchIntRadix(boxes, Radix::Hex);
    EXPECT_EQ(boxes.Min, "00000000");
    EXPECT_EQ(boxes.Max, "FFFFFFFF");
    EXPECT_EQ(boxes.Value, "00000010");
}

TEST(IntValueEntry, RadixSwitchKeepsANumberTooLargeForFourBytes) {
    IntBoxes boxes{"0", "10", "36028797018963968"};  // 2^55
    SwitchIntRadix(boxes, Radix::Hex);
    EXPECT_EQ(boxes.Min, "00000000");
    EXPECT_EQ(boxes.Max, "0000000A");
    EXPECT_EQ(boxes.Value, "36028797018963968");
}

TEST(BinValueEntry, AcceptsHexTextOfTheExactLengthInAnyLayout) {
    const struct {
        std::string entry;
        int length;
        bool accepted;
    } cases[] = {
        {"010203", 3, true},  {"0x01 0x02 0x03", 3, true}, {"01\r\n02\n03", 3, true}, {"01 02", 3, false},
        {"01 02 0", 3, false}, {"01 02 0G", 3, false},      {"", 0, false},
    };
    for (const auto& c : cases) {
        const EntryCheck result = CheckBinEntry(c.entry, c.length, "AA BB CC");
        SCOPED_TRACE(c.entry);
        EXPECT_EQ(result.Accepted, c.accepted);
        if (c.accepted) {
            EXPECT_EQ(result.EditValue.size(), 8u);
            EXPECT_EQ(result.EditValue.substr(2, 1), " ");
        } else {
            EXPECT_EQ(result.EditValue, "AA BB CC");
            EXPECT_EQ(result.BoxText, "AA BB CC");
        }
    }
    EXPECT_EQ(CheckBinEntry("0a0b0c", 3, "").EditValue, "0A 0B 0C");
}

TEST(StrValueEntry, AsciiModeCountsCharacters) {
    const struct {
        std::string entry;
        int length;
        bool accepted;
    } cases[] = {{"ABCD", 4, true}, {"ABC", 4, false}, {"ABCDE", 4, false}, {"", 0, true},
                 {std::string("A\0C\0", 4), 4, true}};
    for (const auto& c : cases) {
        const EntryCheck result = CheckStrEntry(TextMode::Ascii, c.entry, c.length, "WXYZ");
        EXPECT_EQ(result.Accepted, c.accepted) << c.entry;
        EXPECT_EQ(result.EditValue, c.accepted ? c.entry : "WXYZ");
        if (!c.accepted) {
            EXPECT_EQ(result.BoxText, "WXYZ");
        }
    }
}

TEST(StrValueEntry, HexModeGivesBytesAndFallsBackToSpacedHex) {
    const EntryCheck good = CheckStrEntry(TextMode::Hex, "41 42 43 45", 4, "ABCD");
    EXPECT_TRUE(good.Accepted);
    EXPECT_EQ(good.EditValue, "ABCE");

    for (const char* bad : {"414243", "41424344 45", "4142434", "", "41 42 43 4X"}) {
        const EntryCheck refused = CheckStrEntry(TextMode::Hex, bad, 4, "ABCD");
        EXPECT_FALSE(refused.Accepted) << bad;
        EXPECT_EQ(refused.EditValue, "ABCD");
        EXPECT_EQ(refused.BoxText, "41 42 43 44");
    }
}

TEST(StrValueEntry, ModeSwitchConvertsTheBoxWithoutTest) {
    EXPECT_EQ(SwitchTextMode("ABCD", TextMode::Hex), "41424344");
    EXPECT_EQ(SwitchTextMode("41424344", TextMode::Ascii), "ABCD");
    EXPECT_EQ(SwitchTextMode("4142434", TextMode::Ascii), "");
    EXPECT_EQ(SwitchTextMode(SwitchTextMode("Hello, 1", TextMode::Hex), TextMode::Ascii), "Hello, 1");
    EXPECT_EQ(SwitchTextMode(std::string("\0\xFF", 2), TextMode::Hex), "00FF");
}

}  // namespace
}  // namespace sb
