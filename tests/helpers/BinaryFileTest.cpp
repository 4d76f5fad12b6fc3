#include <gtest/gtest.h>

#include "TempFolder.h"
#include "helpers/BinaryFile.h"

namespace sb {
namespace {

using namespace std::string_literals;
using test::TempFolder;

TEST(BinaryFile, ReadsEveryByteOrNothing) {
    TempFolder folder;
    const std::string firmware = "\x7F" "ELF\0\0\xFF\r\n\x1A"s + std::string(100000, '\x55');
    TempFolder::Write(folder.File("app.cod"), firmware);
    TempFolder::Write(folder.File("empty.cod"), "");
    const std::pair<std::string, std::string> cases[] = {
        {folder.File("app.cod"), firmware}, {folder.File("empty.cod"), ""}, {folder.File("missing.cod"), ""},
        {folder.Path().string(), ""}, {folder.File("app.cod/inner"), ""},
    };
    for (const auto& [path, expected] : cases) {
        std::string bytes = "left over from before";
        EXPECT_EQ(ReadBinaryFile(path, bytes), static_cast<int32_t>(expected.size())) << path;
        EXPECT_EQ(bytes, expected) << path;
    }
}

}  // namespace
}  // namespace sb
