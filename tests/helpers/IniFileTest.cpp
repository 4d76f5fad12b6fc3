#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "helpers/IniFile.h"

namespace sb {
namespace {

using test::TempFolder;

std::string WithLineBreaks(std::string text, const std::string& lineBreak) {
    for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += lineBreak.size())
        text.replace(at, 1, lineBreak);
    return text;
}

TEST(IniFile, ReadsValuesAsTheProfileCallsDo) {
    const std::string content =
        "; counter of programmed modules\n"
        "[STAT]\n"
        "QTY= 5 \n"
        "  Quoted = \"  spaced  \"\n"
        "Single='x'\n"
        "Empty=\n"
        "Blank=   \n"
        "QuotesOnly=\"\"\n"
        "Sentinel=NothingFound\n"
        "Half=\"x\n"
        "Twice=\"\"a\"\"\n"
        "Equals=a=b\n"
        "QTY=6\n"
        "\n"
        "[ frmload ]\n"
        "Path=/home/tech/fw\n"
        "[STAT]\n"
        "Later=1\n";
    struct Case {
        const char* section;
        const char* key;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"STAT", "QTY", "5"},
        {"stat", "qty", "5"},
        {"STAT", "quoted", "  spaced  "},
        {"STAT", "Single", "x"},
        {"STAT", "Empty", ""},  // present and empty: not the default
        {"STAT", "Blank", ""},
        {"STAT", "QuotesOnly", ""},
        {"STAT", "Sentinel", "default"},  // the sentinel reads as missing
        {"STAT", "Half", "\"x"},
        {"STAT", "Twice", "\"a\""},
        {"STAT", "Equals", "a=b"},
        {"STAT", "Missing", "default"},
        {"STAT", "", "default"},
        {"NOSUCH", "QTY", "default"},
        {"FRMLOAD", "PATH", "/home/tech/fw"},
        {"STAT", "Later", "default"},  // only the first section of a name counts
        {"STAT", "; counter of programmed modules", "default"},
    };
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    for (const std::string lineBreak : {"\n", "\r\n"}) {
        TempFolder::Write(path, WithLineBreaks(content, lineBreak));
        for (const auto& c : cases)
            EXPECT_EQ(IniReadValue(c.section, c.key, "default", path), c.expected)
                << c.section << '/' << c.key << (lineBreak == "\n" ? " LF" : " CR LF");
    }
}

TEST(IniFile, WithoutAReadableFileEveryKeyHasItsDefault) {
    TempFolder folder;
    EXPECT_EQ(IniReadValue("STAT", "QTY", "0", folder.File("missing.ini")), "0");
    EXPECT_EQ(IniReadValue("STAT", "QTY", "0", folder.Path().string()), "0");
    EXPECT_EQ(IniReadValue("STAT", "QTY", "0", folder.File("missing/sniffer.ini")), "0");
}

TEST(IniFile, ALongValueIsCutToTheReadBuffer) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    TempFolder::Write(path, "[A]\r\nK=" + std::string(70000, 'x') + "\r\n");
    EXPECT_EQ(IniReadValue("A", "K", "", path), std::string(65535, 'x'));
}

TEST(IniFile, TheFirstWriteCreatesTheFileWithCrLfLines) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    ASSERT_TRUE(IniWriteValue("STAT", "QTY", " 5", path));
    EXPECT_EQ(TempFolder::Read(path), "[STAT]\r\nQTY= 5\r\n");
    EXPECT_EQ(IniReadValue("STAT", "QTY", "0", path), "5");
}

TEST(IniFile, DeletingFromAMissingFileCreatesNothing) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    EXPECT_TRUE(IniWriteValue("STAT", "QTY", "", path));
    EXPECT_TRUE(IniWriteValue("STAT", "", "", path));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(IniFile, WritesChangeOnlyTheirOwnLines) {
    const std::string start =
        "; kept as it is\n"
        "[FRMLOAD]\n"
        "Path = /old\n"
        "\n"
        "[STAT]\n"
        "QTY= 2\n"
        "\n"
        "[STAT_00000001]\n"
        "SN=A1\n"
        "UID=FF\n";
    struct Step {
        const char* section;
        const char* key;
        const char* value;
        std::string expected;
    };
    // Each step works on the file the step before left.
    const std::vector<Step> steps = {
        {"frmload", "PATH", "/new", "; kept as it is\n[FRMLOAD]\nPath=/new\n\n[STAT]\nQTY= 2\n\n"
                                    "[STAT_00000001]\nSN=A1\nUID=FF\n"},
        {"STAT", "Last", "3", "; kept as it is\n[FRMLOAD]\nPath=/new\n\n[STAT]\nQTY= 2\nLast=3\n\n"
                              "[STAT_00000001]\nSN=A1\nUID=FF\n"},
        {"STAT_00000002", "SN", "B2", "; kept as it is\n[FRMLOAD]\nPath=/new\n\n[STAT]\nQTY= 2\nLast=3\n\n"
                                      "[STAT_00000001]\nSN=A1\nUID=FF\n[STAT_00000002]\nSN=B2\n"},
        {"stat_00000001", "sn", "", "; kept as it is\n[FRMLOAD]\nPath=/new\n\n[STAT]\nQTY= 2\nLast=3\n\n"
                                    "[STAT_00000001]\nUID=FF\n[STAT_00000002]\nSN=B2\n"},
        {"STAT", "", "", "; kept as it is\n[FRMLOAD]\nPath=/new\n\n"
                         "[STAT_00000001]\nUID=FF\n[STAT_00000002]\nSN=B2\n"},
        {"STAT", "QTY", "", "; kept as it is\n[FRMLOAD]\nPath=/new\n\n"
                            "[STAT_00000001]\nUID=FF\n[STAT_00000002]\nSN=B2\n"},
    };
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    for (const std::string lineBreak : {"\n", "\r\n"}) {
        TempFolder::Write(path, WithLineBreaks(start, lineBreak));
        for (const auto& step : steps) {
            EXPECT_TRUE(IniWriteValue(step.section, step.key, step.value, path));
            EXPECT_EQ(TempFolder::Read(path), WithLineBreaks(step.expected, lineBreak))
                << step.section << '/' << step.key << '=' << step.value;
        }
    }
}

TEST(IniFile, DeletedKeysAndSectionsReadAsDefaults) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    TempFolder::Write(path, "[STAT]\nQTY=1\n[Other]\nA=1\n[stat]\nQTY=2\nB=2\n");
    ASSERT_TRUE(IniWriteValue("STAT", "QTY", "", path));
    EXPECT_EQ(IniReadValue("STAT", "QTY", "gone", path), "gone");
    ASSERT_TRUE(IniWriteValue("Stat", "", "", path));
    EXPECT_EQ(IniReadValue("STAT", "B", "gone", path), "gone");
    EXPECT_EQ(TempFolder::Read(path), "[Other]\nA=1\n");
}

TEST(IniFile, AKeyAppendedBehindALastLineWithoutLineBreak) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    TempFolder::Write(path, "[A]\nK=1");
    ASSERT_TRUE(IniWriteValue("A", "L", "2", path));
    ASSERT_TRUE(IniWriteValue("B", "M", "3", path));
    EXPECT_EQ(TempFolder::Read(path), "[A]\nK=1\nL=2\n[B]\nM=3\n");
}

TEST(IniFile, AByteOrderMarkStaysAndDoesNotHideTheFirstSection) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    TempFolder::Write(path, "\xEF\xBB\xBF[STAT]\r\nQTY=1\r\n");
    EXPECT_EQ(IniReadValue("STAT", "QTY", "0", path), "1");
    ASSERT_TRUE(IniWriteValue("STAT", "QTY", "2", path));
    EXPECT_EQ(TempFolder::Read(path), "\xEF\xBB\xBF[STAT]\r\nQTY=2\r\n");
}

TEST(IniFile, ReplacementLeavesNoTemporaryFileAndKeepsTheRights) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    TempFolder::Write(path, "[STAT]\r\nQTY=1\r\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write |
                                           std::filesystem::perms::group_read);
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(IniWriteValue("STAT", "QTY", std::to_string(i), path));

    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(names, std::vector<std::string>{"sniffer.ini"});
    EXPECT_EQ(std::filesystem::status(path).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write |
                  std::filesystem::perms::group_read);
    EXPECT_EQ(IniReadValue("STAT", "QTY", "", path), "19");
}

TEST(IniFile, AWriteThroughALinkChangesTheLinkedFile) {
    TempFolder folder;
    const auto target = folder.File("real.ini");
    const auto link = folder.File("sniffer.ini");
    TempFolder::Write(target, "[STAT]\nQTY=1\n");
    std::filesystem::create_symlink(target, link);
    ASSERT_TRUE(IniWriteValue("STAT", "QTY", "2", link));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(TempFolder::Read(target), "[STAT]\nQTY=2\n");
}

TEST(IniFile, FailedOrRefusedWritesLeaveTheFileAlone) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    const std::string content = "[STAT]\r\nQTY=1\r\n";
    TempFolder::Write(path, content);
    struct Case {
        const char* what;
        std::string section, key, value, path;
    };
    const std::vector<Case> cases = {
        {"value with a line break", "STAT", "QTY", "2\r\nX=1", path},
        {"key with a line break", "STAT", "Q\nTY", "2", path},
        {"key with an equals sign", "STAT", "Q=TY", "2", path},
        {"section with a bracket", "ST]AT", "QTY", "2", path},
        {"no section", "", "QTY", "2", path},
        {"a folder that is missing", "STAT", "QTY", "2", folder.File("missing/sniffer.ini")},
        {"a folder in the file's place", "STAT", "QTY", "2", folder.Path().string()},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(IniWriteValue(c.section, c.key, c.value, c.path)) << c.what;
        EXPECT_EQ(TempFolder::Read(path), content) << c.what;
    }
}

TEST(IniFile, AnUnwritableFolderFailsTheWriteAndKeepsTheOldFile) {
    if (::geteuid() == 0) GTEST_SKIP() << "rights do not bind the superuser";
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    TempFolder::Write(path, "[STAT]\r\nQTY=1\r\n");
    std::filesystem::permissions(folder.Path(),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    EXPECT_FALSE(IniWriteValue("STAT", "QTY", "2", path));
    EXPECT_EQ(IniReadValue("STAT", "QTY", "", path), "1");
}

}  // namespace
}  // namespace sb
