#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

namespace sb::test {

// A folder of its own for each test (and each suffix), removed at its end.
class TempFolder {
public:
    explicit TempFolder(const std::string& suffix = "") {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        path_ = std::filesystem::temp_directory_path() / ("servicebay-" + std::string(info->test_suite_name()) + "-" +
                                                          info->name() + "-" + std::to_string(::getpid()) + suffix);
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string File(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& Path() const { return path_; }
    static void Write(const std::string& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string Read(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

private:
    std::filesystem::path path_;
};

// The cases of a data file among the test sources, e.g. "config/catalog-cases.json".
inline nlohmann::json TestCases(const std::string& path) {
    return nlohmann::json::parse(TempFolder::Read(std::string(std::getenv("SB_SOURCE_DIR")) + "/tests/" + path));
}

// JSON texts of the cases carry bytes as the characters U+0000 to U+00FF.
inline std::string Bytes(const std::string& utf8) {
    std::string bytes;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const bool pair = utf8[i] & 0x80;
        bytes += pair ? static_cast<char>((utf8[i] & 0x03) << 6 | (utf8[i + 1] & 0x3F)) : utf8[i];
        i += pair;
    }
    return bytes;
}

}  // namespace sb::test
