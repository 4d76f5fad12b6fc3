#include "mainscreen/ConfigOptionsFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace sb::ui {

std::string DefaultConfigOptionsPath() {
    const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath(QLatin1String(kConfigOptionsName));
    const QString configFolder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    const QString inConfig = QDir(configFolder).filePath(QLatin1String(kConfigOptionsName));
    const QString chosen = !QFileInfo::exists(beside) && !configFolder.isEmpty() && QFileInfo::exists(inConfig) ? inConfig : beside;
    return QDir::toNativeSeparators(chosen).toLocal8Bit().toStdString();
}

}  // namespace sb::ui
