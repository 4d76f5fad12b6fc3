#include <gtest/gtest.h>

#include <stdexcept>

#include "editing/NodeKeys.h"
#include "editing/OptionEdits.h"

namespace sb {
namespace {

TEST(NodeKeys, KindAndIndexesComeFromTheKeyAlone) {
    EXPECT_EQ(KindOfKey("CONFIGURATION00000001"), NodeKind::Root);
    EXPECT_EQ(KindOfKey("option00000001"), NodeKind::Root);
    EXPECT_EQ(KindOfKey("OPTION00000003"), NodeKind::Option);
    EXPECT_EQ(KindOfKey("OPTION00000003_VALUE00000002"), NodeKind::Value);
    // "VALUE" must stand at its place; anywhere else the node is an option.
    EXPECT_EQ(KindOfKey("OPTION0000003_VALUE00000002"), NodeKind::Option);

    EXPECT_EQ(OptionIndexOfKey("OPTION0000012C_VALUE0000000F"), 300);
    EXPECT_EQ(ValueIndexOfKey("OPTION0000012C_VALUE0000000F"), 15);
    EXPECT_EQ(IndexOfTag("00000002"), 2);
    EXPECT_THROW(IndexOfTag("80000000"), std::out_of_range);
    EXPECT_THROW(ValueIndexOfKey("OPTION00000001"), std::out_of_range);
}

TEST(OptionEdits, MemberSwitchClearsItsMaskThenSetsItsBits) {
    OptValue member;
    member.SetMask = "0F";
    member.SetValue = "03";
    member.ResetMask = "0F";
    member.ResetValue = "0C";
    EXPECT_EQ(SwitchMember("A5", member, true), "A3");
    EXPECT_EQ(SwitchMember("A5", member, false), "AC");
    // A mask narrower than the value lines up at its right end, and the
    // bytes it doesn't reach are cleared with it.
    member.SetMask = "01";
    member.SetValue = "01";
    EXPECT_EQ(SwitchMember("0A00", member, true), "0001");
}

TEST(OptionEdits, FormStartTakesTheTagOrTheTypesDefault) {
    OptionRec option;
    option.MinValue = "00000005";
    option.BitLen = 24;
    const struct {
        const char* type;
        std::string tag;
        std::string value;
        bool replaced;
    } cases[] = {
        {"INT", "0000000A", "0000000A", false}, {"INT", "", "00000005", true},
        {"INT", "Wrong", "00000005", true},     {"BIN", "0A 0B 0C", "0A 0B 0C", false},
        {"BIN", "", "000000", true},            {"STR", "abc", "abc", false},
        {"STR", "ab", "000", true},             {"STR", "", "000", true},
    };
    for (const auto& c : cases) {
        option.Type = c.type;
        const FormStart start = StartValueForForm(option, c.tag);
        EXPECT_EQ(start.Value, c.value) << c.type << " " << c.tag;
        EXPECT_EQ(start.TagReplaced, c.replaced) << c.type << " " << c.tag;
    }
    option.BitLen = 12;
    EXPECT_EQ(FormLength(option), 1);
    option.BitLen = -1;
    EXPECT_EQ(FormLength(option), 0);
}

TEST(OptionEdits, LockedOptionAllowsOnlyTheConfigurationsValue) {
    OptionRec option;
    option.Type = "INT";
    option.BitPos = 40;
    option.BitLen = 8;
    PredefCfg cfg;
    cfg.Data = std::string("\0\0\0\0\0\x2A", 6);
    cfg.DisabledMask = "04";
    EXPECT_EQ(AllowedValue(cfg, 2, option), "0000002A");
    EXPECT_EQ(AllowedValue(cfg, 1, option), "");
    EXPECT_TRUE(IsLocked(cfg, 2));
    EXPECT_FALSE(IsLocked(cfg, 9));
}

}  // namespace
}  // namespace sb
