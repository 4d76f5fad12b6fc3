#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CliRun.h"

// servicebay-cli decode and set, end to end, on the sample catalog.
namespace sb::test {
namespace {

std::string SourceFile(const std::string& relative) { return FromEnvironment("SB_SOURCE_DIR") + "/" + relative; }

const std::string kSample = SourceFile("data/SampleCatalog.xml");

class CatalogCommands : public ::testing::Test {
protected:
    CliRun Cli(const std::vector<std::string>& args) { return RunCli(folder, args); }

    TempFolder folder;
};

TEST_F(CatalogCommands, DecodePrintsTheTreeForPeopleAndForScripts) {
    struct Case {
        std::vector<std::string> args;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {{"decode", kSample, "--config", "1"}, "tests/tools/decode-passenger-car.txt"},
        {{"decode", kSample, "--config", "0", "--json"}, "tests/tools/decode-truck.json"},
        // The name plate holds " \ NUL e-acute LF A: every byte a code point.
        {{"decode", kSample, "--image", "00000000 01F80F0D 4558 225C00E90A41 0A00", "--json"},
         "tests/tools/decode-escapes.json"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected);
        const CliRun run = Cli(c.args);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.out, TempFolder::Read(SourceFile(c.expected)));
    }
}

TEST_F(CatalogCommands, DecodeOfAnImageOfNoConfigurationSaysSo) {
    const CliRun run = Cli({"decode", kSample, "--image", "090000000000000000000000000000000000", "--json"});
    EXPECT_EQ(run.status, 7);
    EXPECT_EQ(run.out, "{\"result\": false, \"nodes\": []}\n");
    EXPECT_EQ(run.err, "Something wrong: no configuration of the catalog has the Id 00000009\n");
}

TEST_F(CatalogCommands, ARefusedCatalogEndsWithStatus2AndTheReasons) {
    struct Case {
        const char* what;
        std::string document;
        std::string err;
    };
    const std::vector<Case> cases = {
        {"not well-formed", "<CFG>\n<OPTS L=\"5\">\n</CFG>\n",
         "Start-end tags mismatch (line 3, column 3)\nModule do not support info file feature\n"},
        {"image too short", "<CFG><OPTS L=\"4\"/><PDF><C>00000000</C></PDF></CFG>",
         "Module do not support info file feature\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string path = folder.File("catalog.xml");
        TempFolder::Write(path, c.document);
        for (const std::vector<std::string>& args : {std::vector<std::string>{"decode", path, "--config", "0"},
                                                      std::vector<std::string>{"set", path, "--config", "0", "0=1"}}) {
            const CliRun run = Cli(args);
            EXPECT_EQ(run.status, 2);
            EXPECT_EQ(run.out, "");
            EXPECT_EQ(run.err, c.err);
        }
    }
}

TEST_F(CatalogCommands, SetChangesOptionsByNameOrIndex) {
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string out;
        std::string err;  // a part of it
    };
    const std::vector<Case> cases = {
        {{"--config", "1", "Mode=On", "Wake delay=20", "Name plate=CAR-99", "3=03"},
         0, "0400000081C2120300004341522D39394100\n", ""},
        // List texts, and Latin-1 from a UTF-8 terminal.
        {{"--config", "0", "Speed limit=Off", "Name plate=Stra\xC3\x9F" "e"}, 0,
         "0300000056F50F05123453747261DF651400\n", ""},
        {{"--config", "1", "--json", "Mode=Auto", "Vehicle code=Export", "Lamps=0F"}, 0,
         "{\"image\": \"0400000082C2120F45584341522D30312900\", \"changes\": [\n"
         "  {\"index\": 0, \"name\": \"Mode\", \"value\": \"00000002\", \"shown\": \"Auto\"},\n"
         "  {\"index\": 4, \"name\": \"Vehicle code\", \"value\": \"4558\", \"shown\": \"Export\"},\n"
         "  {\"index\": 3, \"name\": \"Lamps\", \"value\": \"0F\", \"shown\": \"0F\"}\n]}\n",
         ""},
        {{"--config", "1", "Speed limit=64"}, 1, "", "Locked option: Speed limit in \"Passenger car\" stays 0000012C"},
        {{"--config", "1", "Speed limit=12C"}, 0, "0400000080C2120100004341522D30312900\n", ""},
        {{"--config", "1", "--force", "Speed limit=64"}, 0, "040000008042060100004341522D30312900\n", ""},
        {{"--config", "1", "Calibration=5"}, 1, "", "Hidden option: Calibration"},
        {{"--config", "1", "Wake delay=65"}, 1, "", "Wrong Value: Wake delay takes a hex number from 00000005 to 00000064"},
        {{"--config", "1", "Vehicle code=45"}, 1, "", "Wrong Value: Vehicle code takes 2 bytes as hex text"},
        {{"--config", "1", "Name plate=CAR"}, 1, "", "Wrong Value: Name plate takes 6 characters"},
        {{"--config", "1", "Test mode=1"}, 1, "", "Wrong Value: Test mode is of the type \"BOOL\""},
        {{"--config", "1", "Bogus=1"}, 1, "", "No option \"Bogus\" in the catalog"},
        {{"--config", "1", "9=1"}, 1, "", "No option \"9\""},
        {{"--config", "1", "Mode"}, 1, "", "Expected NAME=VALUE"},
        {{"--image", "090000000000000000000000000000000000", "Mode=On"}, 7, "", "Id 00000009"},
        {{"--image", "0900", "--force", "Mode=On"}, 1, "", "Wrong Value: Mode does not lie inside the image"},
        {{"--image", "0x0", "Mode=On"}, 1, "", "--image takes a hex text of whole bytes"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> args = {"set", kSample};
        args.insert(args.end(), c.args.begin(), c.args.end());
        std::string trace;
        for (const std::string& arg : c.args) trace += arg + " ";
        SCOPED_TRACE(trace);
        const CliRun run = Cli(args);
        EXPECT_EQ(run.status, c.status) << run.err;
        EXPECT_EQ(run.out, c.out);
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
    }
}

TEST_F(CatalogCommands, SetAndDecodeAgree) {
    const CliRun set = Cli({"set", kSample, "--config", "2", "Lamps=03", "1=3FF"});
    ASSERT_EQ(set.status, 0) << set.err;
    const CliRun decode = Cli({"decode", kSample, "--image", set.out});
    ASSERT_EQ(decode.status, 0) << decode.err;
    EXPECT_NE(decode.out.find("  Calibration:000003FF\n"), std::string::npos) << decode.out;
    EXPECT_NE(decode.out.find("  Lamps:03\n    [x] Low beam  (preset)\n    [x] High beam\n"), std::string::npos)
        << decode.out;
}

}  // namespace
}  // namespace sb::test
