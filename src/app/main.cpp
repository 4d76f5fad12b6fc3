// servicebay: the window program. It starts with frmDeviceCofigurator and
// ends when that form is closed.
#include <QApplication>
#include <QStringList>

#include "app/DemoScreenshots.h"
#include "helpers/Waiting.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/QtWaitContext.h"
#include "update/UpdateForms.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("servicebay"));
    // The title of every message box.
    QApplication::setApplicationDisplayName(QStringLiteral("ServiceBay"));
    // The program ends with the unload of the main screen, which may wait
    // for a running action first.
    QApplication::setQuitOnLastWindowClosed(false);

    sb::ui::QtWaitContext waits;
    sb::SetWaitContext(&waits);

    int status = 0;
    {
        // Before the main screen, whose unload unloads them.
        sb::ui::UpdateForms updateForms;
        sb::ui::frmDeviceCofigurator form;
        QObject::connect(&form, &sb::ui::frmDeviceCofigurator::unloaded, &app, &QCoreApplication::quit,
                         Qt::QueuedConnection);
        form.show();

        // Not for the technician: the screenshots of the documentation.
        const QStringList arguments = QApplication::arguments();
        const qsizetype demo = arguments.indexOf(QStringLiteral("--demo-screenshots"));
        if (demo > 0 && demo + 1 < arguments.size())
            status = sb::ui::TakeDemoScreenshots(form, arguments.at(demo + 1));
        else
            status = QApplication::exec();
    }
    sb::SetWaitContext(nullptr);
    return status;
}
