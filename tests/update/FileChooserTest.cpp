// frmFileCtrl as the update screen drives it: where it opens, what it hands
// over, and the place it remembers in sniffer.ini.
#include <gtest/gtest.h>

#include <QDir>
#include <filesystem>

#include "UpdateScreenTesting.h"
#include "link/QtSerialPort.h"
#include "update/FolderListing.h"
#include "update/SnifferIni.h"

namespace sb::test {
namespace {

struct Place {
    std::string dir, drive, path;
};

class FileChooser : public UpdateScreenTest {
protected:
    FileChooser() {
        Write("fw.cod", "firmware");
        QDir(QString::fromStdString(Folder())).mkpath(QStringLiteral("older"));
    }

    // One opening of the update screen; the step works it.
    void WithTarnlift(const std::function<void(ui::frmTarnlift&)>& work) {
        modal.Then([&](QDialog& dialog) { work(TarnliftOf(dialog)); });
        forms.ShowTarnlift(port, portControl);
    }

    std::string Chosen(ui::frmTarnlift& screen, ModalScript::Step chooserStep) {
        modal.Then(std::move(chooserStep));
        screen.cmdSelectBinary->click();
        return screen.txtBinaryFileName->text().toStdString();
    }

    Place Stored() const {
        return {IniKey("FRMLOAD", "DIR"), IniKey("FRMLOAD", "DRIVE"), IniKey("FRMLOAD", "PATH")};
    }

    ui::UpdateForms forms;
    QtSerialPort port;
    frmPortControl portControl;
};

std::string DriveOf(const std::string& folder, ui::DriveList& drives) {
    return MountPointOf(folder, drives.MountPoints());
}

TEST_F(FileChooser, OpensAtTheProgramFirstThenWhereItEnded) {
    const std::string program = ProgramDirectory();
    const std::string fw = Folder() + "/fw.cod";
    Place first, second, third;
    WithTarnlift([&](ui::frmTarnlift& screen) {
        EXPECT_EQ(Chosen(screen, NoteOpeningPlace(first.dir, first.drive, first.path, "cmdCancel")), "");
        EXPECT_EQ(Stored().dir, program);

        EXPECT_EQ(Chosen(screen, ChooseIn(Folder(), "fw.cod")), fw);
        // Open without a click in the file list hands over the folder.
        EXPECT_EQ(Chosen(screen, NoteOpeningPlace(second.dir, second.drive, second.path, "cmdOpen")), Folder());
        // Cancel after a click clears the file chosen before.
        EXPECT_EQ(Chosen(screen, ChooseIn(Folder(), "fw.cod", "cmdCancel")), "");
        EXPECT_TRUE(screen.cmdUpdate->isEnabled());
    });
    ui::DriveList drives;
    EXPECT_EQ(first.dir, program);
    EXPECT_EQ(first.path, program);
    EXPECT_EQ(first.drive, DriveOf(program, drives));
    // The caller sets the program's directory, but the remembered place wins.
    EXPECT_EQ(second.dir, Folder());
    EXPECT_EQ(second.path, Folder());
    EXPECT_EQ(second.drive, DriveOf(Folder(), drives));
    const Place stored = Stored();
    EXPECT_EQ(stored.dir, Folder());
    EXPECT_EQ(stored.drive, DriveOf(Folder(), drives));
    EXPECT_EQ(stored.path, Folder());
    EXPECT_EQ(modal.shown, (std::vector<std::string>{"frmTarnlift", "frmFileCtrl", "frmFileCtrl", "frmFileCtrl",
                                                     "frmFileCtrl"}));
}

TEST_F(FileChooser, AStoredPlaceThatIsGoneFallsBackToTheProgram) {
    const std::string gone = Folder() + "/gone";
    for (const auto& [dir, path] : {std::pair{gone, Folder()}, std::pair{Folder(), gone}}) {
        Write("sniffer.ini", "[FRMLOAD]\r\nDIR=" + dir + "\r\nDRIVE=/\r\nPATH=" + path + "\r\n");
        Place opened;
        WithTarnlift([&](ui::frmTarnlift& screen) {
            Chosen(screen, NoteOpeningPlace(opened.dir, opened.drive, opened.path, "cmdCancel"));
        });
        ui::DriveList drives;
        const std::string program = ProgramDirectory();
        EXPECT_EQ(opened.dir, program) << dir;
        EXPECT_EQ(opened.drive, DriveOf(program, drives)) << dir;
        EXPECT_EQ(opened.path, program) << dir;
        EXPECT_EQ(Stored().dir, program) << dir;
    }
}

TEST_F(FileChooser, TheCloseBoxCancelsAndRemembersThePlace) {
    WithTarnlift([&](ui::frmTarnlift& screen) {
        const std::string chosen = Chosen(screen, [&](QDialog& dialog) {
            auto& chooser = static_cast<ui::frmFileCtrl&>(dialog);
            chooser.show();
            chooser.Dir1->SetPath(Folder());
            chooser.File1->setCurrentRow(0);
            EXPECT_EQ(chooser.txtSelFile->text().toStdString(), Folder() + "/fw.cod");
            chooser.close();
        });
        EXPECT_EQ(chosen, "");
    });
    EXPECT_EQ(Stored().dir, Folder());
}

TEST_F(FileChooser, ListsShowSubfoldersAndTheFilesOfThePattern) {
    for (const char* name : {"B.COD", "a.cod", ".hidden.cod", "notes.txt", "fw.cod.bak"}) Write(name, "x");
    QDir(QString::fromStdString(Folder())).mkpath(QStringLiteral("dir.cod"));
    ui::frmFileCtrl& chooser = forms.FileCtrl();
    chooser.File1->SetPattern("*.cod");
    chooser.show();
    chooser.Dir1->SetPath(Folder());

    QStringList files;
    for (int i = 0; i < chooser.File1->count(); ++i) files << chooser.File1->item(i)->text();
    EXPECT_EQ(files, (QStringList{"B.COD", "a.cod", "fw.cod"}));
    // The directory list: the folders down to here, then the subfolders.
    const int rows = chooser.Dir1->count();
    ASSERT_GE(rows, 3);
    EXPECT_EQ(chooser.Dir1->item(0)->text(), "/");
    EXPECT_EQ(chooser.Dir1->item(rows - 1)->text().trimmed(), "older");
    EXPECT_EQ(chooser.Dir1->item(rows - 2)->text().trimmed(), "dir.cod");
    emit chooser.Dir1->itemActivated(chooser.Dir1->item(rows - 1));
    EXPECT_EQ(chooser.Dir1->Path(), Folder() + "/older");
    EXPECT_EQ(chooser.File1->count(), 0);
    EXPECT_EQ(chooser.txtSelFile->text().toStdString(), Folder() + "/older");
    // A new pattern empties the result.
    chooser.File1->SetPattern("*.txt");
    EXPECT_EQ(chooser.txtSelFile->text(), "");
    forms.UnloadFileCtrl();
    EXPECT_EQ(Stored().dir, Folder() + "/older");
}

TEST_F(FileChooser, TheTagNamesTheConfirmButton) {
    const struct {
        const char* tag;
        const char* caption;
    } cases[] = {{"Save", "Save"}, {"Open", "Open"}, {"Print", "Open"}, {"Save", "Save"}, {"", "Save"}};
    // An unknown Tag keeps the caption that the one before left.
    ui::frmFileCtrl& chooser = forms.FileCtrl();
    for (const auto& c : cases) {
        chooser.Tag = c.tag;
        chooser.show();
        EXPECT_EQ(chooser.cmdOpen->text().toStdString(), c.caption) << c.tag;
        chooser.hide();
    }
}

}  // namespace
}  // namespace sb::test
