#include <gtest/gtest.h>

#include <QTest>
#include <filesystem>

#include "../link/QtApp.h"
#include "../tools/ModuleProcess.h"
#include "FirmwareImage.h"
#include "MessageRecorder.h"
#include "helpers/Sha256.h"
#include "stationscreen/frmStation.h"

// The station's window drives the production line of this build against
// virtual modules, following their plugging.
namespace sb::test {
namespace {

std::string CopiedCli(const TempFolder& folder) {
    const std::string copy = folder.File("servicebay-cli");
    std::filesystem::copy_file(std::string(std::getenv("SB_BIN_DIR")) + "/servicebay-cli", copy);
    return copy;
}

class StationScreen : public ModuleTest {
protected:
    StationScreen() {
        station.chkProduction->setChecked(true);
        TempFolder::Write(firmware, RandomBytes(5000, 11));
        TempFolder::Write(profile, TempFolder::Read(SampleFile("SampleModule.profile")) + "UsbSerial = SB0701\n");
    }
    void Start(const std::string& recipe) {
        station.txtRecipe->setText(QString::fromStdString(recipe));
        station.cmdStart->click();
    }
    ModuleProcess Plug(std::vector<std::string> args) {
        args.insert(args.end(), {"--profile", profile});
        return ModuleProcess(folder, args);
    }
    std::string Step() const { return station.tiles.at(0)->lblStep->text().toStdString(); }

    QApplication& app = QtApp();
    // A copy of this build's CLI, so that the sniffer.ini of the production record is the test's.
    const std::string cli = CopiedCli(folder);
    const std::string firmware = folder.File("fw.cod");
    const std::string profile = folder.File("module.profile");
    ui::frmStation station{nullptr, cli};
};

TEST_F(StationScreen, AModulePluggedInGetsATileThatEndsProgrammed) {
    Start(firmware);
    ModuleProcess module = Plug({"--boot"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return station.lblProgrammed->text() == QStringLiteral("1"); }, 30000));
    ASSERT_EQ(station.tiles.size(), 1u);
    EXPECT_EQ(Step(), "programmed");
    EXPECT_NE(station.tiles[0]->lblSN->text().indexOf(QStringLiteral("20240117")), -1);
    EXPECT_TRUE(station.Running());
}

// The module is away for a while on its way into its boot loader: the
// first Stop waits for it, the second does not.
TEST_F(StationScreen, StopThenStopInterruptsTheModuleInProgress) {
    Start(firmware);
    ModuleProcess module = Plug({"--reenumerate-ms", "6000"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return station.lblInProgress->text() == QStringLiteral("1"); }, 30000));
    station.cmdStop->click();
    EXPECT_TRUE(station.Running());
    station.cmdStop->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !station.Running(); }, 10000));
    EXPECT_EQ(Step(), "interrupted");
    EXPECT_EQ(station.lblFailed->text(), QStringLiteral("1"));
    EXPECT_TRUE(station.cmdStart->isEnabled());
}

TEST_F(StationScreen, ClosingTheProgramInterruptsTheModuleInProgressAndLogsIt) {
    const std::string log = folder.File("run.log");
    ModuleProcess module = Plug({"--reenumerate-ms", "6000"});
    {
        ui::frmStation closing{nullptr, cli};
        closing.txtLog->setText(QString::fromStdString(log));
        closing.txtRecipe->setText(QString::fromStdString(firmware));
        closing.cmdStart->click();
        ASSERT_TRUE(QTest::qWaitFor([&] { return closing.lblInProgress->text() == QStringLiteral("1"); }, 30000));
    }
    EXPECT_NE(TempFolder::Read(log).find(R"("result":"interrupted")"), std::string::npos) << TempFolder::Read(log);
}

TEST_F(StationScreen, ARecipeRefusesAModuleThatIsNotOnItsOrder) {
    const std::string recipe = folder.File("r.sbrecipe");
    TempFolder::Write(folder.File("order.txt"), "SB0702\n");
    TempFolder::Write(recipe, R"({"format": "servicebay-recipe", "version": 1, "production_record": false,
        "run_after": false, "expect": {"usb_serials_file": "order.txt"},
        "firmware": {"file": "fw.cod", "sha256": ")" + Sha256Hex(TempFolder::Read(firmware)) + "\"}}");
    Start(recipe);
    ModuleProcess module = Plug({"--boot"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return station.lblFailed->text() == QStringLiteral("1"); }, 30000));
    EXPECT_EQ(Step(), "refused at identity");
}

TEST(StationScreenWithoutCli, RefusesToStartAndSaysWhereItLooked) {
    QtApp();
    MessageRecorder messages;
    ui::frmStation station(nullptr, "/nowhere/servicebay-cli");
    station.cmdStart->click();
    ASSERT_EQ(messages.texts.size(), 1u);
    EXPECT_NE(messages.texts[0].find("/nowhere/servicebay-cli"), std::string::npos) << messages.texts[0];
    EXPECT_FALSE(station.Running());
}

}  // namespace
}  // namespace sb::test
