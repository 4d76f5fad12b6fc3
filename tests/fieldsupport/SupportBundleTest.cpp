#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "../helpers/TempFolder.h"
#include "support/SupportBundle.h"

namespace sb {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVin = "WVWZZZ1JZXW000001";

// Every file the archive holds, read back by the system's tar.
std::map<std::string, std::string> Unpacked(const std::string& archive, const test::TempFolder& folder) {
    const std::string into = folder.File("out");
    fs::remove_all(into);
    fs::create_directories(into);
    EXPECT_EQ(std::system(("tar -xzf '" + archive + "' -C '" + into + "'").c_str()), 0);
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(into))
        if (entry.is_regular_file())
            files[fs::relative(entry.path(), into).string()] = test::TempFolder::Read(entry.path().string());
    return files;
}

support::BundleSources Sources(const test::TempFolder& folder) {
    fs::create_directories(folder.File("history/SB1"));
    test::TempFolder::Write(folder.File("history/SB1/20240101T000000.000Z.sbconf"),
                            std::string(R"({"format": "servicebay-configuration", "module": {"SN": "SB1", "VIN": ")") + kVin + "\"}}");
    support::BundleSources sources;
    sources.Findings = {{"access", support::Trouble::Access, "no rights", "usermod"}};
    sources.Versions = "servicebay 1\n";
    sources.WireTrace = std::string("[     0.1] > 47 45 54 56 49 4E 0D |GETVIN\\r|\n[     0.2] < 47 |GETVIN\\r\\n|\n") +
                        "[     0.3] < 57 |" + kVin + "\\r\\n> |\n[     0.4] > 52 |RUN\\r|\n";
    sources.HistoryRoot = folder.File("history");
    sources.LogPaths = {"/var/log/line.log"};
    return sources;
}

// The archive opens with tar and holds exactly the files its manifest names;
// the VIN stays out unless it is asked for.
TEST(SupportBundle, HoldsWhatItsManifestSaysAndTheVinOnlyWhenAsked) {
    test::TempFolder folder;
    for (const bool withVin : {false, true}) {
        auto sources = Sources(folder);
        sources.WithVin = withVin;
        support::WriteSupportBundle(folder.File("b.tar.gz"), sources);
        auto files = Unpacked(folder.File("b.tar.gz"), folder);
        const auto manifest = nlohmann::json::parse(files.at("servicebay-support/manifest.json"));
        std::set<std::string> named = {"servicebay-support/manifest.json"};
        for (const auto& part : manifest.at("parts")) {
            EXPECT_TRUE(part.at("collected").get<bool>()) << part;
            named.insert(part.at("file").get<std::string>());
        }
        std::set<std::string> held;
        bool vinSeen = false;
        for (const auto& [name, content] : files) {
            held.insert(name);
            vinSeen = vinSeen || content.find(kVin) != std::string::npos;
        }
        EXPECT_EQ(held, named);
        EXPECT_EQ(vinSeen, withVin);
        EXPECT_NE(files["servicebay-support/wire-trace.txt"].find("|RUN\\r|"), std::string::npos);
        EXPECT_NE(files["servicebay-support/last-read.sbconf"].find("\"SB1\""), std::string::npos);
    }
}

TEST(SupportBundle, NamesWhatCouldNotBeCollectedAndCutsWhatIsTooLarge) {
    test::TempFolder folder;
    auto sources = Sources(folder);
    sources.HistoryRoot = folder.File("no-history");
    sources.WireTrace = std::string(support::kBundlePartLimit, 'a') + "the newest line\n";
    support::WriteSupportBundle(folder.File("b.tar.gz"), sources);
    auto files = Unpacked(folder.File("b.tar.gz"), folder);
    const auto manifest = nlohmann::json::parse(files.at("servicebay-support/manifest.json"));
    int missing = 0, cut = 0;
    for (const auto& part : manifest.at("parts")) {
        missing += !part.at("collected").get<bool>() && !part.at("reason").get<std::string>().empty();
        cut += part.contains("cut_to_bytes");
    }
    EXPECT_EQ(missing, 1);
    EXPECT_EQ(cut, 1);
    EXPECT_EQ(files.count("servicebay-support/last-read.sbconf"), 0u);
    const std::string& trace = files.at("servicebay-support/wire-trace.txt");
    EXPECT_EQ(trace.size(), support::kBundlePartLimit);
    EXPECT_EQ(trace.substr(trace.size() - 16), "the newest line\n");

    EXPECT_THROW(support::WriteSupportBundle(folder.File("no-folder/b.tar.gz"), sources), std::runtime_error);
    EXPECT_FALSE(fs::exists(folder.File("no-folder")));
}

}  // namespace
}  // namespace sb
