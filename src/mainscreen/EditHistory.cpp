// Undo and redo of the working image. Every change of CfgImage ends in
// SetCfgEdited, and that is where a step is noted: a value form's OK, a check
// box, "Select", an opened file and a restore alike. A step holds the image
// before and after it (each image shared by the two steps it lies between);
// a step that replaced the whole record (an opened file
// or a restore brings its own module and catalog) holds the records too, so
// that undoing it shows the module and the list that went with the image.
// A read, and the offline run, start a new history.
#include <QMenuBar>

#include "helpers/HexText.h"
#include "helpers/QuietStep.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/Guarded.h"
#include "ui/Named.h"

namespace sb::ui {
namespace {

constexpr int kUndoLimit = 1000;

}  // namespace

// What the screen showed of a record besides the image.
struct frmDeviceCofigurator::ShownRecord {
    DeviceInfo Device;
    std::string File;
    bool WithAppInfo = false;
};

class frmDeviceCofigurator::ImageStep final : public QUndoCommand {
public:
    using Image = std::shared_ptr<const std::string>;
    ImageStep(frmDeviceCofigurator& form, Image before, Image after,
              std::shared_ptr<const ShownRecord> recordBefore, std::shared_ptr<const ShownRecord> recordAfter)
        : form_(form), before_(std::move(before)), after_(std::move(after)), recordBefore_(std::move(recordBefore)),
          recordAfter_(std::move(recordAfter)) {}

    void undo() override { form_.ApplyStep(before_, recordBefore_); }
    // The push itself: the change has been made already.
    void redo() override {
        if (pushed_) form_.ApplyStep(after_, recordAfter_);
        pushed_ = true;
    }

private:
    frmDeviceCofigurator& form_;
    Image before_;
    Image after_;
    std::shared_ptr<const ShownRecord> recordBefore_;
    std::shared_ptr<const ShownRecord> recordAfter_;
    bool pushed_ = false;
};

void frmDeviceCofigurator::AddEditMenu() {
    undoStack_ = new QUndoStack(this);
    undoStack_->setUndoLimit(kUndoLimit);
    mnuEdit = Named(new QMenu(QStringLiteral("Edit"), this), "mnuEdit");
    menuBar()->insertMenu(mnuTools->menuAction(), mnuEdit);
    mnuUndo = Named(mnuEdit->addAction(QStringLiteral("Undo")), "mnuUndo");
    mnuUndo->setShortcut(QKeySequence::Undo);
    mnuRedo = Named(mnuEdit->addAction(QStringLiteral("Redo")), "mnuRedo");
    mnuRedo->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    mnuUndo->setEnabled(false);
    mnuRedo->setEnabled(false);
    connect(undoStack_, &QUndoStack::canUndoChanged, mnuUndo, &QAction::setEnabled);
    connect(undoStack_, &QUndoStack::canRedoChanged, mnuRedo, &QAction::setEnabled);
    // Not while an action on a module runs: its end takes the record in.
    connect(mnuUndo, &QAction::triggered, this, Guarded([this] {
                if (busy_ == 0) undoStack_->undo();
            }));
    connect(mnuRedo, &QAction::triggered, this, Guarded([this] {
                if (busy_ == 0) undoStack_->redo();
            }));
}

void frmDeviceCofigurator::StartNewHistory() {
    undoStack_->clear();
    stepRecord_.reset();
    recordChange_ = RecordChange::NewHistory;
}

void frmDeviceCofigurator::NoteRecordReplaced() {
    // With nothing shown before there is nothing to go back to.
    recordChange_ = stepRecord_ ? RecordChange::Replaced : RecordChange::NewHistory;
}

// A file whose catalog was refused has emptied the screen: the steps before
// it no longer fit what is shown.
void frmDeviceCofigurator::EndRecordReplaced() {
    if (recordChange_ == RecordChange::None) return;
    undoStack_->clear();
    stepRecord_.reset();
    recordChange_ = RecordChange::None;
}

std::shared_ptr<const frmDeviceCofigurator::ShownRecord> frmDeviceCofigurator::CurrentRecord() const {
    return std::make_shared<const ShownRecord>(ShownRecord{device_, shownFile_, shownWithAppInfo_});
}

void frmDeviceCofigurator::NoteImageStep() {
    const RecordChange change = std::exchange(recordChange_, RecordChange::None);
    if (applyingStep_) return;
    if (change == RecordChange::NewHistory) {
        stepRecord_ = CurrentRecord();
        stepImage_ = std::make_shared<const std::string>(device_.CfgImage);
    } else if (change == RecordChange::Replaced || device_.CfgImage != *stepImage_) {
        auto image = std::make_shared<const std::string>(device_.CfgImage);
        auto record = change == RecordChange::Replaced ? CurrentRecord() : stepRecord_;
        undoStack_->push(new ImageStep(*this, stepImage_, image, stepRecord_, record));
        stepImage_ = std::move(image);
        stepRecord_ = std::move(record);
    }
}

// Runs inside QUndoStack's undo and redo, which run inside a menu's slot:
// nothing may leave it.
void frmDeviceCofigurator::ApplyStep(const std::shared_ptr<const std::string>& image,
                                     const std::shared_ptr<const ShownRecord>& record) {
    applyingStep_ = true;
    QuietStep([&] {
        if (record && record != stepRecord_) {
            ShowRecord(*record);
            stepRecord_ = record;
        }
        device_.CfgImage = *image;
        SetCfgEdited(BytesToHex(*image));
        cmdWriteConfig->setEnabled(!image->empty());
    });
    stepImage_ = image;
    applyingStep_ = false;
}

void frmDeviceCofigurator::ShowRecord(const ShownRecord& record) {
    ClearForOfflineRecord();
    ShowModuleTexts(record.Device, record.WithAppInfo, record.File);
    ShowCatalog(record.Device);
    // The module of a read is there to be updated; that of a file or of the
    // offline run is not.
    cmdFWUpdate->setEnabled(record.File.empty() && record.WithAppInfo);
}

}  // namespace sb::ui
