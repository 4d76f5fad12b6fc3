#include <gtest/gtest.h>

#include "../helpers/TempFolder.h"
#include "FakeSystem.h"
#include "support/Doctor.h"

namespace sb {
namespace {

ModuleMode NeededMode(const std::string& word) {
    return word == "boot" ? ModuleMode::Boot : word == "running" ? ModuleMode::Running : ModuleMode::None;
}

// Every problem the doctor names, and only those: a check that stays silent
// on a fault fails as much as one that sees a fault where there is none.
TEST(Doctor, NamesEachProblemOfTheMachineWithItsFix) {
    const auto cases = test::TestCases("fieldsupport/doctor-cases.json");
    for (const auto& c : cases.at("cases")) {
        auto machine = cases.at("machine");
        machine.merge_patch(c.value("machine", nlohmann::json::object()));
        auto ask = cases.at("request");
        ask.merge_patch(c.value("request", nlohmann::json::object()));
        const support::DoctorRequest request{ask.at("port"), ask.at("id"), NeededMode(ask.at("needed")), ask.at("folders")};

        std::vector<support::Finding> problems;
        for (const auto& finding : support::RunDoctor(test::FakeSystem(machine), request))
            if (finding.Kind != support::Trouble::None) problems.push_back(finding);

        const auto& expected = c.at("expect");
        EXPECT_EQ(problems.size(), expected.size()) << c.at("name");
        for (std::size_t i = 0; i < std::min(problems.size(), expected.size()); ++i) {
            const auto& p = problems[i];
            EXPECT_EQ(p.Check, expected[i][0]) << c.at("name");
            EXPECT_NE(p.What.find(expected[i][1].get<std::string>()), std::string::npos) << c.at("name") << ": " << p.What;
            EXPECT_NE(p.Fix.find(expected[i][2].get<std::string>()), std::string::npos) << c.at("name") << ": " << p.Fix;
        }
    }
}

}  // namespace
}  // namespace sb
