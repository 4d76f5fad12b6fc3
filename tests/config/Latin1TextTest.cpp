#include <gtest/gtest.h>

#include "../helpers/TempFolder.h"
#include "config/Latin1Text.h"

namespace sb::test {
namespace {

// Each case of terminal-cases.json: a text of bytes and the form in which
// it reaches a terminal.
TEST(Latin1Text, TerminalFormWritesOutWhatWouldSteerTheTerminal) {
    for (const auto& c : TestCases("config/terminal-cases.json"))
        EXPECT_EQ(Latin1ToTerminal(Bytes(c["text"])), c["terminal"].get<std::string>()) << c["why"];
}

}  // namespace
}  // namespace sb::test
