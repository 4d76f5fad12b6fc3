#include "mainscreen/ConfigOptionsFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <filesystem>
#include <system_error>

#include "InstalledFiles.h"

namespace sb::ui {

namespace {

std::string LocalPath(const QString& path) { return QDir::toNativeSeparators(path).toLocal8Bit().toStdString(); }

bool IsThere(const std::string& path) {
    std::error_code ignored;
    return !path.empty() && std::filesystem::exists(path, ignored);
}

}  // namespace

std::string FirstExistingConfigOptions(const std::string& beside, const std::string& inConfig,
                                       const std::string& installedSample) {
    for (const std::string* place : {&beside, &inConfig, &installedSample})
        if (IsThere(*place)) return *place;
    return beside;
}

std::string DefaultConfigOptionsPath() {
    const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath(QLatin1String(kConfigOptionsName));
    const QString configFolder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    const std::string inConfig =
        configFolder.isEmpty() ? std::string() : LocalPath(QDir(configFolder).filePath(QLatin1String(kConfigOptionsName)));
    return FirstExistingConfigOptions(LocalPath(beside), inConfig, kInstalledSampleCatalog);
}

}  // namespace sb::ui
