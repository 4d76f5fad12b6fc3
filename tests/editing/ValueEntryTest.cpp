#include <gtest/gtest.h>

#include "editing/BinValueEntry.h"
#include "editing/IntValueEntry.h"
#include "editing/StrValueEntry.h"

namespace sb {
namespace {

using Strings = std::vector<std::string>;
// More characters than the conversions take.
const std::string kOverlong(40000, '0');

// The new EditValue when accepted, else "EditValue|box".
std::string Outcome(const EntryCheck& check) {
    return check.Accepted ? check.EditValue : check.EditValue + "|" + check.BoxText;
}

TEST(IntValueEntry, EntryIsHeldAgainstTheRangeInTheFormsRadix) {
    // Radix, entry, outcome: range 10..20 hex (16..32 decimal), the last good value 00000011.
    const std::tuple<Radix, std::string, const char*> cases[] = {
        {Radix::Hex, "10", "10"}, {Radix::Hex, "20", "20"}, {Radix::Hex, "1f", "1F"},
        {Radix::Hex, "0F", "00000011|00000011"}, {Radix::Hex, "21", "00000011|00000011"},
        {Radix::Hex, "0x10", "00000011|00000011"}, {Radix::Hex, "", "00000011|00000011"},
        {Radix::Dec, "16", "00000010"}, {Radix::Dec, "15", "00000011|17"}, {Radix::Dec, "99999999999", "00000011|17"},
        {Radix::Dec, "16.0", "00000011|17"}, {Radix::Dec, std::string(400, '9'), "00000011|17"},
    };
    for (const auto& [radix, entry, outcome] : cases) {
        const IntBoxes boxes = radix == Radix::Hex ? IntBoxes{"00000010", "00000020", entry} : IntBoxes{"16", "32", entry};
        EXPECT_EQ(Outcome(CheckIntEntry(radix, boxes, "00000011")), outcome) << entry;
    }
    // Nine digits, whatever the range; a range upside down refuses all.
    EXPECT_FALSE(CheckIntEntry(Radix::Hex, {"00000000", "FFFFFFFF", "000000001"}, "0").Accepted);
    EXPECT_FALSE(CheckIntEntry(Radix::Hex, {"00000020", "00000010", "15"}, "0").Accepted);
}

TEST(IntValueEntry, RadixSwitchConvertsAllThreeBoxes) {
    IntBoxes boxes{"00000000", "FFFFFFFF", "00000010"};
    SwitchIntRadix(boxes, Radix::Dec);
    EXPECT_EQ(boxes.Min + " " + boxes.Max + " " + boxes.Value, "0 4294967295 16");
    boxes.Value = "36028797018963968";  // 2^55 fits no four bytes: it stays
    SwitchIntRadix(boxes, Radix::Hex);
    EXPECT_EQ(boxes.Min + " " + boxes.Max + " " + boxes.Value, "00000000 FFFFFFFF 36028797018963968");
}

TEST(BinValueEntry, AcceptsHexTextOfTheExactLengthInAnyLayout) {
    for (const char* good : {"0a0b0c", "0x0A 0x0B 0x0C", "0A\r\n0B\n0C"})
        EXPECT_EQ(Outcome(CheckBinEntry(good, 3, "")), "0A 0B 0C") << good;
    for (const std::string& bad : Strings{"01 02", "01 02 03 04", "01 02 0", "01 02 0G", kOverlong})
        EXPECT_EQ(Outcome(CheckBinEntry(bad, 3, "AA BB CC")), "AA BB CC|AA BB CC") << bad;
    EXPECT_FALSE(CheckBinEntry("", 0, "").Accepted);
}

TEST(StrValueEntry, AsciiCountsCharactersHexGivesBytes) {
    for (const std::string& good : Strings{"ABCD", std::string("A\0C\0", 4)})
        EXPECT_EQ(Outcome(CheckStrEntry(TextMode::Ascii, good, 4, "WXYZ")), good);
    EXPECT_TRUE(CheckStrEntry(TextMode::Ascii, "", 0, "WXYZ").Accepted);
    for (const char* bad : {"ABC", "ABCDE"}) EXPECT_EQ(Outcome(CheckStrEntry(TextMode::Ascii, bad, 4, "WXYZ")), "WXYZ|WXYZ");

    EXPECT_EQ(Outcome(CheckStrEntry(TextMode::Hex, "41 42 43 45", 4, "ABCD")), "ABCE");
    for (const std::string& bad : Strings{"414243", "41424344 45", "4142434", "41 42 43 4X", kOverlong})
        EXPECT_EQ(Outcome(CheckStrEntry(TextMode::Hex, bad, 4, "ABCD")), "ABCD|41 42 43 44") << bad;
}

TEST(StrValueEntry, ModeSwitchConvertsTheBoxUntilItIsTooLong) {
    auto to = [](const std::string& box, TextMode mode) {
        const ModeSwitch result = SwitchTextMode(box, mode, "WXY`");
        return (result.Refused ? "refused: " : "") + result.BoxText;
    };
    EXPECT_EQ(to("ABCD", TextMode::Hex), "41424344");
    EXPECT_EQ(to(std::string("\0\xFF", 2), TextMode::Hex), "00FF");
    EXPECT_EQ(to("41424344", TextMode::Ascii), "ABCD");
    EXPECT_EQ(to("4142434", TextMode::Ascii), "");
    // The last good value, in the mode switched to.
    EXPECT_EQ(to(std::string(40000, 'A'), TextMode::Hex), "refused: 57585960");
    EXPECT_EQ(to(kOverlong, TextMode::Ascii), "refused: WXY`");
}

}  // namespace
}  // namespace sb
