#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "CliRun.h"

// servicebay-cli decode and set, end to end on the sample catalog: the cases
// of decode-cases.json, each with its arguments, the files it needs, its exit
// status and its output ("out", exact or "out@" a file beside it; "err",
// exact or "err~" a part of it).
namespace sb::test {
namespace {

TEST(CatalogCommands, EachCaseEndsWithItsStatusAndOutput) {
    const std::string here = FromEnvironment("SB_SOURCE_DIR") + "/tests/tools/";
    const auto cases = nlohmann::json::parse(TempFolder::Read(here + "decode-cases.json"));
    ASSERT_GT(cases.size(), 20u);
    for (const auto& c : cases) {
        SCOPED_TRACE(c["args"].dump());
        TempFolder folder;
        const auto files = c.value("files", nlohmann::json::object());
        for (const auto& [name, text] : files.items()) TempFolder::Write(folder.File(name), text.get<std::string>());
        std::vector<std::string> args;
        for (std::string arg : c["args"]) {
            if (arg == "$SAMPLE") arg = FromEnvironment("SB_SOURCE_DIR") + "/data/SampleCatalog.xml";
            if (arg.starts_with("$FOLDER/")) arg = folder.File(arg.substr(8));
            args.push_back(arg);
        }
        const CliRun run = RunCli(folder, args);
        EXPECT_EQ(run.status, c["status"].get<int>()) << run.err;
        if (c.contains("out")) EXPECT_EQ(run.out, c["out"].get<std::string>());
        if (c.contains("out@")) EXPECT_EQ(run.out, TempFolder::Read(here + c["out@"].get<std::string>()));
        if (c.contains("err")) EXPECT_EQ(run.err, c["err"].get<std::string>());
        if (c.contains("err~")) EXPECT_NE(run.err.find(c["err~"].get<std::string>()), std::string::npos) << run.err;
    }
}

}  // namespace
}  // namespace sb::test
