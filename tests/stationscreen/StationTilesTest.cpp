#include "stationscreen/StationTiles.h"

#include <gtest/gtest.h>

// A module's tile through a switch into its boot loader, a download that
// fails, and its return for another attempt.
namespace sb {
namespace {

TEST(StationTiles, FollowTheStepsOfAModuleAndKeepTheRateOfItsLastTransfer) {
    StationTiles tiles;
    std::vector<std::string> steps;
    const auto step = [&] { steps.push_back(tiles.Tiles().at(0).Step); };
    const auto book = [&](ModuleStage stage, bool present) { tiles.Follow({{1, "ttyACM0", "S1", stage, present}}); };
    const ModuleJob boot{JobStep::EnterBoot, "ttyACM0", "S1", 1}, flash{JobStep::Flash, "ttyACM1", "S1", 1};
    ModuleRecord failed;
    failed.Result = ModuleResult::NotDownloaded;
    failed.Detail = "the device has gone";
    failed.SN = "20240117";

    book(ModuleStage::Waiting, true), step();
    tiles.Started(boot, 1, 0.0), step();
    tiles.Ended(boot, nullptr, true), step();
    tiles.Started(flash, 1, 9.0), step();
    tiles.Progress(flash, {0, 0, 4096}, 10.0);
    tiles.Progress(flash, {2, 2048, 4096}, 12.0);
    tiles.Begun(flash, "configure"), step();
    tiles.Ended(flash, &failed, false), step();
    const ModuleTile ended = tiles.Tiles().at(0);
    book(ModuleStage::Failed, false);
    book(ModuleStage::Waiting, true), step();

    EXPECT_EQ(steps, (std::vector<std::string>{"waiting", "boot", "in the boot loader", "download", "configure", "not downloaded",
                                               "waiting"}));
    EXPECT_EQ(ended.SN, "20240117");
    EXPECT_EQ(ended.Detail, "the device has gone");
    EXPECT_DOUBLE_EQ(PaceOf(ended).Share, 0.5);
    EXPECT_DOUBLE_EQ(PaceOf(ended).BytesPerSecond, 1024);
    tiles.Started(flash, 2, 20.0);
    EXPECT_EQ(PaceOf(tiles.Tiles().at(0)).Share, 0) << "a new attempt shows no transfer before its first block";
    tiles.Progress(flash, {3, 3072, 4096}, 23.0);
    EXPECT_DOUBLE_EQ(PaceOf(tiles.Tiles().at(0)).BytesPerSecond, 1024) << "timed from its start without block 0";
}

}  // namespace
}  // namespace sb
