#include "mainscreen/SupportBundleSave.h"

#include <QFile>
#include <QFileDialog>
#include <QtGlobal>

#include "ProgramVersion.h"
#include "configfiles/ConfigHistory.h"
#include "mainscreen/WindowTrace.h"
#include "support/DoctorReport.h"
#include "support/SupportBundle.h"
#include "ui/MessageBox.h"
#include "ui/ModalDialog.h"

namespace sb::ui {
namespace {

// The archive's path, empty when the user cancelled.
std::string ChooseBundlePath(QWidget* parent) {
    QFileDialog dialog(parent, QStringLiteral("Save support bundle"), QString(),
                       QStringLiteral("Support bundles (*.tar.gz)"));
    dialog.setObjectName(QStringLiteral("frmSupportBundle"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.selectFile(QStringLiteral("servicebay-support.tar.gz"));
    ShowModal(dialog);
    if (dialog.result() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return QFile::encodeName(dialog.selectedFiles().first()).toStdString();
}

}  // namespace

void SaveSupportBundle(QWidget* parent) {
    const std::string path = ChooseBundlePath(parent);
    if (path.empty()) return;
    const support::LocalSystem system;
    support::BundleSources sources;
    sources.Findings = support::RunDoctor(system, {"", "", ModuleMode::None, support::ProgramFiles()});
    sources.Versions = std::string("servicebay ") + kProgramVersion + "\nQt " + qVersion() + "\n" +
                       support::SystemVersions(system);
    sources.WireTrace = WindowWireTrace().Text();
    sources.HistoryRoot = HistoryRoot();
    sources.LogPaths = support::ProgramFiles();
    // The VIN names a vehicle: it goes in only when the user says so.
    sources.WithVin = ShowMessage("Put the module's VIN into the support bundle?\r\nOK: with the VIN, Cancel: without it.",
                                  MessageButtons::OkCancel) == MessageAnswer::Ok;
    try {
        support::WriteSupportBundle(path, sources);
        ShowMessage("Support bundle written to " + path);
    } catch (const std::runtime_error& failure) {
        ShowMessage(failure.what());
    }
}

}  // namespace sb::ui
