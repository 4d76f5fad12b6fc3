#include <gtest/gtest.h>

#include "editing/OptionEdits.h"

namespace sb {
namespace {

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

}  // namespace
}  // namespace sb
