#include <gtest/gtest.h>

#include "../helpers/TempFolder.h"
#include "link/PortErrorText.h"

namespace sb {
namespace {

TEST(PortErrorText, PutsThePortsFailureOnASecondLineWithAPointerIntoTheReadme) {
    const std::string text = PortErrorText("CommPort Error", PortError("Cannot open /dev/ttyACM0", "Permission denied"));
    const auto pointer = text.find(" (see README, \"");
    ASSERT_NE(pointer, std::string::npos) << text;
    EXPECT_EQ(text.substr(0, pointer), "CommPort Error\r\nCannot open /dev/ttyACM0: Permission denied");
    EXPECT_EQ(PortErrorText("X", PortError("gone", "")).substr(0, 8), "X\r\ngone ");

    // The section it names is there.
    const std::string section = text.substr(pointer + 15, text.find('"', pointer + 15) - pointer - 15);
    const std::string readme = test::TempFolder::Read(std::string(std::getenv("SB_SOURCE_DIR")) + "/README.md");
    EXPECT_NE(readme.find("\n## " + section + "\n"), std::string::npos) << section;
}

}  // namespace
}  // namespace sb
