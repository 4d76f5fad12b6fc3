// frmTarnlift against the virtual module: each road of a press of "Update",
// with its messages, the module's image, the production record and the
// button enabled at the end.
#include <gtest/gtest.h>

#include <QTest>
#include <random>

#include "../mainscreen/VirtualModule.h"
#include "UpdateScreenTesting.h"
#include "link/QtSerialPort.h"
#include "FirmwareImage.h"

namespace sb::test {
namespace {

using ui::MessageAnswer;

std::string ReadAll(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) return "(missing)";
    const QByteArray bytes = file.readAll();
    return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

const std::string kRetry = "Download was completed with Errors\r\nReport:Flash ERROR\r\n\r\nRetry ?";

class UpdateScreen : public UpdateScreenTest {
protected:
    // A module in boot mode that keeps what it receives; it must be there
    // before the selection dialog's first scan.
    void StartModule(std::vector<std::string> faults = {}) {
        faults.insert(faults.end(), {"--firmware-out", Received()});
        module = std::make_unique<VirtualModule>(faults);
        portControl = std::make_unique<frmPortControl>();
    }
    std::string Received() const { return Folder() + "/received.bin"; }

    // One opening of the update screen: the file chosen in the chooser (none
    // for an empty name), then presses of "Update" with the keys held.
    void Press(const std::string& file, std::vector<Qt::KeyboardModifiers> presses = {Qt::NoModifier}) {
        if (!portControl) portControl = std::make_unique<frmPortControl>();
        modal.Then([&, file, presses](QDialog& dialog) {
            ui::frmTarnlift& screen = TarnliftOf(dialog);
            screen.show();
            if (!file.empty()) {
                modal.Then(ChooseIn(Folder(), file));
                screen.cmdSelectBinary->click();
            }
            for (const Qt::KeyboardModifiers held : presses) {
                QTest::mouseClick(screen.cmdUpdate, Qt::LeftButton, held);
                EXPECT_TRUE(screen.cmdUpdate->isEnabled());
                status.push_back(screen.StatusBar->toolTip().toStdString());
                shownStatus.push_back(screen.StatusBar->currentMessage().toStdString());
                meter.push_back(screen.Meter->prgTransfer->value());
                outcomes.push_back(screen.LastOutcome());
            }
        });
        forms.ShowTarnlift(port, *portControl);
        EXPECT_FALSE(port.PortOpen());
    }

    std::unique_ptr<VirtualModule> module;
    ui::UpdateForms forms;
    QtSerialPort port;
    std::unique_ptr<frmPortControl> portControl;
    std::vector<std::string> status, shownStatus;
    std::vector<int> meter;
    std::vector<UpdateOutcome> outcomes;
};

TEST_F(UpdateScreen, TheModuleHoldsTheFilePaddedAsWholeBlocks) {
    StartModule();
    for (const size_t size : {size_t{1000}, size_t{2048}}) {
        const std::string data = RandomBytes(size, static_cast<unsigned>(size));
        Write("fw.cod", data);
        messages.texts.clear();
        Press("fw.cod");
        const std::string programmed = std::to_string((size / 1024 + 1) * 1024);
        EXPECT_EQ(messages.texts, std::vector<std::string>{"Update completed succesfully\r\nReport:Flash OK\r\n\r\n " +
                                                           programmed + " bytes programmed"})
            << size;
        EXPECT_EQ(ReadAll(Received()), PaddedToWholeBlocks(data)) << size;
        EXPECT_EQ(status.back(), "Update completed succesfully\r\n " + programmed + " bytes programmed");
        EXPECT_EQ(shownStatus.back(), "Update completed succesfully |  " + programmed + " bytes programmed");
        EXPECT_EQ(meter.back(), 100);
    }
    // Without Shift no record.
    EXPECT_EQ(IniKey("STAT", "QTY"), "-");
}

TEST_F(UpdateScreen, RetryAfterAFailedDownloadUntilCancel) {
    StartModule({"--xmodem-refuse"});
    Write("fw.cod", RandomBytes(100, 1));
    messages.answers = {MessageAnswer::Ok, MessageAnswer::Cancel};
    Press("fw.cod");
    EXPECT_EQ(messages.texts, (std::vector<std::string>{kRetry, kRetry}));
    EXPECT_EQ(outcomes.back().Tries, 2);
    EXPECT_EQ(outcomes.back().End, UpdateEnd::Abandoned);
    EXPECT_EQ(status.back(), "Binary File was not downloaded");
    EXPECT_NE(module->State("Transfer"), "complete");
    EXPECT_EQ(ReadAll(Received()), "(missing)");
}

TEST_F(UpdateScreen, RoadsThatEndBeforeTheTransfer) {
    const struct {
        const char* name;
        std::string file;  // chosen in the chooser; "" for none
        const char* content;
        bool cancelSelection;
        const char* message;
        bool selectionShown;
    } cases[] = {
        {"nothing chosen", "", nullptr, false, "Binary file does not exist!", false},
        {"a folder", "older", nullptr, false, "Binary file does not exist!", false},
        {"selection cancelled", "fw.cod", "data", true, "Cant find device in boot mode", true},
        {"empty file", "empty.cod", "", false, "Error when reading binary file!", true},
    };
    StartModule();
    QDir(QString::fromStdString(Folder())).mkpath(QStringLiteral("older"));
    for (const auto& c : cases) {
        std::string chosen = c.file;
        if (c.content) Write(c.file, c.content);
        messages.texts.clear();
        modal.shown.clear();
        if (c.file == "older") {
            // Open without a click on a file: the folder is the result.
            modal.Then([&](QDialog& dialog) {
                ui::frmTarnlift& screen = TarnliftOf(dialog);
                modal.Then(ChooseIn(Folder() + "/older", ""));
                screen.cmdSelectBinary->click();
                EXPECT_EQ(screen.txtBinaryFileName->text().toStdString(), Folder() + "/older");
                screen.cmdUpdate->click();
                EXPECT_TRUE(screen.cmdUpdate->isEnabled());
            });
            forms.ShowTarnlift(port, *portControl);
        } else {
            if (c.cancelSelection) {
                // The chooser's step comes first, then the selection dialog's.
                modal.Then([&, file = c.file](QDialog& dialog) {
                    ui::frmTarnlift& screen = TarnliftOf(dialog);
                    modal.Then(ChooseIn(Folder(), file));
                    modal.Then([](QDialog& selection) { Click(selection, "cmdCancel"); });
                    screen.cmdSelectBinary->click();
                    screen.cmdUpdate->click();
                    EXPECT_TRUE(screen.cmdUpdate->isEnabled());
                });
                forms.ShowTarnlift(port, *portControl);
            } else {
                Press(chosen);
            }
        }
        EXPECT_EQ(messages.texts, std::vector<std::string>{c.message}) << c.name;
        const bool selectionShown =
            std::find(modal.shown.begin(), modal.shown.end(), "frmPortControl") != modal.shown.end();
        EXPECT_EQ(selectionShown, c.selectionShown) << c.name;
        EXPECT_FALSE(port.PortOpen()) << c.name;
    }
}

TEST_F(UpdateScreen, ShiftAloneAtThePressAddsTheProductionRecord) {
    StartModule();
    Write("fw.cod", RandomBytes(10, 7));
    // A press with Shift alone, then one with Shift and Ctrl, then a plain one.
    Press("fw.cod", {Qt::ShiftModifier, Qt::ShiftModifier | Qt::ControlModifier, Qt::NoModifier});
    ASSERT_EQ(outcomes.size(), 3u);
    EXPECT_TRUE(outcomes[0].Record.has_value());
    EXPECT_FALSE(outcomes[1].Record.has_value());
    EXPECT_FALSE(outcomes[2].Record.has_value());
    EXPECT_EQ(IniKey("STAT", "QTY"), "1");
    const std::pair<const char*, const char*> record[] = {
        {"SN", "SN0042"}, {"Ver", "1.2.3"}, {"Name", "Test module"}, {"Date", "01.02.2024"}, {"UID", "0123456789ABCDEF"}};
    for (const auto& [key, value] : record) EXPECT_EQ(IniKey("STAT_00000001", key), value) << key;
    EXPECT_EQ(IniKey("STAT_00000002", "SN"), "-");
}

TEST_F(UpdateScreen, MainScreenOpensItWithUpdate) {
    StartModule();
    Write("fw.cod", "through the main screen");
    Screen screen;
    screen.form.cmdRdDevInfo->click();
    ASSERT_TRUE(screen.form.cmdFWUpdate->isEnabled());
    modal.shown.clear();
    modal.Then([&](QDialog& dialog) {
        ui::frmTarnlift& tarnlift = TarnliftOf(dialog);
        EXPECT_EQ(tarnlift.windowTitle(), "Tarnlift");
        EXPECT_EQ(tarnlift.txtBinaryFileName->text(), "");
        modal.Then(ChooseIn(Folder(), "fw.cod"));
        tarnlift.cmdSelectBinary->click();
        tarnlift.cmdUpdate->click();
    });
    screen.form.cmdFWUpdate->click();
    EXPECT_EQ(modal.shown, (std::vector<std::string>{"frmTarnlift", "frmFileCtrl", "frmPortControl"}));
    EXPECT_EQ(ReadAll(Received()), PaddedToWholeBlocks("through the main screen"));
    // Each opening starts with an empty file name.
    modal.Then([](QDialog& dialog) { EXPECT_EQ(TarnliftOf(dialog).txtBinaryFileName->text(), ""); });
    screen.form.cmdFWUpdate->click();
    EXPECT_EQ(forms.Tarnlift(), nullptr);
}

}  // namespace
}  // namespace sb::test
