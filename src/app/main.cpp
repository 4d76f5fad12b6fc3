// servicebay: the window program. It starts with frmDeviceCofigurator and
// ends when that form is closed.
#include <QApplication>
#include <QCommandLineParser>

#include "ProgramVersion.h"

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
    QApplication::setApplicationVersion(QString::fromLatin1(sb::kProgramVersion));

    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("ServiceBay: service tool for the vehicle electronics module"));
    options.addHelpOption();
    options.addVersionOption();
    // Not for the technician: the screenshots of the documentation.
    QCommandLineOption demo(QStringLiteral("demo-screenshots"), QString(), QStringLiteral("FOLDER"));
    demo.setFlags(QCommandLineOption::HiddenFromHelp);
    options.addOption(demo);
    options.addPositionalArgument(QStringLiteral("file"), QStringLiteral("A configuration file (*.sbconf) to open"),
                                  QStringLiteral("[file]"));
    options.process(app);
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
        // As File → Open does; the desktop hands a double-clicked file over so.
        if (const QStringList files = options.positionalArguments(); !files.isEmpty())
            form.OpenConfigFile(files.first().toStdString());

        if (options.isSet(demo))
            status = sb::ui::TakeDemoScreenshots(form, options.value(demo));
        else
            status = QApplication::exec();
    }
    sb::SetWaitContext(nullptr);
    return status;
}
