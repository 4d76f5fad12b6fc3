#pragma once
#include <gmock/gmock.h>

#include <QApplication>
#include <QTest>
#include <deque>
#include <functional>
#include <stdexcept>
#include <string>

#include "../editing/TestCatalog.h"
#include "MessageRecorder.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/ModalDialog.h"

// What the screen tests share: one application with the Qt event loop as the
// wait context, modal dialogs worked by scripted steps instead of a person,
// and the tree's nodes by key, clicked with the mouse.
namespace sb::test {

// The application of the test program, made at the first call.
QApplication& Application();

// Takes the place of the modal show for its lifetime: each show runs the
// next scripted step with the dialog (a dialog without a step is left as it
// is, like Cancel without a click).
class ModalScript {
public:
    using Step = std::function<void(QDialog& dialog)>;
    ModalScript() {
        ui::SetModalHandler([this](QDialog& dialog) {
            if (steps.empty()) return;
            Step step = std::move(steps.front());
            steps.pop_front();
            step(dialog);
        });
    }
    ~ModalScript() { ui::SetModalHandler({}); }
    Q_DISABLE_COPY(ModalScript)

    void Then(Step step) { steps.push_back(std::move(step)); }

    std::deque<Step> steps;
};

// Clicks the named button of a dialog.
inline void Click(QDialog& dialog, const char* button) {
    auto* pushButton = dialog.findChild<QPushButton*>(QLatin1String(button));
    ASSERT_NE(pushButton, nullptr) << button;
    pushButton->click();
}

// The main screen, shown on the offscreen platform.
struct Screen {
    explicit Screen(const std::string& configOptionsPath = {}) : form((Application(), configOptionsPath)) {
        form.show();
        if (!QTest::qWaitForWindowExposed(&form)) throw std::runtime_error("the main screen was not shown");
    }
    ui::frmDeviceCofigurator form;

    QTreeWidgetItem* Item(const std::string& key) {
        TreeNode* node = form.Tree().Find(key);
        return node ? form.Tree().ItemOf(*node) : throw std::out_of_range("no node " + key);
    }
    // Ticked and bold.
    bool On(const std::string& key) { return Item(key)->checkState(0) == Qt::Checked && Item(key)->font(0).bold(); }

    // Mouse clicks as a person makes them, on a node's check box or on its
    // text, once or twice; the node is expanded into view first.
    void Click(const std::string& key, bool onBox, bool twice);
    void ClickBox(const std::string& key, bool twice = false) { Click(key, true, twice); }
    void ClickText(const std::string& key, bool twice = false) { Click(key, false, twice); }
};

// A main screen whose dialogs and message boxes are scripted, with the test
// catalog in its ConfigOptions.xml for the offline run.
struct ScreenTest : ::testing::Test {
    ScreenTest() { TempFolder::Write(ConfigOptions(), TestCatalog()); }
    std::string ConfigOptions() const { return folder.File("ConfigOptions.xml"); }

    TempFolder folder;
    ModalScript modal;
    MessageRecorder messages;
    Screen screen{ConfigOptions()};
    ui::frmDeviceCofigurator& form = screen.form;
};

}  // namespace sb::test
