#pragma once
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <deque>
#include <functional>
#include <string>

#include "MessageRecorder.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/QtWaitContext.h"

// What the screen tests share: one application with the Qt event loop as the
// wait context, modal dialogs worked by scripted steps instead of a person,
// and access to the tree's nodes by key.
namespace sb::test {

// The application of the test program, made at the first call.
QApplication& Application();

// Takes the place of the modal show for its lifetime: each show runs the
// next scripted step with the dialog (a dialog without a step is left as it
// is, like Cancel without a click). Every show is noted by object name.
class ModalScript {
public:
    using Step = std::function<void(QDialog& dialog)>;
    ModalScript();
    ~ModalScript();
    ModalScript(const ModalScript&) = delete;
    ModalScript& operator=(const ModalScript&) = delete;

    void Then(Step step) { steps.push_back(std::move(step)); }

    std::deque<Step> steps;
    std::vector<std::string> shown;
};

// Press and release of the left button; the same and a double click.
void ClickAt(QWidget* widget, QPoint at);
void DoubleClickAt(QWidget* widget, QPoint at);

// Clicks the named button of a dialog.
void Click(QDialog& dialog, const char* button);
// Step: sets the value box (txtOptValue or txtValue) of a value edit form,
// optionally switches a mode button first, and clicks cmdOK or cmdCancel.
ModalScript::Step EnterValue(const std::string& text, const char* button = "cmdOK", const char* mode = nullptr);

// A catalog file in a folder of its own.
class CatalogFolder {
public:
    explicit CatalogFolder(const std::string& text);
    std::string Path() const;

private:
    QTemporaryDir dir_;
};

// The main screen, shown on the offscreen platform.
struct Screen {
    explicit Screen(const std::string& configOptionsPath = {});
    ui::frmDeviceCofigurator form;

    QTreeWidgetItem* Item(const std::string& key);
    std::string Text(const std::string& key);
    std::string Tag(const std::string& key);
    bool On(const std::string& key);  // checked and bold
    std::string Color(const std::string& key);  // "black", "red", "blue", "gray" or the colour's name
    std::string CfgEdited() const { return form.CfgEditedText(); }

    // A real mouse click on the check box of a node, expanded into view.
    void ClickBox(const std::string& key);
    // A click on the node's text, away from its box.
    void ClickText(const std::string& key);
    // Selects the node and double-clicks it.
    void DoubleClick(const std::string& key);

private:
    QPoint TextOf(const std::string& key);
};

}  // namespace sb::test
