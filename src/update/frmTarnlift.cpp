#include "update/frmTarnlift.h"

#include <QGridLayout>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "ui/Latin1.h"
#include "ui/MessageBox.h"
#include "ui/ModalDialog.h"
#include "ui/ShowOnly.h"
#include "update/PathText.h"
#include "helpers/QuietStep.h"
#include "update/SnifferIni.h"
#include "update/UpdateForms.h"

namespace sb::ui {
namespace {

constexpr const char* kFirmwarePattern = "*.cod";

// The production record is asked for with Shift alone; Shift with Ctrl or
// Alt is an ordinary press.
bool ShiftAlone(Qt::KeyboardModifiers held) {
    return (held & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) ==
           Qt::ShiftModifier;
}

}  // namespace

frmTarnlift::frmTarnlift(UpdateForms& forms, SerialPort& comPort, frmPortControl& portControl, QWidget* parent)
    : QDialog(parent), forms_(forms), comPort_(comPort), portControl_(portControl) {
    setObjectName(QStringLiteral("frmTarnlift"));
    setWindowTitle(QStringLiteral("Tarnlift"));
    BuildControls();
    status_ = std::make_unique<StatusBarText>(*StatusBar);
    connect(cmdSelectBinary, &QPushButton::clicked, this, [this] { cmdSelectBinary_Click(); });
    connect(cmdUpdate, &QPushButton::clicked, this, [this] { cmdUpdate_Click(); });
    // The mouse press comes before the click; a press by the keyboard brings
    // none, and the click takes the flag as the last press left it.
    cmdUpdate->installEventFilter(this);
    Form_Load();
}

frmTarnlift::~frmTarnlift() = default;

void frmTarnlift::BuildControls() {
    Label3 = Named(new QLabel(QStringLiteral("Firmware binary file name"), this), "Label3");
    txtBinaryFileName = ShowOnlyBox(this, "txtBinaryFileName");
    txtBinaryFileName->setMinimumWidth(360);
    cmdSelectBinary = Named(new QPushButton(QStringLiteral("Select File"), this), "cmdSelectBinary");
    cmdUpdate = Named(new QPushButton(QStringLiteral("Update"), this), "cmdUpdate");
    Meter = new TransferMeter(this);
    StatusBar = Named(new QStatusBar(this), "StatusBar");
    StatusBar->setSizeGripEnabled(false);

    auto* file = new QGridLayout;
    file->addWidget(Label3, 0, 0, 1, 2);
    file->addWidget(txtBinaryFileName, 1, 0);
    file->addWidget(cmdSelectBinary, 1, 1);
    file->addWidget(cmdUpdate, 2, 1);
    file->setColumnStretch(0, 1);
    auto* form = new QVBoxLayout(this);
    form->addLayout(file);
    form->addWidget(Meter);
    form->addWidget(StatusBar);
}

void frmTarnlift::Form_Load() { txtBinaryFileName->clear(); }

void frmTarnlift::cmdSelectBinary_Click() {
    frmFileCtrl& chooser = forms_.FileCtrl();
    chooser.Tag = "Open";
    chooser.File1->SetPattern(kFirmwarePattern);
    chooser.txtSelFile->setEnabled(false);
    // A program directory that cannot be shown is skipped: the chooser opens
    // at its remembered place anyway.
    QuietStep([&chooser] {
        const std::string program = ProgramDirectory();
        chooser.Dir1->SetPath(program);
        chooser.Drive1->SetDrive(program);
        chooser.File1->SetPath(program);
    });
    ShowModal(chooser);
    const QString chosen = chooser.txtSelFile->text();
    forms_.UnloadFileCtrl();
    // Cancel clears a file chosen before.
    txtBinaryFileName->setText(chosen);
}

bool frmTarnlift::eventFilter(QObject* watched, QEvent* event) {
    if (watched == cmdUpdate && event->type() == QEvent::MouseButtonPress)
        cmdUpdate_MouseDown(static_cast<QMouseEvent*>(event)->modifiers());
    return QDialog::eventFilter(watched, event);
}

void frmTarnlift::cmdUpdate_MouseDown(Qt::KeyboardModifiers shift) { production_ = ShiftAlone(shift); }

void frmTarnlift::cmdUpdate_Click() {
    UpdateHooks hooks;
    hooks.FileName = [this] { return PathOf(txtBinaryFileName->text()); };
    hooks.ChoosePort = [this] { return portControl_.ChooseBootPort(); };
    hooks.ShowMessage = [](const std::string& text, MessageButtons buttons) { return ShowMessage(text, buttons); };
    hooks.EnableStart = [this](bool enabled) { cmdUpdate->setEnabled(enabled); };
    hooks.Progress = [this](const XmodemProgress& progress) { Meter->Show(progress); };
    Meter->Clear();
    UpdateRun run(comPort_, *status_, std::move(hooks));
    // The run closes the port and enables cmdUpdate on every road; a failure
    // that none of its steps expects ends it there, silently.
    QuietStep([&] { lastOutcome_ = run.Run(production_, SnifferIniPath()); });
}

}  // namespace sb::ui
