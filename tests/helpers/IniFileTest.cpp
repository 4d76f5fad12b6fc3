#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "TempFolder.h"
#include "helpers/IniFile.h"
#include "helpers/WholeFile.h"

namespace sb {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

std::string WithLineBreaks(std::string text, const std::string& lineBreak) {
    for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += lineBreak.size())
        text.replace(at, 1, lineBreak);
    return text;
}

TEST(IniFile, ReadsValuesAsTheProfileCallsDo) {
    const auto cases = test::TestCases("helpers/ini-cases.json");
    const std::string content = cases.at("profile").get<std::string>() + "[LONG]\nLong=" + std::string(70000, 'x') + "\n";
    TempFolder folder;
    const auto path = folder.File("sniffer.ini");
    for (const std::string lineBreak : {"\n", "\r\n"}) {
        TempFolder::Write(path, WithLineBreaks(content, lineBreak));
        for (const auto& c : cases.at("reads")) EXPECT_EQ(IniReadValue(c[0], c[1], "default", path), c[2]) << c;
        EXPECT_EQ(IniReadValue("LONG", "Long", "", path), std::string(65535, 'x'));
    }
    for (const std::string& missing : {folder.File("none.ini"), folder.Path().string(), folder.File("none/x.ini")})
        EXPECT_EQ(IniReadValue("STAT", "QTY", "0", missing), "0") << missing;
}

TEST(IniFile, WritesChangeOnlyTheirOwnLines) {
    const auto cases = test::TestCases("helpers/ini-cases.json");
    TempFolder folder;
    const auto path = folder.File("sniffer.ini"), other = folder.File("new.ini");
    for (const std::string lineBreak : {"\n", "\r\n"}) {
        TempFolder::Write(path, WithLineBreaks(cases.at("start"), lineBreak));
        for (const auto& step : cases.at("steps")) {
            EXPECT_TRUE(IniWriteValue(step[0], step[1], step[2], path));
            EXPECT_EQ(TempFolder::Read(path), "\xEF\xBB\xBF" + WithLineBreaks(step[3], lineBreak)) << step;
        }
    }
    // A deletion from a missing file makes none; a new file has CR LF lines.
    EXPECT_TRUE(IniWriteValue("STAT", "QTY", "", other) && IniWriteValue("STAT", "", "", other));
    EXPECT_FALSE(fs::exists(other));
    ASSERT_TRUE(IniWriteValue("STAT", "QTY", " 5", other));
    EXPECT_EQ(TempFolder::Read(other), "[STAT]\r\nQTY= 5\r\n");
}

TEST(IniFile, AReplacementTakesThePlaceOfTheFileItselfAndClearsAwayWhatDeadWritersLeft) {
    TempFolder folder;
    const auto real = folder.Path() / "real";
    fs::create_directory(real);
    const auto link = folder.File("sniffer.ini"), target = folder.File("real/sniffer.ini");
    for (const bool targetExists : {false, true}) {
        fs::remove(target);
        fs::remove(link);
        if (targetExists) TempFolder::Write(target, "[STAT]\nQTY=1\n");
        fs::create_symlink("real/sniffer.ini", link);
        ASSERT_TRUE(IniWriteValue("STAT", "QTY", "2", link)) << targetExists;
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_EQ(IniReadValue("STAT", "QTY", "", target), "2") << targetExists;
    }
    // The file's rights stay; temporary files of writers that are gone go.
    const auto rights = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(target, rights);
    const pid_t writer = ::fork();
    if (writer == 0) ::_exit(0);
    ::waitpid(writer, nullptr, 0);
    const std::string dead = std::to_string(writer), live = std::to_string(::getpid());
    std::vector<fs::path> kept = {real / (".other.ini.tmp-" + dead + "-0"), real / (".sniffer.ini.tmp-" + live + "-7"),
                                  real / ".sniffer.ini.tmp-x-0", target};
    for (const auto& path : {kept[0], kept[1], kept[2], real / (".sniffer.ini.tmp-" + dead + "-0")})
        TempFolder::Write(path, "");
    ASSERT_TRUE(IniWriteValue("STAT", "QTY", "3", link));
    std::vector<fs::path> names(fs::directory_iterator(real), {});
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, kept);
    EXPECT_EQ(fs::status(target).permissions(), rights);
    // A folder that may not be written (which binds all but the superuser),
    // then another name of the file: the file stays where it is.
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_TRUE(IniWriteValue("STAT", "QTY", "4", link));
    fs::create_hard_link(target, folder.File("second.ini"));
    EXPECT_TRUE(IniWriteValue("STAT", "QTY", "5", link));
    fs::permissions(real, fs::perms::owner_all);
    EXPECT_EQ(IniReadValue("STAT", "QTY", "", folder.File("second.ini")), "5");
    EXPECT_EQ(fs::hard_link_count(target), 2u);
}

TEST(IniFile, AWriteThatCannotBeWholeWritesNothingAndSaysWhy) {
    TempFolder folder;
    const auto path = folder.File("sniffer.ini"), locked = folder.File("locked.ini");
    const std::string content = "[STAT]\r\nQTY=1\r\n";
    TempFolder::Write(path, content);
    TempFolder::Write(locked, content);
    fs::permissions(locked, fs::perms::owner_read | fs::perms::group_read);  // binds the superuser too
    const IniEntry good = {"STAT", "QTY", "2"};
    const struct {
        std::vector<IniEntry> entries;
        std::string path;
        std::errc why;
    } cases[] = {
        {{good, {"STAT", "SN", "a\r\nb"}}, path, std::errc::invalid_argument},
        {{{"STAT", "Q\nTY", "2"}}, path, std::errc::invalid_argument},
        {{{"STAT", "Q=TY", "2"}}, path, std::errc::invalid_argument},
        {{{"ST]AT", "QTY", "2"}}, path, std::errc::invalid_argument},
        {{{" ", "QTY", "2"}}, path, std::errc::invalid_argument},
        {{good}, locked, std::errc::permission_denied},
        {{good}, folder.File("missing/sniffer.ini"), std::errc::no_such_file_or_directory},
        {{good}, folder.Path().string(), std::errc::is_a_directory},
        {{good}, path + "/x.ini", std::errc::not_a_directory},
    };
    for (const auto& c : cases) {
        std::error_code why;
        EXPECT_FALSE(IniWriteValues(c.entries, c.path, &why)) << c.path;
        EXPECT_EQ(why, std::make_error_code(c.why)) << c.path << ": " << why.message();
        EXPECT_EQ(TempFolder::Read(path) + TempFolder::Read(locked), content + content) << c.path;
    }
}

TEST(WholeFile, ACreationNeverTakesTheNameOfAFileThatIsThere) {
    TempFolder folder;
    const std::string path = folder.File("a.sbconf");
    ASSERT_TRUE(CreateFileAtomically(path, "first"));
    std::error_code why;
    EXPECT_FALSE(CreateFileAtomically(path, "second", &why));
    EXPECT_EQ(why, std::errc::file_exists);
    EXPECT_EQ(TempFolder::Read(path), "first");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1);  // no temporary file stays
}

}  // namespace
}  // namespace sb
