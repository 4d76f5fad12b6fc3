#include <gtest/gtest.h>

#include "../helpers/TempFolder.h"
#include "mainscreen/ConfigOptionsFile.h"

namespace sb::ui {
namespace {

// Which of the three places the offline run takes, for each set of places
// that hold a file: beside the program first, then the user's own, then the
// installed sample; with none, beside the program for the message.
TEST(ConfigOptionsPlace, FirstPlaceThatHoldsAFileWins) {
    struct Case {
        bool beside, inConfig, sample;
        const char* expected;
    };
    const Case cases[] = {
        {true, true, true, "beside"},     {false, true, true, "inConfig"}, {false, false, true, "sample"},
        {false, false, false, "beside"},  {true, false, false, "beside"},  {false, true, false, "inConfig"},
    };
    for (const Case& c : cases) {
        test::TempFolder folder;
        const std::string beside = folder.File("beside"), inConfig = folder.File("inConfig"),
                          sample = folder.File("sample");
        if (c.beside) test::TempFolder::Write(beside, "<CFG/>");
        if (c.inConfig) test::TempFolder::Write(inConfig, "<CFG/>");
        if (c.sample) test::TempFolder::Write(sample, "<CFG/>");
        EXPECT_EQ(FirstExistingConfigOptions(beside, inConfig, sample), folder.File(c.expected))
            << c.beside << c.inConfig << c.sample;
    }
}

}  // namespace
}  // namespace sb::ui
