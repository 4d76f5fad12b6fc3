#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

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

// On the machine itself: a child process holds a pseudo-terminal open, and
// the doctor finds it by its process id.
TEST(Doctor, FindsTheProcessThatHoldsAPort) {
    int master = -1, slave = -1, gate[2];
    char name[64];
    ASSERT_EQ(::openpty(&master, &slave, name, nullptr, nullptr), 0);
    ASSERT_EQ(::pipe(gate), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        char byte;
        ::close(gate[1]);
        ::_exit(::read(gate[0], &byte, 1) < 0);
    }
    ::close(slave);
    ::close(gate[0]);
    const auto before = support::CheckPortHolders(support::LocalSystem(), {name});
    ::close(gate[1]);
    ::waitpid(child, nullptr, 0);
    const auto after = support::CheckPortHolders(support::LocalSystem(), {name});
    ::close(master);

    ASSERT_EQ(before.size(), 1u);
    EXPECT_NE(before[0].What.find("(pid " + std::to_string(child) + ")"), std::string::npos) << before[0].What;
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(after[0].Kind, support::Trouble::None);
}

}  // namespace
}  // namespace sb
