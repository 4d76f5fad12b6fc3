#pragma once
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <functional>
#include <string>

#include "update/ChooserLists.h"

namespace sb::ui {

// "File": the program's own file dialog. A caller drives it from outside:
// sets Tag ("Open" or "Save"), File1's pattern and the three lists, shows it
// modally, reads txtSelFile (a path, or empty for nothing) and unloads it.
// At each show it goes back to the place remembered in sniffer.ini
// (section FRMLOAD), or to the program's directory when that place is gone;
// the unload remembers the place it ends at. Open and Cancel only hide it;
// the close box cancels and unloads at once.
class frmFileCtrl final : public QDialog {
    Q_OBJECT
public:
    // Loads the form: the lists at "/", txtSelFile empty.
    explicit frmFileCtrl(QWidget* parent = nullptr);
    ~frmFileCtrl() override;

    std::string Tag;

    DriveList* Drive1;
    DirList* Dir1;
    FileList* File1;
    QLineEdit* txtSelFile;
    QPushButton* cmdOpen;
    QPushButton* cmdCancel;

    // Remembers the place and empties txtSelFile, once: after a close by
    // the title bar, which has unloaded the form already, it does nothing.
    void Unload();

    void reject() override;  // Escape: Cancel

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildControls();
    void ConnectEvents();
    void Guarded(const std::function<void()>& step);
    void Form_Load();
    void Form_Activate();
    void Form_Unload();
    void SetOpenCaption();
    // Dir1, Drive1 and File1, in this order.
    void GoTo(const std::string& dir, const std::string& drive, const std::string& path);
    void Drive1_Change();
    void Dir1_Change();
    void File1_Click();
    void File1_PatternChange();
    void cmdOpen_Click();
    void cmdCancel_Click();

    bool unloaded_ = false;
    bool fallingBack_ = false;
};

}  // namespace sb::ui
