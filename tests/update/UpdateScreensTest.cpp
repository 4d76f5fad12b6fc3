// frmFileCtrl and frmTarnlift as a technician works them: where the chooser
// opens, what it hands over and remembers, and a download through the main
// screen into the virtual module.
#include <gtest/gtest.h>

#include <QTest>
#include <filesystem>

#include "../helpers/TempFolder.h"
#include "../mainscreen/ScreenTesting.h"
#include "../mainscreen/VirtualModule.h"
#include "helpers/IniFile.h"
#include "link/QtSerialPort.h"
#include "update/PathText.h"
#include "update/SnifferIni.h"
#include "update/UpdateForms.h"

namespace sb::test {
namespace {

using Chooser = std::function<void(ui::frmFileCtrl&)>;

// The chooser goes to folder, clicks the file named and ends with the button.
Chooser Pick(const std::string& folder, const std::string& name, const char* button = "cmdOpen") {
    return [=](ui::frmFileCtrl& chooser) {
        chooser.Dir1->SetPath(folder);
        chooser.File1->setCurrentItem(chooser.File1->findItems(ui::PathText(name), Qt::MatchExactly).value(0));
        Click(chooser, button);
    };
}

// A stick in the test's folder is the one drive besides "/".
class UpdateScreens : public ::testing::Test {
protected:
    UpdateScreens() {
        Application();
        OverrideSnifferIniPath(folder.File("sniffer.ini"));
        ui::SetMountLookup([this] { return std::vector<std::string>{Stick()}; });
        std::filesystem::create_directories(Stick());
        TempFolder::Write(Stick() + "/fw.cod", "firmware");
    }
    ~UpdateScreens() override {
        OverrideSnifferIniPath({});
        ui::SetMountLookup({});
    }

    std::string Stick() const { return folder.File("stick"); }
    std::string Stored(const char* key) const {
        return IniReadValue("FRMLOAD", key, "-", folder.File("sniffer.ini"));
    }
    // "Select File", the chooser worked by work; the name it handed over.
    std::string Chosen(ui::frmTarnlift& screen, const Chooser& work) {
        modal.Then([work](QDialog& dialog) {
            dialog.show();
            work(dynamic_cast<ui::frmFileCtrl&>(dialog));
        });
        screen.cmdSelectBinary->click();
        return ui::PathOf(screen.txtBinaryFileName->text());
    }

    TempFolder folder;
    ModalScript modal;
    MessageRecorder messages;
    ui::UpdateForms forms;
};

TEST_F(UpdateScreens, TheChooserOpensAtTheProgramFirstThenWhereItEndedWhileThatPlaceIsThere) {
    std::string first, second, gone;
    // Notes folder, drive and file list's folder, as "dir drive path".
    const auto noteAnd = [](std::string& place, const char* button) {
        return [&place, button](ui::frmFileCtrl& chooser) {
            place = chooser.Dir1->Path() + " " + chooser.Drive1->Drive() + " " + chooser.File1->Path();
            Click(chooser, button);
        };
    };
    modal.Then([&](QDialog& dialog) {
        auto& screen = dynamic_cast<ui::frmTarnlift&>(dialog);
        EXPECT_EQ(Chosen(screen, noteAnd(first, "cmdCancel")), "");
        EXPECT_EQ(Chosen(screen, Pick(Stick(), "fw.cod")), Stick() + "/fw.cod");
        // Open without a click in the file list hands over the folder; the
        // caller set the program's directory, but the remembered place wins.
        EXPECT_EQ(Chosen(screen, noteAnd(second, "cmdOpen")), Stick());
        // Cancel after a click clears the file chosen before.
        EXPECT_EQ(Chosen(screen, Pick(Stick(), "fw.cod", "cmdCancel")), "");
        EXPECT_EQ(Stored("DIR") + " " + Stored("DRIVE") + " " + Stored("PATH"), second);
        // The stick is pulled: its place is gone, and so is its drive, still listed, when picked.
        std::filesystem::remove_all(Stick());
        Chosen(screen, [&](ui::frmFileCtrl& chooser) {
            QTest::keyClick(chooser.Drive1, Qt::Key_Down);
            noteAnd(gone, "cmdCancel")(chooser);
        });
    });
    QtSerialPort port;
    frmPortControl portControl;
    forms.ShowTarnlift(port, portControl);
    EXPECT_EQ(first, ProgramDirectory() + " / " + ProgramDirectory());
    // The drive is the mount point that holds the folder.
    EXPECT_EQ(second, Stick() + " " + Stick() + " " + Stick());
    EXPECT_EQ(gone, first);
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(UpdateScreens, TheChooserListsFoldersAndTheFilesOfItsPattern) {
    for (const char* name : {"B.COD", ".hidden.cod", "notes.txt", "fw.cod.bak"})
        TempFolder::Write(Stick() + "/" + name, "x");
    std::filesystem::create_directories(Stick() + "/older");
    ui::frmFileCtrl& chooser = forms.FileCtrl();
    // An unknown Tag keeps the caption that the one before left.
    for (const auto& [tag, caption] :
         {std::pair{"Save", "Save"}, std::pair{"Print", "Save"}, std::pair{"Open", "Open"}}) {
        chooser.Tag = tag;
        chooser.show();
        EXPECT_EQ(chooser.cmdOpen->text().toStdString(), caption);
        chooser.hide();
    }
    chooser.show();
    chooser.File1->SetPattern("*.cod");
    chooser.Dir1->SetPath(Stick());
    EXPECT_EQ(chooser.File1->count(), 2);
    EXPECT_EQ(chooser.File1->item(0)->text(), "B.COD");
    chooser.File1->setCurrentRow(0);
    chooser.File1->SetPattern("*.txt");
    EXPECT_EQ(chooser.txtSelFile->text(), "");
    // The rows from "/" down to the folder, then its subfolders.
    EXPECT_EQ(chooser.Dir1->item(0)->text(), "/");
    // Enter on a folder enters it, and confirms nothing.
    chooser.Dir1->setCurrentRow(chooser.Dir1->count() - 1);
    QTest::keyClick(chooser.Dir1, Qt::Key_Return);
    EXPECT_EQ(ui::PathOf(chooser.txtSelFile->text()), Stick() + "/older");
    EXPECT_TRUE(chooser.isVisible());
    EXPECT_EQ(chooser.File1->count(), 0);
    // The close box cancels and unloads at once, which remembers the place.
    chooser.close();
    EXPECT_EQ(chooser.txtSelFile->text(), "");
    EXPECT_EQ(Stored("DIR"), Stick() + "/older");
}

TEST_F(UpdateScreens, ShiftAloneAtTheUpdateAddsTheProductionRecordOfTheDownload) {
    const VirtualModule module;
    const std::string name = "fw-\xE9t\xE9.cod";  // Latin-1, not UTF-8: the name is bytes
    TempFolder::Write(folder.File(name), std::string(1000, 'f'));
    Screen screen;
    screen.form.cmdRdDevInfo->click();
    std::vector<int> meter;
    modal.Then([&](QDialog& dialog) {
        auto& tarnlift = dynamic_cast<ui::frmTarnlift&>(dialog);
        EXPECT_EQ(Chosen(tarnlift, Pick(folder.Path(), name)), folder.File(name));
        for (const Qt::KeyboardModifiers held :
             {Qt::KeyboardModifiers(Qt::ShiftModifier), Qt::ShiftModifier | Qt::ControlModifier}) {
            QTest::mouseClick(tarnlift.cmdUpdate, Qt::LeftButton, held);
            meter.push_back(tarnlift.Meter->prgTransfer->value());
        }
    });
    screen.form.cmdFWUpdate->click();
    EXPECT_EQ(messages.texts, std::vector<std::string>(
                                  2, "Update completed succesfully\r\nReport:Flash OK\r\n\r\n 1024 bytes programmed"));
    EXPECT_EQ(meter, (std::vector<int>{100, 100}));
    EXPECT_EQ(IniReadValue("STAT", "QTY", "-", folder.File("sniffer.ini")), "1");
    // Each opening starts with an empty name.
    modal.Then(
        [](QDialog& dialog) { EXPECT_EQ(dynamic_cast<ui::frmTarnlift&>(dialog).txtBinaryFileName->text(), ""); });
    screen.form.cmdFWUpdate->click();
}

}  // namespace
}  // namespace sb::test
