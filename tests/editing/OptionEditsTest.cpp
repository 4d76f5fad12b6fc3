#include <gtest/gtest.h>

#include "editing/OptionEdits.h"

namespace sb {
namespace {

TEST(OptionEdits, FormStartTakesTheTagOrTheTypesDefault) {
    OptionRec option;
    option.MinValue = "00000005";
    option.BitLen = 27;  // three whole bytes
    // Type, tag, start value: a value other than the tag replaces it.
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"INT", "0000000A", "0000000A"}, {"INT", "", "00000005"}, {"INT", "Wrong", "00000005"},
        {"BIN", "0A 0B 0C", "0A 0B 0C"}, {"BIN", "", "000000"},   {"STR", "abc", "abc"},
        {"STR", "ab", "000"},            {"STR", "abcd", "000"},
    };
    for (const auto& [type, tag, value] : cases) {
        option.Type = type;
        const FormStart start = StartValueForForm(option, tag);
        EXPECT_EQ(std::pair(start.Value, start.TagReplaced), std::pair(value, value != tag)) << type << " " << tag;
    }
}

}  // namespace
}  // namespace sb
