#pragma once
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <memory>

#include "link/SerialPort.h"
#include "link/frmPortControl.h"
#include "ui/StatusBarText.h"
#include "update/TransferMeter.h"
#include "update/UpdateRun.h"

namespace sb::ui {

class UpdateForms;

// "Tarnlift": the firmware update. "Select File" picks a *.cod file in the
// file chooser; "Update" downloads it into a module in boot mode, chosen in
// the selection dialog, on the main screen's port ComPort, and offers a
// retry when the download fails. A press of "Update" with Shift (alone)
// held adds the production record to sniffer.ini after a successful
// download.
class frmTarnlift final : public QDialog {
    Q_OBJECT
public:
    frmTarnlift(UpdateForms& forms, SerialPort& comPort, frmPortControl& portControl, QWidget* parent = nullptr);
    ~frmTarnlift() override;

    QLabel* Label3;
    QLineEdit* txtBinaryFileName;
    QPushButton* cmdSelectBinary;
    QPushButton* cmdUpdate;
    TransferMeter* Meter;
    QStatusBar* StatusBar;

    // How the last run of cmdUpdate ended.
    const UpdateOutcome& LastOutcome() const { return lastOutcome_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildControls();
    void Form_Load();
    void cmdSelectBinary_Click();
    void cmdUpdate_MouseDown(Qt::KeyboardModifiers shift);
    void cmdUpdate_Click();

    UpdateForms& forms_;
    SerialPort& comPort_;
    frmPortControl& portControl_;
    std::unique_ptr<StatusBarText> status_;
    bool production_ = false;
    UpdateOutcome lastOutcome_;
};

}  // namespace sb::ui
