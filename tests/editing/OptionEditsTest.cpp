#include <gtest/gtest.h>

#include "editing/OptionEdits.h"

namespace sb {
namespace {

TEST(OptionEdits, FormStartTakesTheTagOrTheTypesDefault) {
    OptionRec option;
    option.MinValue = "00000005";
    option.BitLen = 27;  // three whole bytes
    const struct {
        const char* type;
        std::string tag;
        std::string value;  // a value other than the tag replaces it
    } cases[] = {
        {"INT", "0000000A", "0000000A"}, {"INT", "", "00000005"}, {"INT", "Wrong", "00000005"},
        {"BIN", "0A 0B 0C", "0A 0B 0C"}, {"BIN", "", "000000"},   {"STR", "abc", "abc"},
        {"STR", "ab", "000"},            {"STR", "abcd", "000"},
    };
    for (const auto& c : cases) {
        option.Type = c.type;
        const FormStart start = StartValueForForm(option, c.tag);
        EXPECT_EQ(start.Value, c.value) << c.type << " " << c.tag;
        EXPECT_EQ(start.TagReplaced, c.value != c.tag) << c.type << " " << c.tag;
    }
}

}  // namespace
}  // namespace sb
