#include "mainscreen/DiagnoseDialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "support/DoctorReport.h"
#include "ui/ModalDialog.h"
#include "ui/Named.h"

namespace sb::ui {

void ShowDiagnosis(QWidget* parent) {
    const support::DoctorRequest request{"", "", ModuleMode::None, support::ProgramFiles()};
    const std::string text = support::FindingsText(support::RunDoctor(support::LocalSystem(), request));

    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("frmDiagnose"));
    dialog.setWindowTitle(QStringLiteral("Diagnose connection"));
    auto* findings = Named(new QPlainTextEdit(QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()))),
                           "txtFindings");
    findings->setReadOnly(true);
    findings->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    findings->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(findings);
    layout->addWidget(buttons);
    dialog.resize(760, 420);
    ShowModal(dialog);
}

}  // namespace sb::ui
