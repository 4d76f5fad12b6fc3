#include <gtest/gtest.h>

#include <sstream>

#include "../helpers/TempFolder.h"
#include "mainscreen/ConfigOptionsFile.h"

namespace sb::ui {
namespace {

// Which of the three places the offline run takes, for the files there are:
// beside the program first, then the user's own, then the installed sample;
// with none, beside the program for the message.
TEST(ConfigOptionsPlace, FirstPlaceThatHoldsAFileWins) {
    const std::pair<const char*, const char*> cases[] = {
        {"beside inConfig sample", "beside"}, {"inConfig sample", "inConfig"}, {"sample", "sample"}, {"", "beside"}};
    for (const auto& [present, expected] : cases) {
        test::TempFolder folder;
        std::istringstream names(present);
        for (std::string name; names >> name;) test::TempFolder::Write(folder.File(name), "<CFG/>");
        EXPECT_EQ(FirstExistingConfigOptions(folder.File("beside"), folder.File("inConfig"), folder.File("sample")),
                  folder.File(expected))
            << present;
    }
}

}  // namespace
}  // namespace sb::ui
