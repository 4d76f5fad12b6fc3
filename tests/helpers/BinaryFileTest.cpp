#include <gtest/gtest.h>

#include <string>
#include <vector>

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
    struct Case {
        std::string path;
        std::string bytes;
    };
    const std::vector<Case> cases = {
        {folder.File("app.cod"), firmware},
        {folder.File("empty.cod"), ""},
        {folder.File("missing.cod"), ""},
        {folder.Path().string(), ""},  // a folder
        {folder.File("app.cod/inner"), ""},
        {"", ""},
    };
    for (const auto& c : cases) {
        std::string bytes = "left over from before";
        EXPECT_EQ(ReadBinaryFile(c.path, bytes), static_cast<int32_t>(c.bytes.size())) << c.path;
        EXPECT_EQ(bytes, c.bytes) << c.path;
    }
}

}  // namespace
}  // namespace sb
