#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "CliRun.h"
#include "ModuleProcess.h"

// servicebay-cli save, diff, set --output and write --file against the
// virtual module serving the sample catalog.
namespace sb::test {
namespace {

class ConfigFileCommands : public ModuleTest {
protected:
    void StartModule(std::vector<std::string> faults = {}) {
        faults.insert(faults.end(),
                      {"--boot", "--profile", FromEnvironment("SB_SOURCE_DIR") + "/data/SampleModule.profile"});
        module = std::make_unique<ModuleProcess>(folder, faults);
    }
    CliRun Cli(std::vector<std::string> args) {
        for (std::string& arg : args)
            if (arg == "$PORT") arg = module->Device();
            else if (arg.ends_with(".sbconf")) arg = folder.File(arg);
        return RunCli(folder, args);
    }
    // The names of the options that diff --json says differ.
    std::vector<std::string> Differing(const CliRun& run) {
        std::vector<std::string> names;
        const auto result = nlohmann::json::parse(run.out);
        for (const auto& option : result["options"])
            if (option["differs"]) names.push_back(option["name"]);
        return names;
    }

    std::unique_ptr<ModuleProcess> module;
};

TEST_F(ConfigFileCommands, ASavedFileEqualsItselfAndOneSetOptionIsAllThatDiffers) {
    StartModule();
    ASSERT_EQ(Cli({"save", "--port", "$PORT", "a.sbconf"}).status, 0);
    const CliRun same = Cli({"diff", "a.sbconf", "--port", "$PORT", "--json"});
    EXPECT_EQ(same.status, 0) << same.err;
    EXPECT_EQ(Differing(same), std::vector<std::string>{});

    ASSERT_EQ(Cli({"set", "a.sbconf", "Wake delay=21", "--output", "b.sbconf"}).status, 0);
    const CliRun changed = Cli({"diff", "a.sbconf", "b.sbconf", "--json"});
    EXPECT_EQ(changed.status, 20);
    EXPECT_EQ(Differing(changed), std::vector<std::string>{"Wake delay"});
}

TEST_F(ConfigFileCommands, AFileOfAnIdTheModuleDoesNotKnowIsRefusedUnlessForced) {
    StartModule();
    ASSERT_EQ(Cli({"save", "--port", "$PORT", "a.sbconf"}).status, 0);
    ASSERT_EQ(Cli({"set", "a.sbconf", "--force", "Configuration Id=9", "--output", "alien.sbconf"}).status, 0);
    const CliRun refused = Cli({"write", "--port", "$PORT", "--file", "alien.sbconf"});
    EXPECT_EQ(refused.status, 18);
    EXPECT_NE(refused.err.find("alien.sbconf: This module's catalog knows no configuration with the Id 00000009"),
              std::string::npos)
        << refused.err;
    EXPECT_EQ(Cli({"diff", "--port", "$PORT", "a.sbconf"}).status, 0);  // nothing was sent

    EXPECT_EQ(Cli({"write", "--port", "$PORT", "--file", "alien.sbconf", "--force"}).status, 0);
    EXPECT_EQ(Cli({"diff", "--port", "$PORT", "alien.sbconf"}).status, 0);
}

TEST_F(ConfigFileCommands, VerifyNamesWhatAModuleKeptOtherThanWritten) {
    StartModule({"--ignore-config-writes"});
    ASSERT_EQ(Cli({"save", "--port", "$PORT", "a.sbconf"}).status, 0);
    ASSERT_EQ(Cli({"set", "a.sbconf", "Wake delay=21", "Mode=Off", "--output", "b.sbconf"}).status, 0);
    EXPECT_EQ(Cli({"write", "--port", "$PORT", "--file", "b.sbconf"}).status, 0);  // "OK" is all it knows
    const CliRun verified = Cli({"write", "--port", "$PORT", "--file", "b.sbconf", "--verify"});
    EXPECT_EQ(verified.status, 19);
    EXPECT_EQ(verified.err,
              "The module holds another configuration than the one written:\n"
              " Mode:Off -> On\n"
              " Wake delay:00000021 ms -> 00000014 ms\n");
}

TEST_F(ConfigFileCommands, ABadFileIsNamedWithItsOwnStatus) {
    TempFolder::Write(folder.File("cut.sbconf"), "{\"format\": \"servicebay-configuration\"");
    const CliRun run = Cli({"decode", "cut.sbconf"});
    EXPECT_EQ(run.status, 10);
    EXPECT_EQ(run.err, folder.File("cut.sbconf") + ": the file is cut short: it ends inside the document\n");
}

}  // namespace
}  // namespace sb::test
