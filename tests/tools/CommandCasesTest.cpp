#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "CliRun.h"
#include "ModuleProcess.h"

// servicebay-cli end to end, one case a row of the case files beside this
// test. A case names the files it needs ("files"), the virtual modules it
// starts ("modules": the arguments of each) and its commands ("steps", or
// one command at the case's top): each with its arguments, its exit status,
// its output ("out"/"err" exact, "out~"/"err~" a part or a list of parts,
// "out@" a file beside this test), parts of files it leaves in the case's
// folder ("files~") and lines of the first module's state file behind it. With
// "own_program" the commands run from a copy of the program in the case's
// folder, so that the sniffer.ini beside it is the case's. $FOLDER stands
// for the case's folder (in outputs too), $SOURCE for the source tree and
// $PORT for the first module's device (in error output for any module's).
namespace sb::test {
namespace {

using nlohmann::json;

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

class CommandCases : public ModuleTest {
protected:
    void RunCases(const std::string& file) {
        for (const json& c : TestCases("tools/" + file)) {
            SCOPED_TRACE(c["name"].get<std::string>());
            RunCase(c, folder.File(c["name"].get<std::string>()));
        }
    }

private:
    void RunCase(const json& c, const std::string& caseFolder) {
        std::filesystem::create_directories(caseFolder + "/bin");
        const json files = c.value("files", json::object());
        for (const auto& [name, text] : files.items())
            TempFolder::Write(caseFolder + "/" + name, text.get<std::string>());
        std::vector<std::unique_ptr<ModuleProcess>> modules;
        for (const json& args : c.value("modules", json::array())) {
            const std::string name = c["name"].get<std::string>() + "/m" + std::to_string(modules.size());
            modules.push_back(std::make_unique<ModuleProcess>(folder, name, Expanded(args, caseFolder, "")));
        }
        const std::string port = modules.empty() ? "" : modules[0]->Device();
        std::vector<std::string> devices;  // longest first: /dev/pts/12 before /dev/pts/1
        for (const auto& module : modules) devices.push_back(module->Device());
        std::sort(devices.begin(), devices.end(), [](auto& a, auto& b) { return a.size() > b.size(); });
        std::string bin = FromEnvironment("SB_BIN_DIR");
        if (c.value("own_program", false)) {
            std::filesystem::copy_file(bin + "/servicebay-cli", caseFolder + "/bin/servicebay-cli");
            bin = caseFolder + "/bin";
        }
        const json steps = c.contains("steps") ? c["steps"] : json::array({c});
        for (const json& step : steps) {
            SCOPED_TRACE(step["args"].dump());
            const CliRun run = RunCli(folder, Expanded(step["args"], caseFolder, port), bin);
            EXPECT_EQ(run.status, step["status"].get<int>()) << run.err;
            ExpectOutput(step, "out", run.out, caseFolder);
            std::string err = run.err;
            for (const std::string& device : devices) ReplaceAll(err, device, "$PORT");
            ExpectOutput(step, "err", err, caseFolder);
            const json files = step.value("files~", json::object());
            for (const auto& [name, parts] : files.items())
                for (std::string part : parts.is_array() ? parts : json::array({parts})) {
                    ReplaceAll(part, "$FOLDER", caseFolder);
                    EXPECT_NE(TempFolder::Read(caseFolder + "/" + name).find(part), std::string::npos)
                        << name << ": " << part;
                }
            const json state = step.value("state", json::object());
            for (const auto& [key, value] : state.items())
                EXPECT_TRUE(modules.at(0)->WaitForState(key, value.get<std::string>())) << modules[0]->State(key);
        }
    }

    std::vector<std::string> Expanded(const json& args, const std::string& caseFolder, const std::string& port) const {
        std::vector<std::string> expanded;
        for (std::string arg : args) {
            ReplaceAll(arg, "$FOLDER", caseFolder);
            ReplaceAll(arg, "$SOURCE", source);
            ReplaceAll(arg, "$PORT", port);
            expanded.push_back(arg);
        }
        return expanded;
    }

    void ExpectOutput(const json& step, const std::string& stream, std::string text,
                      const std::string& caseFolder) const {
        ReplaceAll(text, caseFolder, "$FOLDER");
        if (step.contains(stream)) {
            EXPECT_EQ(text, step[stream].get<std::string>());
        }
        if (step.contains(stream + "@")) {
            EXPECT_EQ(text, TempFolder::Read(here + step[stream + "@"].get<std::string>()));
        }
        const json parts = step.value(stream + "~", json::array());
        for (const json& part : parts.is_array() ? parts : json::array({parts}))
            EXPECT_NE(text.find(part.get<std::string>()), std::string::npos) << text;
    }

    const std::string source = FromEnvironment("SB_SOURCE_DIR");
    const std::string here = source + "/tests/tools/";
};

TEST_F(CommandCases, Catalog) { RunCases("catalog-cases.json"); }
TEST_F(CommandCases, Device) { RunCases("device-cases.json"); }
TEST_F(CommandCases, ConfigFile) { RunCases("config-file-cases.json"); }
TEST_F(CommandCases, Flash) { RunCases("flash-cases.json"); }
TEST_F(CommandCases, Recipe) { RunCases("recipe-line-cases.json"); }

}  // namespace
}  // namespace sb::test
