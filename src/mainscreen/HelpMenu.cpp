#include "mainscreen/HelpMenu.h"

#include <QMenuBar>
#include <QMessageBox>

#include "ProgramVersion.h"
#include "mainscreen/DiagnoseDialog.h"
#include "mainscreen/SupportBundleSave.h"
#include "ui/Guarded.h"
#include "ui/Named.h"

namespace sb::ui {

namespace {

QString AboutText() {
    return QStringLiteral(
               "<h3>ServiceBay %1</h3>"
               "<p>Service tool for the vehicle electronics module: read it, configure it, "
               "program its firmware.</p>"
               "<p>Copyright the ServiceBay developers.<br>"
               "Released under the MIT license: use, copy, change and pass it on freely; "
               "it comes without any warranty.</p>")
        .arg(QString::fromLatin1(kProgramVersion));
}

}  // namespace

void AddHelpMenu(QMainWindow& window) {
    QMenu* help = Named(window.menuBar()->addMenu(QStringLiteral("Help")), "mnuHelp");
    QAction* diagnose = Named(help->addAction(QStringLiteral("Diagnose connection…")), "mnuDiagnose");
    QObject::connect(diagnose, &QAction::triggered, &window, Guarded([&window] { ShowDiagnosis(&window); }));
    QAction* bundle = Named(help->addAction(QStringLiteral("Save support bundle…")), "mnuSupportBundle");
    QObject::connect(bundle, &QAction::triggered, &window, Guarded([&window] { SaveSupportBundle(&window); }));
    QAction* about = Named(help->addAction(QStringLiteral("About ServiceBay")), "mnuAbout");
    QObject::connect(about, &QAction::triggered, &window,
                     [&window] { QMessageBox::about(&window, QStringLiteral("About ServiceBay"), AboutText()); });
}

}  // namespace sb::ui
