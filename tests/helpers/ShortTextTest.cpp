#include <gtest/gtest.h>

#include "helpers/ShortText.h"

namespace sb {
namespace {

// The cut leaves a UTF-8 character whole, and a text of other bytes nearly
// its limit.
TEST(ShortText, ALongTextIsCutAndSaysItsLength) {
    const std::pair<std::string, std::string> cases[] = {{"abcd", "abcd"},
                                                         {"abcde", "abcd... (5 bytes)"},
                                                         {"ab\xE2\x82\xAC", "ab... (5 bytes)"},
                                                         {std::string(8, '\xA0'), "\xA0... (8 bytes)"}};
    for (const auto& [text, shown] : cases) EXPECT_EQ(ShortText(text, 4), shown) << text;
}

}  // namespace
}  // namespace sb
