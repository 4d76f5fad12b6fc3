#pragma once
#include <gtest/gtest.h>

#include <QDialog>
#include <QTemporaryDir>
#include <string>

#include "../mainscreen/ScreenTesting.h"
#include "update/UpdateForms.h"

// What the tests of the update screens share: a sniffer.ini of the test's
// own, modal dialogs worked by scripted steps, and the steps that work the
// file chooser as a technician would.
namespace sb::test {

class UpdateScreenTest : public ::testing::Test {
protected:
    UpdateScreenTest();
    ~UpdateScreenTest() override;

    // A file in the test's folder.
    std::string Write(const std::string& name, const std::string& content) const;
    std::string Folder() const;
    std::string Ini() const;
    // A key of the test's sniffer.ini; "-" when it is missing.
    std::string IniKey(const std::string& section, const std::string& key) const;

    QTemporaryDir dir_;
    ModalScript modal;
    MessageRecorder messages;
};

// The chooser as a step: checks nothing, goes to folder, clicks the file
// named (none for an empty name) and ends with the button.
ModalScript::Step ChooseIn(const std::string& folder, const std::string& name, const char* button = "cmdOpen");

// The chooser as a step that first notes where it opened.
ModalScript::Step NoteOpeningPlace(std::string& dir, std::string& drive, std::string& path, const char* button);

ui::frmTarnlift& TarnliftOf(QDialog& dialog);

}  // namespace sb::test
