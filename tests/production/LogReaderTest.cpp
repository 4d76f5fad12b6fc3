#include <gtest/gtest.h>

#include "../helpers/TempFolder.h"
#include "production/LogQueries.h"
#include "production/LogReader.h"

namespace sb {
namespace {

using nlohmann::json;
using test::TempFolder;

json Fields(const LogEntry& e) {
    return {{"time", e.Time},     {"port", e.Port},
            {"usb_serial", e.UsbSerial}, {"attempt", e.Attempt},
            {"SN", e.SN},         {"firmware", e.FirmwareSha256},
            {"configuration", e.ConfigurationSha256}, {"step", e.Step},
            {"result", e.Result}};
}

// The lines of log-lines.json in one file, the last without its line end:
// what each gives (an entry, or the problem named with its line number),
// and what one module's history and the yield make of the entries, taken
// by two readers in turn and merged.
TEST(LogReader, TakesEachLineOrNamesItAndGoesOnAndAnswersTheQueries) {
    const json cases = test::TestCases("production/log-lines.json");
    TempFolder folder;
    std::string text;
    for (const auto& c : cases["lines"]) text += c["line"].get<std::string>() + '\n';
    const std::string path = folder.File("station.log");
    TempFolder::Write(path, text.substr(0, text.size() - 1));

    std::vector<json> entries, problems;
    const std::string serial = cases["history"]["serial"];
    ModuleHistory history(serial), otherHistory(serial);
    YieldSummary summary, otherSummary;
    LogHooks hooks{[&](const LogEntry& e) {
                       entries.push_back(Fields(e));
                       (entries.size() % 2 ? history : otherHistory).Take(e);
                       (entries.size() % 2 ? summary : otherSummary).Take(e);
                   },
                   [&](const LogProblem& p) { problems.push_back({p.File == path, p.Line, p.Why}); }, {}};
    ASSERT_TRUE(ReadLog(path, hooks));

    std::vector<json> wantEntries, wantProblems;
    for (size_t i = 0; i < cases["lines"].size(); ++i) {
        const json& c = cases["lines"][i];
        if (c.contains("entry")) wantEntries.push_back(c["entry"]);
        if (c.contains("entry"))
            EXPECT_EQ(MayEndAnAttempt(c["line"].get<std::string>()), c["entry"]["result"] != "started") << i;
        if (c.contains("problem")) wantProblems.push_back({true, i + 1, c["problem"]});
    }
    EXPECT_EQ(entries, wantEntries);
    EXPECT_EQ(problems, wantProblems);

    history.Merge(otherHistory);
    summary.Merge(otherSummary);
    std::vector<std::string> attempts;
    for (const LogEntry& e : history.NewestFirst())
        attempts.push_back(e.Time + " " + std::to_string(e.Attempt) + " " + e.Result);
    EXPECT_EQ(attempts, cases["history"]["attempts"].get<std::vector<std::string>>());
    json groups = json::array();
    for (const YieldGroup& g : summary.Groups())
        groups.push_back({{"day", g.Day}, {"firmware", g.FirmwareSha256}, {"attempts", g.Attempts},
                          {"by_result", g.ByResult}, {"failed_at", g.ByFailingStep}});
    EXPECT_EQ(groups, cases["summary"]);

    EXPECT_FALSE(ReadLog(folder.File("none.log"), hooks));
    EXPECT_EQ(problems.back(), (json{false, 0, "No such file or directory"}));
}

// Lines that cross the reader's chunks of a megabyte are whole again; one
// longer than a megabyte is named and skipped, and the next is read.
TEST(LogReader, JoinsLinesAcrossItsChunksAndSkipsALineTooLong) {
    TempFolder folder;
    const std::string path = folder.File("long.log");
    const std::string line = R"({"time":"2026-11-02T08:00:00.000Z","result":"programmed","detail":")";
    const std::string pad(600 * 1024, 'x');
    TempFolder::Write(path, line + pad + "\"}\n" + line + pad + pad + "\"}\n" + line + "\"}\n");
    std::vector<size_t> details, problems;
    ASSERT_TRUE(ReadLog(path, {[&](const LogEntry& e) { details.push_back(e.Detail.size()); },
                               [&](const LogProblem& p) { problems.push_back(p.Line); }, {}}));
    EXPECT_EQ(details, (std::vector<size_t>{pad.size(), 0}));
    EXPECT_EQ(problems, std::vector<size_t>{2});
}

}  // namespace
}  // namespace sb
