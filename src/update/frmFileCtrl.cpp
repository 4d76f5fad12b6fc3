#include "update/frmFileCtrl.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QShowEvent>
#include <QVBoxLayout>

#include "ui/ShowOnly.h"
#include "update/ChooserPlace.h"
#include "update/FolderListing.h"
#include "update/PathText.h"
#include "helpers/QuietStep.h"
#include "update/SnifferIni.h"

namespace sb::ui {
namespace {

constexpr const char* kRoot = "/";
constexpr const char* kOpen = "Open";
constexpr const char* kSave = "Save";

}  // namespace

frmFileCtrl::frmFileCtrl(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmFileCtrl"));
    setWindowTitle(QStringLiteral("File"));
    BuildControls();
    ConnectEvents();
    Form_Load();
}

frmFileCtrl::~frmFileCtrl() = default;

void frmFileCtrl::BuildControls() {
    Drive1 = Named(new DriveList(this), "Drive1");
    Dir1 = Named(new DirList(this), "Dir1");
    File1 = Named(new FileList(this), "File1");
    txtSelFile = Named(new QLineEdit(this), "txtSelFile");
    KeepReadable(*txtSelFile);  // a caller may disable it
    cmdOpen = Named(new QPushButton(QLatin1String(kOpen), this), "cmdOpen");
    cmdCancel = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    cmdOpen->setDefault(true);

    auto* lists = new QGridLayout;
    lists->addWidget(Drive1, 0, 0);
    lists->addWidget(Dir1, 1, 0);
    lists->addWidget(File1, 0, 1, 2, 1);
    lists->setColumnStretch(0, 1);
    lists->setColumnStretch(1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(txtSelFile, 1);
    buttons->addWidget(cmdOpen);
    buttons->addWidget(cmdCancel);
    auto* form = new QVBoxLayout(this);
    form->addLayout(lists, 1);
    form->addLayout(buttons);
    resize(620, 360);
}

// The changes of the lists run inside whatever set them: a failure goes
// back to that, and each entry of the technician's (the events of the lists
// and buttons, the show and the close) ends it in the program's directory.
void frmFileCtrl::ConnectEvents() {
    connect(Drive1, &DriveList::changed, this, [this] { Drive1_Change(); });
    connect(Dir1, &DirList::changed, this, [this] { Dir1_Change(); });
    connect(Drive1, &QComboBox::activated, this, [this](int index) { Guarded([&] { Drive1->ChooseAt(index); }); });
    connect(Dir1, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { Guarded([&] { Dir1->GoToRow(*item); }); });
    connect(File1, &FileList::clicked, this, [this] { Guarded([this] { File1_Click(); }); });
    connect(File1, &FileList::patternChanged, this, [this] { File1_PatternChange(); });
    connect(cmdOpen, &QPushButton::clicked, this, [this] { cmdOpen_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
}

// A place that has gone (a drive unplugged, a folder removed) gives no
// message: the chooser goes to the program's directory.
void frmFileCtrl::Guarded(const std::function<void()>& step) {
    if (QuietStep(step) || fallingBack_) return;
    fallingBack_ = true;
    const std::string program = ProgramDirectory();
    QuietStep([&] { GoTo(program, program, program); });
    fallingBack_ = false;
}

void frmFileCtrl::Form_Load() {
    GoTo(kRoot, kRoot, kRoot);
    txtSelFile->clear();
    SetOpenCaption();
}

void frmFileCtrl::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) Form_Activate();
}

// Behind the caller's settings: the place of the last use wins, or the
// program's directory when that place is gone.
void frmFileCtrl::Form_Activate() {
    SetOpenCaption();
    Guarded([this] {
        const ChooserPlace place = ReadChooserPlace(SnifferIniPath(), ProgramDirectory());
        GoTo(place.Dir, place.Drive, place.Path);
    });
}

void frmFileCtrl::Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    Form_Unload();
}

// A sniffer.ini that cannot be written forgets the place, without a word.
void frmFileCtrl::Form_Unload() {
    QuietStep([this] { WriteChooserPlace({Dir1->Path(), Drive1->Drive(), File1->Path()}, SnifferIniPath()); });
    txtSelFile->clear();
}

void frmFileCtrl::SetOpenCaption() {
    if (Tag == kSave) cmdOpen->setText(QLatin1String(kSave));
    if (Tag == kOpen) cmdOpen->setText(QLatin1String(kOpen));
}

void frmFileCtrl::GoTo(const std::string& dir, const std::string& drive, const std::string& path) {
    Dir1->SetPath(dir);
    Drive1->SetDrive(drive);
    File1->SetPath(path);
}

// A folder that lies on the new drive stays; else the drive's top.
void frmFileCtrl::Drive1_Change() {
    Dir1->SetPath(FolderOnDrive(Dir1->Path(), Drive1->Drive(), Drive1->MountPoints()));
}

// A folder that the technician enters is the result until a file is clicked.
// The drive follows the folder to the mount point that holds it, which is
// what DRIVE keeps.
void frmFileCtrl::Dir1_Change() {
    Drive1->SetDrive(Dir1->Path());
    File1->SetPath(Dir1->Path());
    txtSelFile->setText(PathText(Dir1->Path()));
}

void frmFileCtrl::File1_Click() { txtSelFile->setText(PathText(ChosenFile(File1->Path(), File1->FileName()))); }

void frmFileCtrl::File1_PatternChange() { txtSelFile->clear(); }

void frmFileCtrl::cmdOpen_Click() { hide(); }

void frmFileCtrl::cmdCancel_Click() {
    txtSelFile->clear();
    hide();
}

void frmFileCtrl::reject() { cmdCancel_Click(); }

void frmFileCtrl::closeEvent(QCloseEvent* event) {
    // The close box unloads at once; the caller then reads an empty text.
    Unload();
    QDialog::closeEvent(event);
}

}  // namespace sb::ui
